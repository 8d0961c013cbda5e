#!/usr/bin/python3
"""The viewer, built from the installed package and driven from outside: real input, real pixels.

Usage: viewer_test.py Viewer.test_by_mouse_and_keyboard   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import re
import subprocess
import unittest

from PIL import Image, ImageChops, ImageGrab

from package_test import ROOT, Package, output_of, wait_for, windows, xdotool
from launcher import wait_for_focus_on, windows_path

EDGE = (1, 200, 3)  # nothing else on the screen has that colour
SETTINGS = r"HKCU\Software\Samples\Viewer"


def keys(*names, to="Picture Viewer"):
    """Presses them once a window with such a caption has the focus: others would get them before."""
    wait_for_focus_on(to)
    xdotool("key", "--delay", 100, *names)


def press(x, y, *steps):
    """Presses the left button there, goes on step by step and releases it."""
    xdotool("mousemove", x, y, "mousedown", 1)
    for place in steps:
        xdotool("mousemove", *place)
    xdotool("mouseup", 1)


def edges(screen):
    """The rectangle around all pixels that have the colour of pictures' edges."""
    high, green, blue = ImageChops.difference(screen, Image.new("RGB", screen.size, EDGE)).split()
    for channel in green, blue:
        high = ImageChops.lighter(high, channel)
    return high.point([255] + [0] * 255).getbbox()


class Viewer(Package):
    def setUp(self):
        super().setUp()
        self.build("Viewer")
        self.pictures = {}
        for name, size, tint in (("a", (96, 64), 90), ("b", (60, 90), 160), ("c", (1300, 1100), 30)):
            picture = Image.new("RGB", size, EDGE)
            inside = Image.linear_gradient("L").resize((size[0] - 2, size[1] - 2))
            picture.paste(Image.merge("RGB", (inside, inside.point(lambda _, t=tint: t), inside)),
                          (1, 1))
            picture.save(self.folder / f"{name}.bmp")
            self.pictures[name] = picture
        subprocess.run(["wine", "reg", "delete", SETTINGS, "/f"], capture_output=True, check=False)

    def start(self, *names):
        program = subprocess.Popen(["wine", self.folder / "build/Viewer.exe",
                                    *(windows_path(self.folder / name) for name in names)])
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)
        return program

    def shown(self, name, zoom=1, at=None):
        """Waits until the whole picture is shown (there), each pixel as it is in the file; its place."""
        picture = self.pictures[name]
        picture = picture.resize((picture.width * zoom, picture.height * zoom), Image.NEAREST)

        def look():
            screen = ImageGrab.grab(xdisplay="").convert("RGB")
            place = edges(screen)
            same = place and ImageChops.difference(screen.crop(place), picture).getbbox() is None
            there = same and at in (None, place[:2])
            return there and screen.crop(place).size == picture.size and place
        place = wait_for(look, f"{name} at {zoom}")
        wait_for(lambda: windows(f"{name}.bmp - Picture Viewer"), "its title")
        return place

    def choose(self, key):
        """Opens the File menu, and presses a key when it is there."""
        def shown():
            return xdotool("search", "--onlyvisible", "--class", "^viewer.exe$").split()
        before = len(shown())
        keys("alt+f")
        wait_for(lambda: len(shown()) > before, "the menu")
        keys(key)

    def test_by_mouse_and_keyboard(self):
        files = set((ROOT / "Samples/Viewer").glob("*.[hc]*")) - {ROOT / "Samples/Viewer/Resource.h"}
        lines = re.findall(r"^(?!\s*(?://|$))", "".join(file.read_text() for file in files), re.M)
        self.assertLessEqual(len(lines), 400, "as the page says")
        viewer = self.start("a.bmp")
        first = self.shown("a")
        keys("KP_Add", "KP_Add")
        self.shown("a", 2)
        keys("Down")  # in the list
        self.shown("b")
        keys("F11")
        self.shown("b", at=((1024 - 60) // 2, (768 - 90) // 2))
        keys("Escape", "Prior")
        self.shown("a", at=first[:2])

        # By the keyboard alone: the bar's first button opens another picture, the splitter moves, and a
        # picture that is larger than the window moves until its corner can be seen.
        keys("F6", "Return")
        keys("b", "period", "b", "m", "p", "Return", to="Open")
        self.shown("b")
        keys("Prior", "Tab", "Tab", "Right")  # over the list to the splitter
        self.shown("a", at=(first[0] + 4, first[1]))
        keys("Left", "Tab", "Next", "Next", "ctrl+1")
        wait_for(lambda: edges(ImageGrab.grab(xdisplay="").convert("RGB")) is None, "its middle")
        keys(*["Left", "Up"] * 12)
        wait_for(lambda: edges(ImageGrab.grab(xdisplay="").convert("RGB")), "its corner")
        keys("Prior", "Prior")

        # The picture that is larger than the window is dragged until its corner can be seen.
        keys("Next", "Next", "ctrl+1")
        xdotool("mousemove", first[0], first[1])
        wait_for(lambda: edges(ImageGrab.grab(xdisplay="").convert("RGB")) is None, "its middle")
        press(first[0], first[1], (first[0] + 300, first[1] + 300), (first[0] + 600, first[1] + 700))
        self.assertIsNotNone(wait_for(
            lambda: edges(ImageGrab.grab(xdisplay="").convert("RGB")), "its corner"))
        keys("Prior", "Prior")

        # Options, a slide show of one second a picture, and the end, by the keyboard alone.
        keys("alt+t", "o")
        keys("1", "Tab", "Tab", "space", "Return", to="Options")
        keys("F5")
        for name in "cac":  # to the last one, and once more from the start
            wait_for(lambda n=name: windows(f"{n}.bmp - Picture Viewer"), "the slide show")
        keys("F5")
        self.choose("x")
        self.assertEqual(0, viewer.wait(60))

        # The second start has what was kept, and takes the picture of a third one.
        viewer = self.start("a.bmp")
        self.shown("a", at=first[:2])
        self.assertEqual(0, self.start("b.bmp").wait(60))
        self.shown("b")
        for name in "Seconds", "Notify":
            self.assertIn("REG_DWORD    0x1", output_of(
                "wine", "reg", "query", SETTINGS + r"\Options", "/v", name))
        self.choose("2")  # a recent one
        self.shown("a")
        keys("alt+F4")
        self.assertEqual(0, viewer.wait(60))


if __name__ == "__main__":
    unittest.main()
