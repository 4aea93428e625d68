#!/usr/bin/env python3
"""Reads a ring trace without the library, as docs/ring-trace.md describes it: an object a line, as ldptool ring --json.

    examples/python/read_ring.py LdpAgent-4711.sk
"""

import datetime
import json
import sys

from octets import Octets, Refused

MAGIC, HEAD = b"SKEIN\r\n\x1a", 32
NUMBERS = {2: "B", 3: "H", 4: "I", 5: "Q", 6: "i", 7: "q"}
CLOCK, CLOSES, CUT = 1 << 14, 1 << 15, 1 << 15
CALL_SITE, ENUMERATION = 1, 2


def text(octets):
    """A run of octets with a zero behind it."""
    begin = octets.at
    while octets.number("B"):
        pass
    return bytes(octets.data[begin:octets.at - 1]).decode("latin-1")


def items(octets, ended):
    """What a message is made of: (code, what the description says more); to a code 0, or to the end."""
    found = []
    while ended or octets.left():
        code = octets.number("B")
        if code == 0 and ended:
            break
        more = None
        if code == 1:
            more = text(octets)
        elif code == 9:
            more = octets.number("H")
        elif code == 14:
            more = {}
            for _ in range(octets.number("B")):
                tag = octets.number("B")
                more[tag] = items(octets, True)
        elif not 2 <= code <= 13:
            raise Refused(f"item {code}")
        found.append((code, more))
    return found


class Ring:
    def __init__(self, data):
        self.data, self.damaged = memoryview(data), 0
        head = Octets(self.data)
        if head.left() < 8 or head.take(8) != MAGIC:
            raise Refused("this is no ring trace")
        version = head.take(4)
        head.order = "<" if bytes(head.take(4)) == b"\4\3\2\1" else ">"
        if Octets(version, head.order).number("I") != 1:
            raise Refused("this is a ring trace of another version")
        self.order, self.sites, self.enumerations = head.order, {}, {}
        self.process, self.size = head.number("I"), head.number("I")
        self.ticks = head.number("Q")
        self.describe(head.number("Q"), head.number("Q"))
        self.first, self.number = head.number("Q"), head.number("Q")
        if not self.ticks or not self.number or self.size < HEAD or self.first + self.number * self.size > len(data):
            raise Refused("what the header says cannot be")

    def octets(self, begin, size):
        return Octets(self.data[begin:begin + size], self.order)

    def describe(self, begin, size):
        octets = self.octets(begin, size)
        while octets.left():
            length = octets.number("H") if octets.left() >= 2 else 0
            if not 4 <= length <= octets.left() + 2:
                self.damaged += 1
                return
            try:
                self.description(Octets(octets.take(length - 2), self.order))
            except Refused:
                pass  # a site without its description: its records cannot be read

    def description(self, one):
        kind = one.number("B")
        if kind == CALL_SITE:
            site = {"level": one.number("B"), "opens": one.number("B") & 1}
            number, site["line"] = one.number("H"), one.number("I")
            site["file"], site["function"] = text(one), text(one)
            site["items"] = items(one, False)
            self.sites[number] = site
        elif kind == ENUMERATION:
            one.number("B")
            number = one.number("H")
            text(one)
            names = self.enumerations[number] = {}
            while one.left():
                value = one.number("I")
                names[value] = text(one)

    def shown(self, parts, octets):
        return "".join(self.item(code, more, octets) for code, more in parts)

    def item(self, code, more, octets):
        if code == 1:
            return more
        if code in NUMBERS:
            return str(octets.number(NUMBERS[code]))
        if code == 8:
            return str(octets.number("B"))
        if code == 9:
            number = octets.number("I")
            return self.enumerations.get(more, {}).get(number, str(number))
        if code in (10, 11):
            word = octets.number("H")
            said = bytes(octets.take(word & ~CUT))
            return "".join(chr(c) if code == 10 and 32 <= c < 127 else f"\\x{c:02x}" for c in said) + ("..." if word & CUT else "")
        if code in (12, 13):
            return octets.address(4 if code == 12 else 16)
        tag = octets.number("B")
        if tag not in more:
            raise Refused(f"alternative {tag}")
        return self.shown(more[tag], octets)

    def records(self):
        blocks = []
        for n in range(self.number):
            block = self.octets(self.first + n * self.size, self.size)
            sequence = block.number("Q")
            if sequence:
                blocks.append((sequence, n, block))
        blocks.sort(key=lambda one: one[0])
        open_blocks = {}
        for sequence, n, block in blocks:
            try:
                if sequence % self.number != n:
                    raise Refused("a block in the wrong place")
                yield from self.of_block(block, open_blocks)
            except Refused:
                self.damaged += 1

    def of_block(self, block, open_blocks):
        began, wall, thread, used = (block.number(code) for code in "QQII")
        if not HEAD <= used <= self.size:
            raise Refused("a block of another size")
        block.data = block.data[:used]
        open_here = open_blocks.setdefault(thread, [])
        last = wall
        while block.left():
            word = block.number("H")
            site = self.sites.get(word & (CLOCK - 1))
            if site is None:
                raise Refused("a site without a description")
            timed = bool(word & CLOCK)
            if timed:
                ticks = (block.number("Q") - began + 2**63) % 2**64 - 2**63  # of clocks that differ a little it may be negative
                last = wall + int(ticks * 1e9 / self.ticks)
            record = {"time": time_text(last), "timed": timed, "kind": "message", "thread": thread, "depth": len(open_here),
                      "file": site["file"], "line": site["line"], "function": site["function"], "level": site["level"]}
            if word & CLOSES:
                record |= {"kind": "close", "text": site["function"]}  # where what opened it is lost
                own = next((at for at in reversed(range(len(open_here))) if open_here[at][0] is site), None)
                if own is not None:
                    _, record["text"], since, exact = open_here[own]
                    del open_here[own:]
                    if last > since:
                        record["took" if exact else "tookAtMost"] = last - since
                record["depth"] = len(open_here)
            else:
                record["text"] = self.shown(site["items"], block)
                if site["opens"]:
                    record["kind"] = "open"
                    open_here.append((site, record["text"], last, timed))
            yield record


def time_text(nanoseconds):
    seconds = datetime.datetime.fromtimestamp(nanoseconds // 10**9, datetime.timezone.utc)
    return f"{seconds:%Y-%m-%dT%H:%M:%S}.{nanoseconds % 10**9:09}Z"


def main():
    with open(sys.argv[1], "rb") as file:
        ring = Ring(file.read())
    for record in ring.records():
        print(json.dumps(record))
    if ring.damaged:
        print(f"left out what could not be read in {ring.damaged} place(s)", file=sys.stderr)


if __name__ == "__main__":
    try:
        main()
    except Refused as why:
        sys.exit(f"{sys.argv[1]}: {why}")
