#!/usr/bin/env python3
"""What AutoRun.exe exports, from what the headers mark to what the linker takes.

  exports.py take LIBRARY NAMES     writes what the compiler noted in a static library of what the
                                    headers mark, and takes the notes out: programs that link the
                                    library must not export it
  exports.py write LIST HIDDEN NAMES...
                                    brings the list of exports up to date: all NAMES without those
                                    HIDDEN, which no program can name (hidden_members.py)
  exports.py check LIST FOLDER HIDDEN NAMES...
                                    tells what the list lacks or has too much; when it is right,
                                    writes what the linker takes: keep.rsp, export.def, import.def

A free function that is not overloaded is exported under its plain name. Other functions, and the data
of classes, have long decorated names: new ones are exported by a number instead, which the list keeps.
The import library turns the decorated name, by which compilers call either, into the plain one or the
number. So it does with the constructors and destructors for the base part of an object (C2, D2),
which without virtual bases are those for whole objects (C1, D1). The linker cannot do this by itself:
whatever is marked it exports under its decorated name, beside any other.
"""

import collections
import itertools
import pathlib
import re
import string
import subprocess
import sys

PREFIX = "i686-w64-mingw32-"
REFRESH = "Tools/refresh-exports"
HEADING = f"""\
; What AutoRun.exe exports: all that the public headers mark and a program can name. Written by
; {REFRESH}.
; A line is the exported name, where it is a plain one the symbol that it stands for, and behind it the
; name as it is in the headers. Destructors are there once more where they free the object as well.
; What has a number, @N, is exported by that number alone, which stays its own for ever.
"""
LAST_NUMBER = "; Last number given: @"


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


def read(hidden, *files):
    """Marked symbols to their kinds, "data" or nothing; those for base parts to whole objects'."""
    hidden = set(hidden.read_text().split())
    marked = dict(line.partition(",")[::2] for file in files for line in file.read_text().split())
    marked = {name: kind for name, kind in marked.items()
              if re.sub(r"@\d+$", "", name) not in hidden}
    whole = {name: re.sub(r"([CD])2(?=E)", r"\g<1>1", name) for name in marked}
    bases = {name: other for name, other in whole.items() if other != name and other in marked}
    return {name: kind for name, kind in marked.items() if name not in bases}, bases


def exported(line):
    return line.partition(";")[0].strip()


def symbol_of(line):
    return re.sub(r".* = | .*", "", exported(line))


def number_of(line):
    """0: it is exported by its name."""
    number = re.search(r" @(\d+)", exported(line))
    return int(number[1]) if number else 0


def lines_of(marked, list_text):
    """The lines that the list should have. Those that it has keep their numbers."""
    there = {symbol_of(line): number_of(line)
             for line in list_text.splitlines() if exported(line)}
    last = int(list_text.partition(LAST_NUMBER)[2].partition("\n")[0] or 0)
    taken = set()  # if two branches gave the same number, the first name keeps it
    shown = dict(zip(marked, output_of("c++filt", "--no-strip-underscore",
                                       input="\n".join(marked)).splitlines()))
    functions = {name: text.partition("(")[0] for name, text in shown.items()
                 if re.fullmatch(r"\w+\(.*\)", text)}
    overloads = collections.Counter(functions.values())
    lines = []
    for name in sorted(marked, key=lambda name: (shown[name], name)):
        line = f"{functions[name]} = {name}" if overloads[functions.get(name)] == 1 else name
        number = there.get(name)
        if number in taken or number is None and line.startswith("_Z"):
            last += 1
            number = last
        if number:
            taken.add(number)
            line += f" @{number}"
        line += " DATA" if marked[name] else ""
        lines.append(line + (f" ; {shown[name]}" if shown[name] != name else ""))
    return lines, last


def check(path, wanted):
    there = [line for line in path.read_text().splitlines() if exported(line)]
    for text, lines, others in ("lacks", wanted, there), ("has too much", there, wanted):
        others = {exported(line) for line in others}
        for line in lines:
            if exported(line) not in others:
                print(f"{path.name}: error: {text}: {line}", file=sys.stderr)
    if there != wanted:
        sys.exit(f"exports: {path} is not what the headers mark. {REFRESH} writes it anew.")


def short_name(number):
    letters = string.ascii_letters
    return (short_name(number // len(letters)) if number >= len(letters) else "") + letters[
        number % len(letters)]


def write_for_linker(folder, lines, last, bases):
    # Undefined from the start, they are fetched from the libraries and outlive the removal of what
    # nobody calls.
    keep = [symbol_of(line) for line in lines]
    (folder / "keep.rsp").write_text("".join(f"-Wl,-u,_{symbol}\n" for symbol in keep))
    exports, imports, numbers = [], [], {}
    named = itertools.count(last + 1)  # else the linker gives them numbers of what is gone
    for line in lines:
        name, number, kind = re.fullmatch(r"(.*?)(?: @(\d+))?( DATA|)", line).groups()
        if number:
            # The linker keeps room for names, even those that it does not write: short ones.
            exports.append(f"{short_name(int(number))} = {name} @{number} NONAME{kind}")
            imports.append(f"{name} @{number} NONAME{kind}")
            numbers[name] = f" @{number} NONAME"
        else:
            exports.append(f"{name} @{next(named)}{kind}")
            imports.append(re.sub(r"(\S+) = (\S+)", r"\2 == \1", line))
    imports += [part + numbers.get(whole, f" == {whole}") for part, whole in bases.items()]
    for name, text in ("export", exports), ("import", imports):
        (folder / f"{name}.def").write_text("\n".join(["NAME AutoRun.exe", "EXPORTS", *text, ""]))


def main(command, file, *files):
    if command == "take":
        take(file, *files)
        return
    marked, bases = read(*files[command == "check":])
    lines, last = lines_of(marked, file.read_text())
    if command == "check":
        check(file, lines)
        write_for_linker(files[0], [exported(line) for line in lines], last, bases)
    else:
        file.write_text(f"{HEADING}{LAST_NUMBER}{last}\n" + "".join(f"{line}\n" for line in lines))


if len(sys.argv) < 4 or sys.argv[1] not in ("take", "write", "check"):
    sys.exit(__doc__)
main(sys.argv[1], *map(pathlib.Path, sys.argv[2:]))
