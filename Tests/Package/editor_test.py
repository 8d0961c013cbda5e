#!/usr/bin/python3
"""The editor, built from the installed package and driven from outside: real input, real files.

Usage: editor_test.py Editor.test_by_keyboard   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import re
import subprocess
import unittest

from PIL import Image, ImageChops, ImageGrab, ImageOps

from package_test import Package, output_of, wait_for, windows, xdotool
from launcher import wait_for_focus, windows_path

SHEETS = (297 / 210, 11 / 8.5)  # A4 and Letter
SETTINGS = r"HKCU\Software\Samples\Editor"


def keys(*names, to):
    """Presses them once a window with such a caption has the focus: others would get them before."""
    wait_for_focus(lambda: to == xdotool("getwindowfocus", "getwindowname").strip(),
                   lambda: windows(re.escape(to)))
    xdotool("key", "--delay", 100, *names)


def answer(key):
    """Presses a key in a message. One that comes as the window is activated may lack the focus."""
    box = wait_for(lambda: windows("Editor"), "the message").pop()
    wait_for(lambda: xdotool("windowfocus", box, "getwindowfocus").strip() == box, "its focus")
    xdotool("key", key)
    wait_for(lambda: not windows("Editor"), "the end of the message")


def page():
    """The sheet of paper on the screen, with its shadow: what is in the room around, at (12, 300)."""
    screen = ImageGrab.grab(xdisplay="").convert("RGB")
    grey = screen.getpixel((12, 300))

    def end(x, y, dx, dy):
        while screen.getpixel((x + dx, y + dy)) == grey:
            x, y = x + dx, y + dy
        return x, y
    top, bottom = end(12, 300, 0, -1)[1], end(12, 300, 0, 1)[1]
    room = screen.crop((12, top, end(12, bottom, 1, 0)[0], bottom))
    sheet = ImageChops.difference(room, Image.new("RGB", room.size, grey)).getbbox()
    return sheet and room.crop(sheet)


class Editor(Package):
    def test_by_keyboard(self):
        self.configure(self.tree / "share/doc/AutoRun/Editor", self.folder / "build")
        output_of("cmake", "--build", self.folder / "build")
        subprocess.run(["wine", "reg", "delete", SETTINGS, "/f"], capture_output=True, check=False)
        output_of("wine", "reg", "add", SETTINGS + r"\Frame", "/v", "Placement", "/d", "0,0,640,560,0,96")
        text = self.folder / "text.txt"
        text.write_bytes("één zwei\nzwei Zwei\n".encode() + 200 * b"a line\n")
        editor = self.start("Editor", windows_path(text))
        keys("ctrl+End", "x", to="text.txt - Editor")
        keys("ctrl+f", to="text.txt* - Editor")
        keys("z", "w", "e", "i", "Tab", "2", "Tab", "space", "alt+a", to="Find and replace")
        answer("Return")  # what says how many there were
        keys("ctrl+v", "Escape", to="Find and replace")
        keys("ctrl+s", to="text.txt* - Editor")
        wait_for(lambda: windows("text.txt - Editor"), "the saved text")
        self.assertEqual("één 2\n2 Zwei\n".encode() + 200 * b"a line\n" + b"x", text.read_bytes())

        # The preview: a sheet of paper, all of it, with a text; another one; and the first again.
        keys("ctrl+shift+p", to="text.txt - Editor")
        first = wait_for(lambda: (sheet := page()) and sheet.width > 200 and sheet.getpixel((9, 9)) ==
                         (255, 255, 255) and ImageOps.invert(sheet.crop((9, 9, 200, 200))).getbbox()
                         and sheet, "the first page")
        self.assertTrue(any(abs(first.height / first.width - sheet) < .03 for sheet in SHEETS))
        keys("Next", "Next", "Next", to="text.txt - Editor")
        wait_for(lambda: (sheet := page()) and sheet.size == first.size and
                 ImageChops.difference(sheet, first).getbbox(), "another page")
        keys("Home", to="text.txt - Editor")
        wait_for(lambda: (sheet := page()) and sheet.size == first.size and
                 not ImageChops.difference(sheet, first).getbbox(), "the first page again")

        # What is not saved is asked for; what cannot be shown all is not written over.
        keys("ctrl+shift+p", "y", to="text.txt - Editor")
        keys("alt+F4", to="text.txt* - Editor")
        answer("d")
        self.assertEqual(0, editor.wait(60))
        self.assertTrue(text.read_bytes().endswith(b"\nx"))
        text.write_bytes(greek := "ΑΒΓ\n".encode())
        editor = self.start("Editor", windows_path(text))
        answer("Return")
        keys("q", "ctrl+s", "alt+F4", to="text.txt - Editor")
        self.assertEqual(0, editor.wait(60))
        self.assertEqual(greek, text.read_bytes())
        editor = self.start("Editor", windows_path(self.folder / "none.txt"))
        answer("Return")
        keys("alt+F4", to="Untitled - Editor")
        self.assertEqual(0, editor.wait(60))


if __name__ == "__main__":
    unittest.main()
