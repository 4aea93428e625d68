#!/usr/bin/env python3
"""The README's example is the program that the suite builds and runs. readme_test.py ROOT"""

import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
example = (root / "examples/decode_buffer.cpp").read_text()
shown = re.findall(r"```cpp\n(.*?)```", (root / "README.md").read_text(), re.S)
if shown != [example]:
    sys.exit("README.md does not show examples/decode_buffer.cpp as it is")
