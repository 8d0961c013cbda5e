"""Runs a launcher under Wine, moves the real pointer over it and looks at the screen."""

import glob
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import time

from PIL import Image, ImageChops, ImageGrab

DEPTH = int(os.environ.get("SCREEN_DEPTH", 24))  # bits a pixel of the screen
PATIENCE = 60  # seconds until a wait is given up
SETUP, EXIT, RUN, HELP, NONE = range(5)
ROOT = pathlib.Path(__file__).resolve().parents[2]
RESOURCES = dict(re.findall(r"#define (ID\w+) (\d+)", (ROOT / "AutoRun/Resource.h").read_text()))


def wait_for(condition, what):
    """Polls until the condition holds and returns what it answered."""
    end = time.monotonic() + PATIENCE
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > end:
            raise AssertionError("waited in vain for " + what)
        time.sleep(0.02)


def windows_path(path):
    return "Z:" + os.path.abspath(path).replace("/", "\\")


def xdotool(*words):
    return subprocess.run(["xdotool", *map(str, words)], capture_output=True, text=True,
                          check=False).stdout


def output_of(*words):
    """What a program writes. To a file: a pipe would end only with the desktop's own process, which
    the program may have started, and which stays as long as any window."""
    with tempfile.TemporaryFile("w+") as output:
        subprocess.run(list(map(str, words)), stdout=output, check=True)
        output.seek(0)
        return output.read()


def is_same(left, right):
    return left.size == right.size and ImageChops.difference(left, right).getbbox() is None


class Build:
    """What the build made."""

    def __init__(self, folder):
        self.folder = os.path.abspath(folder)

    def launcher(self, name):
        for place in ("Tests", "Disc"):
            path = os.path.join(self.folder, place, name + ".exe")
            if os.path.exists(path):
                return path
        raise FileNotFoundError(name)

    def tool(self, name):
        return os.path.join(self.folder, "Tests/AutoRun", name + ".exe")

    def reference(self, launcher, lit=NONE):
        """The picture that the launcher must show, and the rectangles of its lines' texts."""
        with tempfile.TemporaryDirectory() as folder:
            picture = os.path.join(folder, "picture.bmp")
            text = output_of("wine", self.tool("Reference"), windows_path(launcher),
                             windows_path(picture), lit)
            spots = [tuple(map(int, line.split())) for line in text.splitlines()]
            return Image.open(picture).convert("RGB"), spots


class Disc:
    """A folder with a launcher and probes under the names of the programs that it starts."""

    def __init__(self, build, launcher="ShippedLauncher",
                 programs=("Fennick.exe", "RunFennick.exe", "tutorial.exe")):
        self.folder = tempfile.mkdtemp(prefix="disc")
        self.log = os.path.join(tempfile.mkdtemp(prefix="log"), "probe.log")
        self.launcher = os.path.join(self.folder, "AutoRun.exe")
        self.reskin = build.tool("Reskin")
        shutil.copy(build.launcher(launcher), self.launcher)
        for program in programs:
            shutil.copy(build.tool("Probe"), os.path.join(self.folder, program))

    def change_resources(self, changes):
        """Of the launcher: a text for each string by its name, a file for each bitmap; "" takes the
        resource out."""
        words = []
        for name, value in changes.items():
            if name.startswith("IDB_"):
                words += ["bitmap", RESOURCES[name], value and windows_path(value)]
            else:
                words += ["string", RESOURCES[name], value]
        output_of("wine", self.reskin, windows_path(self.launcher), *words)

    def remove(self):
        os.chmod(self.folder, 0o755)
        shutil.rmtree(self.folder)
        shutil.rmtree(os.path.dirname(self.log))

    def started(self):
        """One (path, arguments, current directory) for each program started so far."""
        if not os.path.exists(self.log):
            return []
        with open(self.log, encoding="latin1") as file:
            return [tuple(line.rstrip("\r\n").split("|")) for line in file]


class Launcher:
    """A running launcher. Its client area begins at (left, top) of the screen."""

    def __init__(self, build, disc, path=None, arguments=(), caption="Fennick Setup", cwd="/"):
        self.build = build
        self.caption = caption
        self.temporary = tempfile.mkdtemp(prefix="temporary")
        environment = dict(os.environ, PROBE_LOG=windows_path(disc.log))
        self.before = self.windows()
        command = " ".join((path or windows_path(disc.launcher), *arguments))
        self.process = subprocess.Popen(
            ["wine", build.tool("Remote"), "run", windows_path(self.temporary), command],
            env=environment, cwd=cwd)

    def stop(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        shutil.rmtree(self.temporary)

    def windows(self):
        return set(xdotool("search", "--onlyvisible", "--name", "^" + self.caption + "$").split())

    def wait_until_shown(self, size):
        """Finds the window that has come, and where."""
        window = wait_for(lambda: self.windows() - self.before, "the window").pop()

        def geometry():
            lines = xdotool("getwindowgeometry", "--shell", window).split()
            values = dict(line.split("=") for line in lines)
            found = values.get("WIDTH") == str(size[0]) and values.get("HEIGHT") == str(size[1])
            return (int(values["X"]), int(values["Y"])) if found else None

        self.left, self.top = wait_for(geometry, "a window of %d x %d" % size)

    def picture(self, size):
        if DEPTH < 24:  # in the colours that the screen gives it
            path = os.path.join(self.temporary, "shot.bmp")
            self.remote("shot", windows_path(path))
            return Image.open(path).convert("RGB")
        screen = ImageGrab.grab(xdisplay="").convert("RGB")
        return screen.crop((self.left, self.top, self.left + size[0], self.top + size[1]))

    def wait_for_picture(self, expected, what):
        wait_for(lambda: is_same(self.picture(expected.size), expected), what)

    def move(self, x, y):
        xdotool("mousemove", self.left + x, self.top + y)

    @staticmethod
    def press():
        xdotool("mousedown", 1)

    @staticmethod
    def release():
        xdotool("mouseup", 1)

    def click(self):
        self.press()
        self.release()

    def wait_until_ended(self):
        return self.process.wait(PATIENCE)

    def remote(self, *words):
        return output_of("wine", self.build.tool("Remote"), words[0], self.caption, *words[1:])

    def reports(self):
        """The expressions of the failed checks that were reported, in order."""
        expressions = []
        for path in glob.glob(os.path.join(self.temporary, "ZELTrace-*.txt")):
            with open(path, encoding="latin1") as file:
                expressions += [line[len("Assert:"):line.index("  File:")] for line in file
                                if line.startswith("Assert:")]
        return expressions
