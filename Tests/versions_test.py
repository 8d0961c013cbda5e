#!/usr/bin/python3
"""A share of the framework's tests on a system that calls itself another version of Windows.

Usage: versions_test.py VERSION   (within Tools/with-wine, AUTORUN_BUILD says what build)
Wine keeps the version to be for each program's name, so the tests run under a name of their own.
"""

import fnmatch
import os
import pathlib
import re
import subprocess
import sys

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


version = sys.argv[1]
tests = pathlib.Path(os.environ["AUTORUN_BUILD"], "Tests")
os.environ["TEST_SYSTEM"] = VERSIONS[version]
key = rf"HKCU\Software\Wine\AppDefaults\Version-{version}.exe"
wine("reg", "add", key, "/v", "Version", "/d", version, "/f").check_returncode()
for layer, *patterns in TESTS:
    program = tests / "Versions" / layer / f"Version-{version}.exe"
    program.parent.mkdir(parents=True, exist_ok=True)
    program.unlink(missing_ok=True)
    os.link(tests / f"{layer}Tests.exe", program)
    result = wine(program, "--gtest_filter=" + ":".join(patterns))
    passed = re.findall(r"\[       OK \] (\S+)", result.stdout)
    missing = [pattern for pattern in patterns if not fnmatch.filter(passed, pattern)]
    if result.returncode or missing:
        sys.exit(f"{result.stdout}\n{layer}: exit code {result.returncode}, none of {missing}")
