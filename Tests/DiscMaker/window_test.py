#!/usr/bin/python3
"""Disc Maker's window driven from outside: real mouse and keys, and the pixels of the screen.

Usage: window_test.py   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from PIL import Image, ImageGrab

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "Tests/AutoRun"))
from launcher import (BUILD, NONE, RUN, output_of, reference, wait_for,  # noqa: E402
                      wait_for_focus_on, windows, windows_path, xdotool)

SETTINGS = r"HKCU\Software\Disc Maker"


class MakerWindow(unittest.TestCase):
    """A folder, and Disc Maker with no memory of earlier runs."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="maker"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.forget()
        self.addCleanup(self.forget)  # it may be killed

    def start(self, *words):
        process = subprocess.Popen(["wine", *map(windows_path, words)])
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    @staticmethod
    def forget():
        subprocess.run(["wine", "reg", "delete", SETTINGS, "/f"], check=False, capture_output=True)
        users = pathlib.Path(os.environ["WINEPREFIX"]) / "drive_c/users"
        for kept in users.glob("*/Temp/DiscMaker-*.recovery"):
            kept.unlink()

    @staticmethod
    def find(face):
        """Where the picture stands on the screen, pixel for pixel; None: nowhere."""
        screen = ImageGrab.grab(xdisplay="").convert("RGB")
        row, stride = face.crop((0, 0, face.width, 1)).tobytes(), screen.width * 3
        at = screen.tobytes().find(row)
        if at < 0:
            return None
        left, top = at % stride // 3, at // stride
        same = screen.crop((left, top, left + face.width, top + face.height))
        return (left, top) if same.tobytes() == face.tobytes() else None

    def mouse(self, x, y, *action):
        xdotool("mousemove", self.left + x, self.top + y, *action)


class Window(MakerWindow):
    def setUp(self):
        super().setUp()
        self.launcher = self.folder / "AutoRun.exe"
        shutil.copy(BUILD / "AutoRun/AutoRun.exe", self.launcher)
        self.first = self.launcher.read_bytes()
        self.pictures, self.spots = reference(self.launcher)
        self.start(BUILD / "DiscMaker/DiscMaker.exe", self.launcher)
        wait_for(lambda: windows("AutoRun.exe - Disc Maker"), "the window")
        self.left, self.top = wait_for(lambda: self.find(self.pictures[NONE]), "the launcher's face")

    def save(self, before):
        xdotool("key", "ctrl+s")
        wait_for(lambda: self.launcher.read_bytes() != before, "what is saved")
        return self.launcher.read_bytes()

    def test_dragging_moves_a_line_and_undo_brings_back_every_byte(self):
        left, top = self.spots[RUN][:2]
        self.mouse(left + 10, top + 10)
        wait_for(lambda: self.find(self.pictures[RUN]), "the line lit as the launcher lights it")
        xdotool("mousedown", 1)
        for step in 5, 20, 40:
            self.mouse(left + 10 + step, top + 10 - step // 8)
        xdotool("mouseup", 1, "key", "Escape", "mousemove", 0, 0)
        changed = self.save(self.first)
        with tempfile.TemporaryDirectory() as folder:
            moved = pathlib.Path(folder) / "Moved.exe"
            moved.write_bytes(changed)
            pictures, spots = reference(moved)
        self.assertEqual(spots[RUN][0], left + 40)
        wait_for(lambda: self.find(pictures[NONE]), "the face of the launcher that was saved")
        xdotool("key", "ctrl+z")
        wait_for(lambda: self.find(self.pictures[NONE]), "the face as it was")
        self.assertEqual(self.first, self.save(changed))

    def test_the_chooser_of_fonts_and_a_character_that_no_field_can_hold(self):
        wait_for_focus_on("Disc Maker")
        xdotool("key", "--delay", 60, "ctrl+2", *["Down"] * 8, "F4")
        wait_for_focus_on("Font")
        xdotool("type", "--delay", 40, "Courier")
        xdotool("key", "--delay", 60, "Tab", "Tab")
        xdotool("type", "--delay", 40, "20")
        xdotool("key", "Return")
        wait_for_focus_on("Disc Maker")
        self.addCleanup(output_of, "setxkbmap", "us")
        output_of("setxkbmap", "ru")
        xdotool("key", "Cyrillic_de")
        wait_for_focus_on("Typing")
        xdotool("key", "Return")
        wait_for_focus_on("Disc Maker")
        output_of("setxkbmap", "us")
        self.save(self.first)
        output_of("wine", BUILD / "DiscMaker/DiscMaker.exe", "/export",
                  windows_path(self.launcher), windows_path(self.folder / "skin"))
        self.assertRegex((self.folder / "skin/Skin.rc").read_text("utf-8"),
                         'IDS_TITLE_FONT *"20,0,0,Courier"')


if __name__ == "__main__":
    unittest.main()
