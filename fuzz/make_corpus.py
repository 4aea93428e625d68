#!/usr/bin/env python3
"""Makes the seed corpora: fuzz/corpus/{PduFuzz,MessageFuzz,FecTlvFuzz,TextFuzz,CaptureFuzz,ReentryFuzz}. LeanFuzz and
TraceFuzz take the inputs of PduFuzz.

One part is cut from tests/captures: of PDUs that differ in nothing but their values one is taken. The other part are the good
messages, PDUs, FECs and texts of the tests' tables (tests/decode/lengths.txt and verdicts.txt, tests/model/texts.txt). Run it
again after a change there; it writes what no input holds yet and removes nothing.
"""

import os
import random
import re
import struct
import sys
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
TESTS = os.path.join(HERE, os.pardir, "tests")
sys.path.insert(0, os.path.join(TESTS, "support"))

import ldpcap
from ldpcap import CAPTURES, PORT, frames, ip_packet, messages, pdu, pdus, segment, tlv, units

MOST_PER_CAPTURE = 40
LARGEST = 1500  # octets of a PDU from a capture

# The classes of MessageFuzz.cpp, in their order: index into it by message type.
CLASSES = [None, 0x100, 0x200, 0x202, 1, 0x300, 0x301, 0x400, 0x401, 0x402, 0x403, 0x404]


# Captures --------------------------------------------------------------------------------------------------------


def payload(link, frame):
    """The UDP or TCP payload of a frame on the protocol's port."""
    packet = ip_packet(link, frame)
    found = segment(packet) if packet else None
    return found.payload if found and PORT in (found.sport, found.dport) else b""


def shape(message):
    """What a parser could tell apart: types, lengths, and the first octet of each value."""
    return (message[:2],) + tuple((tlv[:4], tlv[4:5]) for tlv in units(message[8:]))


def captured():
    """Names and PDUs, one of each shape; of a PDU with many messages the first of each shape."""
    seen = set()
    for name in sorted(os.listdir(CAPTURES)):
        if not name.endswith(".pcap"):
            continue
        taken = 0
        link, found = frames(os.path.join(CAPTURES, name))
        for frame in found:
            for whole in pdus(payload(link, frame)):
                fresh = []
                for one in messages(whole):
                    if shape(one) not in seen:
                        seen.add(shape(one))
                        fresh.append(one)
                body = b"".join(fresh)
                if not fresh or len(body) > LARGEST or taken == MOST_PER_CAPTURE:
                    continue
                taken += 1
                yield "%s-%02d" % (name[:-5], taken), struct.pack("!HH", 1, len(body) + 6) + whole[4:10] + body


# Tables of the tests ---------------------------------------------------------------------------------------------


def table(*path):
    """The lines of a table, without its comments."""
    with open(os.path.join(TESTS, *path), encoding="ascii") as file:
        return [line.rstrip("\n") for line in file if line.strip() and line[0] != "#"]


def enumerators(name):
    for line in table("decode", "expected", "enums.txt"):
        if line.startswith("enum Ldp::%s " % name):
            return {word.split("=")[0]: int(word.split("=")[1], 0) for word in line.split()[2:]}
    raise KeyError(name)


def octets_of(text):
    """Hexadecimal, in which `01*16` is an octet 16 times."""
    return bytes.fromhex(re.sub(r"([0-9a-f]{2})\*(\d+)", lambda found: found[1] * int(found[2]), text).replace(",", ""))


def good_messages():
    """Names and octets of the messages of lengths.txt."""
    kinds, types, found = enumerators("LdpMsgType"), enumerators("LdpTlvType"), []
    for line in table("decode", "lengths.txt"):
        if line[0] != " ":
            name, kind = line.split(" | ")
            found.append((name, kinds[kind], []))
        elif "=" in line:
            kind, value = line.strip().split("=")
            flags = 0x8000 if kind[0] == "U" else 0
            found[-1][2].append(tlv(flags | types[kind.lstrip("U")], octets_of(value)))
    return [(name, ldpcap.message(kind, 7, *tlvs)) for name, kind, tlvs in found]


def verdict_rows(section):
    """Names and second columns of a section of verdicts.txt."""
    at = None
    for line in table("decode", "verdicts.txt"):
        if "|" not in line:
            at = line.split()[0]
        elif at == section:
            yield [column.strip() for column in line.split("|")[:2]]


def texts():
    for line in table("model", "texts.txt"):
        if line[0] == "+":
            yield line[2:]


# The kinds of capture of CaptureFuzz.cpp by link type, and a whole file.
CAPTURE_KINDS = {1: 0, 113: 1}
WHOLE_FILE = 0x80


def capture_inputs():
    """The first frames of each capture with LDP in them, for the monitor and for lines; one whole file."""
    for name in sorted(os.listdir(CAPTURES)):
        if not name.endswith(".pcap"):
            continue
        link, found = frames(os.path.join(CAPTURES, name))
        kept = [frame for frame in found if payload(link, frame)][:30]
        body = b"".join(struct.pack("!BH", 1, len(frame)) + frame for frame in kept if len(frame) <= LARGEST)
        for reader in (2, 4):
            yield "%s-%d" % (name[:-5], reader), bytes([reader, CAPTURE_KINDS[link]]) + body
    with open(os.path.join(CAPTURES, "any-sll.pcap"), "rb") as file:
        yield "whole-file", bytes([5, WHOLE_FILE]) + file.read()[:8000]


def write(target, name, octets):
    """A new input, unless there is one of the same octets."""
    folder = os.path.join(HERE, "corpus", target)
    os.makedirs(folder, exist_ok=True)
    for entry in os.scandir(folder):
        if entry.stat().st_size == len(octets):
            with open(entry.path, "rb") as file:
                if file.read() == octets:
                    return
    path = os.path.join(folder, re.sub(r"[^a-z0-9]+", "-", name.lower()).strip("-"))
    with open("%s-%08x" % (path, zlib.crc32(octets)) if os.path.exists(path) else path, "wb") as file:
        file.write(octets)


def message_input(octets):
    kind = struct.unpack_from("!H", octets)[0] & 0x7FFF
    return bytes([CLASSES.index(kind) if kind in CLASSES else 0, 0]) + octets


def main():
    seen = set()
    for name, octets in captured():
        write("PduFuzz", "capture-" + name, b"\0" + octets)
        for index, one in enumerate(messages(octets)):
            for fec in units(one[8:]):
                if fec[:2] == b"\1\0" and (fec[2:5], fec[8:10]) not in seen:
                    seen.add((fec[2:5], fec[8:10]))
                    write("FecTlvFuzz", "capture-%s-%d" % (name, index), b"\0" + fec)
    good = good_messages()
    write("PduFuzz", "all-messages", b"\0" + pdu(*(octets for _, octets in good)))
    for name, octets in good:
        write("PduFuzz", name, b"\0" + pdu(octets))
        write("MessageFuzz", name, message_input(octets))
    for name, text in verdict_rows("pdu"):
        before, _, octets = text.rpartition(">")
        before = octets_of(before)
        write("PduFuzz", "pdu " + name, bytes([len(before)]) + before + octets_of(octets))
    for name, text in verdict_rows("fec"):
        write("FecTlvFuzz", name, b"\0" + tlv(0x100, octets_of(text)))
    for name, octets in capture_inputs():
        write("CaptureFuzz", name, octets)
    for text in texts():
        write("TextFuzz", "text " + text, text.encode())
    for seed in range(4):
        write("ReentryFuzz", "choices-%d" % seed, random.Random(seed).randbytes(1000))


if __name__ == "__main__":
    main()
