"""Debugs a program that was built with the package as its page says.

Usage: debug_test.py Debug.test_debuggers   (within Tools/with-wine, AUTORUN_BUILD says what build)
"""

import os
import re
import socket
import subprocess
import time
import unittest
from xml.etree import ElementTree

from package_test import ROOT, Package, output_of

SOURCE = r"""
#include "CU/Time.h"
#include "CUI/Bitmap.h"
#include "CUI/Window.h"
struct CCrash : CCUIWindow
{
    void OnSize(UINT, int, int) override
    {
        const CCUString text("It's\0\"text\"", 11), none;
        const CCUTime time(951868799);
        const CCUIBitmap bitmap(CreateBitmap(30, 20, 1, 1, nullptr), nullptr), noBitmap;
        *static_cast<volatile int *>(nullptr) = 1;  // here
    }
};
int main()
{
    CCrash window;
    window.Create(nullptr, "Crash", WS_OVERLAPPEDWINDOW, {0, 0, 99, 99}, nullptr, 0);
    SendMessageA(window, WM_SIZE, 0, 0);
}
"""
PROJECT = """
cmake_minimum_required(VERSION 3.16)
project(Crash LANGUAGES CXX)
find_package(AutoRun REQUIRED)
add_executable(Crash Crash.cpp)
target_link_libraries(Crash PRIVATE AutoRun::CUI -static)
file(GENERATE OUTPUT linked CONTENT $<TARGET_FILE_NAME:AutoRun::CUI>)
"""
# Before and after leap days, at both ends.
SECONDS = (-2**31, -2077747200, -2077747201, -1, 951782400, 951868799, 951868800, 1709251199, 2**31 - 1)


class Debug(Package):
    def natvis(self):
        """The file's expressions as commands for gdb; those of times for SECONDS."""
        objects = {"CCUString": "text.", "CCUIWindow": "(*this).", "CCUIBitmap": "bitmap."}
        for shown in ElementTree.parse(self.tree / "share/AutoRun/AutoRun.natvis").getroot():
            texts = (text for part in shown.iter() for text in (part.text, part.get("Condition")))
            owner = objects.get(shown.get("Name"))
            for text in (text for text in texts if text and "m_" in text):
                terms = [term.removesuffix(",s") for term in re.findall("{(.*?)}", text) or [text]]
                if owner:
                    yield from (f"output {re.sub('(?<!>)m_', owner + 'm_', term)}" for term in terms)
                for second in SECONDS if "{" in text and not owner else ():
                    yield (f'printf "{re.sub("{.*?}", "%d", text)}\\n", ' +
                           ", ".join(terms).replace("m_nTime", f"(long){second}"))

    def test_debuggers(self):
        for step in "--preset", "--build --preset":
            output_of("cmake", *step.split(), "package-debug", cwd=ROOT)
        output_of("cmake", "--install", ROOT / "build/package-debug", "--prefix", self.tree)
        page = (self.tree / "share/doc/AutoRun/README.md").read_text()
        option = re.search(r"target_compile_options\(\w+ (PRIVATE .*-gdwarf.*)\)", page)[1]
        (self.folder / "Crash.cpp").write_text(SOURCE)
        (self.folder / "CMakeLists.txt").write_text(PROJECT + f"target_compile_options(Crash {option})")
        for configuration in "", "Release", "RelWithDebInfo", "Debug":
            self.configure(self.folder, self.folder / "build", f"-DCMAKE_BUILD_TYPE={configuration}")
            self.assertEqual("libCUId.a" if configuration == "Debug" else "libCUI.a",
                             (self.folder / "build/linked").read_text(), configuration)
        output_of("cmake", "--build", self.folder / "build")
        program = self.folder / "build/Crash.exe"

        # The project's settings switch Wine's debugger off.
        switched_on = dict(os.environ, WINEDLLOVERRIDES="")
        (self.folder / "commands").write_text("cont\nkill\nquit\n")
        report = output_of("wine", "winedbg", "--file", "commands", program, env=switched_on,
                           cwd=self.folder)
        line = SOURCE.partition("// here")[0].count("\n") + 1
        self.assertRegex(report, rf"=>0 .* CCrash::OnSize.*\\Crash\.cpp:{line}\]")
        self.assertRegex(report, r"  1 .* CCUIWindow::WindowProc.*\\WindowDispatch\.cpp:\d+\]")

        with socket.create_server(("localhost", 0)) as free:
            port = str(free.getsockname()[1])
        server = subprocess.Popen(["wine", "winedbg", "--gdb", "--no-start", "--port", port, program],
                                  stdout=subprocess.DEVNULL, env=switched_on)
        self.addCleanup(server.wait)
        self.addCleanup(server.kill)
        # Wine 8 cannot be asked twice, which gdb does when an answer is late.
        commands = ("set tcp connect-timeout 60", "set remotetimeout 60",
                    f"source {self.tree}/share/AutoRun/autorun_gdb.py",
                    f"target remote localhost:{port}", "continue",
                    "info locals", "print *this", *self.natvis(), "up", "list", "kill")
        shown = output_of("gdb", "-nx", "--batch", program, *(
            word for command in commands for word in ("-ex", command)), cwd=self.folder)
        for text in ("text = \"It's\\000\\\"text\\\"\"", 'none = ""', "time = 2000-02-29 23:59:59 UTC",
                     "bitmap = 30 x 20, 1 bit, HBITMAP 0x", "noBitmap = no bitmap",
                     "<CCUIWindow> = HWND 0x", "case WM_SIZE:", *(
                         "{}-{}-{} {}:{}:{} UTC\n".format(*time.gmtime(second)) for second in SECONDS)):
            self.assertIn(text, shown)
        self.assertNotRegex(shown, "No symbol|no member|syntax error")


if __name__ == "__main__":
    unittest.main()
