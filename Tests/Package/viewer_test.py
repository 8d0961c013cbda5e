#!/usr/bin/python3
"""The viewer, built from the installed package and driven from outside: real input, real pixels.

Usage: viewer_test.py   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

from PIL import Image, ImageChops, ImageGrab

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "Tests/AutoRun"))
from launcher import BUILD, output_of, wait_for, windows, windows_path, xdotool  # noqa: E402

EDGE = (1, 200, 3)  # nothing else on the screen has that colour
SETTINGS = r"HKCU\Software\Samples\Viewer"


def keys(*names):
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


class Viewer(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="viewer"))
        self.addCleanup(shutil.rmtree, self.folder)
        output_of("cmake", "--install", BUILD, "--prefix", self.folder / "tree")
        output_of("cmake", "-S", self.folder / "tree/share/doc/AutoRun/Viewer", "-B",
                  self.folder / "build", "-G", "Ninja", "-DCMAKE_SYSTEM_NAME=Windows",
                  "-DCMAKE_CXX_COMPILER=i686-w64-mingw32-g++-win32",
                  f"-DCMAKE_PREFIX_PATH={self.folder / 'tree'}")
        output_of("cmake", "--build", self.folder / "build")
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

    def shown(self, name, zoom=1):
        """Waits until the whole picture is shown, each pixel as it is in the file; its place."""
        picture = self.pictures[name]
        picture = picture.resize((picture.width * zoom, picture.height * zoom), Image.NEAREST)

        def look():
            screen = ImageGrab.grab(xdisplay="").convert("RGB")
            place = edges(screen)
            same = place and ImageChops.difference(screen.crop(place), picture).getbbox() is None
            return same and screen.crop(place).size == picture.size and place
        place = wait_for(look, f"{name} at {zoom}")
        wait_for(lambda: windows(f"{name}.bmp - Picture Viewer"), "its title")
        return place

    def test_by_mouse_and_keyboard(self):
        files = set((ROOT / "Samples/Viewer").glob("*.[hc]*")) - {ROOT / "Samples/Viewer/Resource.h"}
        lines = re.findall(r"^(?!\s*(?://|$))", "".join(file.read_text() for file in files), re.M)
        self.assertLessEqual(len(lines), 400, "as the page says")
        viewer = self.start("a.bmp")
        first = self.shown("a")
        window = wait_for(lambda: windows("a.bmp - Picture Viewer"), "the window").pop()
        wait_for(lambda: xdotool("getwindowfocus").strip() == window, "the focus")
        keys("KP_Add", "KP_Add")
        self.shown("a", 2)
        keys("Down")  # in the list
        self.shown("b")
        keys("F11")
        middle = (1024 - 60) // 2, (768 - 90) // 2
        wait_for(lambda: self.shown("b")[:2] == middle, "full screen")
        keys("Escape", "Prior")
        self.assertEqual(first, self.shown("a"))

        # The picture that is larger than the window is dragged until its corner can be seen.
        keys("Next", "Next", "ctrl+1")
        xdotool("mousemove", first[0], first[1])
        wait_for(lambda: edges(ImageGrab.grab(xdisplay="").convert("RGB")) is None, "its middle")
        press(first[0], first[1], (first[0] + 300, first[1] + 300), (first[0] + 600, first[1] + 700))
        self.assertIsNotNone(wait_for(
            lambda: edges(ImageGrab.grab(xdisplay="").convert("RGB")), "its corner"))

        # The splitter: the picture stays in the middle of what is left.
        left = int(xdotool("getwindowgeometry", "--shell", window).split("X=")[1].split()[0])
        keys("Prior", "Prior")
        press(left + 4 + 183, first[1], (left + 4 + 223, first[1]), (left + 4 + 283, first[1]))
        wait_for(lambda: self.shown("a")[0] == first[0] + 50, "the splitter")
        moved = self.shown("a")

        # Options, a slide show of one second a picture, and the end, by the keyboard alone.
        keys("alt+t", "o")
        wait_for(lambda: windows("Options"), "the options")
        keys("1", "Tab", "Tab", "space", "Return")
        wait_for(lambda: not windows("Options"), "their end")
        keys("F5")
        self.shown("b")
        wait_for(lambda: windows("c.bmp - Picture Viewer"), "the last one")
        self.shown("a")  # once more from the start
        keys("F5", "alt+f", "x")
        self.assertEqual(0, viewer.wait(60))

        # The second start has what was kept. A third one hands its picture over.
        viewer = self.start("a.bmp")
        self.assertEqual(moved, self.shown("a"))
        self.assertEqual(0, self.start("b.bmp").wait(60))
        self.shown("b")
        for name, value in (("Seconds", 1), ("Notify", 1), ("ListWidth", 280)):
            self.assertIn(f"REG_DWORD    {value:#x}", output_of(
                "wine", "reg", "query", SETTINGS + r"\Options", "/v", name))
        keys("alt+f", "2")  # a recent one
        self.shown("a")
        keys("ctrl+o")
        wait_for(lambda: windows("Open"), "the chooser")
        keys("b", "period", "b", "m", "p", "Return")
        self.shown("b")
        keys("alt+F4")
        self.assertEqual(0, viewer.wait(60))


if __name__ == "__main__":
    unittest.main()
