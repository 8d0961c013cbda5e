#!/usr/bin/env python3
"""Measures ./disc beside cp -r of the same contents, in turns. Usage: Bench/time_disc.py [--accept]

Prints the median times and the median of the pairs' ratios: with the contents in memory and the disc
left there; as a maker has it, with contents that come from the drive and a disc that has reached it;
and with hardly any contents, which is what all but the copy costs. Tells which of them got worse since
the last accepted table, Bench/disc.json, and fails if one did, by the rules of ./bench. --accept: what
is measured now becomes that table.
"""

import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
MEBIBYTES = 100
PAIRS = 9
PROGRAMS = ("Fennick.exe", "RunFennick.exe", "tutorial.exe")


def forget(contents):
    """Takes the contents out of the system's memory, once the drive has them."""
    for path in contents.iterdir():
        with path.open("rb") as file:
            os.fsync(file.fileno())
            os.posix_fadvise(file.fileno(), 0, 0, os.POSIX_FADV_DONTNEED)


def seconds(drive, contents, target, *words):
    if drive:
        forget(contents)
    start = time.monotonic()
    subprocess.run(words, check=True, stdout=subprocess.DEVNULL)
    if drive:
        subprocess.run(("sync", "-f", target), check=True)
    took = time.monotonic() - start
    shutil.rmtree(target)
    return took


def measure(folder, mebibytes, drive=False):
    """A row as ./bench has them."""
    contents = folder / "in"
    contents.mkdir(exist_ok=True)
    for program in PROGRAMS:
        (contents / program).write_bytes(os.urandom(1000 + mebibytes * (1 << 20) // len(PROGRAMS)))
    disc = (drive, contents, folder / "disc", ROOT / "disc", ROOT / "AutoRun/Skin", contents,
            "--out", folder / "disc")
    copy = (drive, contents, folder / "copy", "cp", "-r", contents, folder / "copy")
    seconds(*disc)  # no good: Wine's server starts
    seconds(*copy)
    times = [(seconds(*disc), seconds(*copy)) for _ in range(PAIRS)]
    ours, peer = (statistics.median(side) for side in zip(*times))
    ratio = statistics.median(one / other for one, other in times)
    where = "from drive to drive" if drive else "in memory"
    print(f"{mebibytes} MiB {where}: ./disc {ours:.3f} s, cp -r {peer:.3f} s, ratio {ratio:.2f}",
          flush=True)
    return {"group": "Disc", "name": f"{mebibytes} MiB {where}", "peer_name": "cp -r", "ratio": ratio}


def main():
    if sys.argv[1:2] != ["--json"]:
        return subprocess.run((ROOT / "Bench/compare.py", *sys.argv[1:], "--baseline", ROOT / "Bench/disc.json",
                               "--json", ROOT / "build/bench-disc.json", "--", __file__), check=False).returncode
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        rows = [measure(folder, MEBIBYTES), measure(folder, MEBIBYTES, drive=True), measure(folder, 0)]
    pathlib.Path(sys.argv[2]).write_text(json.dumps(rows))
    return 0


sys.exit(main())
