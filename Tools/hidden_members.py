#!/usr/bin/env python3
"""Writes the members of the public headers' classes that no program can name, a symbol a line.

  hidden_members.py FILE INCLUDE...    INCLUDE: folders of headers, as on the search path

They need not be exported. A member is such a one if it is private, is not virtual (the table of every
derived class has those) and the headers mention its name where it is declared only: what they
mention, a function that is compiled into the program may use.
"""

import collections
import pathlib
import re
import subprocess
import sys
import tempfile

PREFIX = "i686-w64-mingw32-"
# Symbols and access are what the compiler says for debuggers, here of all classes.
COMPILE = (PREFIX + "g++-win32", "-std=c++17", "-c", "-g", "-fno-eliminate-unused-debug-types",
           "-femit-class-debug-always")
ENTRY = re.compile(r"^ <([0-9a-f]+)><[0-9a-f]+>: .*\(DW_TAG_(\w+)\)\n((?:    <.*\n)*)", re.MULTILINE)
VALUE = re.compile(r"DW_AT_(\w+) *: (?:\(indirect.*?\): )?(\S+)")


def debug_information(headers, folders):
    with tempfile.TemporaryDirectory() as folder:
        source, result = pathlib.Path(folder, "all.cpp"), pathlib.Path(folder, "all.o")
        source.write_text("".join(f'#include "{header}"\n' for header in headers))
        subprocess.run([*COMPILE, *(f"-I{path}" for path in folders), source, "-o", result], check=True)
        return subprocess.run([PREFIX + "objdump", "--dwarf=info", result], check=True,
                              capture_output=True, text=True).stdout


def declarations(information):
    """All that have a symbol of their own: where they are declared, and what is said of them."""
    outer = {}
    for entry in ENTRY.finditer(information):
        level = int(entry[1], 16)
        outer[level] = entry[2]
        values = dict(VALUE.findall(entry[3]))
        if {"name", "linkage_name"} <= values.keys():
            yield outer.get(level - 1), values


def is_hidden(place, values):
    unsaid = "3" if place == "class_type" else "1"
    return (place in ("class_type", "structure_type") and "virtuality" not in values and
            values.get("accessibility", unsaid) == "3" and re.fullmatch(r"\w+", values["name"]))


def main(file, *folders):
    headers = sorted(path.resolve() for folder in folders for path in folder.rglob("*.h"))
    known = list(declarations(debug_information(headers, folders)))
    declared = collections.Counter(values["name"] for _, values in known)
    code = "".join(re.sub(r'/\*.*?\*/|//[^\n]*|"(?:\\.|[^"\n])*"', " ", path.read_text(), flags=re.S)
                   for path in headers)
    mentioned = collections.Counter(re.findall(r"\w+", code))
    file.write_text("".join(sorted(
        values["linkage_name"] + "\n" for place, values in known
        if is_hidden(place, values) and mentioned[values["name"]] == declared[values["name"]])))


if len(sys.argv) < 3:
    sys.exit(__doc__)
main(*map(pathlib.Path, sys.argv[1:]))
