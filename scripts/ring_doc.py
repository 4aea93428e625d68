#!/usr/bin/env python3
"""Writes the sample of docs/ring-trace.md: what `ldptool ring` prints of examples/last_steps.

    scripts/ring_doc.py BINARIES docs/ring-trace.md           BINARIES: the folder with ldptool and last_steps
    scripts/ring_doc.py --check BINARIES docs/ring-trace.md   exit 1 if the page shows anything else but times
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

TIMES = re.compile(r"process \d+|\d{4}-\d\d-\d\dT[\d:.]+Z|took (at most )?\d+ ns")
BLOCK = re.compile(r"(?<=\n\n)    Ring trace of process .*?\n(?=\n)", re.S)


def sample(binaries):
    with tempfile.TemporaryDirectory() as folder:
        ring = os.path.join(folder, "ring")
        subprocess.run([binaries / "last_steps"], env=os.environ | {"SKFILE": ring}, stderr=subprocess.DEVNULL, check=False)
        lines = subprocess.run([binaries / "ldptool", "ring", ring], check=True, capture_output=True, text=True).stdout.splitlines()
    return "".join(f"    {line.rstrip()}\n" for line in lines)


def main():
    check = sys.argv[1] == "--check"
    binaries, page = map(pathlib.Path, sys.argv[-2:])
    text, made = page.read_text(), sample(binaries)
    (shown,) = BLOCK.findall(text)
    if check and TIMES.sub("", shown) != TIMES.sub("", made):
        sys.exit(f"{page} shows another ring trace than ldptool prints; `make ring-doc` writes it anew:\n{made}")
    if not check:
        page.write_text(text.replace(shown, made))


if __name__ == "__main__":
    main()
