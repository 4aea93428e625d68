#!/usr/bin/env python3
"""What gdb shows of the library's values.

Usage: printers_test.py PRINTERS PROGRAM; exit status 77 without gdb
"""
import shutil
import subprocess
import sys

# What is asked for in the frame of main, and what the answer holds.
SHOWN = [
    ("print text", '"four\\n"'),
    ("print prefix", "10.0.0.0/8"),
    ("print nowhere", "none"),
    ("print adjs", "Ldp::LdpAdjStatusColl"),
    ("print adjs", "1 references"),
    ("print *adjs.object_", "adjStatusCode = Ldp::holdTimerExpired"),
    ("print *adjs.object_", "10.0.0.1:7"),
    ("print map", '[41] = "forty-one"'),
    ("print map", "100 members"),
    ("print queue", "{[0] = 17, [1] = 18}"),
    ("call Vorn::dump( *adjs.object_ )", "\n      adjStatusCode = holdTimerExpired"),
]


def main() -> int:
    if not shutil.which("gdb"):
        print("no gdb here: not tested")
        return 77
    printers, program = sys.argv[1:]
    commands = ["set confirm off", "set print elements 0", f"source {printers}", "break shown", "run", "up"]
    broken = 0
    for asked, holds in SHOWN:
        run = subprocess.run(["gdb", "-nx", "-batch", *(word for command in [*commands, asked, "kill"] for word in ("-ex", command)),
                              program], capture_output=True, text=True)
        if holds not in run.stdout + run.stderr:
            broken += 1
            print(f"{asked}: no {holds!r} in", (run.stdout + run.stderr)[-600:])
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())
