"""Makes discs with ./disc, from folders with names of many languages, and looks at what comes out."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

from PIL import Image

ROOT = pathlib.Path(__file__).resolve().parents[2]


def joliet(image):
    """The label and the files of the tree that Windows reads, out of an image's own bytes."""
    def extent(record):
        place, size = (int.from_bytes(record[at:at + 4], "little") for at in (2, 10))
        return image[place * 2048:place * 2048 + size]

    def files(folder, path):
        data, at = extent(folder), 0
        while at < len(data):
            record = data[at:at + data[at]]
            at = at + len(record) if record else at // 2048 * 2048 + 2048  # the next sector
            name = record[33:33 + record[32]] if record else b"\0"
            if name not in (b"\0", b"\1"):
                inner = path + name.decode("utf-16-be")
                yield from files(record, inner + "/") if record[25] & 2 else [(inner, extent(record))]

    volumes = (image[at:at + 2048] for at in range(0x8000, len(image), 2048))
    volume = next(volume for volume in volumes if volume[0] == 2)
    return volume[40:72].decode("utf-16-be").strip(" \0"), dict(files(volume[156:190], ""))


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

    def image(self):
        return (self.folder / "d.iso").read_bytes()

    def test_an_image_that_was_damaged_is_told(self):
        (self.folder / "d.iso").write_bytes(b"earlier")
        tool = self.folder / "bin/xorriso"
        tool.parent.mkdir()
        tool.touch(0o755)
        self.addCleanup(os.environ.__setitem__, "PATH", os.environ["PATH"])
        os.environ["PATH"] = f"{tool.parent}:{os.environ['PATH']}"
        for before, after, line in (
                ("", "LC_ALL=C sed -i 's/\\x00u\\x00t\\x00o/\\x00u\\x00t\\x00a/g' d.iso.unfinished",
                 "error: tutorial.exe: An image cannot have this name."),
                ("", "LC_ALL=C sed -i s/RunFennick.exe/RunFennick!exe/g d.iso.unfinished",
                 "the image does not hold what"),
                ("", "truncate -s 50000 d.iso.unfinished", "the image cannot be read back"),
                ("echo >>out/d/tutorial.exe", "", "the image is not what was read")):
            tool.write_text(f"""#!/bin/sh
PATH=${{PATH#*:}}
[ "$1" = -as ] || exec xorriso "$@"
cd '{self.folder}'
{before}
xorriso "$@" || exit
{after}
""")
            shutil.rmtree(self.folder / "out", ignore_errors=True)
            code, text = self.make("--iso", "d.iso")
            self.assertEqual((code, text.count(line)), (2, 1), text)
            self.assertEqual(self.image(), b"earlier")
            self.assertFalse((self.folder / "d.iso.unfinished").exists())

    def test_disc(self):
        self.assertEqual(self.make("--iso", "d.iso", "--picture", "p.png")[0], 0)
        disc = self.folder / "out/d"
        self.assertEqual((disc / "Größe α/漢 é😀.txt").read_text(), "Größe α/漢 é😀.txt")
        subprocess.run(["sha256sum", "--quiet", "-c", "SHA256SUMS"], cwd=disc, check=True)
        self.assertIn(b"\r\nlabel=Fennick 4.1\r\n", (disc / "autorun.inf").read_bytes())
        self.assertEqual(Image.open(self.folder / "p.png").size, (514, 345))
        self.assertEqual(self.image()[32808:32840].strip(), b"Fennick 4.1")
        there = {str(path.relative_to(disc)): path.read_bytes() for path in disc.rglob("*")
                 if path.is_file()}
        self.assertEqual(joliet(self.image()), ("Fennick 4.1", there))
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
        self.assertEqual(self.image()[32808:32840].decode(), "ä" * 16)
        self.assertEqual(joliet(self.image())[0], "ä" * 16)
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
