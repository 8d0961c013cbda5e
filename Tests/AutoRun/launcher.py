"""Runs launchers under Wine, moves the real pointer over them and looks at the screen."""

import functools
import io
import os
import pathlib
import shutil
import subprocess
import tempfile
import time
import unittest

from PIL import Image, ImageChops, ImageGrab

DEPTH = int(os.environ.get("SCREEN_DEPTH", "24"))  # bits a pixel of the screen
BUILD = pathlib.Path(os.environ["AUTORUN_BUILD"])  # the folder of the build under test
ROOT = pathlib.Path(__file__).resolve().parents[2]
SETUP, EXIT, RUN, HELP, NONE = range(5)


def wait_for(condition, what):
    """Polls until the condition holds, for two minutes, and returns what it answered."""
    end = time.monotonic() + 120
    while not (answer := condition()):
        if time.monotonic() > end:
            raise AssertionError(f"waited in vain for {what}; {state_of_screen()}")
        time.sleep(0.02)
    return answer


def state_of_screen():
    picture = BUILD / f"Tests/failed-{os.getpid()}.png"
    ImageGrab.grab(xdisplay="").save(picture)
    programs = "".join(line for line in output_of("ps", "-eo", "pid,stat,etime,time,wchan:20,args")
                       .splitlines(keepends=True) if ".exe" in line)
    return (f"{picture} shows the screen, the focus has "
            f"{xdotool('getwindowfocus', 'getwindowname')!r}; programs:\n{programs}")


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


def output_of(*words, **options):
    done = subprocess.run(list(map(str, words)), stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False, **{"text": True, **options})
    if done.returncode:
        raise AssertionError(f"{words}: {done.returncode}\n{done.stdout}")
    return done.stdout


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], capture_output=True, text=True,
                          check=False).stdout


def windows(caption):
    return set(xdotool("search", "--onlyvisible", "--name", f"^{caption}$").split())


def wait_for_focus(has_it, candidates):
    """Waits until has_it() says that the keys go where they are meant to; in the end gives candidates()
    the focus, as a window manager would. Wine 8 asks X for it with the time of its last message, which
    may be older on a busy machine than the last change of the focus; then X gives it to nobody."""
    help_from = time.monotonic() + 5

    def has_focus():
        if has_it():
            return True
        if time.monotonic() > help_from:
            for window in candidates():
                xdotool("windowfocus", window)
        return False
    wait_for(has_focus, "the focus")


def wait_for_focus_on(caption):
    """The same for the window whose caption has that text in it."""
    wait_for_focus(lambda: caption in xdotool("getwindowfocus", "getwindowname"),
                   lambda: windows(f".*{caption}.*"))


def is_same(left, right):
    """Whether two pictures are the same in the colours that the screen has."""
    steps = [high for _, high in ImageChops.difference(left, right).getextrema()]
    return max(steps) < (1 if DEPTH == 24 else 9)


@functools.lru_cache
def reference(launcher):
    """What it must show with each line lit and with none, and the rectangles of its lines."""
    with tempfile.NamedTemporaryFile() as pixels:
        text = output_of("wine", BUILD / "Tests/AutoRun/Reference.exe", windows_path(launcher),
                         windows_path(pixels.name))
        size, *spots = (tuple(map(int, line.split())) for line in text.splitlines())
        shots = zip(*[iter(pixels.read())] * (4 * size[0] * size[1])) if all(size) else ()
        return [Image.frombytes("RGB", size, bytes(shot), "raw", "BGRX") for shot in shots], spots


class LauncherTest(unittest.TestCase):
    """A launcher in a folder with the programs that its lines start."""

    launcher = "Tests/AutoRun/ShippedLauncher.exe"
    caption = "Fennick Setup"
    commands = {SETUP: "Fennick.exe", RUN: "RunFennick.exe", HELP: "tutorial.exe"}
    left = top = moves = 0

    def setUp(self):
        self.disc = pathlib.Path(tempfile.mkdtemp(prefix="disc"))
        self.addCleanup(shutil.rmtree, self.disc)
        for command in self.commands.values():
            shutil.copy(BUILD / "Disc/Contents/Fennick.exe", self.disc / command.split()[0])
        xdotool("mousemove", 0, 0)

    def start(self, *arguments, launcher=None, **options):
        """Returns when the window is there, which begins at (left, top) of the screen."""
        path = BUILD / (launcher or self.launcher)
        (self.disc / "AutoRun.exe").unlink(missing_ok=True)  # one that runs keeps its file
        shutil.copy(path, self.disc / "AutoRun.exe")
        self.pictures, self.spots = reference(path)
        before = windows(self.caption)
        process = subprocess.Popen(["wine", windows_path(self.disc / "AutoRun.exe"), *arguments],
                                   **options)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        self.addCleanup(xdotool, "mouseup", 1)  # no test begins with the button held down
        if self.pictures:
            self.window = wait_for(lambda: windows(self.caption) - before, "the window").pop()
            wait_for(lambda: self.has_size(*self.pictures[NONE].size), "its size")
        return process

    def has_size(self, *size):
        lines = xdotool("getwindowgeometry", "--shell", self.window).split()
        values = {name: int(value) for name, value in (line.split("=") for line in lines)}
        self.left, self.top = values.get("X"), values.get("Y")
        return size == (values.get("WIDTH"), values.get("HEIGHT"))

    def picture(self):
        if DEPTH != 24:  # which ImageGrab does not read
            return Image.open(io.BytesIO(output_of("import", "-silent", "-window", self.window,
                                                   "png:-", text=False))).convert("RGB")
        cx, cy = self.pictures[NONE].size
        return ImageGrab.grab(xdisplay="").convert("RGB").crop(
            (self.left, self.top, self.left + cx, self.top + cy))

    def expect(self, lit):
        wait_for(lambda: is_same(self.picture(), self.pictures[lit]), f"line {lit} to be lit")

    def move(self, x, y):
        xdotool("mousemove", self.left + x, self.top + y)

    def over(self, line, lit=None):
        """Moves onto a line, or onto none, and waits until that one, or `lit`, is lit."""
        x, y, cx, cy = self.spots[line] if line != NONE else (5, 5, 200, 0)
        # Never twice to the same place: a second press there would be a double click.
        self.moves += 1
        self.move(x + self.moves * 9 % cx, y + cy // 2)
        self.expect(line if lit is None else lit)

    def click(self, line):
        self.over(line)
        xdotool("click", 1)

    def close(self, process):
        self.click(EXIT)
        self.assertEqual(0, process.wait(60))
