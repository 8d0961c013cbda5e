"""Uses the framework as a project of its own does: the installed headers, libraries and page.

Usage: package_test.py Package.test_WHAT   (AUTORUN_BUILD says what build)
"""

import hashlib
import itertools
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "Tests/AutoRun"))
from launcher import BUILD, output_of, wait_for, wait_for_focus, windows, xdotool  # noqa: E402

WARNINGS = ("-Wall", "-Wextra", "-Wpedantic", "-Wshadow", "-Wconversion", "-Werror")


class Package(unittest.TestCase):
    """In a folder with nothing but the installed tree, moved away from where it was installed."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="package"))
        self.addCleanup(shutil.rmtree, self.folder)
        output_of("cmake", "--install", BUILD, "--prefix", self.folder / "first")
        self.tree = (self.folder / "first").rename(self.folder / "AutoRun-1")
        self.gcc = ("i686-w64-mingw32-g++-win32",)
        library = output_of(*self.gcc, "-print-file-name=include").strip() + "/c++"
        self.clang = ("clang++", "--target=i686-w64-windows-gnu", *(
            f"-isystem{library}{part}" for part in ("", "/i686-w64-mingw32", "/backward")))

    def configure(self, source, build, *options):
        output_of("cmake", "-S", source, "-B", build, "-G", "Ninja", "-DCMAKE_SYSTEM_NAME=Windows",
                  f"-DCMAKE_CXX_COMPILER={self.gcc[0]}", f"-DCMAKE_PREFIX_PATH={self.tree}", *options)

    def build(self, sample):
        """One of the tree's, into the folder "build"."""
        self.configure(self.tree / "share/doc/AutoRun" / sample, self.folder / "build")
        output_of("cmake", "--build", self.folder / "build")

    def test_program(self):
        """The page leads to programs that work."""
        page = (self.tree / "share/doc/AutoRun/README.md").read_text()
        samples = self.tree / "share/doc/AutoRun"
        for file in (*(samples / "Hello").iterdir(), samples / "Frame/Notes.cpp"):
            self.assertIn("\n" + file.read_text() + "```", page, file.name)
        for name, most in (("Viewer", 400), ("Editor", 800)):
            files = set((ROOT / "Samples" / name).glob("*.[hc]*")) - {ROOT / "Samples" / name / "Resource.h"}
            lines = re.findall(r"^(?!\s*(?://|$))", "".join(file.read_text() for file in files), re.M)
            self.assertLessEqual(len(lines), most, f"{name}, as the page says")
        for file in filter(pathlib.Path.is_file, self.tree.rglob("*")):
            self.assertNotIn(str(ROOT).encode(), file.read_bytes(), file)
        commands = re.search("```sh\n(.*?)```", page, re.DOTALL)[1]
        output_of("bash", "-ec", commands, cwd=self.folder)

        def click(window):
            for x, y, button in ((100, 90, 1), (130, 130, 1), (130, 130, 3)):
                xdotool("mousemove", "--window", window, x, y, "click", button)
        self.assertRegex(self.output_after("Hello", click),
                         r"Click 1 at \d+, \d+\s+Click 2 at \d+, \d+\s+")

        def press(window):
            wait_for_focus(lambda: xdotool("getwindowfocus").strip() == window, lambda: [window])
            # F6 is disabled at first; C is a letter that its item has only once the menu opens.
            xdotool("key", "--delay", 100, "F6", "F5", "alt+c", "c", "alt+c", "r", "Escape")
        self.assertEqual(["Counter: 1", "Counter: 2", "Counter: 0"],
                         self.output_after("Commands", press).splitlines())

        def close_modified(window):
            wait_for_focus(lambda: xdotool("getwindowfocus").strip() == window, lambda: [window])
            xdotool("key", "--delay", 100, "x", "F11", "Escape", "alt+f", "x")
            wait_for(lambda: windows("Notes"), "the question")
            xdotool("key", "n")
        (self.folder / "build").rename(self.folder / "first build")
        output_of("bash", "-ec", commands.replace("Hello", "Frame"), cwd=self.folder)
        self.output_after("Notes", close_modified, "Untitled.txt - Notes")

    def start(self, name, *arguments, **options):
        program = subprocess.Popen(["wine", self.folder / f"build/{name}.exe", *arguments], **options)
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)
        return program

    def output_after(self, name, act, caption=None):
        """What the program writes until it ends by itself, while `act` works on its window."""
        with tempfile.TemporaryFile("w+") as output:
            program = self.start(name, stdout=output)
            act(wait_for(lambda: windows(caption or name), "the window").pop())
            self.assertEqual(0, program.wait(60))
            output.seek(0)
            return output.read()

    def test_headers(self):
        """Every one compiles alone, and all in any order, as users' compilers may be told to; so do the
        samples."""
        headers = sorted((self.tree / "include").rglob("*.h"))
        sources = [((*self.clang, "-std=c++14"), [header]) for header in headers]
        samples = list((ROOT / "Samples").rglob("*.cpp"))
        sources += [((*self.clang, "-std=c++14"), [sample]) for sample in samples]
        self.assertIn(ROOT / "Samples/Viewer/Viewer.cpp", samples)
        sources.append(((*self.gcc, "-std=c++20", "-DUNICODE", "-D_UNICODE"), headers[::-1]))
        # What Visual Studio's compiler would read, also of the headers that the sources share, but for the
        # one that it has no words for. The system's headers here are not its own, and so come before, as
        # for GCC, and with their warnings and errors left out.
        base = self.tree / "src/Base/Include"
        shared = [path for path in (base / "Base").iterdir() if path.name != "Module.h"]
        prelude = self.folder / "prelude.h"
        system = set(re.findall("#include <.*>", "".join(
            path.read_text() for path in (*headers, *shared))))
        prelude.write_text("#define WIN32_LEAN_AND_MEAN\n#define _X86_\n#include <windows.h>\n" +
                           "\n".join(sorted(system)) + "\n#define __attribute__(words) of_gnu\n" +
                           "".join(f"#undef __{name}\n" for name in (
                               "GNUC__", "clang__", "forceinline", "declspec")))
        windows_only = ("clang++", "--target=i686-pc-windows-msvc", "-fgnuc-version=12.2", "-nostdinc",
                        "-DWINVER=0x0400", "-D_WIN32_WINNT=0x0400", "-DNOMINMAX", "-std=c++17",
                        *self.clang[2:], *(f"-isystem{folder}" for folder in (
                            output_of("clang", "-print-resource-dir").strip() + "/include",
                            "/usr/i686-w64-mingw32/include")), "-include", prelude)
        said = subprocess.run(
            [*windows_only, "-I", self.tree / "include", "-I", base, "-fsyntax-only", "-ferror-limit=0",
             *WARNINGS, "-xc++", "-"], text=True, capture_output=True, check=False,
            input="".join(f'#include "{header}"\n' for header in (*headers, *shared)) +
            "int last __attribute__((unused));\n").stderr
        self.assertNotRegex(said, re.escape(str(self.tree)) + ".*: (error|warning)")
        self.assertRegex(said, "<stdin>:.*error.*\n.*int last")  # it has read all, and takes none of these

        def compile_source(source):
            output_of(*source[0], "-I", self.tree / "include", "-fsyntax-only", *WARNINGS,
                      "-xc++", "-",
                      input="".join(f'#include "{header}"\n' for header in source[1]))

        self.assertIn(self.tree / "include/CUI/Window.h", headers)
        for header in headers:
            self.assertNotRegex(header.read_text(), r"\b(__builtin_|__atomic_|__sync_|asm\b)", header)
        with ThreadPoolExecutor(os.cpu_count()) as pool:
            list(pool.map(compile_source, sources))

    def test_imports(self):
        """What headers, derived classes and samples use of the framework, the launcher exports."""
        headers = sorted((self.tree / "include").rglob("*.h"))
        names = set(re.findall(r"^class (?:CUI?_API )?(\w+)\b[^;]*$",
                           "".join(path.read_text() for path in headers), re.M))
        self.assertIn("CCUIButton", names)
        derived = self.folder / "derived.cpp"
        derived.write_text("#include <type_traits>\n" + "".join(
            f'#include "{header}"\n' for header in headers) + """
            template <class Base, bool = std::is_polymorphic<Base>::value &&
                                         !std::is_final<Base>::value>
            struct CDerived : Base { virtual void Anchor() {} };
            template <class Base> struct CDerived<Base, false> {};
            """ + "".join(f"template struct CDerived<{name}>;\n" for name in sorted(names)))
        samples = (self.tree / "share/doc/AutoRun").rglob("*.cpp")
        # commctrl.h has inline functions over these, which mingw's import library lacks. windows.h has one
        # over VarCmp, which is in oleaut32.
        missing = [f'-Wl,--defsym,"__imp__{name}"=0' for name in (
            "DSA_DestroyCallback@12", "DSA_EnumCallback@12", "DSA_Sort@12", "DPA_DestroyCallback@12",
            "DPA_EnumCallback@12", "DPA_Merge@24")]

        def link(compiler, *options, source):
            made = self.folder / f"{compiler[0]}-{source.stem}"
            output_of(*compiler, *options, "-std=c++17", "-DCU_IMPORTS", "-DCUI_IMPORTS", "-I",
                      self.tree / "include", "-c", source, "-o", f"{made}.o")
            output_of(*self.gcc, "-shared", f"{made}.o", self.tree / "lib/libAutoRun.dll.a",
                      *missing, "-lgdi32", "-lcomctl32", "-loleaut32", "-o", f"{made}.dll")

        for source in (derived, *samples):
            link(self.gcc, "-fkeep-inline-functions", source=source)
            link(self.clang, source=source)

    def test_mistakes(self):
        """What a format cannot take does not compile, even without warnings; what should does."""
        no_object, no_match = r"give GetString\(\)", "-W(error=)?format"
        names = """CCUIDialog dialog(h, MAKEINTRESOURCE(1));
            CCUIDialogTemplate dialogTemplate(h, MAKEINTRESOURCE(1));
            CCUIMenu menu(h, MAKEINTRESOURCE(1), 0);
            CCUIBitmap bitmap(MAKEINTRESOURCE(1), 0, h);
            bitmap.Load(MAKEINTRESOURCE(1), 0, h);
            if (bitmap)
                CUIBmpBitBlt(hDC, -1, rc.top, bitmap, rc.left, 0u, 0, 0, bitmap, 0);
            CUIBmpStretchBlt(hDC, -1, rc.top, 5, rc.right, bitmap, 0, 0, 0, 0, bitmap, 0);
            CUIBmpTransparentBlt(hDC, rc.left, -1, bitmap, bitmap);
            SelectObject(hDC, bitmap);"""
        calls = ((names, None), ('CUDump("%s %d%%", s.GetString(), 1); s.Format(s, 1);', None),
                 ('__extension__ s.Format("%I64d %lu", 1LL, GetLastError());', None),
                 ('s.Format("%s", s);', no_object), ('CUDump("%d %s", 1, s + "!");', no_object),
                 ('s.Format("%d %s", 1, 2);', no_match), ('CUDump("%s", 1.0);', no_match),
                 ("s.Empty(); DeleteObject(CCUIBitmap());", "deleted function"))
        headers = "".join(f"#include <{name}.h>\n" for name in (
            "CU/Dump", "CUI/Dialog", "CUI/Menu", "CUI/Bitmap", "CUI/BmpBlt"))
        for compiler, options, (call, problem) in itertools.product(
                (self.gcc, self.clang), (("-DUNICODE",), ()), calls):
            quiet = ("-w",) if problem == no_object else (*WARNINGS, "-Wsign-conversion")
            done = subprocess.run(
                [*compiler, "-std=c++14", *options, "-I", self.tree / "include", "-fsyntax-only",
                 *quiet, "-xc++", "-"], text=True, capture_output=True, check=False,
                input=f"{headers}void f(HDC hDC, HINSTANCE h, RECT rc) {{ {call} }}\n"
                      if call == names else f"{headers}void f(CCUString s) {{ {call} }}\n")
            self.assertRegex(done.stderr, problem or "^$", call)

    def test_archive(self):
        """Another build of it elsewhere gives the same bytes. Kept, it is quick the next time."""
        copy = ROOT / "build/elsewhere/copy"
        dated = dict(os.environ, SOURCE_DATE_EPOCH="1000000000")
        for entry in os.scandir(copy) if copy.exists() else ():
            if entry.name != "build":
                (shutil.rmtree if entry.is_dir() else os.remove)(entry.path)
        shutil.copytree(ROOT, copy, symlinks=True, dirs_exist_ok=True,
                        ignore=lambda folder, _: (".git", "build", "Tests", "Bench")
                        if folder == str(ROOT) else ())
        first, second = ([root / name for name in
                          output_of("Tools/make-package", cwd=root, env=dated).split()]
                         for root in (ROOT, copy))
        self.assertEqual(["AutoRun", "DiscMaker"], [path.name.split("-")[0] for path in first])
        for one, other in zip(first, second):
            self.assertEqual(one.read_bytes(), other.read_bytes())
            self.assertEqual(f"{hashlib.sha256(other.read_bytes()).hexdigest()}  {one.name}\n",
                             one.with_name(one.name + ".sha256").read_text())
        self.disc_maker_works(first[1])

    def disc_maker_works(self, archive):
        """Unpacked into any folder, with nothing else there."""
        shutil.unpack_archive(archive, self.folder)
        maker = (self.folder / archive.stem).rename(self.folder / "Für Discs")
        contents = maker.parent / "in"
        contents.mkdir()
        for name in ("Fennick.exe", "RunFennick.exe", "tutorial.exe"):
            (contents / name).touch()
        shutil.copy(maker / "AutoRun.exe", maker / "Mine.exe")

        def ask(*words):
            done = subprocess.run(["wine", "DiscMaker.exe", *words], cwd=maker, check=False,
                                  stdin=subprocess.DEVNULL, capture_output=True)
            self.assertEqual(0, done.returncode, done.stdout)
        skins = [skin.name for skin in (maker / "Skins").iterdir()]
        self.assertGreaterEqual(len(skins), 2)
        for skin in skins:
            ask("/check", "Skins\\" + skin)
        ask("/apply", "Skins\\HarbourTides", "/to", "Mine.exe")
        self.assertNotEqual((maker / "Mine.exe").read_bytes(), (maker / "AutoRun.exe").read_bytes())
        ask("/disc", "Skins\\Fennick", "..\\in", "..\\out")
        self.assertEqual((maker.parent / "out/AutoRun.exe").read_bytes(),
                         (maker / "AutoRun.exe").read_bytes())
        page = (maker / "Help/DiscMaker.html").read_text()
        for name in re.findall('src="(.*?)"', page):
            self.assertTrue((maker / "Help" / name).exists(), name)


if __name__ == "__main__":
    unittest.main()
