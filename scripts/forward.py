#!/usr/bin/env python3
"""Writes include/Ldp/Fwd.h, the declarations of all classes of include/Ldp, from their headers.

forward.py [--check] FILE: with --check nothing is written, and FILE must be what would be written.
"""

import pathlib
import re
import sys

HEAD = """// Made by scripts/forward.py from the other headers of this folder (`make forward`); not to be edited.
/// \\file
/// The classes of this library by name, for a header that only holds a `Vorn::Ptr` to one, or names one in a
/// declaration. The source file that makes, uses or lets go of the object includes the class's own header.
#pragma once

#include "Vorn/Ptr.h"
"""


def classes(folder):
    """By namespace, the names of all classes that a header of the folder defines outside of other classes."""
    names = {}
    for path in sorted(folder.glob("*.h")):
        if path.name == "Fwd.h":
            continue
        namespace = before = ""
        for line in path.read_text().splitlines():
            if match := re.match(r"namespace (\w+) \{", line):
                namespace = match[1]
            elif not before.startswith("template") and (match := re.match(r"(class|struct) (?:VORN_API )?(\w+)(?: final)?(?: :.*)?(?: \{|$)", line)):
                names.setdefault(namespace, {})[match[2]] = match[1]
            before = line
    return names


def main():
    check = sys.argv[1:2] == ["--check"]
    target = pathlib.Path(sys.argv[-1])
    text = HEAD
    for namespace, found in sorted(classes(target.parent).items()):
        lines = "".join(f"{kind} {name};\n" for name, kind in sorted(found.items()))
        text += f"\nnamespace {namespace} {{\n\n{lines}\n}} // namespace {namespace}\n"
    if not check:
        target.write_text(text)
    elif target.read_text() != text:
        sys.exit(f"{target} is not what scripts/forward.py makes of the headers: make forward")


if __name__ == "__main__":
    main()
