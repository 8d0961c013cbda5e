#!/usr/bin/python3
"""A share of the framework's tests on a system that calls itself another version of Windows.

Usage: versions_test.py --build FOLDER VERSION   (within Tools/with-wine)

Each test runs in a process of its own. Wine keeps the version to be for each program's name, so the
programs run under a name that nothing else has, and the prefix stays as it is for all others.
"""

import argparse
import os
import subprocess
import sys
import tempfile

# What the system then answers: version and platform (1: Windows 95 and 98, 2: NT).
VERSIONS = {"win95": "4.0.1", "win98": "4.10.1", "nt40": "4.0.2", "win2k": "5.0.2",
            "winxp": "5.1.2", "win7": "6.1.2", "win10": "6.2.2"}
# What depends on the system most. Nothing that writes where tests outside look.
TESTS = {
    "CUTests": ("Version.*", "Assert.AppendsAReport*", "CrashReport.Names*",
                "StackTrace.WalksAnother*", "DebugHelp.IsLeft*", "Process.AssertionsAtTheEnd*",
                "Process.MessageWindow*", "TimerTask.ThreadsEndOnOld*", "Dump.Brings*",
                "LogFiles.TheFirst*", "File.ReadsWrites*", "Clock.DoubleTime*"),
    "CUITests": ("Data.Holds*", "Window.Binds*", "WindowClass.*", "MessageLoop.Serves*",
                 "Dialog.Ends*", "ControlWindow.TakesTheScreen*", "BmpLoad.Gives*",
                 "Draw.SetsTheTables*", "OffScreenDC.Grows*", "ResourceString.Loads*"),
}


class Program:
    """A test program under a name of its own, in a folder that goes with it."""

    def __init__(self, path, version):
        self.folder = tempfile.TemporaryDirectory(dir=os.path.dirname(path))
        self.name = "%s-%s.exe" % (os.path.basename(path), os.path.basename(self.folder.name))
        self.path = os.path.join(self.folder.name, self.name)
        self.key = r"HKCU\Software\Wine\AppDefaults" + "\\" + self.name
        os.link(path + ".exe", self.path)
        self.version = version

    def __enter__(self):
        wine("reg", "add", self.key, "/v", "Version", "/d", self.version, "/f").check_returncode()
        return self

    def __exit__(self, *_):
        wine("reg", "delete", self.key, "/f").check_returncode()
        self.folder.cleanup()


def wine(*words):
    return subprocess.run(["wine", *words], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace", check=False)


def run(build, version):
    """How many tests failed."""
    os.environ["TEST_SYSTEM"] = VERSIONS[version]
    failed = 0
    for name, tests in TESTS.items():
        with Program(os.path.join(build, "Tests", name), version) as program:
            for test in tests:
                result = wine(program.path, "--gtest_filter=" + test)
                if result.returncode != 0 or "[  PASSED  ] 0 " in result.stdout:
                    print("%s %s: exit code %d\n%s" % (name, test, result.returncode,
                                                       result.stdout))
                    failed += 1
    return failed


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", required=True)
    parser.add_argument("version", choices=VERSIONS)
    arguments = parser.parse_args()
    sys.exit(run(arguments.build, arguments.version) != 0)
