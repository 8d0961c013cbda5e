"""Makes discs with ./disc, from folders with names of many languages, and looks at what comes out."""

import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest
import unittest.mock

from PIL import Image

ROOT = pathlib.Path(__file__).resolve().parents[2]


def files_below(folder):
    return {path: path.read_bytes() for path in folder.rglob("*") if path.is_file()}


class DiscTest(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="disc"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.contents = self.folder / "My contents"
        (self.contents / "Größe α").mkdir(parents=True)
        for name in ("Fennick.exe", "RunFennick.exe", "tutorial.exe", "Größe α/漢 é.txt"):
            (self.contents / name).write_text(name)

    def make(self, *options, skin=ROOT / "AutoRun/Skin"):
        done = subprocess.run([ROOT / "disc", skin, "My contents", "--out", "out/d", *options],
                              cwd=self.folder, capture_output=True, text=True, check=False)
        return done.returncode, done.stdout + done.stderr

    def starts_wine(self, code, skin):
        """Makes the disc by way of a "wine" that counts."""
        count = self.folder / "count"
        count.write_text("")
        with unittest.mock.patch.dict(os.environ, PATH=f"{self.folder}/bin:{os.environ['PATH']}"):
            self.assertEqual(self.make(skin=skin)[0], code)
        return len(count.read_text())

    def test_disc(self):
        self.assertEqual(self.make("--iso", "d.iso", "--picture", "p.png")[0], 0)
        disc = self.folder / "out/d"
        self.assertEqual((disc / "Größe α/漢 é.txt").read_text(), "Größe α/漢 é.txt")
        subprocess.run(["sha256sum", "--quiet", "-c", "SHA256SUMS"], cwd=disc, check=True)
        self.assertIn(b"\r\nlabel=Fennick 4.1\r\n", (disc / "autorun.inf").read_bytes())
        self.assertEqual(Image.open(self.folder / "p.png").size, (514, 345))
        self.assertEqual((self.folder / "d.iso").read_bytes()[32808:32840].strip(), b"Fennick 4.1")
        for option in "--iso", "--picture":
            for place in "My contents/tutorial.exe", "out/d/p.png":
                code, text = self.make(option, place)
                self.assertEqual((code, text.count("choose another place")), (2, 1), text)
        self.assertEqual((self.contents / "tutorial.exe").read_text(), "tutorial.exe")
        (self.contents / "tutorial.exe").unlink()
        code, text = self.make()
        self.assertEqual((code, text.count('"tutorial.exe" is not among')), (1, 1), text)
        (disc / "mine.txt").write_text("mine")
        code, text = self.make()
        self.assertEqual((code, text.count("mine.txt: This file was not written")), (2, 1), text)
        self.assertEqual((disc / "mine.txt").read_text(), "mine")

    def test_the_same_skin_again(self):
        (self.folder / "bin").mkdir()
        counter = self.folder / "bin/wine"
        counter.write_text(f"""#!/bin/sh
            printf x >>{self.folder}/count
            exec {shutil.which("wine")} "$@"\n""")
        counter.chmod(0o755)
        skin, disc = self.folder / "skin", self.folder / "out/d"
        shutil.copytree(ROOT / "AutoRun/Skin", skin)
        self.assertEqual(self.starts_wine(0, skin), 1)
        first = files_below(disc)
        times = {path: path.stat().st_mtime_ns for path in first if path.suffix == ".txt"}
        self.assertEqual(self.starts_wine(0, skin), 0)
        self.assertEqual(first, files_below(disc))
        self.assertEqual(times, {path: path.stat().st_mtime_ns for path in times})
        (self.contents / "tutorial.exe").write_text("another one")
        self.assertEqual(self.starts_wine(0, skin), 0)
        self.assertIn("another one", (disc / "tutorial.exe").read_text())
        subprocess.run(["sha256sum", "--quiet", "-c", "SHA256SUMS"], cwd=disc, check=True)
        # What was kept is damaged, the skin changes, a file is the maker's, a name is new.
        with (ROOT / "build/kept-disc/AutoRun.exe").open("ab") as kept:
            kept.write(b"x")
        self.assertEqual(self.starts_wine(0, skin), 1)
        self.assertEqual((disc / "AutoRun.exe").read_bytes(), first[disc / "AutoRun.exe"])
        script = (skin / "Skin.rc").read_text()
        (skin / "Skin.rc").write_text(script.replace("Fennick 4.1", "Fennick 4.2"))
        self.assertEqual(self.starts_wine(0, skin), 1)
        self.assertIn("4.2".encode("utf-16-le"), (disc / "AutoRun.exe").read_bytes())
        (disc / "mine.txt").write_text("mine")
        self.assertEqual(self.starts_wine(2, skin), 1)
        (disc / "mine.txt").unlink()
        (self.contents / "RunFennick.exe").rename(self.contents / "Other.exe")
        self.assertEqual(self.starts_wine(1, skin), 1)


if __name__ == "__main__":
    unittest.main(verbosity=2)
