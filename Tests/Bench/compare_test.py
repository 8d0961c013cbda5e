#!/usr/bin/env python3
"""Bench/compare.py with a command that answers prepared runs in place of the bench."""

import json
import pathlib
import subprocess
import sys
import tempfile

COMPARE = pathlib.Path(__file__).parents[2] / "Bench/compare.py"
# Writes the next of the runs in the file RUNS, of the groups that it is asked for.
FAKE = """
import json, sys
first, *rest = json.load(open("runs"))
json.dump([row for row in first if row["group"] in sys.argv[3:] or not sys.argv[3:]],
          open(sys.argv[2], "w"))
json.dump(rest, open("runs", "w"))
"""


def check(arguments, runs, code, printed=""):
    """Each run holds the ratios of the rows A a and B b, or of A a alone."""
    rows = [[{"group": group, "name": group.lower(), "peer_name": "peer", "ratio": ratio}
             for group, ratio in zip("AB", run)] for run in runs]
    (folder / "runs").write_text(json.dumps(rows))
    result = subprocess.run([sys.executable, COMPARE, *arguments, "--baseline", "table", "--json",
                             "new.json", "--", sys.executable, "-c", FAKE], cwd=folder,
                            capture_output=True, text=True, check=False)
    got = result.returncode, result.stdout, json.loads((folder / "runs").read_text())
    assert got == (code, printed, []), (arguments, runs, got, result.stderr)


with tempfile.TemporaryDirectory() as name:
    folder = pathlib.Path(name)
    new = "NEW    {} / peer: in no accepted table; --accept enters {}\n"
    check([], [[1, 2]], 1, new.format("a", "A") + new.format("b", "B"))
    check(["--accept"], [[1, 3], [9, 0.01], [1.1, 3]], 0)  # the medians
    check([], [[1.2, 3.2]], 0)
    # What one run finds right is not measured again.
    check([], [[1.3, 3.5], [1.2, 3.6], [9, 3.4]], 1, "WORSE  b / peer: 3.00 -> 3.40\n")
    check(["A"], [[1.5, 9], [1, 9]], 0)
    check(["--accept", "B"], [[9, 9]] * 3, 0)
    check([], [[1.1, 9.1]], 0)
    check([], [[1]], 1, "WORSE  b / peer: 9.00 -> gone\n")
    check(["--accept"], [[1]] * 3, 0)
    check([], [[1]], 0)
    check(["--accept"], [[0.005]] * 3, 0)  # a small ratio is held as closely as a large one
    check([], [[0.007], [0.0068], [0.009]], 1, "WORSE  a / peer: 0.0050 -> 0.0068\n")
