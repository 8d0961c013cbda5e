"""Makes discs with ./disc, from folders with names of many languages, and looks at what comes out."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from PIL import Image

ROOT = pathlib.Path(__file__).resolve().parents[2]


class DiscTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="disc"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.contents = self.folder / "My contents"
        (self.contents / "Größe α").mkdir(parents=True)
        for name in ("Fennick.exe", "RunFennick.exe", "tutorial.exe", "Größe α/漢 é😀.txt"):
            (self.contents / name).write_text(name)
        self.skin = ROOT / "AutoRun/Skin"

    def make(self, *options):
        done = subprocess.run([ROOT / "disc", self.skin, "My contents", "--out", "out/d",
                               *options], cwd=self.folder, capture_output=True, text=True,
                              errors="replace", check=False)
        return done.returncode, done.stdout + done.stderr

    def test_disc(self):
        self.assertEqual(self.make("--iso", "d.iso", "--picture", "p.png")[0], 0)
        disc = self.folder / "out/d"
        self.assertEqual((disc / "Größe α/漢 é😀.txt").read_text(), "Größe α/漢 é😀.txt")
        subprocess.run(["sha256sum", "--quiet", "-c", "SHA256SUMS"], cwd=disc, check=True)
        self.assertIn(b"\r\nlabel=Fennick 4.1\r\n", (disc / "autorun.inf").read_bytes())
        self.assertEqual(Image.open(self.folder / "p.png").size, (514, 345))
        self.assertEqual((self.folder / "d.iso").read_bytes()[32808:32840].strip(), b"Fennick 4.1")
        for option in "--iso", "--picture":
            for place in "My contents/tutorial.exe", "out/d/p.png":
                code, text = self.make(option, place)
                self.assertEqual((code, text.count("choose another place")), (2, 1), text)
        self.assertEqual((self.contents / "tutorial.exe").read_text(), "tutorial.exe")
        # By the names that images have, and by those that Windows knows.
        for name, expected, line in (
                (b"a;b", 2, "a;b: An image cannot have"), (b"n" * 120, 2, "n: An image cannot have"),
                (b"a\n:", 2, "a?:: This name has a line break"), (b"a:b", 2, "a:b: Windows has no names"),
                (b"Com3.txt", 1, "Com3.txt: Windows keeps"), (b"a.", 1, "a.: Windows knows no names"),
                (b"\xff", 1, "This name is not in UTF-8"),
                (b"SHA256SUMS", 2, "SHA256SUMS: The contents have a file of the name")):
            folder = os.path.join(os.fsencode(self.contents), name)
            os.mkdir(folder)
            code, text = self.make("--iso", "d.iso")
            os.rmdir(folder)
            self.assertEqual((code, text.count(line)), (expected, 1), text)
            self.assertEqual(text.count("\n"), {1: 3, 2: 1}[code] + (name in (b"a;b", b"n" * 120)) * 2, text)
        self.skin = self.folder / "skin"
        shutil.copytree(ROOT / "AutoRun/Skin", self.skin)
        script = self.skin / "Skin.rc"
        script.write_text(script.read_text("utf-8").replace('LABEL "', 'LABEL "' + "ä" * 20), "utf-8")
        self.assertEqual(self.make("--iso", "d.iso")[0], 0)
        self.assertEqual((self.folder / "d.iso").read_bytes()[32808:32840].decode(), "ä" * 16)
        link = self.contents / "link"
        link.symlink_to("nowhere")
        code, text = self.make()
        self.assertEqual((code, text.count("contents/link: This is no file")), (1, 1), text)
        link.unlink()
        other = self.contents / "Tutorial.exe"
        other.write_text("other")
        code, text = self.make()
        self.assertEqual((code, text.count("in small and capital letters alone")), (2, 1), text)
        other.unlink()
        (self.contents / "tutorial.exe").unlink()
        code, text = self.make()
        self.assertEqual((code, text.count('"tutorial.exe" is not among')), (1, 1), text)
        (disc / "mine.txt").write_text("mine")
        code, text = self.make()
        self.assertEqual((code, text.count("mine.txt: This file was not written")), (2, 1), text)
        self.assertEqual((disc / "mine.txt").read_text(), "mine")
        (disc / "mine.txt").unlink()
        (disc / "mine").mkdir()
        os.utime(disc / "mine", (0, 0))
        code, text = self.make()
        self.assertEqual((code, text.count("mine: Disc Maker does not know this empty")), (2, 1), text)
        self.assertTrue((disc / "mine").is_dir())


if __name__ == "__main__":
    unittest.main(verbosity=2)
