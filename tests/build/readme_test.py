#!/usr/bin/env python3
"""The programs that pages show are those that the suite builds and runs. readme_test.py ROOT"""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])


def shown(page):
    return re.findall(r"```cpp\n(.*?)```", (root / page).read_text(), re.S)


def example(name):
    return (root / "examples" / name).read_text()


for page, examples in {"README.md": ["twenty.cpp"], "docs/library.md": ["decode_buffer.cpp", "mirror_state.cpp"]}.items():
    if shown(page) != [example(name) for name in examples]:
        sys.exit(f"{page} does not show {' and '.join(examples)} as they are")
excerpts = shown("docs/agent.md")
for excerpt in excerpts:
    if excerpt not in example("agent.cpp"):
        sys.exit(f"docs/agent.md shows what examples/agent.cpp does not have:\n{excerpt}")
if not excerpts:
    sys.exit("docs/agent.md shows nothing")
