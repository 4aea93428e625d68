#!/usr/bin/env python3
"""What the shared library shows to others: soname, needed libraries, exported symbols.

exports.py LIBRARY INCLUDE: INCLUDE is the folder of public headers; its folders are the namespaces of the library.
"""

import pathlib
import re
import subprocess
import sys

SONAME = "libLdp.so.0"
# The C++ runtime and what it stands on: nothing else is asked of the machine that the library runs on.
NEEDED = re.compile(r"(libstdc\+\+|libm|libgcc_s|libc|ld-linux-[a-z0-9_-]+)\.so\.[0-9]+$")


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def main():
    library, include = sys.argv[1:]
    dynamic = output("readelf", "--dynamic", "--wide", library)
    wrong = []

    soname = re.findall(r"\(SONAME\).*\[(.*)\]", dynamic)
    if soname != [SONAME]:
        wrong.append(f"soname is {soname}, not {SONAME}")
    wrong += [f"needs {name}" for name in re.findall(r"\(NEEDED\).*\[(.*)\]", dynamic) if not NEEDED.match(name)]

    namespaces = "|".join(sorted(p.name for p in pathlib.Path(include).iterdir() if any(p.glob("*.h"))))
    ours = re.compile(rf"\b({namespaces})::|^Ldp_")
    ours_found = 0
    shown = set()
    for line in output("nm", "--dynamic", "--defined-only", "--demangle", library).splitlines():
        _, kind, symbol = line.split(maxsplit=2)
        if ours.search(symbol) and "(anonymous namespace)" not in symbol:
            ours_found += 1
            shown.add(symbol.split("(")[0])
        elif not (kind in "WVu" and re.search(r"\b(std|__gnu_cxx)::", symbol)):  # instances of standard templates
            wrong.append(f"exports {symbol}")
    if not ours_found:
        wrong.append("exports nothing of its own")
    # A factory is a function that stands in the library, so that a program can take its address.
    for header in pathlib.Path(include).glob("*/*.h"):
        for name in re.findall(r"^VORN_FACTORY\( \w+, (\w+) \)", header.read_text(), re.M):
            if f"{header.parent.name}::{name}" not in shown:
                wrong.append(f"does not export {header.parent.name}::{name}")

    print("\n".join(wrong) or f"{ours_found} exported symbols, all of the library's namespaces")
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
