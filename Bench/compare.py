#!/usr/bin/env python3
"""Measures, and tells which rows got worse than in the last accepted table; ./bench calls it.

  compare.py [--accept] [--baseline FILE] [--json FILE] [GROUP...] -- COMMAND...

COMMAND measures; it is given --json FILE GROUP... as well. Exit code: 0: no row got worse, 1: some
did, or the accepted table lacks one; any other: COMMAND's own.

A row is worse when each of three runs finds its ratio more than a tenth above the accepted one.
What disturbs a run seldom hits the same row three times, slower code is slower each time; going by
the median of three, a table of a hundred rows would often raise a false alarm. It is quick, too:
only groups that are still under suspicion are measured again. A row that is no longer there counts
as worse, and so do those of a whole group. One that the accepted table does not have could get
worse and nobody would see it: that is a failure too, until it is accepted.

--accept makes the medians of three runs the accepted table, or its part of the groups measured. It
holds nothing but ratios to the peers, which depend less on the machine than times do.
"""

import argparse
import json
import math
import pathlib
import statistics
import subprocess
import sys

RUNS = 3
WORSE = 1.1
LAST_DIGIT = 0.001  # of the accepted ratios: no more than that above is not worse


def measure(command, table, groups):
    """Runs the command; the ratios by group, then by measure and peer."""
    code = subprocess.run([*command, "--json", table, *groups]).returncode
    if code:
        sys.exit(code)
    ratios = {}
    for row in json.loads(table.read_text()):
        ratios.setdefault(row["group"], {})[f"{row['name']} / {row['peer_name']}"] = row["ratio"]
    return ratios


def worse_rows(accepted, runs, groups):
    """(group, row, accepted ratio, best ratio) of what all runs that measured its group find worse."""
    found = []
    for group in groups or accepted:
        for row, old in accepted.get(group, {}).items():
            best = min((run[group].get(row, math.inf) for run in runs if group in run),
                       default=math.inf)
            if best > max(old * WORSE, old + LAST_DIGIT):
                found.append((group, row, old, best))
    return found


def shown(ratio):
    return "gone" if ratio == math.inf else f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.4f}"


def suspects(accepted, runs):
    """The groups to be measured again."""
    return sorted({group for group, *_ in worse_rows(accepted, runs, list(runs[0]))})


def accept(accepted, runs):
    """The accepted table with the medians of the runs, which measured the same groups."""
    def median(group, row):
        return float(f"{statistics.median(run[group][row] for run in runs):.4g}")

    medians = {group: {row: median(group, row) for row in rows} for group, rows in runs[0].items()}
    return dict(sorted({**accepted, **medians}.items()))


def main():
    end = sys.argv.index("--")
    here = pathlib.Path(__file__).parent
    parser = argparse.ArgumentParser()
    parser.add_argument("--accept", action="store_true")
    parser.add_argument("--baseline", type=pathlib.Path, default=here / "baseline.json")
    parser.add_argument("--json", type=pathlib.Path, default=here.parent / "build/bench.json")
    parser.add_argument("groups", nargs="*")
    args = parser.parse_args(sys.argv[1:end])
    command = sys.argv[end + 1 :]

    accepted = json.loads(args.baseline.read_text()) if args.baseline.exists() else {}
    runs = [measure(command, args.json, args.groups)]
    again = args.json.with_suffix(".again.json")
    while len(runs) < RUNS and (args.accept or suspects(accepted, runs)):
        runs.append(measure(command, again, args.groups if args.accept else suspects(accepted, runs)))
    if args.accept:
        table = accept(accepted if args.groups else {}, runs)
        args.baseline.write_text(json.dumps(table, indent=2) + "\n")
        return 0
    worse = worse_rows(accepted, runs, args.groups)
    for _, row, old, best in worse:
        print(f"WORSE  {row}: {shown(old)} -> {shown(best)}")
    new = [(group, row) for group, rows in runs[0].items() for row in rows
           if row not in accepted.get(group, {})]
    for group, row in new:
        print(f"NEW    {row}: in no accepted table; --accept enters {group}")
    return 1 if worse or new else 0


sys.exit(main())
