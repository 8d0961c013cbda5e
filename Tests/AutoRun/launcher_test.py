#!/usr/bin/python3
"""The whole launcher, driven from outside: real input, real pixels, real programs.

Usage: launcher_test.py --build FOLDER [GROUP...]   (within Tools/with-wine)
"""

import argparse
import os
import subprocess
import sys
import tempfile
import time
import unittest

from PIL import ImageChops

from launcher import (EXIT, HELP, NONE, RESOURCES, RUN, SETUP, Build, Disc, Launcher, is_same,
                      wait_for, xdotool)

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
LINES = (SETUP, EXIT, RUN, HELP)
PROGRAMS = {SETUP: "Fennick.exe", RUN: "RunFennick.exe", HELP: "tutorial.exe"}
WM_CANCELMODE, WM_COMMAND, WM_CAPTURECHANGED = 0x001F, 0x0111, 0x0215
NOWHERE = (5, 5, 200, 0)  # a part of the client area that is on no line


class LauncherTest(unittest.TestCase):
    skin = "ShippedLauncher"  # whatever looks AutoRun.exe is built with
    caption = "Fennick Setup"
    programs = tuple(PROGRAMS.values())
    moves = 0

    @classmethod
    def setUpClass(cls):
        launcher = BUILD.launcher(cls.skin)
        cls.pictures = [BUILD.reference(launcher, lit)[0] for lit in (*LINES, NONE)]
        cls.spots = BUILD.reference(launcher)[1]

    def setUp(self):
        self.disc = Disc(BUILD, self.skin, self.programs)
        self.addCleanup(self.disc.remove)
        xdotool("mousemove", 0, 0)

    def start(self, **options):
        launcher = Launcher(BUILD, self.disc, caption=self.caption, **options)
        self.addCleanup(launcher.stop)
        self.addCleanup(launcher.release)  # no test begins with the button held down
        launcher.wait_until_shown(self.pictures[NONE].size)
        return launcher

    def over(self, launcher, line, lit=None):
        """Moves the pointer onto a line, or onto none, and waits until that one, or `lit`, is lit."""
        x, y, cx, cy = self.spots[line] if line != NONE else NOWHERE
        # Never twice to the same place: a second press there would be a double click.
        self.moves += 1
        launcher.move(x + self.moves * 9 % cx, y + cy // 2)
        self.expect(launcher, line if lit is None else lit)

    def expect(self, launcher, lit):
        launcher.wait_for_picture(self.pictures[lit], "the picture with line %d lit" % lit)

    def wait_for_program(self, program, count=1):
        wait_for(lambda: len(self.disc.started()) >= count, program)
        started = self.disc.started()
        self.assertEqual(count, len(started))
        self.assertTrue(started[-1][0].endswith("\\" + program), started)

    def close(self, launcher):
        self.over(launcher, EXIT)
        launcher.click()
        self.assertEqual(0, launcher.wait_until_ended())


class Looks(LauncherTest):
    def test_window_and_pictures(self):
        launcher = self.start()
        info = dict(line.split(" ", 1) for line in launcher.remote("info").splitlines())
        width, height = self.pictures[NONE].size
        screen_size = tuple(map(int, info["screen"].split()))
        left, top = (screen_size[0] - width) // 2, (screen_size[1] - height) // 2
        self.assertEqual("%d %d %d %d" % (left, top, left + width, top + height), info["rect"])
        self.assertEqual("%d %d" % (width, height), info["client"])  # no border
        self.assertEqual((left, top), (launcher.left, launcher.top))
        self.assertEqual(0x90000000, int(info["style"], 16) & 0xF0CF0000)
        self.assertEqual(0x00040000, int(info["exstyle"], 16) & 0x00040000)
        self.expect(launcher, NONE)
        for line in (*LINES, NONE):
            self.over(launcher, line)
        self.assertEqual([], launcher.reports())
        self.close(launcher)


class SecondSkin(Looks):
    skin = "HarbourTides"
    caption = "Harbour Tides"
    programs = ("Tides.exe", "Guide.exe")

    def test_programs_with_arguments(self):
        launcher = self.start()
        for count, (line, program, arguments) in enumerate(
                ((SETUP, "Tides.exe", "/install"), (RUN, "Tides.exe", ""),
                 (HELP, "Guide.exe", "")), 1):
            self.over(launcher, line)
            launcher.click()
            self.wait_for_program(program, count)
            self.assertEqual(arguments, self.disc.started()[-1][1])


class Mouse(LauncherTest):
    def test_press_drag_release(self):
        launcher = self.start()
        self.over(launcher, RUN)
        launcher.press()
        self.over(launcher, NONE)  # dragged off
        self.over(launcher, HELP, NONE)  # another line stays dark
        self.over(launcher, RUN)  # and back
        self.over(launcher, HELP, NONE)
        launcher.release()
        self.expect(launcher, HELP)  # released elsewhere: nothing starts, the line lights up
        self.over(launcher, RUN)
        launcher.press()
        self.over(launcher, NONE)
        xdotool("mousemove", 1, 1)  # outside of the window: captured
        self.over(launcher, RUN)
        launcher.release()
        self.wait_for_program("RunFennick.exe")  # of all this the only start

        # A press on no line is no press of what it is released on.
        self.over(launcher, NONE)
        launcher.press()
        self.over(launcher, SETUP)
        launcher.release()
        self.over(launcher, HELP)
        self.assertEqual(1, len(self.disc.started()))
        self.close(launcher)

    def test_lost_press(self):
        launcher = self.start()
        for message in (WM_CANCELMODE, WM_CAPTURECHANGED):
            self.over(launcher, RUN)
            launcher.press()
            self.over(launcher, HELP, NONE)
            launcher.remote("send", message, 0, 0)
            for line in (RUN, HELP, RUN):  # nothing is held any more; only a change is painted
                self.over(launcher, line)
            launcher.release()  # where it was pressed, but the press is gone
            self.over(launcher, NONE)
        self.assertEqual([], self.disc.started())
        self.close(launcher)

    def test_edges_belong_to_the_line(self):
        launcher = self.start()
        x, y, cx, cy = self.spots[HELP]
        self.assertEqual((46, 140), (x, y))
        for at, lit in (((x, y), HELP), ((x - 1, y), NONE), ((x + cx, y), HELP),
                        ((x + cx + 1, y), NONE), ((x, y + cy), HELP), ((x, y + cy + 1), NONE),
                        ((x + cx, y + cy), HELP), ((x, y - 1), NONE)):
            launcher.move(*at)
            self.expect(launcher, lit)


class Programs(LauncherTest):
    def test_each_line_starts_its_program_once(self):
        launcher = self.start()
        for count, line in enumerate(PROGRAMS, 1):
            self.over(launcher, line)
            launcher.click()
            self.wait_for_program(PROGRAMS[line], count)
            self.assertIsNone(launcher.process.poll())
        self.close(launcher)
        self.assertEqual(3, len(self.disc.started()))

    def test_escape_shows_exit_for_half_a_second(self):
        # The lit line is there for half a second only, which a busy machine may miss.
        for _ in range(5):
            if self.escape():
                return
        self.fail("never saw the exit line lit")

    def escape(self):
        launcher = self.start()
        # A key before the window has the focus is lost.
        self.over(launcher, NONE)
        launcher.click()
        seen = False
        pressed = time.monotonic()
        xdotool("key", "Escape")
        while launcher.process.poll() is None:
            picture = launcher.picture(self.pictures[EXIT].size)
            seen = seen or is_same(picture, self.pictures[EXIT])
            self.assertLess(time.monotonic() - pressed, 60)
        self.assertEqual(0, launcher.process.returncode)
        self.assertGreaterEqual(time.monotonic() - pressed, 0.5)
        return seen

    def test_missing_program_any_command_line_two_at_once(self):
        os.remove(os.path.join(self.disc.folder, "Fennick.exe"))
        first = self.start(arguments=("/silent", "-x", '"quoted words"', "%s%n"))
        second = self.start()
        for launcher in (second, first):
            self.over(launcher, SETUP)
            launcher.click()
            self.over(launcher, NONE)  # it answers: nothing happened
            self.close(launcher)
        self.assertEqual([], self.disc.started())


class DiscFolder(LauncherTest):
    def snapshot(self):
        state = []
        for entry in os.scandir(self.disc.folder):
            with open(entry.path, "rb") as file:
                state.append((entry.name, entry.stat().st_mtime_ns, file.read()))
        return sorted(state)

    def test_read_only_cd_rom(self):
        drive = os.path.join(os.environ["WINEPREFIX"], "dosdevices", "q:")
        if os.path.lexists(drive):
            os.remove(drive)
        os.symlink(self.disc.folder, drive)
        self.addCleanup(os.remove, drive)
        subprocess.run(["wine", "reg", "add", r"HKLM\Software\Wine\Drives", "/v", "q:", "/d",
                        "cdrom", "/f"], check=True, stdout=subprocess.DEVNULL)
        for name in os.listdir(self.disc.folder):
            os.chmod(os.path.join(self.disc.folder, name), 0o555)
        os.chmod(self.disc.folder, 0o555)
        before = self.snapshot()
        with tempfile.TemporaryDirectory() as elsewhere:
            launcher = self.start(path="q:\\AutoRun.exe", cwd=elsewhere)
            for count, line in enumerate(PROGRAMS, 1):
                self.over(launcher, line)
                launcher.click()
                self.wait_for_program(PROGRAMS[line], count)
                path, _, directory = self.disc.started()[-1]
                self.assertEqual("q:\\" + PROGRAMS[line], path.replace("Q:", "q:"))
                self.assertTrue(directory.lower().endswith(os.path.basename(elsewhere).lower()))
            self.close(launcher)
            self.assertEqual([], os.listdir(elsewhere))
        self.assertEqual(before, self.snapshot())


def point(name):
    return 'sscanf(sText, "%%d,%%d", &%s.x, &%s.y) == 2' % (name, name)


FONT = ('sscanf(sText, "%d,%d,%d,%s", &nHeight, &nBold, &nItalic,'
        '(PCTSTR)logFont.lfFaceName) == 4')
COLOUR = 'sscanf(sText, "%d,%d,%d", &nRed, &nGreen, &nBlue) == 3'
RECTANGLE = ('sscanf(sText, "%d,%d,%d,%d", &m_rectAbout.left, &m_rectAbout.top, '
             '&m_rectAbout.right, &m_rectAbout.bottom) == 4')
FIRST_TEN = [FONT] * 3 + [point("m_pt" + name) for name in (
    "ProductBMP", "ProductIcon", "SetupIcon", "ExitIcon", "RunIcon", "HelpIcon", "TitleDVR")]


class BadInput(LauncherTest):
    def check(self, changes, reports, has_picture=True):
        """Runs the launcher with other resources; it shows and reports what it must, and closes."""
        disc = Disc(BUILD)
        self.addCleanup(disc.remove)
        disc.change_resources(changes)
        launcher = Launcher(BUILD, disc)
        self.addCleanup(launcher.stop)
        if has_picture:
            expected = BUILD.reference(disc.launcher)[0]
            launcher.wait_until_shown(expected.size)
            launcher.wait_for_picture(expected, f"the picture with {changes}")
        wait_for(lambda: self.answers(launcher), "an answer from the window")
        launcher.remote("send", WM_COMMAND, 2, 0)  # Cancel, in place of an Exit line that may be lost
        self.assertEqual(0, launcher.wait_until_ended())
        self.assertEqual(reports, launcher.reports())

    @staticmethod
    def answers(launcher):
        try:
            return launcher.remote("info")
        except subprocess.CalledProcessError:
            return None

    def test_every_text_but_the_caption_is_missing(self):
        self.check({name: "" for name in RESOURCES
                    if name.startswith("IDS_") and name != "IDS_CAPTION"}, FIRST_TEN)

    def test_a_long_name_of_a_font(self):
        self.check({"IDS_ITEM_FONT": "15,0,0," + "F" * 60}, [])

    def test_more_entries_that_do_not_parse_than_a_process_reports(self):
        self.check({
            "IDS_TITLE_FONT": "26,1,0", "IDS_ITEM_FONT": "fifteen,0,0,Arial",
            "IDS_ABOUT_FONT": "11,,0,Arial", "IDS_PRODUCT_POS": "302",
            "IDS_PRODUCT_ICON_POS": "x,98", "IDS_SETUP_ICON_POS": "15:208",
            "IDS_EXIT_ICON_POS": ",240", "IDS_RUN_ICON_POS": "15,", "IDS_HELP_ICON_POS": "-",
            "IDS_TITLE_POS": "13,y", "IDS_SETUP_POS": "46", "IDS_EXIT_POS": "a,b"}, FIRST_TEN)

    def test_entries_read_last_that_do_not_parse_and_odd_ones_that_do(self):
        self.check({
            "IDS_PRODUCT_POS": "-2147483648,2147483647", "IDS_TITLE_POS": "13,93,7",
            "IDS_SETUP_POS": "46", "IDS_EXIT_POS": "99999999999999999999,1",
            "IDS_RUN_POS": "46 172", "IDS_HELP_POS": "%d,%d", "IDS_ABOUT_RECT": "13,280,500",
            "IDS_HIGHLIGHT_COLOR": "212,0", "IDS_SPARE_COLOR": "red"},
            [point("m_ptSetup"), point("m_ptRun"), point("m_ptHelp"), RECTANGLE, COLOUR, COLOUR])

    def test_pictures_that_are_missing_or_empty(self):
        for file in ("", os.path.join(ROOT, "Tests/AutoRun/Nothing.bmp")):
            self.check(dict.fromkeys(("IDB_BACKGROUND", "IDB_PRODUCT", "IDB_BULLET"), file), [],
                       has_picture=False)


class Screens(unittest.TestCase):
    """Screens of fewer colours, each in front of a prefix of its own."""

    def run_at_depth(self, depth, test):
        # The prefix shows its windows on one screen at a time, so these need another one.
        prefix = os.path.join(ROOT, "build", "wine-screens")
        environment = dict(os.environ, AUTORUN_WINEPREFIX=prefix, SCREEN_DEPTH=str(depth))
        for name in ("DISPLAY", "WITH_WINE_INSIDE", "WINEPREFIX"):
            environment.pop(name, None)
        subprocess.run([os.path.join(ROOT, "setup")], env=environment, check=True)
        subprocess.run([os.path.join(ROOT, "Tools/with-wine"), sys.executable, __file__, "--build",
                        BUILD.folder, test], env=environment, check=True)

    def test_16_bits(self):
        self.run_at_depth(16, "HighColour")

    def test_8_bits(self):
        self.run_at_depth(8, "Palette")


def run_tests(case, program, names):
    """Tests of another program, on the screen that there is."""
    result = subprocess.run(["wine", os.path.join(BUILD.folder, "Tests", program),
                             "--gtest_filter=" + names], capture_output=True, text=True,
                            check=False)
    case.assertEqual(0, result.returncode, result.stdout)
    case.assertRegex(result.stdout, r"\[  PASSED  \] [1-9]")
    case.assertNotIn("SKIPPED", result.stdout)


class HighColour(Looks):
    """Run by Screens at 16 bits: everything as it is with more, in the colours that there are."""

    def test_drawing(self):
        run_tests(self, "CUITests.exe", "Bitmap.*:Bmp*.*:Data.F*:Draw.*:OffScreenDC.*-BmpFile.*")


class Palette(LauncherTest):
    """Run by Screens at 8 bits, where colours come out near those that were asked for."""

    def test_picture_and_hot_spots(self):
        launcher = self.start()
        launcher.move(5, 5)
        dark = wait_for(lambda: self.painted(launcher), "a picture")
        for line in LINES:
            x, y, cx, cy = self.spots[line]
            launcher.move(x + 9, y + cy // 2)
            changed = wait_for(lambda: self.difference(launcher, dark), "a lit line")
            self.assertTrue(x - 2 <= changed[0] and changed[2] <= x + cx + 1, changed)
            self.assertTrue(y - 2 <= changed[1] and changed[3] <= y + cy + 1, changed)
            launcher.move(5, 5)
            wait_for(lambda: not self.difference(launcher, dark), "the first picture again")
        launcher.remote("send", WM_COMMAND, 2, 0)
        self.assertEqual(0, launcher.wait_until_ended())

    @staticmethod
    def painted(launcher):
        picture = launcher.picture(None)
        return picture if len(picture.getcolors(256) or range(256)) > 8 else None

    @staticmethod
    def difference(launcher, picture):
        return ImageChops.difference(launcher.picture(None), picture).getbbox()

    def test_messages(self):
        """From inside: whether the palette was realised is not seen from another process."""
        run_tests(self, "AutoRunTests.exe", "Palette.*")

    def test_drawing(self):
        """What draws; what is loaded comes out in the nearest of the colours that there are."""
        run_tests(self, "CUITests.exe", "BmpBlt.*:BmpState.*:Data.F*:Draw.*:OffScreenDC.*")


GROUPS = {"Looks": (Looks, SecondSkin), "Mouse": (Mouse,), "Programs": (Programs,),
          "Disc": (DiscFolder,), "BadInput": (BadInput,), "Screens": (Screens,),
          "HighColour": (HighColour,), "Palette": (Palette,)}


def main():
    global BUILD
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("groups", nargs="*", default=list(GROUPS)[:6])
    options = parser.parse_args()
    BUILD = Build(options.build)
    loader = unittest.TestLoader()
    suite = unittest.TestSuite(loader.loadTestsFromTestCase(case) for group in options.groups
                               for case in GROUPS[group])
    result = unittest.TextTestRunner(verbosity=2).run(suite)
    return 0 if result.wasSuccessful() and result.testsRun else 1


if __name__ == "__main__":
    sys.exit(main())
