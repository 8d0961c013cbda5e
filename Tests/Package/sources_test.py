"""Builds the sources in the package as part of another project, with its compiler and options.

Usage: sources_test.py Sources.test_WHAT   (AUTORUN_BUILD says what build)
"""

import json
import shutil
import subprocess
import unittest

from package_test import ROOT, Package, output_of

PROJECT = """\
cmake_minimum_required(VERSION 3.23)
project(User LANGUAGES CXX)
include(FetchContent)
FetchContent_Declare(AutoRun SOURCE_DIR ${CMAKE_SOURCE_DIR}/AutoRun SOURCE_SUBDIR src)
FetchContent_MakeAvailable(AutoRun)
add_executable(User User.cpp)
target_link_libraries(User PRIVATE AutoRun::CUI -static)
"""


class Sources(Package):
    def test_build(self):
        """Kept, it is quick the next time."""
        folder = ROOT / "build/from-sources"
        shutil.rmtree(folder / "AutoRun", ignore_errors=True)
        shutil.copytree(self.tree, folder / "AutoRun")
        (folder / "CMakeLists.txt").write_text(PROJECT)
        (folder / "User.cpp").write_text(
            '#include <stdio.h>\n#include "CUI/Window.h"\n'
            'int main() { puts(CCUIWindow().GetHandle() ? "bound" : "free"); }\n')
        own = ["-O1", "-Wall", "-Wextra", "-Werror"]
        self.configure(folder, folder / "build", f"-DCMAKE_CXX_FLAGS={' '.join(own)}", "-DCMAKE_CXX_STANDARD=20",
                       "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        output_of("cmake", "--build", folder / "build")
        self.assertEqual("free", output_of("wine", folder / "build/User.exe").strip())
        # Of options that change code or warn, the user's own; what the framework needs, for itself.
        for entry in json.loads((folder / "build/compile_commands.json").read_text()):
            options = [word for word in entry["command"].split() if word[:2] in ("-O", "-W", "-f", "-m")]
            self.assertEqual(own, [word for word in options if not word.startswith(("-f", "-Wno-"))], entry)
            self.assertEqual(entry["file"].endswith("User.cpp"), options == own, entry)

    def test_compilers(self):
        """Those that cannot use it get a sentence to act on, from the sources and from the package."""
        cross = ("-DCMAKE_SYSTEM_NAME=Windows", "-DCMAKE_CXX_COMPILER=clang++",
                 "-DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY")
        target = "-DCMAKE_CXX_COMPILER_TARGET="
        for problem, options in (
                ("makes programs for Linux.", ()),
                ("makes 64-bit programs.", (*cross, target + "x86_64-w64-windows-gnu")),
                ("is Visual Studio's", (*cross, target + "i686-pc-windows-msvc"))):
            for place in "src", "share/doc/AutoRun/Hello":
                said = subprocess.run(
                    ["cmake", "--fresh", "-S", self.tree / place, "-B", self.folder / "build", "-G",
                     "Ninja", f"-DCMAKE_PREFIX_PATH={self.tree}", *options],
                    text=True, capture_output=True, check=False).stderr
                self.assertIn(f"this compiler {problem}", " ".join(said.split()))


if __name__ == "__main__":
    unittest.main()
