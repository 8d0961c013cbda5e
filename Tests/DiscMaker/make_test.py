#!/usr/bin/python3
"""Makes a disc with Disc Maker's window from nothing, by mouse and keys alone, and runs it from its image.

Usage: make_test.py MakeDisc   (within Tools/with-wine, AUTORUN_BUILD says what build)
The looks are those of Disc/Skins/IslandPost, which was made in this way: the launcher that comes out
shows what the compiled one does. MAKE_PICTURES names a folder for pictures: disc-maker.png of the window,
launcher.png of the launcher.
"""

import os
import re
import shutil
import time
import unittest

from PIL import Image, ImageGrab

from window_test import MakerWindow
from launcher import (BUILD, EXIT, HELP, NONE, ROOT, RUN, output_of, reference, wait_for, wait_for_focus_on,
                      windows, windows_path, xdotool)

SKIN = ROOT / "Disc/Skins/IslandPost"
# The rows of the properties from the top, as they are typed; those with a dot are files.
ROWS = """DISC_LABEL AutoRun.ico Background.png Product.png PRODUCT_POS Bullet.png CAPTION TITLE TITLE_FONT
    TITLE_POS HELP HELP_COMMAND HELP_POS HELP_ICON_POS RUN RUN_COMMAND RUN_POS RUN_ICON_POS SETUP
    SETUP_COMMAND SETUP_POS SETUP_ICON_POS EXIT EXIT_POS EXIT_ICON_POS ITEM_FONT HIGHLIGHT_COLOR ABOUT
    ABOUT_FONT ABOUT_RECT""".split()


def press(*names):
    xdotool("key", "--delay", 60, *names)


def write(text):
    xdotool("type", "--delay", 40, "--", text)


def keys(*names):
    """For the main window, once it has the focus."""
    wait_for_focus_on("Disc Maker")
    press(*names)


def opened(caption):
    """Waits for a dialog to be ready for keys, and for the picture that is taken of it: nothing
    changes any more."""
    wait_for_focus_on(caption)
    shots = [None]

    def is_still():
        time.sleep(0.3)  # less than a caret needs to blink
        shots.append(ImageGrab.grab(xdisplay="").tobytes())
        return shots[-1] == shots[-2]
    wait_for(is_still, f"{caption} to be painted")


def closed(caption):
    """Presses the default button, and waits for the dialog to go."""
    press("Return")
    wait_for(lambda: not windows(caption), f"{caption} to go")


def choose(caption, path):
    opened(caption)
    write(windows_path(path))
    closed(caption)


def take_picture(name, found):
    """Of the window that was found."""
    if "MAKE_PICTURES" in os.environ:
        output_of("import", "-silent", "-strip", "-define", "png:exclude-chunks=date,time",
                  "-window", found.pop(), f"{os.environ['MAKE_PICTURES']}/{name}")


class MakeDisc(MakerWindow):
    def setUp(self):
        super().setUp()
        self.maker, self.contents = self.folder / "Maker", self.folder / "What is on it"
        for folder in self.maker, self.contents:
            folder.mkdir()
        for part in "DiscMaker/DiscMaker.exe", "AutoRun/AutoRun.exe":
            shutil.copy(BUILD / part, self.maker)
        for name in "Post.exe", "Boat.exe":
            shutil.copy(BUILD / "Disc/Contents/Fennick.exe", self.contents / name)
        for name in "Background", "Product", "Bullet":
            Image.open(SKIN / f"{name}.bmp").save(self.folder / f"{name}.png")
        shutil.copy(SKIN / "AutoRun.ico", self.folder)
        table = (SKIN / "Skin.rc").read_text("utf-8")
        self.values = dict(re.findall(r'^ *IDS_(\w+),? +"(.*)"', table, re.M))

    def fill_in(self):
        """Types all properties; the title to the left of its place."""
        x, y = self.values["TITLE_POS"].split(",")
        values = {**self.values, "TITLE_POS": f"{int(x) + 60},{y}"}
        keys("ctrl+2")
        for row in ROWS:
            if "." in row:
                keys("F4")
                choose("Open", self.folder / row)
            else:
                write(values[row])
            keys("Down")

    def test_from_nothing_to_a_disc_that_runs(self):
        compiled = BUILD / "Disc/IslandPost.exe"
        pictures, spots = reference(compiled)
        maker = self.start(self.maker / "DiscMaker.exe")
        wait_for(lambda: windows("New disc.* - Disc Maker"), "the window")
        self.fill_in()
        # The title is dragged to its place, the mouse beside everything.
        keys("ctrl+1", "Escape", "alt+v", "n")
        x, y = map(int, self.values["TITLE_POS"].split(","))
        corner = pictures[NONE].crop((0, 0, pictures[NONE].width, y))
        self.left, self.top = wait_for(lambda: self.find(corner), "the background")
        self.mouse(x + 70, y + 15, "mousedown", 1)
        for step in 55, 30, 10:
            self.mouse(x + step, y + 15)
        xdotool("mouseup", 1, "mousemove", 0, 0)
        keys("Escape")
        wait_for(lambda: self.find(pictures[NONE]), "the face of the compiled launcher")
        take_picture("disc-maker.png", windows("New disc.* - Disc Maker"))
        saved = self.folder / "Mine.exe"
        keys("ctrl+s")
        choose("Save as launcher", saved)
        wait_for(lambda: windows("Mine.exe - Disc Maker"), "the launcher that was saved")

        disc = self.folder / "The disc"
        keys("F9")
        opened("Make the disc")
        write(windows_path(self.contents))
        press("Tab", "Tab")
        write(windows_path(disc))
        press("Return")
        wait_for(disc.exists, "the disc")
        opened("Make the disc")  # the box that says so
        closed("Make the disc")
        keys("alt+F4")
        self.assertEqual(0, maker.wait(60))

        # From the command line it is the same disc, and what its image holds is so for Windows, too.
        again, drive = self.folder / "again", self.folder / "drive"
        output_of(ROOT / "disc", saved, self.contents, "--out", again, "--iso", f"{again}.iso")
        output_of("diff", "-r", disc, again)
        self.addCleanup(output_of, "chmod", "-R", "u+w", drive)
        output_of("xorriso", "-read_fs", "norock", "-osirrox", "on", "-indev", f"{again}.iso",
                  "-extract", "/", drive)
        output_of("diff", "-r", disc, drive)
        shutil.rmtree(disc)
        self.run_disc(drive, pictures, spots)

    def run_disc(self, disc, pictures, spots):
        launcher = self.start(disc / "AutoRun.exe")
        self.left, self.top = wait_for(lambda: self.find(pictures[NONE]), "the launcher")
        for line in RUN, HELP:
            left, top = spots[line][:2]
            self.mouse(left + 9, top + 9)
            wait_for(lambda line=line: self.find(pictures[line]), "the line lit")
            if line == RUN:
                take_picture("launcher.png", windows(self.values["CAPTION"]))
            xdotool("click", 1)
            opened("A program of the disc")
            press("Escape")
            wait_for(lambda: not windows("A program of the disc"), "its end")
        self.mouse(spots[EXIT][0] + 9, spots[EXIT][1] + 9, "click", 1)
        self.assertEqual(0, launcher.wait(60))


if __name__ == "__main__":
    unittest.main()
