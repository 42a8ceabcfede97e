#!/usr/bin/env python3
"""Reads the JSON of kelroots_benchmarks and prints a Markdown table: ours beside the best peer, and what we aim at.

The time of a benchmark is the median of its repetitions. The exit status is 1 where a row misses its aim.
"""

import json
import statistics
import sys

OURS = "KelRoots"

# At most so many times the best peer; a text is an absolute limit in nanoseconds. One value serves all sizes.
AIMS = {
    "construct from wide text": {8: 1.6, 40: 1.2, 1000: 0.22, 65536: 0.20},
    "copy": 0.4,
    "assign a shared body, twice": 0.7,
    "length": {8: 1.5, 1000: 0.4, 65536: 0.35, 1000000: 0.65},
    "equal texts": 1.4,
    "compare, different at once": "3 ns",
    "compare, shared body": "3 ns",
    "find, hit at the end": {1000: 0.35, 65536: 0.27, 1000000: 0.25},
    "find, odd unit first": 2,
    "find, odd unit in the middle": 2,
    "find, odd unit last": 2,
    "find_last_of, hit at the start": {16: 1.6, 1000: 0.13, 65536: 0.12, 1000000: 0.16},
    "operator+": {16: 1.1, 1000: 1.8, 65536: 2.5},
    "left half": {16: 2, 1000: 2.4, 65536: 3.2},
    "middle half": {16: 2, 1000: 2.4, 65536: 3.2},
    "right half": {16: 2, 1000: 2.4, 65536: 3.2},
    "replace a character": {16: 4.5, 1000: 0.3, 65536: 0.25, 1000000: 0.4},
    "replace texts in 1,000 units, occurrences": {1: 0.35},
    "replace texts in 10,000 units, occurrences": {1: 0.35, 1000: 1},
    "replace texts in 1,000,000 units, occurrences": {1: 0.35, 1000: 1, 100000: 1.1},
    "replace texts against two copies, occurrences": 3,
    "removeAll": {16: 1.8, 1000: 0.7, 65536: 0.6, 1000000: 0.2},
    "trim 3 blanks at both ends": {20: 2.6, 1000: 1.3, 65536: 1.1},
    "trim a quarter at both ends": {20: 2.6, 1000: 1.3, 65536: 1.1},
    "toUpper": 1.1,
    "strRev": 0.8,
    "format %s-%d-%08x": 2,
    "integer to text": 1.8,
    "double to text, digits": 1.4,
    "getStringA, first": {16: 1.2, 1000: 1, 65536: 0.9},
    "getStringA, first, accented": {16: 1.2, 1000: 1, 65536: 0.9},
    "getStringA, cached": "2 ns",
    "from 8-bit text": {10: 1.6, 1000: 1.5, 100000: 2.1},
    "from 8-bit text, accented": {10: 1.6, 1000: 1.5, 100000: 2.1},
    "array append": 1.1,
    "array append, room preset": 1.1,
    "array setAt, length preset": 1.1,
    "getTokens": {1000: 3, 1000000: 1.7},
    "getTokens against QString": 1,
    "getTokens with quotes": {1000: 1.5, 1000000: 1.2},
    "sort strings": 1.3,
    "bsearch in strings": 0.9,
    "tree insert": {1000: 1.5, 100000: 1.3, 1000000: 1.6},
    "tree search": {1000: 1.1, 100000: 2.4, 1000000: 3},
    "getNextNumber": 0.5,
    "log line": 1.3,
    "read a setting, values in the key": 3,
    "read a setting of an open key, values in the key": 1.5,
    "write a setting, values in the key": 2,
    "increment, digits": 0.5,
    "increment, letters": 0.5,
    "increaseProgress": 3,
    "QuadraticSolver": 2,
    "CubicSolver": 1,
    "QuarticSolver": 1.6,
    "match, short pattern": 1.1,
    "match, long pattern": 1.1,
    "match, long literal": 1.25,
    "match, long text": 1.1,
    "match, one class": 1.1,
    "addTime": "20 ns",
    "difference of times in seconds": "20 ns",
    "difference of times in days": "20 ns",
}


def read_times(path):
    """(work, size) -> library -> median of the processor time in ns, in the order of the file."""
    runs = {}
    with open(path, encoding="utf-8") as file:
        for run in json.load(file)["benchmarks"]:
            if run["run_type"] == "iteration":
                runs.setdefault(run["run_name"], []).append(run["cpu_time"])
    times = {}
    for name, values in sorted(runs.items()):
        work, library, size = name.rsplit("/", 2)
        times.setdefault((work, int(size)), {})[library] = statistics.median(values)
    return times


def aim_of(work, size):
    aim = AIMS.get(work)
    return aim.get(size) if isinstance(aim, dict) else aim


def row_of(work, size, by_library):
    """The cells of a row, and whether it misses its aim."""
    ours = by_library[OURS]
    peers = {library: time for library, time in by_library.items() if library != OURS}
    best = min(peers, key=peers.get) if peers else None
    aim = aim_of(work, size)
    missed = False
    if isinstance(aim, str):
        missed = ours > float(aim.split()[0])
    elif aim is not None and best:
        missed = ours / peers[best] > aim
    cells = [
        work,
        f"{size:,}" if size else "",
        f"{ours:,.1f}",
        f"{peers[best]:,.1f} ({best})" if best else "",
        f"{ours / peers[best]:.2f}" if best else "",
        str(aim) if aim is not None else "",
        "missed" if missed else "",
    ]
    return cells, missed


def main():
    times = read_times(sys.argv[1])
    order = {work: i for i, work in enumerate(AIMS)}
    rows = sorted(times, key=lambda key: (order.get(key[0], -1), key))
    missed = 0
    print("| Work | Size | Ours, ns | Best peer, ns | Ratio | At most | |")
    print("|---|--:|--:|--:|--:|--:|---|")
    for work, size in rows:
        if OURS not in times[work, size]:
            continue
        cells, misses = row_of(work, size, times[work, size])
        missed += misses
        print("| " + " | ".join(cells) + " |")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
