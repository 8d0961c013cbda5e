#!/usr/bin/env python3
"""Measures ./disc beside cp -r of the same contents, in turns. Usage: Bench/time_disc.py [MIB [PAIRS]]

Prints the median times and the median of the pairs' ratios: with the contents in memory and the disc
left there; as a maker has it, with contents that come from the drive and a disc that has reached it;
and with hardly any contents, which is what all but the copy costs.
"""

import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
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


def measure(folder, mebibytes, pairs, drive=False):
    contents = folder / "in"
    contents.mkdir(exist_ok=True)
    for program in PROGRAMS:
        (contents / program).write_bytes(os.urandom(1000 + mebibytes * (1 << 20) // len(PROGRAMS)))
    disc = (drive, contents, folder / "disc", ROOT / "disc", ROOT / "AutoRun/Skin", contents,
            "--out", folder / "disc")
    copy = (drive, contents, folder / "copy", "cp", "-r", contents, folder / "copy")
    seconds(*disc)  # no good: Wine's server starts
    seconds(*copy)
    times = [(seconds(*disc), seconds(*copy)) for _ in range(pairs)]
    ours, peer = (statistics.median(side) for side in zip(*times))
    ratio = statistics.median(one / other for one, other in times)
    where = "from drive to drive" if drive else "in memory"
    print(f"{mebibytes} MiB {where}: ./disc {ours:.3f} s, cp -r {peer:.3f} s, ratio {ratio:.2f}",
          flush=True)


def main():
    mebibytes, pairs = (int(word) for word in [*sys.argv[1:], *("100", "9")[len(sys.argv) - 1:]])
    with tempfile.TemporaryDirectory() as folder:
        measure(pathlib.Path(folder), mebibytes, pairs)
        measure(pathlib.Path(folder), mebibytes, pairs, drive=True)
        measure(pathlib.Path(folder), 0, pairs)


main()
