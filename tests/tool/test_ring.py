"""ldptool ring, on ring files that are written here after docs/ring-trace.md, not by the library."""

import json
import os
import struct
import subprocess
import sys
import tempfile
import unittest

from ldptool import *

READER = os.path.join(os.path.dirname(__file__), "../../examples/python/read_ring.py")
TICKS = 2_000_000_000  # a second; so a tick is half a nanosecond
START = 1_700_000_000_000_000_000
BLOCK = 256


def text(s):
    return s.encode() + b"\0"


def description(kind, body):
    return struct.pack("=HB", 3 + len(body), kind) + body


def site(number, items, line=10, level=6, opens=False, file="LdpHdr", function="validate"):
    return description(1, struct.pack("=BBHI", level, opens, number, line) + text(file) + text(function) + items)


def block(sequence, records, writer=1, start=0, used=None):
    used = 32 + len(records) if used is None else used
    return (struct.pack("=QQQII", sequence, 1000 + 2 * start, START + start, writer, used) + records).ljust(BLOCK, b"\0")


def timed(number, nanoseconds, arguments=b"", closes=False):
    return struct.pack("=HQ", number | 0x4000 | (0x8000 if closes else 0), 1000 + 2 * nanoseconds) + arguments


def untimed(number, arguments=b""):
    return struct.pack("=H", number) + arguments


def ring(descriptions, *blocks):
    room = 1024
    header = b"SKEIN\r\n\x1a" + struct.pack("=IIIIQQQQQ", 1, 0x01020304, 4711, BLOCK, TICKS, 64, len(descriptions),
                                            64 + room, len(blocks))
    return header + descriptions.ljust(room, b"\0") + b"".join(blocks)


FUNCTION = site(1, b"\1" + text("[") + b"\3\1" + text("] P::parse() "), opens=True, level=8, function="parse")
UNIT = site(2, b"\1" + text("   unit ") + b"\4\1" + text(" is ") + b"\x09\0\0", line=20, function="parse")
ENUMERATION = description(2, struct.pack("=BH", 0, 0) + text("Ldp::X") + struct.pack("=I", 5) + text("five"))
RECORDS = (timed(1, 100, struct.pack("=H", 1)) + untimed(2, struct.pack("=II", 7, 5)) +
           untimed(1, struct.pack("=H", 2)) + untimed(2, struct.pack("=II", 8, 6)) + timed(1, 350, closes=True) +
           timed(1, 1100, closes=True))


class Ring(unittest.TestCase):
    def ring(self, octets, *options):
        """The result of ldptool ring on a file of those octets, FILE standing for its name."""
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "ring")
            with open(path, "wb") as f:
                f.write(octets)
            result = subprocess.run([os.environ["LDPTOOL"], "ring", *options, path], capture_output=True, text=True)
            self.compare(path)
            return result.returncode, result.stdout, result.stderr.replace(path, "FILE")

    def compare(self, path):
        """The reader that was written from docs/ring-trace.md alone says the same of the file."""
        theirs = subprocess.run([sys.executable, READER, path], capture_output=True, text=True)
        ours = subprocess.run([os.environ["LDPTOOL"], "ring", "--json", path], capture_output=True, text=True)
        self.assertEqual(theirs.returncode != 0, ours.returncode != 0, theirs.stderr)
        self.assertEqual([json.loads(line) for line in theirs.stdout.splitlines()], [json.loads(line) for line in ours.stdout.splitlines()])
        if not ours.returncode:
            self.assertEqual(theirs.stderr, ours.stderr.partition(path + ": ")[2])

    def test_lines(self):
        status, out, err = self.ring(ring(FUNCTION + UNIT + ENUMERATION, block(2, b""), block(1, RECORDS)))
        self.assertEqual((status, err), (0, ""))
        self.assertEqual(out.splitlines(), [
            "Ring trace of process 4711",
            "2023-11-14T22:13:20.000000100Z LdpHdr:10                   [1] P::parse() ",
            "                               LdpHdr:20                        unit 7 is five",
            "                               LdpHdr:10                     [2] P::parse() ",
            "                               LdpHdr:20                          unit 8 is 6",
            "2023-11-14T22:13:20.000000350Z LdpHdr:10                     end of [2] P::parse() took at most 250 ns",
            "2023-11-14T22:13:20.000001100Z LdpHdr:10                   end of [1] P::parse() took 1000 ns"])

    def test_last(self):
        octets = ring(FUNCTION + UNIT + ENUMERATION, block(2, b""), block(1, RECORDS))
        _, out, _ = self.ring(octets, "--last", "2")
        self.assertEqual([line.split()[2:5] for line in out.splitlines()[1:]], [["end", "of", "[2]"], ["end", "of", "[1]"]])

    def test_json(self):
        status, out, _ = self.ring(ring(FUNCTION + UNIT + ENUMERATION, block(2, b""), block(1, RECORDS)), "--json")
        objects = [json.loads(line) for line in out.splitlines()]
        self.assertEqual(status, 0)
        self.assertEqual([o["kind"] for o in objects], ["open", "message", "open", "message", "close", "close"])
        self.assertEqual(objects[1], {
            "time": "2023-11-14T22:13:20.000000100Z", "timed": False, "kind": "message", "thread": 1, "depth": 1,
            "file": "LdpHdr", "line": 20, "function": "parse", "level": 6, "text": "   unit 7 is five"})
        self.assertEqual((objects[4]["tookAtMost"], objects[5]["took"]), (250, 1000))

    def test_every_item(self):
        items = (b"\2\1" + text(" ") + b"\3\1" + text(" ") + b"\4\1" + text(" ") + b"\5\1" + text(" ") + b"\6\1" + text(" ") +
                 b"\7\1" + text(" ") + b"\x08\1" + text(" ") + b"\x0a\1" + text(" ") + b"\x0b\1" + text(" ") + b"\x0c\1" + text(" ") +
                 b"\x0d\1" + text(" ") + b"\x0e\2" + b"\0\1" + text("no") + b"\0" + b"\1\2\0" + b"\1" + text("."))
        arguments = (struct.pack("=BHIQiqB", 255, 65535, 2 ** 32 - 1, 2 ** 64 - 1, -1, -2 ** 63, 1) +
                     struct.pack("=H3s", 3, b"a\n\\") + struct.pack("=H2s", 0x8002, b"\0\xff") + bytes([10, 0, 0, 1]) +
                     bytes([0x20, 1] + 13 * [0] + [9]) + b"\1\x2a")
        _, out, err = self.ring(ring(site(1, items), block(2, b""), block(1, timed(1, 0, arguments))), "--json")
        self.assertEqual(err, "")
        self.assertEqual(json.loads(out)["text"], "255 65535 4294967295 18446744073709551615 -1 -9223372036854775808 1 a\\x0a\\ "
                                                  "\\x00\\xff... 10.0.0.1 2001::9 42.")

    def test_order_and_threads(self):
        one = site(1, b"\2")
        _, out, _ = self.ring(ring(one, block(6, timed(1, 60, b"\6"), 2, 60), block(4, b"", 1, 40),
                                   block(5, timed(1, 50, b"\5"), 7, 50)))
        self.assertEqual([line.split()[1:] for line in out.splitlines()[1:]],
                         [["#7", "LdpHdr:10", "5"], ["#2", "LdpHdr:10", "6"]])

    def test_what_cannot_be_read_is_left_out(self):
        good = site(1, b"\2")
        note = "ldptool: FILE: left out what could not be read in 1 place(s)\n"
        for name, descriptions, blocks in (
                ("unknown site", good, [block(2, b""), block(1, timed(1, 0, b"\1") + timed(9, 0) + timed(1, 0, b"\2"))]),
                ("record cut short", good, [block(2, b""), block(1, timed(1, 0, b"\1") + untimed(1))]),
                ("used beyond the block", good, [block(2, timed(1, 0, b"\1")), block(1, b"", used=BLOCK + 1)]),
                ("sequence in the wrong place", good, [block(1, b""), block(3, timed(1, 0, b"\1"))]),
                ("descriptions cut short", good + b"\xff\0", [block(2, b""), block(1, timed(1, 0, b"\1"))])):
            with self.subTest(name):
                status, out, err = self.ring(ring(descriptions, *blocks))
                self.assertEqual((status, err), (0, note))
                self.assertEqual([line.split()[-1] for line in out.splitlines()[1:]], ["1"])

    def test_no_ring(self):
        good = ring(b"", block(2, b""), block(1, b""))
        for octets, reason in ((b"", "no ring trace"), (b"GIF89a", "no ring trace"), (good[:40], "a ring trace cut short"),
                               (good[:-1], "a ring trace whose blocks lie outside of the file")):
            self.assertEqual(self.ring(octets), (2, "", f"ldptool: FILE: {reason}\n"))
        result = subprocess.run([os.environ["LDPTOOL"], "ring", "/nowhere/at all"], capture_output=True, text=True)
        self.assertEqual((result.returncode, result.stderr), (2, "ldptool: /nowhere/at all: No such file or directory\n"))
        self.assertEqual(subprocess.run([os.environ["LDPTOOL"], "ring"], capture_output=True).returncode, 2)


if __name__ == "__main__":
    unittest.main()
