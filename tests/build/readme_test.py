#!/usr/bin/env python3
"""The README's examples are the programs that the suite builds and runs. readme_test.py ROOT"""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
examples = ["decode_buffer.cpp", "mirror_state.cpp"]
shown = re.findall(r"```cpp\n(.*?)```", (root / "README.md").read_text(), re.S)
if shown != [(root / "examples" / name).read_text() for name in examples]:
    sys.exit(f"README.md does not show {' and '.join(examples)} as they are")
