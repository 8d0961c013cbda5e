#!/usr/bin/python3
"""The viewer, built from the installed package and driven from outside: real input, real pixels.

Usage: viewer_test.py Viewer.test_by_mouse_and_keyboard   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import subprocess
import unittest

from PIL import Image, ImageChops, ImageGrab, ImageOps

from package_test import Package, output_of, wait_for, windows, xdotool
from launcher import wait_for_focus_on, windows_path

EDGE = (1, 200, 3)  # nothing else on the screen has that colour
SETTINGS = r"HKCU\Software\Samples\Viewer"


def keys(*names, to="Picture Viewer"):
    """Presses them once a window with such a caption has the focus: others would get them before."""
    wait_for_focus_on(to)
    xdotool("key", "--delay", 100, *names)


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
        for name, size, tint in (("a", (94, 62), 90), ("b", (58, 88), 160), ("c", (1298, 1098), 30)):
            grey = Image.linear_gradient("L").resize(size)
            inside = Image.merge("RGB", (grey, Image.new("L", size, tint), grey))
            self.pictures[name] = ImageOps.expand(inside, 1, EDGE)
            self.pictures[name].save(self.folder / f"{name}.bmp")
        subprocess.run(["wine", "reg", "delete", SETTINGS, "/f"], capture_output=True, check=False)

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

    def test_by_mouse_and_keyboard(self):
        viewer = self.start("Viewer", windows_path(self.folder / "a.bmp"))
        first = self.shown("a")
        keys("KP_Add", "KP_Add")
        self.shown("a", 2)
        keys("Down")  # in the list
        self.shown("b")
        keys("F11")
        self.shown("b", at=((1024 - 60) // 2, (768 - 90) // 2))
        keys("Escape", "Prior")
        self.shown("a", at=first[:2])

        # By the keyboard alone, up to the end of the program: fit and the folder's list, the bar's first
        # button opens another picture, the splitter moves, and a picture that is larger than the window
        # moves until its corner can be seen.
        keys("KP_Add", "KP_Add")
        self.shown("a", 2)
        keys("ctrl+0", "F4")
        wait_for(lambda: self.shown("a")[0] < first[0], "the room of the list")
        keys("F4")
        self.shown("a", at=first[:2])
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

        # Options, a slide show of one second a picture, and the end.
        keys("alt+t", "o")
        keys("1", "Tab", "Tab", "space", "Return", to="Options")
        keys("F5")
        for name in "cac":  # to the last one, and once more from the start
            wait_for(lambda n=name: windows(f"{n}.bmp - Picture Viewer"), "the slide show")
        keys("F5")
        keys("alt+t", "l")
        keys("Return", to="Log")
        keys("alt+F4")
        self.assertEqual(0, viewer.wait(60))

        # The second start has what was kept, and takes the picture of a third one.
        viewer = self.start("Viewer", windows_path(self.folder / "a.bmp"))
        self.shown("a", at=first[:2])
        third = self.start("Viewer", windows_path(self.folder / "b.bmp"))
        self.assertEqual(0, third.wait(60))
        self.shown("b")
        keys("Next", "ctrl+1")
        wait_for(lambda: edges(ImageGrab.grab(xdisplay="").convert("RGB")) is None, "c's middle")
        xdotool("mousemove", *first[:2], "mousedown", 1, "mousemove", 1000, 700, "mouseup", 1)
        wait_for(lambda: edges(ImageGrab.grab(xdisplay="").convert("RGB")), "its corner")
        kept = output_of("wine", "reg", "query", SETTINGS, "/s")
        for value in r"Seconds +REG_DWORD +0x1\b", r"Notify +REG_DWORD +0x1\b", r"1 +REG_SZ .*\\b.bmp":
            self.assertRegex(kept, value)
        keys("alt+F4")
        self.assertEqual(0, viewer.wait(60))


if __name__ == "__main__":
    unittest.main()
