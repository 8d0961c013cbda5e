#!/usr/bin/python3
"""Starts ./run with skins good and bad, in a tree of its own around what is built: with a display and
without, and looks at what it tells and when.

Usage: run_test.py   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from PIL import Image

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "Tests/AutoRun"))
from launcher import BUILD, is_same, output_of, reference, wait_for, windows, xdotool  # noqa: E402

CAPTION = "Fennick Setup"
LARGER = "the window is larger than the screen: 1034 x 778, not 1024 x 768"


class Run(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="run"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.tree = self.folder / "tree"
        for part in "Tools", "build/gcc":
            (self.tree / part).mkdir(parents=True)
        for part in "run", "disc", "setup", *(f"Tools/{path.name}" for path in (ROOT / "Tools").iterdir()):
            (self.tree / part).symlink_to(ROOT / part)
        (self.tree / "Tools/build").unlink()
        (self.tree / "Tools/build").symlink_to("/bin/true")  # all is built
        for part in "DiscMaker", "AutoRun", "Disc":
            (self.tree / "build/gcc" / part).symlink_to(BUILD / part)
        self.disc = self.tree / "build/disc"
        self.large = self.skin("large", (1034, 778))
        self.environment = dict(os.environ, AUTORUN_WINEPREFIX=os.environ["WINEPREFIX"])

    def skin(self, name, size):
        """The shipped one with a background of that size, and a colour that is none."""
        skin = self.folder / name
        shutil.copytree(ROOT / "AutoRun/Skin", skin)
        Image.new("P", size).save(skin / "Background.bmp")
        script = (skin / "Skin.rc").read_text("utf-8")
        (skin / "Skin.rc").write_text(script.replace('IDS_SPARE_COLOR "', 'IDS_SPARE_COLOR "x'), "utf-8")
        return skin

    def start(self, skin):
        (self.tree / "build/gcc/CMakeCache.txt").write_text(f"AUTORUN_SKIN:PATH={skin}\n")
        with (self.folder / "output").open("w") as output:
            process = subprocess.Popen(self.tree / "run", stdout=output, stderr=output, cwd="/",
                                       env=self.environment)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def told(self):
        return (self.folder / "output").read_text("latin1")

    def answer(self, skin):
        process = self.start(skin)
        return process.wait(600), self.told()

    def closes(self, process):
        subprocess.run(["wine", BUILD / "Tests/AutoRun/Fields.exe", CAPTION], check=False)
        return process.poll() is not None

    def seen(self, skin, line):
        """What ./run answers when the launcher's window is closed once the line is told, and not before."""
        process = self.start(skin)
        self.addCleanup(self.closes, process)
        wait_for(lambda: windows(CAPTION) and line in self.told(), line)
        self.assertIsNone(process.poll())
        wait_for(lambda: self.closes(process), "the end")
        return process.returncode, self.told()

    def test_with_a_display(self):
        code, text = self.seen(self.skin("tiny", (1, 1)), "run: the window has no size")
        self.assertEqual((code, text.count("File:SkinTable")), (1, 1), text)
        skin, window, report = map(text.index, ("warning: IDS_SPARE_COLOR: ", "run: ", "Assert:"))
        self.assertTrue(skin < text.index(str(self.disc)) < window < report, text)
        code, text = self.seen(self.large, f"run: {LARGER}\n")
        self.assertEqual((code, text.count("run: "), text.count("Assert:")), (1, 1, 1), text)
        # What was reported before is not told again.
        self.assertEqual(self.seen(ROOT / "AutoRun/Skin", ""), (0, f"{self.disc}\n"))
        (self.disc / "mine.txt").write_text("mine")
        launcher = self.disc / "AutoRun.exe"
        before = launcher.read_bytes()
        code, text = self.answer(ROOT / "Tests/AutoRun/Skins/Nothing")
        self.assertEqual((code, text.count("missing, without which")), (2, 1), text)
        code, text = self.answer(self.large)
        self.assertEqual((code, text.count("mine.txt: This file was not written")), (2, 1), text)
        self.assertEqual(((self.disc / "mine.txt").read_text(), launcher.read_bytes()), ("mine", before))
        self.assertFalse(windows(CAPTION))

    def test_without_a_display(self):
        for name in "DISPLAY", "WITH_WINE_INSIDE", "WINEPREFIX":
            self.environment.pop(name, None)
        self.environment["AUTORUN_WINEPREFIX"] = str(ROOT / "build/wine-screens")
        output_of(ROOT / "setup", env=self.environment)
        picture = self.tree / "build/launcher.png"
        self.assertEqual(self.answer(ROOT / "AutoRun/Skin"), (0, f"{self.disc}\nbuild/launcher.png\n"))
        pictures, _ = reference(self.disc / "AutoRun.exe")
        cx, cy = pictures[0].size
        left, top = (1024 - cx) // 2, (768 - cy) // 2
        shown = Image.open(picture).convert("RGB").crop((left, top, left + cx, top + cy))
        self.assertTrue(any(is_same(shown, face) for face in pictures))
        code, text = self.answer(self.large)
        self.assertEqual((code, text.count(f"photograph: {LARGER}\n")), (1, 1), text)
        self.assertFalse(picture.exists())


if __name__ == "__main__":
    unittest.main()
