"""Uses the framework as a project of its own does: the installed headers, libraries and page."""

import argparse
import hashlib
import itertools
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
from concurrent.futures import ThreadPoolExecutor

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "Tests/AutoRun"))
from launcher import wait_for, xdotool  # noqa: E402

GCC = "i686-w64-mingw32-g++-win32"
BUILD = VERSION = None  # of the build under test


def output_of(*words, **options):
    done = subprocess.run(list(map(str, words)), text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False, **options)
    if done.returncode:
        raise AssertionError(done.stdout)
    return done.stdout


class Folder(unittest.TestCase):
    """A folder with nothing but the installed tree, in which the test works."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="package"))
        self.addCleanup(shutil.rmtree, self.folder)

    def install(self):
        """Installs, and moves the tree away from where it was installed."""
        output_of("cmake", "--install", BUILD, "--prefix", self.folder / "first")
        return (self.folder / "first").rename(self.folder / f"AutoRun-{VERSION}")


class Program(Folder):
    def test_the_page_leads_to_programs_that_work(self):
        tree = self.install()
        page = (tree / "share/doc/AutoRun/README.md").read_text()
        for file in (tree / "share/doc/AutoRun/Hello").iterdir():
            self.assertIn("\n" + file.read_text() + "```", page, file.name)
        for file in tree.rglob("*.*"):
            self.assertNotIn(str(ROOT).encode(), file.is_file() and file.read_bytes() or b"", file)

        output_of("bash", "-ec", re.search("```sh\n(.*?)```", page, re.DOTALL)[1], cwd=self.folder)
        rules = (self.folder / "build/build.ninja").read_text()
        self.assertNotIn(str(ROOT), rules)
        self.assertIn("DEFINES = -DWINVER=0x0400 -D_WIN32_WINNT=0x0400\n", rules)
        self.assertEqual([], re.findall(r"\s-(?:W(?!l)|f|O|m)\S+", rules), "options of the product")

        self.check_hello(self.folder / "build/Hello.exe")
        hello, module = (output_of("i686-w64-mingw32-objdump", "-p", self.folder / "build" / name)
                         for name in ("Hello.exe", "libModule.dll"))
        self.assertNotIn("[Ordinal/Name Pointer] Table", hello, "the framework's exports")
        names = re.search(r"DLL Name: AutoRun\.exe\n(.*?)\n\n", module, re.DOTALL)[1]
        self.assertEqual({"CURegisterExceptionHandler", "CUUnregisterExceptionHandler"},
                         set(re.findall(r"CU\w+", names)))

    def check_hello(self, program):
        with tempfile.TemporaryFile("w+") as output:
            hello = subprocess.Popen(["wine", program], stdout=output)
            self.addCleanup(hello.wait)
            self.addCleanup(hello.kill)
            window = wait_for(lambda: xdotool("search", "--onlyvisible", "--name",
                                              "^Hello$").split(), "the window")[0]
            for x, y, button in ((100, 90, 1), (130, 130, 1), (130, 130, 3)):
                xdotool("mousemove", "--window", window, x, y, "click", button)
            self.assertEqual(0, hello.wait(60))
            output.seek(0)
            text = output.read()
        clicks = re.fullmatch(r"Click 1 at (\d+), (\d+)\s+Click 2 at (\d+), (\d+)\s+", text)
        self.assertIsNotNone(clicks, text)
        x1, y1, x2, y2 = map(int, clicks.groups())
        self.assertEqual((30, 40), (x2 - x1, y2 - y1))


class Headers(Folder):
    def setUp(self):
        super().setUp()
        self.include = self.install() / "include"
        self.headers = sorted(path.relative_to(self.include).as_posix()
                              for path in self.include.rglob("*.h"))
        library = output_of(GCC, "-print-file-name=include").strip() + "/c++"
        self.clang = ["clang++", "--target=i686-w64-windows-gnu"] + [
            f"-isystem{library}{part}" for part in ("", "/i686-w64-mingw32", "/backward")]

    def problem(self, compiler, options, headers, body=""):
        """What the compiler says of a source that includes the headers."""
        source = "".join(f"#include <{header}>\n" for header in headers) + body
        command = [*compiler, *options, "-I", self.include, "-fsyntax-only", "-Wall", "-Wextra",
                   "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror", "-xc++", "-"]
        done = subprocess.run(command, input=source, text=True, capture_output=True, check=False)
        return done.returncode and f"{options} {source}{done.stderr}"

    def test_every_header_compiles_alone_and_in_any_order(self):
        self.assertIn("CU/String.h", self.headers)
        self.assertIn("CUI/Window.h", self.headers)
        unicode = ["-DUNICODE", "-D_UNICODE"]
        imports = ["-DCU_IMPORTS", "-DCUI_IMPORTS"]
        # Once alone for each compiler: what a header lacks, it lacks in every standard.
        sources = [(compiler, options, [header]) for header in self.headers
                   for compiler, options in (([GCC], ["-std=c++14"]),
                                             (self.clang, ["-std=c++20", *unicode]))]
        for compiler, year in itertools.product(([GCC], self.clang), (14, 17, 20)):
            sources += [(compiler, [f"-std={dialect}++{year}", *options], self.headers[::step])
                        for dialect, step, *options in (
                            ["c", 1], ["c", -1, *unicode], ["c", -1], ["c", 1, *unicode],
                            ["gnu", 1, *imports])]
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            problems = list(filter(None, pool.map(lambda source: self.problem(*source), sources)))
        self.assertEqual([], problems[:1], f"{len(problems)} of {len(sources)}")

    def test_what_a_format_cannot_take_does_not_compile(self):
        no_object, no_match = r"give GetString\(\)", "-W(error=)?format"
        calls = (("s.Format(\"%s %d\", s.GetString(), 1); s.Format(s, 1); s.Format(\"100%%\");", None),
                 ("__extension__ s.Format(\"%I64d %lu\", 1LL, GetLastError());", None),
                 ("s.Format(\"%s\", s);", no_object),
                 ("CUDump(\"%d %s\", 1, s + \"!\");", no_object),
                 ("s.Format(\"%d %s\", 1, 2);", no_match),
                 ("CUDump(\"%s\", 1.0);", no_match))
        for compiler, (call, problem) in itertools.product(([GCC], self.clang), calls):
            body = f"void f(CCUString s)\n{{\n    {call}\n}}\n"
            # Objects are refused without a single warning, too.
            options = ["-std=c++14", *(["-w"] if problem == no_object else [])]
            found = self.problem(compiler, options, ["CU/Dump.h", "CU/String.h"], body)
            self.assertRegex(found or "", problem or "^$")

    def test_unicode_makes_names_and_signed_places_compile(self):
        body = """void f(HDC hDC, HINSTANCE h, RECT rc)
{
    CCUIDialog dialog(h, MAKEINTRESOURCE(1));
    CCUIDialogTemplate dialogTemplate(h, MAKEINTRESOURCE(1));
    CCUIMenu menu(h, MAKEINTRESOURCE(1), 0);
    CCUIBitmap bitmap(MAKEINTRESOURCE(1), 0, h);
    bitmap.Load(MAKEINTRESOURCE(1), 0, h);
    if (bitmap)
        CUIBmpBitBlt(hDC, -1, rc.top, bitmap, rc.left, 0u, 0, 0, bitmap, 0);
    CUIBmpStretchBlt(hDC, -1, rc.top, 5, rc.right, bitmap, 0, 0, 0, 0, bitmap, 0);
    CUIBmpTransparentBlt(hDC, rc.left, -1, bitmap, bitmap);
    SelectObject(hDC, bitmap);
}
"""
        headers = ["CUI/Dialog.h", "CUI/Menu.h", "CUI/Bitmap.h", "CUI/BmpBlt.h"]
        for compiler, options in itertools.product(([GCC], self.clang), (["-DUNICODE"], [])):
            found = self.problem(compiler, [*options, "-Wsign-conversion"], headers, body)
            self.assertFalse(found, found)
        # Nobody deletes what is the object's.
        deleted = "void f(const CCUIBitmap &bitmap) { DeleteObject(bitmap); }\n"
        for compiler in ([GCC], self.clang):
            self.assertRegex(self.problem(compiler, [], headers, deleted), "deleted function")

    def test_headers_of_the_c_library_are_found_where_case_is_ignored(self):
        folders = {folder: [{"type": "file", "name": path.name, "external-contents": str(path)}
                            for path in folder.glob("*.h")]
                   for folder in (self.include, self.include / "CU", self.include / "CUI")}
        overlay = self.folder / "overlay.yaml"
        overlay.write_text(json.dumps({"version": 0, "case-sensitive": False, "roots": [
            {"type": "directory", "name": str(folder), "contents": files}
            for folder, files in folders.items()]}))
        options = ["-std=c++14", "-Wno-nonportable-include-path", "-ivfsoverlay", overlay]
        ours = [header.lower() for header in self.headers]
        theirs = ["assert.h", "string.h", "time.h"]
        body = "bool f() { assert(1); return strlen(\"\") == 0 && time(nullptr) > 0; }\n"
        for headers in (ours + theirs, theirs + ours):
            self.assertFalse(self.problem(self.clang, options, headers, body))
        # The overlay does what it is for: one folder further down, theirs are hidden.
        wrong = [*options, "-I", self.include / "CU"]
        self.assertRegex(self.problem(self.clang, wrong, theirs, body), "strlen|assert|time")


class Archive(Folder):
    def test_two_builds_give_the_same_bytes(self):
        # The second one from a copy elsewhere, as if unpacked there.
        copy = self.folder / "elsewhere/copy"
        shutil.copytree(ROOT, copy, symlinks=True,
                        ignore=lambda folder, _: (".git", "build", "Tests", "Bench")
                        if folder == str(ROOT) else ())
        dated = dict(os.environ)
        if (ROOT / ".git").exists():
            first = output_of("Tools/make-package", cwd=ROOT)
            dated["SOURCE_DATE_EPOCH"] = output_of("git", "log", "-1", "--format=%ct",
                                                   cwd=ROOT).strip()
        else:
            dated["SOURCE_DATE_EPOCH"] = "1000000000"
            first = output_of("Tools/make-package", cwd=ROOT, env=dated)
        first = ROOT / first.splitlines()[-1]
        second = copy / output_of("Tools/make-package", cwd=copy, env=dated).strip()
        self.assertEqual(f"AutoRun-{VERSION}.zip", first.name)

        with zipfile.ZipFile(first) as one, zipfile.ZipFile(second) as other:
            crcs = [{entry.filename: entry.CRC for entry in packed.infolist()}
                    for packed in (one, other)]
        self.assertEqual(*crcs)
        self.assertEqual(first.read_bytes(), second.read_bytes())
        tree = self.install()
        self.assertEqual({path.relative_to(self.folder).as_posix() for path in tree.rglob("*")
                          if path.is_file()}, set(crcs[0]))
        self.assertEqual(f"{hashlib.sha256(second.read_bytes()).hexdigest()}  {first.name}\n",
                         first.with_name(first.name + ".sha256").read_text())


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", type=pathlib.Path, required=True)
    parser.add_argument("--version", required=True)
    arguments, rest = parser.parse_known_args()
    BUILD, VERSION = arguments.build, arguments.version
    unittest.main(argv=[sys.argv[0], *rest])
