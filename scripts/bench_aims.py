#!/usr/bin/env python3
"""Which aims of bench/aims.txt are met, and what a change has moved.

bench_aims.py BIN                             one page: each aim, its ratio now, met or missed
bench_aims.py BIN --against OLD [--rounds N]  the rows that moved between two builds of the benchmarks, beyond noise

BIN and OLD are folders with benchmark programs. For the comparison both builds run by turns, and each round compares the two runs that
stand side by side: a row has moved when the median of its rounds is off by more than 2% and by more than three times what the
rounds differ among themselves. The machine may be busy with other work; what disturbs one run only widens that.
"""

import argparse
import fnmatch
import pathlib
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def aims():
    rows = []
    for line in (ROOT / "bench" / "aims.txt").read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            aim, *rest = (part.strip() for part in line.split("|"))
            rows.append((float(aim), *rest, *[None] * (4 - len(rest))))
    return rows


def run(folder, program, repetitions):
    """{ (table, case): (nanoseconds, ratio, { what was counted: how many }) } as the program prints it."""
    command = [pathlib.Path(folder) / program, f"--benchmark_repetitions={repetitions}", "--benchmark_min_time=0.02",
               "--benchmark_filter=-growth"]
    done = subprocess.run(command, check=True, capture_output=True, text=True)
    rows, table = {}, None
    for line in done.stdout.splitlines():
        parts = [part.strip() for part in line.strip("|").split("|")]
        if not line.startswith("|") or parts[0].startswith("---"):
            continue
        if parts[1:3] == ["ns", "ratio"]:
            table = parts[0]
        else:
            counted = dict(reversed(count.split(" ", 1)) for count in parts[3].split(", ") if count)
            rows[table, parts[0]] = float(parts[1]), float(parts[2]), counted
    return rows


def page(folder):
    missed = 0
    measured = {}
    print("| path | aim | now | |\n|---|---|---|---|")
    for aim, program, table, case, counter in aims():
        if program not in measured:
            measured[program] = run(folder, program, 5)
        fitting = [key for key in measured[program] if fnmatch.fnmatchcase(key[0], table) and key[1] == case]
        if not fitting:
            sys.exit(f"bench_aims.py: {program} has no table {table} with a case {case}")
        for key in fitting:
            _, now, counted = measured[program][key]
            if counter:
                now = float(counted[counter])
            missed += now > aim
            name = f"{key[0]}: {case}{', ' + counter if counter else ''}"
            print(f"| {name} | {aim:g} | {now:.2f} | {'met' if now <= aim else 'missed'} |")
    print(f"\n{missed} missed" if missed else "\nall met")


def compare(folder, old, rounds):
    moved = []
    for program in sorted({row[1] for row in aims()}):
        quotients = {}
        for number in range(rounds):
            pair = (folder, old) if number % 2 else (old, folder)  # neither is always the first
            result = {build: run(build, program, 3) for build in pair}
            for key in result[folder].keys() & result[old].keys():
                quotients.setdefault(key, []).append(result[folder][key][0] / max(result[old][key][0], 0.05))
        for key, values in quotients.items():
            middle = statistics.median(values)
            spread = statistics.median(abs(value - middle) for value in values)
            if abs(middle - 1) > max(0.02, 3 * spread):
                moved.append((middle, spread, program, *key))
    for middle, spread, program, table, case in sorted(moved):
        print(f"{(middle - 1) * 100:+6.1f}% +-{spread * 100:.1f}  {program}: {table}: {case}")
    print(f"{len(moved)} rows moved")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("bin")
    parser.add_argument("--against", metavar="OLD")
    parser.add_argument("--rounds", type=int, default=7)
    options = parser.parse_args()
    if options.against:
        compare(options.bin, options.against, options.rounds)
    else:
        page(options.bin)


main()
