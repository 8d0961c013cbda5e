#!/usr/bin/python3
"""A share of the framework's tests, and Disc Maker, on a system that calls itself another version of Windows.

Usage: versions_test.py VERSION   (within Tools/with-wine, AUTORUN_BUILD says what build)
Wine keeps the version to be for each program's name, so the tests run under a name of their own.
"""

import fnmatch
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

sys.path += [str(pathlib.Path(__file__).parent / part) for part in ("AutoRun", "DiscMaker")]
from launcher import (BUILD, NONE, reference, wait_for, wait_for_focus_on, windows,  # noqa: E402
                      windows_path, xdotool)
from window_test import MakerWindow  # noqa: E402

# What the system then answers: version and platform (1: Windows 95 and 98, 2: NT).
VERSIONS = {"win95": "4.0.1", "win98": "4.10.1", "nt40": "4.0.2", "win2k": "5.0.2",
            "winxp": "5.1.2", "win7": "6.1.2", "win10": "6.2.2"}
# What depends on the system most. Nothing that writes where tests outside look.
# Each line runs in a process of its own: what a process opens once starts afresh.
TESTS = (
    ("CU", "Version.*", "Assert.AppendsAReport*", "StackTrace.WalksAnother*", "File.ReadsWrites*",
     "TimerTask.ThreadsEndOnOld*", "Clock.DoubleTime*"),
    ("CU", "Process.MessageWindow*"),
    ("CU", "Dump.Brings*"),
    ("CU", "LogFiles.TheFirst*"),
    ("CUI", "Data.Holds*", "Window.Binds*", "MessageLoop.Serves*", "Dialog.Ends*",
     "ControlWindow.TakesTheScreen*", "BmpLoad.Gives*", "Draw.SetsTheTables*",
     "ResourceString.Loads*"),
    # Windows and what they are put together of; but none that takes seconds.
    ("CUI", "FrameWindow.DoesWithout*"),
    ("CUI", "Choosers.*"),
    ("CUI", "CommandView.*", "Control.*", "ControlBar.*", "FrameWindow.C*", "FrameWindow.K*",
     "FrameWindow.LeadsHelp*", "FrameWindow.O*", "FrameWindow.P*", "FrameWindow.S*", "Layout.G*",
     "Layout.M*", "Layout.S*", "Layout.T*", "Menu.*", "MessageBoxes.C*", "MessageBoxes.IsCancelled*",
     "MessageBoxes.K*", "MessageBoxes.S*", "NotifyIcon.*", "RecentFiles.*", "SingleInstance.Hands*",
     "StatusBar.*", "SystemControls.M*", "SystemControls.T*"),
)


def wine(*words):
    return subprocess.run(["wine", *words], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          text=True, errors="replace", check=False)


def named(program, *folder):
    """The program under the name whose version is set."""
    link = BUILD.joinpath("Tests/Versions", *folder, f"Version-{version}.exe")
    link.parent.mkdir(parents=True, exist_ok=True)
    link.unlink(missing_ok=True)
    os.link(BUILD / program, link)
    return link


def use_disc_maker():
    """Its commands make another launcher of a copy of one, as it was built; its window shows that."""
    maker, other = named("DiscMaker/DiscMaker.exe", "DiscMaker"), BUILD / "Disc/HarbourTides.exe"
    MakerWindow.forget()
    with tempfile.TemporaryDirectory() as folder:
        launcher = pathlib.Path(folder, "Mine.exe")
        mine = windows_path(launcher)
        shutil.copy(BUILD / "AutoRun/AutoRun.exe", launcher)
        for name, *words in ("/check", mine), ("/apply", windows_path(other), "/to", mine):
            result = wine(maker, name, *words)
            if result.returncode:
                sys.exit(f"{name}: exit code {result.returncode}\n{result.stdout}")
        if launcher.read_bytes() != other.read_bytes():
            sys.exit("/apply: not as it was built")
        with subprocess.Popen(["wine", maker, mine]) as process:
            wait_for(lambda: windows("Mine.exe - Disc Maker"), "the window")
            face = reference(launcher)[0][NONE]
            wait_for(lambda: MakerWindow.find(face), "the launcher's face")
            wait_for_focus_on("Disc Maker")
            xdotool("key", "alt+F4")
            if process.wait(120):
                sys.exit(f"Disc Maker: exit code {process.returncode}")
    MakerWindow.forget()


version = sys.argv[1]
os.environ["TEST_SYSTEM"] = VERSIONS[version]
key = rf"HKCU\Software\Wine\AppDefaults\Version-{version}.exe"
wine("reg", "add", key, "/v", "Version", "/d", version, "/f").check_returncode()
for layer, *patterns in TESTS:
    result = wine(named(f"Tests/{layer}Tests.exe", layer), "--gtest_filter=" + ":".join(patterns))
    passed = re.findall(r"\[       OK \] (\S+)", result.stdout)
    missing = [pattern for pattern in patterns if not fnmatch.filter(passed, pattern)]
    if result.returncode or missing:
        sys.exit(f"{result.stdout}\n{layer}: exit code {result.returncode}, none of {missing}")
if version in ("win98", "nt40"):
    use_disc_maker()
