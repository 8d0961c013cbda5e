#!/usr/bin/env python3
"""The names that AutoRun.exe exports, from what the headers mark to what the linker takes.

  exports.py take LIBRARY NAMES          writes what the compiler noted in a static library of what the
                                         headers mark, and takes the notes out: programs that link the
                                         library must not export it
  exports.py write LIST NAMES...         writes the list of exports
  exports.py check LIST FOLDER NAMES...  tells what the list lacks or has too much; when it is right,
                                         writes what the linker takes: keep.rsp, export.def, import.def

A free function that is not overloaded is exported under its plain name. The import library turns the
decorated name, by which compilers call it, into the plain one, so that the name is there once. So it
does with the constructors and destructors for the base part of an object (C2, D2), which without
virtual bases are those for whole objects (C1, D1). The linker cannot do this by itself: whatever is
marked it exports under its decorated name, beside any other.
"""

import collections
import pathlib
import re
import subprocess
import sys

PREFIX = "i686-w64-mingw32-"
REFRESH = "Tools/refresh-exports"
HEADING = f"""\
; What AutoRun.exe exports: all that the public headers mark. Written by {REFRESH}.
; A line is the exported name, where it is a plain one the symbol that it stands for, and behind it the
; name as it is in the headers. Destructors are there once more where they free the object as well.
"""


def output_of(tool, *words, **options):
    return subprocess.run([PREFIX + tool, *words], check=True, capture_output=True, text=True,
                          **options).stdout


def take(library, names):
    # They stand as options for the linker in a section of each object.
    notes = output_of("objdump", "--full-contents", "--section=.drectve", library)
    marked = set()
    for section in notes.split("Contents of section")[1:]:
        text = bytes.fromhex("".join(re.findall(r"^ [0-9a-f]+ (.{35})", section, re.MULTILINE)))
        marked |= set(re.findall(r"-export:([^\s\0]+)", text.decode().replace('"', "")))
    if not marked:
        sys.exit(f"exports: nothing is marked in {library}")
    output_of("objcopy", "--enable-deterministic-archives", "--remove-section=.drectve", library)
    names.write_text("".join(f"{name}\n" for name in sorted(marked)))


def read(files):
    """Marked symbols to their kinds, "data" or nothing; those for base parts to whole objects'."""
    marked = dict(line.partition(",")[::2] for file in files for line in file.read_text().split())
    whole = {name: re.sub(r"([CD])2(?=E)", r"\g<1>1", name) for name in marked}
    bases = {name: other for name, other in whole.items() if other != name and other in marked}
    return {name: kind for name, kind in marked.items() if name not in bases}, bases


def lines_of(marked):
    """The lines of the list."""
    shown = dict(zip(marked, output_of("c++filt", "--no-strip-underscore",
                                       input="\n".join(marked)).splitlines()))
    functions = {name: text.partition("(")[0] for name, text in shown.items()
                 if re.fullmatch(r"\w+\(.*\)", text)}
    overloads = collections.Counter(functions.values())
    for name in sorted(marked, key=lambda name: (shown[name], name)):
        line = f"{functions[name]} = {name}" if overloads[functions.get(name)] == 1 else name
        line += " DATA" if marked[name] else ""
        yield line + (f" ; {shown[name]}" if shown[name] != name else "")


def exported(line):
    return line.partition(";")[0].strip()


def check(path, wanted):
    there = [line for line in path.read_text().splitlines() if exported(line)]
    for text, lines, others in ("lacks", wanted, there), ("has too much", there, wanted):
        others = {exported(line) for line in others}
        for line in lines:
            if exported(line) not in others:
                print(f"{path.name}: error: {text}: {line}", file=sys.stderr)
    if there != wanted:
        sys.exit(f"exports: {path} is not what the headers mark. {REFRESH} writes it anew.")


def write_for_linker(folder, lines, bases):
    # Undefined from the start, they are fetched from the libraries and outlive the removal of what
    # nobody calls.
    keep = [re.sub(r".* = | DATA$", "", line) for line in lines]
    (folder / "keep.rsp").write_text("".join(f"-Wl,-u,_{symbol}\n" for symbol in keep))
    imports = [re.sub(r"(\S+) = (\S+)", r"\2 == \1", line) for line in lines]
    imports += [f"{part} == {whole}" for part, whole in bases.items()]
    for name, text in ("export", lines), ("import", imports):
        (folder / f"{name}.def").write_text("\n".join(["NAME AutoRun.exe", "EXPORTS", *text, ""]))


def main(command, file, *files):
    if command == "take":
        take(file, *files)
        return
    marked, bases = read(files[command == "check":])
    lines = list(lines_of(marked))
    if command == "check":
        check(file, lines)
        write_for_linker(files[0], [exported(line) for line in lines], bases)
    else:
        file.write_text(HEADING + "".join(f"{line}\n" for line in lines))


if len(sys.argv) < 4 or sys.argv[1] not in ("take", "write", "check"):
    sys.exit(__doc__)
main(sys.argv[1], *map(pathlib.Path, sys.argv[2:]))
