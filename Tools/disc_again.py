#!/usr/bin/python3 -IS
"""Makes a disc without Wine, when Disc Maker would make the same launcher again; ./disc calls it.

  disc_again.py make FOLDER KEY MAKER LAUNCHER SKIN CONTENTS OUT
  disc_again.py keep FOLDER KEY MAKER LAUNCHER SKIN CONTENTS OUT

"make" lays the disc out with the launcher that is kept in FOLDER. Exit code 1: it did nothing, and
Disc Maker is to do it, as for a first disc, another skin, or names and places with anything unusual
about them: it is Disc Maker that knows what to say of them. The file KEY then has what the launcher
will depend on. "keep" keeps the launcher of a disc that Disc Maker has just made without a remark;
KEY is from the "make" before that.

The launcher depends on Disc Maker, the launcher that it puts the skin into, all files of the skin,
the names of the contents, which the launcher's commands are held against, and Wine with its fonts, by
which texts are measured. What is kept is used only if its sum is the one that it was kept with.
"""

import hashlib
import os
import queue
import re
import sys
import threading

SUMS = "SHA256SUMS"
OWN = ("AutoRun.exe", "autorun.inf")  # what Disc Maker adds to the contents
PIECE = 1 << 20
MOST_OF_A_SKIN = 64 << 20
# What a script could name outside of the skin's folder: a way up, a drive, a path from the root.
OUTSIDE = re.compile(rb'\.\.[\\/]|(?<![A-Za-z])[A-Za-z]:[\\/]|["<\s](?:\\+|/(?!/))[\w.~-]+[\\/.]|\0')
# Names that Windows does not have, or gives another meaning.
UNUSUAL = re.compile(r'[<>:"|?*\\\x00-\x1f\udc80-\udcff]|[. ]$|^(con|prn|aux|nul|com\d|lpt\d)(\.|$)',
                     re.IGNORECASE)
LONGEST_NAME, LONGEST_PATH = 64, 240


class Unusual(Exception):
    """Disc Maker is to decide."""


def sum_of(data):
    return hashlib.sha256(data).hexdigest()


def read(path):
    with open(path, "rb") as file:
        return file.read()


class Tree:
    """Folders and files below a folder, by their paths from it; nothing but these."""

    def __init__(self, folder):
        self.folders, self.files, self.size = [], [], 0
        waiting = [""]
        while waiting:
            above = waiting.pop()
            with os.scandir(os.path.join(folder, above)) as entries:
                for entry in entries:
                    path = os.path.join(above, entry.name)
                    if entry.is_dir(follow_symlinks=False):
                        self.folders.append(path)
                        waiting.append(path)
                    elif entry.is_file(follow_symlinks=False):
                        self.files.append(path)
                        self.size += entry.stat().st_size
                    else:
                        raise Unusual("a link, or a device")
        self.folders.sort()
        self.files.sort()

    def names(self):
        """Of the contents of a disc."""
        paths = self.folders + self.files
        for path in paths:
            name = path.rpartition("/")[2]
            if UNUSUAL.search(name) or len(name.encode("utf-16-le")) > 2 * LONGEST_NAME:
                raise Unusual(name)
            if len(path.encode("utf-16-le")) > 2 * LONGEST_PATH:
                raise Unusual(path)
        if len({path.lower() for path in [*paths, *OWN, SUMS]}) < len(paths) + len(OWN) + 1:
            raise Unusual("two names that are one on Windows")
        return paths


def key_of_skin(skin):
    """The bytes of all that Disc Maker can read of it."""
    if os.path.isfile(skin) and not skin.lower().endswith(".rc"):
        return [sum_of(read(skin))]
    folder = skin if os.path.isdir(skin) else os.path.dirname(skin)
    tree = Tree(folder)
    if tree.size > MOST_OF_A_SKIN:
        raise Unusual("more than a skin")
    key = []
    for path in tree.files:
        data = read(os.path.join(folder, path))
        if not path.lower().endswith((".bmp", ".ico", ".png")) and OUTSIDE.search(data):
            raise Unusual("a file outside of the skin's folder")
        key += [path, sum_of(data)]
    return key


def key_of_system():
    """Wine, its prefix, and the folders in which fonts come and go."""
    tops = ("/usr/share/fonts", "/usr/local/share/fonts", "~/.fonts", "~/.local/share/fonts")
    fonts = [found for top in tops for found, _, _ in os.walk(os.path.expanduser(top))]
    prefix = os.environ["WINEPREFIX"]
    return [prefix, *(f"{path} {os.stat(path).st_mtime_ns}"
                      for path in ("/usr/lib/wine/wine", prefix + "/drive_c/windows", *fonts))]


def key_of(maker, launcher, skin, contents):
    programs = [sum_of(read(path)) for path in (__file__, maker, launcher)]
    return sum_of("\n".join([*programs, skin, *key_of_skin(skin), *key_of_system(), contents,
                             *Tree(contents).names()]).encode())


def kept(folder, key):
    """The launcher and autorun.inf."""
    lines = read(os.path.join(folder, SUMS)).decode().split("\n")
    data = [read(os.path.join(folder, name)) for name in OWN]
    if lines != [key, *map(sum_of, data)]:
        raise Unusual("of another disc, or damaged")
    return data


def keep(folder, key, out):
    sums = read_sums(out)
    data = [read(os.path.join(out, name)) for name in OWN]
    if [sums.get(name) for name in OWN] != [*map(sum_of, data)]:
        raise Unusual("not what was written")
    os.makedirs(folder, exist_ok=True)
    for name, bytes_ in zip((*OWN, SUMS), (*data, "\n".join([key, *map(sum_of, data)]).encode())):
        with open(os.path.join(folder, name), "wb") as file:
            file.write(bytes_)


def read_sums(disc):
    lines = read(os.path.join(disc, SUMS)).decode().splitlines()
    return {line[66:]: line[:64] for line in lines if re.match(r"[0-9a-f]{64} \*.", line)}


class Writer:
    """Writes files below a new folder. Their sums are of the bytes that are written, taken on another
    thread meanwhile."""

    def __init__(self, folder):
        self.folder, self.digests, self.made = folder, {}, []
        self.free, self.work = queue.SimpleQueue(), queue.SimpleQueue()
        for _ in range(4):
            self.free.put(bytearray(PIECE))
        self.thread = threading.Thread(target=self.add_pieces, daemon=True)
        self.thread.start()

    def add_pieces(self):
        while (job := self.work.get()) is not None:
            digest, piece, size = job
            digest.update(memoryview(piece)[:size])
            self.free.put(piece)

    def make_folder(self, path):
        os.mkdir(os.path.join(self.folder, path))
        self.made.append((os.rmdir, path))

    def create(self, path):
        target = open(os.path.join(self.folder, path), "xb", buffering=0)
        self.made.append((os.unlink, path))
        return target

    def write(self, path, data):
        with self.create(path) as target:
            if target.write(data) != len(data):
                raise Unusual("the disk is full")
        self.digests[path] = hashlib.sha256(data)

    def copy(self, source, path):
        digest = self.digests[path] = hashlib.sha256()
        with open(source, "rb", buffering=0) as file, self.create(path) as target:
            while True:
                piece = self.free.get()
                size = file.readinto(piece)
                self.work.put((digest, piece, size))
                if not size:
                    break
                if target.write(memoryview(piece)[:size]) != size:
                    raise Unusual("the disk is full")
            # The same contents make the same disc, times included, which Windows has to 100 ns.
            time = os.fstat(file.fileno()).st_mtime_ns // 100 * 100
            os.utime(target.fileno(), ns=(time, time))

    def write_sums(self):
        self.work.put(None)
        self.thread.join()
        self.write(SUMS, "".join(f"{self.digests[path].hexdigest()} *{path}\n"
                                 for path in sorted(self.digests, key=str.encode)).encode())

    def take_back(self):
        for remove, path in reversed(self.made):
            remove(os.path.join(self.folder, path))


def check_places(contents, out):
    """That neither is in the other, nor a link."""
    def way_up(path):
        path = os.path.realpath(path)
        while True:
            status = os.stat(path)
            yield status.st_dev, status.st_ino
            if path == "/":
                return
            path = os.path.dirname(path)

    inner = next(way_up(contents))
    if os.path.islink(out) or inner in way_up(os.path.dirname(out)):
        raise Unusual("the disc lies in its contents")
    if os.path.exists(out) and next(way_up(out)) in way_up(contents):
        raise Unusual("the contents lie in the disc")
    if any(map(os.path.lexists, (out + ".unfinished", out + ".old"))):
        raise Unusual("something is left of another disc")


def old_disc(out):
    """What is there, if all of it was written by us and is as we wrote it."""
    tree, sums = Tree(out), read_sums(out)
    for path in tree.files:
        if path == SUMS and sums:
            continue
        with open(os.path.join(out, path), "rb") as file:
            digest = hashlib.sha256()
            while piece := file.read(PIECE):
                digest.update(piece)
        if sums.get(path) != digest.hexdigest():
            raise Unusual("a file of somebody's")
    return tree


def take_place(new, out, old):
    if old is None:
        os.rename(new, out)
        return
    os.rename(out, out + ".old")
    try:
        os.rename(new, out)
    except OSError:
        os.rename(out + ".old", out)
        raise
    try:
        for path in old.files:
            os.unlink(os.path.join(out + ".old", path))
        for path in [*reversed(old.folders), ""]:
            os.rmdir(os.path.join(out + ".old", path))
    except OSError as error:
        print(f"note: {out}.old: Some of the old disc could not be deleted: {error.strerror}.")


def make(own, contents, out):
    check_places(contents, out)
    old = old_disc(out) if os.path.lexists(out) else None
    tree = Tree(contents)
    tree.names()
    space = os.statvfs(os.path.dirname(out))
    if space.f_bavail * space.f_frsize < tree.size + sum(map(len, own)):
        raise Unusual("the disk is too full")
    writer = Writer(out + ".unfinished")
    try:
        writer.make_folder("")
        for name, data in zip(OWN, own):
            writer.write(name, data)
        for path in tree.folders:
            writer.make_folder(path)
        for path in tree.files:
            writer.copy(os.path.join(contents, path), path)
        writer.write_sums()
        take_place(writer.folder, out, old)
    except BaseException:
        writer.take_back()
        raise


def main(action, folder, key_file, maker, launcher, skin, contents, out):
    try:
        key = key_of(maker, launcher, skin, contents)
        if action == "keep":
            if read(key_file).decode() != key:
                raise Unusual("the skin was changed meanwhile")
            keep(folder, key, out)
            return 0
        with open(key_file, "w", encoding="ascii") as file:
            file.write(key)
        make(kept(folder, key), contents, out)
        return 0
    except (OSError, UnicodeError, Unusual):
        return 1


sys.exit(main(*sys.argv[1:]))
