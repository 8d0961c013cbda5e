#!/usr/bin/env python3
"""The names that AutoRun.exe exports, from what the headers mark to what the linker takes.

  exports.py take LIBRARY NAMES        writes what the compiler noted in a static library of what the
                                       headers mark, and takes the notes out: programs that link the
                                       library must not export it
  exports.py write LIST NAMES...       writes the list of exports
  exports.py check LIST NAMES... --to FOLDER
                                       tells what the list lacks or has too much; when it is right,
                                       writes what the linker takes: keep.rsp, export.def, import.def

A free function that is not overloaded is exported under its plain name. The import library turns the
decorated name, by which compilers call it, into the plain one, so that the name is there once. So it
does with the constructors and destructors for the base part of an object (C2, D2), which without
virtual bases are those for whole objects (C1, D1).
"""

import argparse
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


def fail(message):
    sys.exit(f"exports: {message}")


def members(archive):
    """The object files in an archive."""
    data = archive.read_bytes()
    if not data.startswith(b"!<arch>\n"):
        fail(f"{archive} is no static library")
    at = 8
    while at < len(data):
        size = int(data[at + 48:at + 58])
        if not data[at:at + 16].startswith((b"/ ", b"// ")):
            yield data[at + 60:at + 60 + size]
        at += 60 + size + size % 2


def directives(member):
    """What an object file tells the linker."""
    sections = int.from_bytes(member[2:4], "little")
    first = 20 + int.from_bytes(member[16:18], "little")
    for header in (member[first + 40 * i:first + 40 * (i + 1)] for i in range(sections)):
        if header[:8] == b".drectve":
            size, at = (int.from_bytes(header[i:i + 4], "little") for i in (16, 20))
            yield member[at:at + size].decode()


def take(library, names):
    marked = {name for member in members(library) for text in directives(member)
              for name in re.findall(r"-export:([^\s\0]+)", text.replace('"', ""))}
    if not marked:
        fail(f"nothing is marked in {library}")
    subprocess.run([PREFIX + "objcopy", "--enable-deterministic-archives",
                    "--remove-section=.drectve", library], check=True)
    names.write_text("".join(f"{name}\n" for name in sorted(marked)))


def plain_names(shown):
    """Decorated name to plain one, for free functions that have their name for themselves."""
    functions = {}
    for name, text in shown.items():
        found = re.fullmatch(r"(\w+)\(.*\)", text)
        if found:
            functions.setdefault(found[1], []).append(name)
    return {names[0]: plain for plain, names in functions.items() if len(names) == 1}


def marked_in(files):
    """Symbol to its kind, "data" or nothing."""
    return dict(line.partition(",")[::2] for file in files for line in file.read_text().split())


def base_parts(marked):
    """Symbols for base parts, each to that for whole objects."""
    whole = {name: re.sub(r"([CD])2(?=E)", r"\g<1>1", name) for name in marked}
    return {name: other for name, other in whole.items() if other != name and other in marked}


def lines_of(marked):
    """The lines of the list."""
    marked = {name: kind for name, kind in marked.items() if name not in base_parts(marked)}
    shown = dict(zip(marked, subprocess.run(
        [PREFIX + "c++filt", "--no-strip-underscore"], input="\n".join(marked), text=True,
        capture_output=True, check=True).stdout.splitlines()))
    plain = plain_names(shown)
    for name in sorted(marked, key=lambda name: (shown[name], name)):
        line = f"{plain[name]} = {name}" if name in plain else name
        line += " DATA" if marked[name] == "data" else ""
        yield line + (f" ; {shown[name]}" if shown[name] != name else "")


def exported(line):
    return line.partition(";")[0].strip()


def check(path, wanted):
    there = [line for line in path.read_text().splitlines()
             if exported(line)]
    for text, lines, others in ("lacks", wanted, there), ("has too much", there, wanted):
        others = {exported(line) for line in others}
        for line in lines:
            if exported(line) not in others:
                print(f"{path.name}: error: {text}: {line.strip()}", file=sys.stderr)
    if there != wanted:
        fail(f"{path} is not what the headers mark. {REFRESH} writes it anew.")


def write_if_changed(path, text):
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("command", choices=["take", "write", "check"])
    parser.add_argument("file", type=pathlib.Path)
    parser.add_argument("names", type=pathlib.Path, nargs="+")
    parser.add_argument("--to", type=pathlib.Path)
    args = parser.parse_args()
    if args.command == "take":
        take(args.file, args.names[0])
        return
    marked = marked_in(args.names)
    lines = list(lines_of(marked))
    if args.command == "write":
        write_if_changed(args.file, HEADING + "".join(f"{line}\n" for line in lines))
        return
    check(args.file, lines)
    lines = [exported(line) for line in lines]
    # Undefined from the start, they are fetched from the libraries and outlive the removal of what
    # nobody calls.
    keep = [re.sub(r".* = | DATA$", "", line) for line in lines]
    (args.to / "keep.rsp").write_text("".join(f"-Wl,-u,_{symbol}\n" for symbol in keep))
    imports = [re.sub(r"(\S+) = (\S+)", r"\2 == \1", line) for line in lines]
    imports += [f"{part} == {whole}" for part, whole in base_parts(marked).items()]
    for name, text in ("export", lines), ("import", imports):
        (args.to / f"{name}.def").write_text("\n".join(["NAME AutoRun.exe", "EXPORTS", *text, ""]))


if __name__ == "__main__":
    main()
