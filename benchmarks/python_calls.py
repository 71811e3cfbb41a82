#!/usr/bin/python3
"""Times calls for columns from Python beside the same calls in C++, in turn, and prints a table.

usage: python_calls.py COLUMN_CALLS DATA

COLUMN_CALLS is the program of that name, DATA the folder with the databases that dbapi_benchmarks has made on SQLite.
The package dbapi has to be found (PYTHONPATH). Ends with 1 when a target is missed. A result is released after its time
was taken, on both sides.
"""

import statistics
import subprocess
import sys
import time
from pathlib import Path

import dbapi

TURNS = 9


class Peer:
    """The C++ program, which keeps its connection open between calls as Python does."""

    def __init__(self, program):
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def seconds(self, fields):
        self.process.stdin.write("\t".join(str(field) for field in fields) + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline()
        if not answer:
            raise SystemExit("the C++ program failed")
        return float(answer)


def seconds_of(calls, run):
    passed = 0.0
    for _ in range(calls):
        start = time.perf_counter()
        result = run()
        passed += time.perf_counter() - start
        del result
    return passed / calls


def compare(peer, database, keywords, query, order, limit, calls, run):
    """The medians of the seconds of a call in Python and in C++."""
    fields = [order or "none", limit, calls, database, query, *keywords]
    ours, theirs = [], []
    for turn in range(TURNS + 1):
        python, cpp = seconds_of(calls, run), peer.seconds(fields)
        if turn > 0:
            ours.append(python)
            theirs.append(cpp)
    return statistics.median(ours), statistics.median(theirs)


def rows(peer, data):
    points, devices = str(data / "points10000000.library.db"), str(data / "devices1000000.library.db")
    sweeps, population = dbapi.connect(points), dbapi.connect(devices)
    name = str(population.values("$DEVNAME", limit=1, order="stored")["$DEVNAME"][0])
    one = "$DEVNAME=" + name
    small = compare(
        peer, devices, ["VTH"], one, "sorted", -1, 2000, lambda: population.values("VTH", query=one)["VTH"]
    )
    yield "the same small call again", small, small[0] - small[1], 25e-6, lambda value: f"{1e6 * value:.1f} us more"
    large = compare(peer, points, ["IB"], "", None, -1, 1, lambda: sweeps.values("IB", order=None)["IB"])
    yield "one setup key, 4.9 million values", large, large[0] / large[1], 1.05, lambda value: f"{value:.2f}"
    asked = ["$DEVNAME", "$TEMP", "VG", "VD", "VB", "ID", "IB"]
    frame = compare(
        peer,
        points,
        asked,
        "",
        "stored",
        107_000,
        1,
        lambda: sweeps.values(*asked, order="stored", limit=107_000).to_pandas(),
    )
    yield "DataFrame of 107,000 rows by 7 keywords", frame, frame[0] / frame[1], 1.5, lambda value: f"{value:.2f}"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.strip())
    missed = False
    print("| Call | Python | C++ | Python beside C++ | target | |\n|---|---|---|---|---|---|")
    data = max(Path(sys.argv[2]).glob("version*"))
    for title, (ours, theirs), figure, target, text in rows(Peer(sys.argv[1]), data):
        missed = missed or figure > target
        verdict = "**MISSED**" if figure > target else "ok"
        print(f"| {title} | {1e3 * ours:.4g} ms | {1e3 * theirs:.4g} ms | {text(figure)} | <= {text(target)} | {verdict} |")
    sys.exit(1 if missed else 0)


if __name__ == "__main__":
    main()
