#!/usr/bin/python3
"""The whole launcher, driven from outside: real input, real pixels, real programs.

Usage: launcher_test.py GROUP   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

from launcher import (BUILD, DEPTH, EXIT, HELP, NONE, ROOT, RUN, SETUP, LauncherTest, is_same,
                      output_of, wait_for, windows, windows_path, xdotool)

TITLES = {"Fennick.exe": "Install Fennick", "RunFennick.exe": "Fennick from the disc",
          "tutorial.exe": "Learn to use Fennick"}
ANY_PROGRAM = "(" + "|".join((*TITLES.values(), "A program of the disc")) + ")"


def fields(title):
    """What the fields of a dialog say, which this closes."""
    return output_of("wine", BUILD / "Tests/AutoRun/Fields.exe", title).splitlines()


class Programs(LauncherTest):
    # Where anybody may have put libraries: the system's own are taken. Wine has to be told to do
    # what Windows does.
    overrides = os.environ.get("WINEDLLOVERRIDES", "") + ";winmm,msacm32=n,b"

    def test_start_from_an_untouched_disc(self):
        for name in ("winmm.dll", "msacm32.dll"):
            shutil.copy(BUILD / "Tests/AutoRun/Planted.dll", self.disc / name)
        with tempfile.TemporaryDirectory() as elsewhere:
            process = self.start(cwd=elsewhere,
                                 env=dict(os.environ, WINEDLLOVERRIDES=self.overrides))
            size = self.pictures[NONE].size
            self.assertEqual([(1024 - size[0]) // 2, (768 - size[1]) // 2], [self.left, self.top])
            self.over(NONE)
            before = [(entry.name, entry.stat().st_mtime_ns) for entry in os.scandir(self.disc)]
            for line, command in self.commands.items():
                self.click(line)
                name = command.split()[0]
                title = TITLES.get(name, "A program of the disc")
                wait_for(lambda title=title: windows(title), title)
                self.assertEqual([windows_path(self.disc / name), windows_path(elsewhere), command],
                                 fields(title))
                wait_for(lambda: not windows(ANY_PROGRAM), "its end")
            self.close(process)
            self.assertEqual([], os.listdir(elsewhere))
        after = [(entry.name, entry.stat().st_mtime_ns) for entry in os.scandir(self.disc)]
        self.assertEqual(before, after)


class OtherSkin(Programs):
    launcher = "Disc/HarbourTides.exe"
    caption = "Harbour Tides"
    commands = {SETUP: "Tides.exe /install", RUN: "Tides.exe", HELP: "Guide.exe"}


class Input(LauncherTest):
    def test_press_drag_release(self):
        process = self.start()
        self.over(RUN)
        xdotool("mousedown", 1)
        self.over(NONE)  # dragged off
        self.over(HELP, NONE)  # another line stays dark
        self.over(RUN)  # and back
        self.over(HELP, NONE)
        xdotool("mouseup", 1)
        self.expect(HELP)  # released elsewhere: nothing starts, the line lights up
        self.over(NONE)
        xdotool("mousedown", 1)  # on no line, which is no press of what it is released on
        self.over(SETUP)
        xdotool("mouseup", 1)
        self.over(RUN)
        xdotool("mousedown", 1)
        self.over(NONE)
        xdotool("mousemove", 1, 1)  # outside of the window: captured
        self.over(RUN)
        self.assertFalse(windows(ANY_PROGRAM))
        xdotool("mouseup", 1)
        wait_for(lambda: windows(ANY_PROGRAM), "the program")
        fields("Fennick from the disc")
        self.close(process)

    def test_edges_belong_to_the_line(self):
        process = self.start()
        x, y, cx, cy = self.spots[HELP]
        for at, lit in (((x, y), HELP), ((x - 1, y), NONE), ((x + cx, y), HELP),
                        ((x + cx + 1, y), NONE), ((x, y + cy), HELP), ((x, y + cy + 1), NONE),
                        ((x + cx, y + cy), HELP), ((x, y - 1), NONE)):
            self.move(*at)
            self.expect(lit)
        self.close(process)

    def test_escape_shows_exit_for_half_a_second(self):
        # A busy machine may miss the picture.
        self.assertTrue(any(self.escape() for _ in range(5)), "the exit line lit")

    def escape(self):
        process = self.start()
        self.click(NONE)  # a key before the window has the focus is lost
        self.expect(NONE)
        pressed = time.monotonic()
        xdotool("key", "Escape")
        seen = False
        while process.poll() is None:
            seen = seen or is_same(self.picture(), self.pictures[EXIT])
        self.assertEqual(0, process.returncode)
        self.assertTrue(0.5 <= time.monotonic() - pressed < 60)
        return seen

    def test_missing_program_any_command_line_two_at_once(self):
        os.remove(self.disc / "Fennick.exe")
        first = self.start("/silent", "-x", '"quoted words"', "%s%n")
        for process in (self.start(), first):
            self.click(SETUP)
            self.over(NONE)  # it answers: nothing happened
            self.close(process)


# What depends on the colours that the screen has. Whether the palette was realised is only seen
# from inside.
DRAWING = "CUITests.exe", "Draw.*:OffScreenDC.*:Data.*:Bitmap.*:BmpLoad.*"
MENUS = "CUITests.exe", "Menu.*"
PALETTE = "AutoRunTests.exe", "Palette.*"


class FewColours(LauncherTest):
    """Run by Screens at 16 and 8 bits."""

    @unittest.skipIf(DEPTH == 8, "has a palette")
    def test_lines_light_up(self):
        """Everything is as it is with more, in the colours that there are."""
        process = self.start()
        for line in (NONE, SETUP, RUN, HELP, EXIT):
            self.over(line)
        self.close(process)

    def test_drawing(self):
        for program, names in (DRAWING, MENUS, PALETTE)[: 3 if DEPTH == 8 else 2]:
            text = output_of("wine", BUILD / "Tests" / program, "--gtest_filter=" + names)
            self.assertRegex(text, r"\[  PASSED  \] [1-9]")
            self.assertNotIn("SKIPPED", text)


class OddSkins(LauncherTest):
    def reports(self):
        """The failed checks of the reading that were ever reported."""
        users = pathlib.Path(os.environ["WINEPREFIX"], "drive_c/users")
        text = "".join(path.read_text("latin1") for path in sorted(users.glob("*/Temp/ZELTrace-*")))
        return re.findall("\nAssert:(.*)  File:SkinTable", text)

    def test_what_is_wrong_is_reported_and_passed_over(self):
        for name, count in ("FirstTen", 10), ("Nothing", 10), ("OddOnes", 6):
            before = len(self.reports())
            process = self.start(launcher=f"Tests/AutoRun/{name}.exe")
            if self.pictures:
                self.expect(NONE)
            wait_for(lambda: self.closes(process), "its end")
            self.assertEqual(count, len(self.reports()) - before, name)

    def closes(self, process):
        subprocess.run(["wine", BUILD / "Tests/AutoRun/Fields.exe", self.caption], check=False)
        return process.poll() == 0


class Exports(LauncherTest):
    def test_a_module_uses_them_in_the_launchers_process(self):
        process = self.start()
        output_of("wine", BUILD / "Tests/AutoRun/Inject.exe", self.caption,
                  windows_path(BUILD / "Tests/Module.dll"))
        self.close(process)

    def test_keep_their_numbers(self):
        """A name that went and is back gets a new number, and so does one of two that share one."""
        text = (ROOT / "AutoRun/exports.txt").read_text()
        last = int(re.search(r"given: @(\d+)\n", text)[1])
        gone, first, second = re.findall(r"^_Z.* @\d+ .*\n", text, re.M)[:3]
        number = re.search(r" @\d+ ", first)[0]
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder, "exports.txt")
            path.write_text(text.replace(gone, "").replace(
                second, re.sub(r" @\d+ ", number, second)))
            output_of(ROOT / "Tools/exports.py", "write", path, BUILD / "AutoRun/hidden.txt",
                      BUILD / "CU/CU.exports", BUILD / "CUI/CUI.exports")
            for line, new in (f"given: @{last}\n", last + 2), (gone, last + 1), (second, last + 2):
                text = text.replace(line, re.sub(r"@\d+", f"@{new}", line))
            self.assertEqual(text, path.read_text())

    def test_imports_are_those_that_the_first_windows_has(self):
        allowed = set()
        for word in (ROOT / "Tests/AutoRun/imports.txt").read_text().split():
            library = word if word.endswith(":") else library
            allowed.add(library + word)
        for launcher in BUILD / self.launcher, BUILD / "AutoRun/AutoRun.exe":
            dump = output_of("i686-w64-mingw32-objdump", "-p", "-h", launcher)
            imports = dump.split("[Ordinal/Name Pointer] Table\n")[0]
            for table in imports.split("DLL Name: ")[1:]:
                library, _, names = table.partition("\n")
                for name in re.findall(r"^\t[0-9a-f]+\t *\d+ +(\S+)", names, re.M):
                    self.assertIn(f"{library.lower()}:{name}", allowed)
            for line in ("MajorOSystemVersion\t4", "MajorSubsystemVersion\t4",
                         "MinorSubsystemVersion\t0", "DllCharacteristics\t00000140",
                         "Subsystem\t\t00000002"):
                self.assertIn(f"\n{line}", dump)
            resources = int(re.search(r"\.rsrc +([0-9a-f]+)", dump)[1], 16)
            self.assertLess(os.path.getsize(launcher) - resources, 288 * 1024)


class Screens(unittest.TestCase):
    """Screens of fewer colours, in front of a prefix of their own: one shows on one screen."""

    def test_16_and_8_bits(self):
        for depth in "16", "8":
            environment = dict(os.environ, AUTORUN_WINEPREFIX=str(ROOT / "build/wine-screens"),
                               SCREEN_DEPTH=depth)
            for name in ("DISPLAY", "WITH_WINE_INSIDE", "WINEPREFIX"):
                environment.pop(name, None)
            output_of(ROOT / "Tools/with-wine", sys.executable, __file__, "FewColours",
                      env=environment)


if __name__ == "__main__":
    unittest.main()
