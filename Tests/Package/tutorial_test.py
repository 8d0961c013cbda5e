#!/usr/bin/python3
"""The programs of the tutorial, built from the installed package, used by mouse and keyboard; what
they show then is what the pictures of the manual show.

Usage: tutorial_test.py Tutorial.test_programs   (within Tools/with-wine, AUTORUN_BUILD says what build)
With TUTORIAL_PICTURES=write the pictures are taken anew.
"""

import os
import pathlib
import re
import subprocess
import tempfile
import time
import unittest

from PIL import Image, ImageChops, ImageGrab

from package_test import ROOT, Package, output_of, wait_for, windows, xdotool
from launcher import wait_for_focus, windows_path

PAGES = ROOT / "Docs/Manual/Tutorial"
# The signs on a caption's buttons are of this font, which ./setup could perhaps not get.
SIGNS = pathlib.Path(os.environ["WINEPREFIX"], "drive_c/windows/Fonts/marlett.ttf")
# Pixels that may differ: a caret that blinks, a second more.
SPARE = 60 if SIGNS.exists() else 260


def grab():
    return ImageGrab.grab(xdisplay="").convert("RGB")


def place(window):
    """Its rectangle on the screen; None when it has just gone."""
    values = dict(line.split("=") for line in
                  xdotool("getwindowgeometry", "--shell", window).split())
    if "X" not in values:
        return None
    x, y, cx, cy = (int(values[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))
    return x, y, x + cx, y + cy


def box_around(shown):
    places = list(filter(None, map(place, shown)))
    return (*map(min, zip(*(p[:2] for p in places))), *map(max, zip(*(p[2:] for p in places))))


def keys(*names):
    xdotool("key", "--delay", 100, *names)


class Tutorial(Package):
    def test_programs(self):
        page = (PAGES / "01-Window.md").read_text()
        commands = re.search("```sh\n(.*?)```", page, re.DOTALL)[1]
        output_of("bash", "-ec", commands, cwd=self.folder)

        self.use("01-Window", "Sheet", lambda window: [
            xdotool("mousemove", "--window", window, x, y, "click", 1)
            for x, y in ((60, 80), (160, 120), (260, 60))])
        self.use("02-Strings", "Strings", lambda _: (xdotool("type", "Never oddd"), keys(
            "BackSpace"), xdotool("type", " or even")))
        self.use("03-Commands", "Lamp", lambda _: keys("F3", "alt+l"), close=("Escape", "Escape"))
        self.use("04-Drawing", "Threads", lambda window: xdotool(
            "mousemove", "--window", window, 130, 90))
        self.use("05-Bitmaps", "Bitmaps")
        self.assertEqual("3 of Harbour at dusk, glossy\n", self.use(
            "06-Dialogs", "Order", lambda _: keys("Tab", "3", "alt+g", "alt+f"), close=("Return",)))
        self.use("07-Timers", "Kitchen", lambda window: (
            xdotool("mousemove", "--window", window, 200, 150, "click", 1),
            wait_for(lambda: grab().getpixel((place(window)[0] + 240, place(window)[1] + 80)) ==
                     (32, 144, 64), "both eggs")))
        self.use("09-Layout", "Shopping", lambda _: (
            xdotool("type", "Bread"), keys("alt+a"), xdotool("type", "Cheese"), keys("alt+a")))

        reports = self.temporary_folder()
        for file in reports.glob("ZELTrace-*"):
            file.unlink()
        self.use("08-Reports", "Reports", lambda _: (
            keys("c"), wait_for(lambda: [*reports.glob("ZELTrace-*")], "the report")), close=("x",), answer=5)
        report = next(reports.glob("ZELTrace-*")).read_text()
        self.assertRegex(report, r"Assert:nPages > 0  File:Reports  Line:\d+ (?s:.*)Tutorial: step 8"
                                 r"(?s:.*)EXCEPTION_ACCESS_VIOLATION(?s:.*)Tutorial: step 8")
        self.assertIn("Started", next((self.folder / "build/Tutorial logs").iterdir()).read_text())

        launcher = subprocess.Popen(["wine", self.tree / "bin/AutoRun.exe"])
        self.addCleanup(launcher.wait)
        self.addCleanup(launcher.kill)
        window = wait_for(lambda: windows("Fennick Setup"), "the launcher").pop()
        self.use("10-Module", "Watcher", lambda _: xdotool(
            "mousemove", "--window", window, 100, 50, "click", 1),
            program="Loader", arguments=("Fennick Setup",), beside=(window,),
            close=("alt+F4",))
        self.assertEqual(0, launcher.wait(60))

    @staticmethod
    def temporary_folder():
        path = output_of("wine", "cmd", "/c", "echo %TEMP%").strip()
        return type(ROOT)(output_of("winepath", "-u", path).strip())

    def use(self, step, caption, act=lambda window: None, close=("alt+F4",), answer=0, beside=(),
            program=None, arguments=()):
        """Starts a step's program, acts on it, holds it against its picture and closes it; what it
        has written."""
        xdotool("mousemove", 1020, 760)
        program = program or step[3:]
        with tempfile.TemporaryFile("w+") as output:
            process = subprocess.Popen(
                ["wine", self.folder / f"build/{program}.exe", *arguments], stdout=output,
                cwd=self.folder / "build")
            self.addCleanup(process.wait)
            self.addCleanup(process.kill)
            window = wait_for(lambda: windows(caption), "the window").pop()
            if not beside:
                wait_for_focus(lambda: xdotool("getwindowfocus").strip() == window, lambda: [window])
            act(window)
            self.compare(step, lambda: box_around([window, *beside, *xdotool(
                "search", "--onlyvisible", "--class", f"^{program.lower()}.exe$").split()]))
            keys(*close)
            if close[-1] == "Escape":
                keys("alt+F4")
            self.assertEqual(answer, process.wait(60), step)
            output.seek(0)
            return output.read()

    def compare(self, step, shown):
        """Waits until the rectangle of what is shown looks as in the picture, or takes the picture when
        it has come to rest."""
        path = PAGES / f"{step}.png"
        if os.environ.get("TUTORIAL_PICTURES"):
            time.sleep(2)
            grab().crop(shown()).quantize(256).save(path, optimize=True)
        known = Image.open(path).convert("RGB")

        def looks_so():
            now = grab().crop(shown())
            other = ImageChops.difference(known, now).convert("L")
            return now.size == known.size and sum(
                other.point([0] * 24 + [1] * 232).getdata()) <= SPARE
        wait_for(looks_so, f"what {path.name} shows (Tools/refresh-picture takes it anew)")


if __name__ == "__main__":
    unittest.main()
