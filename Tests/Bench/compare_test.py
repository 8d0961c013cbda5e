#!/usr/bin/env python3
"""Bench/compare.py with a command that answers prepared runs in place of the bench."""

import json
import pathlib
import subprocess
import sys
import tempfile

COMPARE = pathlib.Path(__file__).parents[2] / "Bench/compare.py"
# Writes the first of the runs in the file RUNS, and takes it from there; notes the groups asked for.
FAKE = """
import json, sys
runs = json.load(open("runs"))
open("asked", "a").write(" ".join(sys.argv[3:]) + ";")
json.dump([{"group": g, "name": n, "peer_name": "peer", "ratio": r} for g, n, r in runs[0]
           if g in sys.argv[3:] or not sys.argv[3:]], open(sys.argv[2], "w"))
json.dump(runs[1:], open("runs", "w"))
"""


def check(arguments, runs, code, asked, printed=""):
    """Each run holds the ratios of the rows A a, A b and B c; None: not there."""
    rows = [[r for r in zip("AAB", "abc", run) if r[2] is not None] for run in runs]
    (folder / "runs").write_text(json.dumps(rows))
    (folder / "asked").write_text("")
    command = [sys.executable, COMPARE, *arguments, "--baseline", "table", "--json", "new.json"]
    result = subprocess.run([*command, "--", sys.executable, "-c", FAKE], cwd=folder,
                            capture_output=True, text=True)
    got = result.returncode, (folder / "asked").read_text(), result.stdout
    assert got == (code, asked, printed), (arguments, runs, got, result.stderr)


with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    check([], [[1, 2, 3]], 0, ";", "NEW    a / peer\n" "NEW    b / peer\n" "NEW    c / peer\n")
    check(["--accept"], [[1, 0.01, 3], [9, 0.01, 3], [1.1, 0.01, 3]], 0, ";;;")
    accepted = {"A": {"a / peer": 1.1, "b / peer": 0.01}, "B": {"c / peer": 3}}
    assert json.loads((folder / "table").read_text()) == accepted
    check([], [[1.2, 0.019, 3.2]], 0, ";")
    worse = "WORSE  c / peer: 3.00 -> 3.40\n"
    check([], [[1, 0.01, 3.5], [1, 0.01, 3.6], [1, 0.01, 3.4]], 1, ";B;B;", worse)
    # What one run finds right is not measured again.
    check([], [[1.3, 0.01, 3.5], [1.2, 0.01, 3.6], [1, 9, 3.4]], 1, ";A B;B;", worse)
    check(["A"], [[1, 0.5, 9], [1, 0.01, 9]], 0, "A;A;")
    gone = "WORSE  b / peer: 0.01 -> gone\n"
    check([], [[1, None, 3]] * 3, 1, ";A;A;", gone)
    # A part of the table is accepted alone.
    check(["--accept", "B"], [[9, 9, 9]] * 3, 0, "B;B;B;")
    accepted["B"]["c / peer"] = 9
    assert json.loads((folder / "table").read_text()) == accepted
