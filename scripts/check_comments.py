#!/usr/bin/env python3
"""Whether include/Ldp is documented without a gap.

Reads what Doxygen says of undocumented things (standard input) and lets pass what a reader of the header would call documented: a comment
speaks for its paragraph, that is for the declarations below it down to the next blank line, and the comment of a class for the class's
constructors and first paragraph. The rest is printed, with exit status 1, and so is anything else that Doxygen warns of.
"""

import pathlib
import re
import sys

MEMBER = re.compile(r"(.*?):(\d+): (?:warning|error): Member (\S+?)(?:\(.*\))? .* is not documented\.$")
CLASS = re.compile(r" of (?:class|struct) (?:\w+::)*(\w+) is not documented\.$")
CONSTRUCTOR = re.compile(r".*: (?:warning|error): Member (\w+)\(.*\) .*of class (?:\w+::)*\1 is not documented\.$")
CLASS_HEAD = re.compile(r"\s*(template<.*>\s*)?(class|struct)\b.*\{$")
# What may stand between the head of a class and its first paragraph; of an entity also what is the same in all.
OPENING = re.compile(r"\s*((public|protected|private):|VORN_(OBJECT|ENTITY|VALUE|KEY|CTOR_TYPES|REFLECTED|REFLECTED_OBJECT)\(.*"
                     r"|VORN_NAME;|LDP_TLV_PARSER\(.*|using .*;|(explicit )?[A-Z]+[a-z]\w*\( .*|: \w+(::\w+)*\( .*|)$")
# What the first line of a paragraph stands below.
BOUNDARY = re.compile(f"{OPENING.pattern}|{CLASS_HEAD.pattern}|}}")


def undocumented_paragraph(lines, index):
    """The index of the first line of the paragraph that the line stands in, or None if a comment speaks for it."""
    first = index
    while not BOUNDARY.match(lines[first - 1]):
        first -= 1
    above = first - 1
    while OPENING.match(lines[above]):
        above -= 1
    spoken_for = CLASS_HEAD.match(lines[above]) or any("///" in line for line in lines[first:index + 1])
    return None if spoken_for else first


def place(lines, number, member, owner):
    """The index of a member's line. Doxygen's own numbers are off behind macros that take several lines."""
    begin = next((i for i, line in enumerate(lines) if owner and re.search(rf"\b(class|struct)\b.*\b{owner}\b.*{{$", line)), None)
    if begin is None:
        return number - 1
    return next((i for i in range(begin + 1, len(lines)) if re.search(rf"\b{re.escape(member)}\b", lines[i])), number - 1)


def main():
    gaps = set()
    for line in filter(None, map(str.strip, sys.stdin)):
        if CONSTRUCTOR.match(line):
            continue
        found = MEMBER.match(line)
        if not found:
            gaps.add(line)
            continue
        path, number, member = found.groups()
        owner = CLASS.search(line)
        lines = pathlib.Path(path).read_text().split("\n")
        first = undocumented_paragraph(lines, place(lines, int(number), member, owner and owner[1]))
        if first is not None:
            gaps.add(f"{path}:{first + 1}: no comment speaks for {lines[first].strip()}")
    for gap in sorted(gaps):
        print(gap)
    sys.exit(1 if gaps else 0)


if __name__ == "__main__":
    main()
