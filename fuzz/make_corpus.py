#!/usr/bin/env python3
"""Makes the seed corpora: fuzz/corpus/{PduFuzz,MessageFuzz,FecTlvFuzz,TextFuzz,CaptureFuzz}. LeanFuzz and TraceFuzz
take the inputs of PduFuzz.

One part is cut from tests/captures: of PDUs that differ in nothing but their values one is taken. The other part is
made by hand below, each input named by what it shows. Run it again after a change here; it writes over what it made
before and removes nothing.
"""

import os
import struct
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, os.pardir, "tests", "support"))

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


# By hand ---------------------------------------------------------------------------------------------------------


def message(kind, *parts, length=None):
    return ldpcap.message(kind, 7, *parts, length=length)


PREFIX = b"\2\0\1\x18\x0a\1\2"
PREFIX6 = b"\2\0\2\x40" + b"\x20\1\x0d\xb8\0\0\0\1"
HOST = b"\3\0\1\4\x0a\1\2\3"
PWID = b"\x80\x80\5\x1d\0\0\0\1\0\0\0\x64" + b"\1\4\5\xdc" + b"\3\5abc" + b"\6\4\0\x0a" + b"\x09\4\0\1" + b"\x0c\4\3\2" + b"\x42\4xy"
PWID_GROUP = b"\x80\0\5\0\0\0\0\1"
FEC = tlv(0x100, PREFIX)
LABEL = tlv(0x200, b"\0\0\0\x64")
STATUS = tlv(0x300, b"\0\0\0\x0a\0\0\0\0\0\0")
PW_STATUS_OF_STATUS = tlv(0x300, b"\0\0\0\x28\0\0\0\0\0\0")
PW_STATUS = tlv(0x96A, b"\0\0\0\x1f")
REQ_ID = tlv(0x600, b"\0\0\0\5")
HOPS = tlv(0x103, b"\5")
PATH = tlv(0x104, b"\x0a\0\0\1\x0a\0\0\2")
HELLO = tlv(0x400, b"\0\x0f\xc0\0")
SESSION = tlv(0x500, b"\0\1\0\xb4\xc0\x20\x10\0\x0a\0\0\2\0\0")
FT = tlv(0x503, b"\x80\x0b\0\0\0\0\x75\x30\0\0\xea\x60"[:12])
CAPABILITIES = b"".join(tlv(0x8000 | kind, b"\x80") for kind in (0x506, 0x507, 0x508, 0x509, 0x50A, 0x50B, 0x50D, 0x50E, 0x50F, 0x603))
KEEP_ALIVE = message(0x201)


def p2mp(size, root=b"\x0a\0\0\1"):
    """A P2MP element of that many octets, its type octet included."""
    opaque = size - 6 - len(root)
    return b"\6\0\1" + bytes([len(root)]) + root + struct.pack("!H", opaque) + bytes(range(256))[:opaque].ljust(opaque, b"x")


GOOD = {
    "notification": message(1, STATUS, tlv(0x8304, b"zz")),
    "notification-pw-status": message(1, PW_STATUS_OF_STATUS, PW_STATUS, tlv(0x100, PWID)),
    "hello-ipv4": message(0x100, HELLO, tlv(0x401, b"\x0a\0\0\1"), tlv(0x402, b"\0\0\0\1")),
    "hello-ipv6": message(0x100, HELLO, tlv(0x403, b"\x20\1\x0d\xb8" + 11 * b"\0" + b"\1")),
    "init": message(0x200, SESSION, FT, CAPABILITIES),
    "keep-alive": KEEP_ALIVE,
    "capability": message(0x202, CAPABILITIES),
    "address-ipv4": message(0x300, tlv(0x101, b"\0\1\x0a\0\0\1\x0a\0\0\2")),
    "address-ipv6": message(0x300, tlv(0x101, b"\0\2\x20\1\x0d\xb8" + 11 * b"\0" + b"\1")),
    "address-withdraw": message(0x301, tlv(0x101, b"\0\1\x0a\0\0\1")),
    "mapping": message(0x400, FEC, LABEL, REQ_ID, HOPS, PATH, PW_STATUS),
    "mapping-pwid": message(0x400, tlv(0x100, PWID), LABEL),
    "request": message(0x401, tlv(0x100, PREFIX6), HOPS, PATH),
    "withdraw": message(0x402, tlv(0x100, b"\1"), LABEL, STATUS),
    "release": message(0x403, tlv(0x100, HOST), LABEL, STATUS),
    "release-refused-fec": message(0x403, tlv(0x100, b"\5"), LABEL),
    "abort": message(0x404, FEC, REQ_ID),
}

FEC_VALUES = {
    "empty": b"",
    "wildcard": b"\1",
    "wildcard-and-prefix": b"\1" + PREFIX,
    "prefix-and-wildcard": PREFIX + b"\1",
    "prefixes": PREFIX + PREFIX6 + b"\2\0\1\0",
    "host": HOST,
    "host6": b"\3\0\2\x10\x20\1\x0d\xb8" + 11 * b"\0" + b"\1",
    "pwid-vlan-too-large": b"\x80\0\4\x08\0\0\0\1\0\0\0\x64\6\4\x0f\xff",
    "p2mp-generic-lsp-id": b"\6\0\1\4\x0a\0\0\1\0\7\1\0\4\0\0\0\7",
    "pwid": PWID,
    "pwid-group": PWID_GROUP,
    "pwid-and-prefix": PWID + PREFIX,
    "p2mp-255": p2mp(255),
    "p2mp-256": p2mp(256),
    "p2mp-short-root": p2mp(20, b"\x0a\1"),
    "p2mp-behind-prefix": PREFIX + p2mp(300),
    "unknown-element": b"\x81\0\0",
}


OCTETS = {
    2: ("LdpHdrMsgUbitAndTypeField LdpTlvTypeField LdpCommonHelloTargetField LdpFtSessionFlags "
        "LdpFecTlvPwIdElementHdrTypeField LdpPwVccvParamField").split(),
    4: "LdpGenLabelTlvLabel LdpStatusTlvStatusCode LdpPwStatusField".split(),
}


def composite(name, **fields):
    return "Value('Ldp::%s', ** {%s})" % (name, ", ".join("'%s': %s" % field for field in fields.items()))


def texts():
    params = composite("PwFwdEqvClassParams", groupId=1, mtu=1500, intfDescription="'eth\\x00\\'0\\\\'", requestedVlanId=4094,
                       fragCapable="True", vccvCcTypes=1, vccvCvTypes=255)
    flags = "intfMtu intfDesc requestedVlanId fragIndicator vccvParam".split()
    yield from {
        "true": "True", "false": "False", "double": "-1.5e+300", "nan": "nan", "string": r"'a\'\\\x00\xff'",
        "u64-max": "18446744073709551615", "u64-too-large": "18446744073709551616", "u32-max": "4294967295",
        "u16-too-large": "65536", "leading-zeros": "0000000000000000000000000000000007", "vlan-too-large": "4095",
        "label-withdraw": "8388608", "label-too-large": "8388609",
        "ipv4": "10.0.0.1", "ipv4-too-large": "10.0.0.256", "ipv4-short": "10.0.0", "ipv6": "2001:db8::1",
        "ipv6-any": "::", "ipv6-full": "1:2:3:4:5:6:7:8", "ipv6-two-gaps": "1::2::3", "ipv6-gap-behind": "1:2::",
        "ipv6-gap-of-one": "1::3:4:5:6:7:8", "ipv6-nine-groups": "1:2:3:4:5:6:7:8:9", "no-address": "none",
        "prefix4": "10.1.0.0/16", "prefix4-host-bits": "10.1.2.3/9", "prefix4-too-long": "10.0.0.0/33", "prefix6": "2001:db8::/33",
        "no-prefix": "none/0", "words": "words(1,2)", "p2mp": "p2mp(10.0.0.1,7)", "identifier": "10.0.0.1:65535",
        "generic-opaque-id": "2001:db8::1_7", "generic-opaque-id-no-root": "none_0", "message-type": "LdpLabelMapping",
        "tlv-type": "genLabelTlv", "status": "missingMessageParams", "element": "pwIdElement", "parameter": "fragIndicator",
        "family": "ipv6", "pseudowire": "pw4294967295:pwTypeRaw:cbit1", "pseudowire-number": "pw1:32767:cbit0",
        "pseudowire-more-behind": "pw1:pwTypeRaw:cbit12", "pseudowire-type": "pwTypeIpLayer2",
        "params": params, "info": composite("PwFwdEqvClassInfo", fwdEqvClass="pw1:pwTypeTagged:cbit0", params=params),
        "flags": composite("LdpPwIntfParamFlags", **{flag: "True" for flag in flags}),
        "opaque-length": composite("LdpFecTlvP2mpOpaqueLength", totalOpaqueLen=7),
        "opaque-head": composite("LdpMPBasicOpaqueValueElementHdr", type=1, opaqueLenNbo=4),
        "generic-lsp-id": composite("LdpGenericLSPId", type=1, opaqueLenNbo=4, opaqueId=4294967295),
        "p2mp-element": composite("LdpP2mpFecElement", rootIp="10.0.0.1", opaqueStr=r"'\x01\x00\x04'"),
    }.items()
    for count, names in OCTETS.items():
        for name in names:
            yield name, composite(name, **{"v%d" % i: 255 - i for i in range(count)})


def with_length(unit, length):
    return unit[:2] + struct.pack("!H", length) + unit[4:]


def odd_lengths(good):
    """A message and its first TLV with each length that is easily got wrong."""
    exact = len(good) - 4
    for length in (0, 1, 3, 4, exact - 1, exact + 1, 0x0FFC, 0x0FFD, 0xFFFB, 0xFFFC, 0xFFFD, 0xFFFE, 0xFFFF):
        yield "message-length-%d" % length, with_length(good, length)
    if len(good) > 8:
        first = struct.unpack_from("!H", good, 10)[0]
        for length in (0, 1, 2, first - 1, first + 1, 0xFFFB, 0xFFFC, 0xFFFD, 0xFFFE, 0xFFFF):
            yield "tlv-length-%d" % length, good[:8] + with_length(good[8:], length)


# A FEC TLV of length 65535, so of total 3; its P2MP type octet lies in the header of the TLV behind, an ignored one.
WRAPPED_P2MP = message(0x402, b"\1\0\xff\xff" + b"\6\0\1\0")


def by_hand_pdus():
    yield "all-good-messages", pdu(*GOOD.values())
    for name, good in GOOD.items():
        yield name, pdu(good)
    for name, odd in odd_lengths(GOOD["mapping"]):
        yield "mapping-" + name, pdu(odd)
        yield "mapping-behind-keep-alive-" + name, pdu(KEEP_ALIVE, odd, KEEP_ALIVE)
    for length in (0, 9, 10, 13, 14, 9596, 9597, 0xFFFB, 0xFFFC, 0xFFFD, 0xFFFF):
        yield "pdu-length-%d" % length, pdu(KEEP_ALIVE, length=length)
    largest = message(0x200, SESSION, tlv(0x8000 | 0x3333, b"x" * (4096 - 8 - 18 - 4)))
    yield "largest-pdu", pdu(largest, largest, message(0x100, HELLO, tlv(0x3E00, b"y" * (9600 - 10 - 2 * 4096 - 8 - 8 - 4))))
    big = p2mp(256)
    yield "fatal-p2mp-mapping", pdu(message(0x400, tlv(0x100, big), LABEL))
    yield "fatal-p2mp-withdraw-behind-good", pdu(KEEP_ALIVE, message(0x402, tlv(0x100, big)))
    yield "fatal-p2mp-release", pdu(message(0x403, tlv(0x100, big)))
    yield "fatal-p2mp-request", pdu(message(0x401, tlv(0x100, big)))
    yield "fatal-p2mp-abort", pdu(message(0x404, tlv(0x100, big), REQ_ID))
    yield "fatal-p2mp-pw-status", pdu(message(1, PW_STATUS_OF_STATUS, PW_STATUS, tlv(0x100, big)))
    yield "fatal-p2mp-then-wrapped", pdu(message(0x402, tlv(0x100, big)), message(0x201, length=4), tlv(1, length=65532))
    yield "p2mp-255-mapping", pdu(message(0x400, tlv(0x100, p2mp(255)), LABEL))
    yield "p2mp-256-too-few-tlvs", pdu(message(0x400, tlv(0x100, big)))
    yield "p2mp-256-second-tlv", pdu(message(0x402, LABEL, tlv(0x100, big)))
    yield "p2mp-256-unknown-tlv-behind", pdu(message(0x402, tlv(0x100, big), tlv(0x3333)))
    yield "p2mp-256-in-hello", pdu(message(0x100, HELLO, tlv(0x100, big)))
    yield "p2mp-256-in-plain-notification", pdu(message(1, STATUS, PW_STATUS, tlv(0x100, big)))
    yield "p2mp-256-no-p2mp-in-pw-status", pdu(message(1, PW_STATUS_OF_STATUS, tlv(0x100, big), PW_STATUS))
    yield "p2mp-256-behind-prefix", pdu(message(0x402, tlv(0x100, PREFIX + big)))
    yield "fatal-wrapped-tlv-in-unread-message-type", pdu(message(0x201, tlv(0x3333, length=65532)))
    yield "wrapped-tlv-in-unknown-message", pdu(message(0x3000, tlv(0x100, length=65532)))
    yield "wrapped-tlv-behind-run", pdu(message(0x201, tlv(0x100, b"", 1), b"\0"), tlv(0x100, length=65532))
    # The header of the second TLV lies half in the message behind: 65532 is met before the run's end is.
    yield "fatal-wrapped-header-completed-behind-run", pdu(message(0x201, tlv(0x103, b"\1"), b"\1\0"), b"\xff\xfc\0\4\0\0\0\7")
    yield "fatal-wrapped-message-behind-p2mp", pdu(message(0x402, tlv(0x100, big)), message(0x201, length=65532))
    wrapped = message(0x201, tlv(0x100, length=65532))
    yield "fatal-two-in-order", pdu(message(0x402, tlv(0x100, big)), wrapped)
    yield "wrapped-tlv-in-pdu-longer-than-packet", pdu(wrapped, length=len(wrapped) + 7)
    yield "wrapped-message-in-pdu-longer-than-packet", pdu(tlv(0x201, b"\0\0\0\7", 65532), length=15)
    yield "wrapped-tlv-in-message-longer-than-packet", pdu(KEEP_ALIVE, message(0x201, tlv(0x100, length=65532), length=9), length=24)
    yield "wrapped-tlv-in-message-of-4097", pdu(message(0x201, tlv(0x100, length=65532), b"x" * (4097 - 12)))
    yield "wrapped-message-in-pdu-of-9601", pdu(tlv(0x201, length=65532), b"x" * (9601 - 14))
    yield "pw-status-two-tlvs", pdu(message(1, PW_STATUS_OF_STATUS, PW_STATUS))
    yield "p2mp-256-label-for-pw-status", pdu(message(1, PW_STATUS_OF_STATUS, LABEL, tlv(0x100, big)))
    yield "p2mp-256-pw-status-tlv-too-long", pdu(message(1, PW_STATUS_OF_STATUS, tlv(0x96A, b"\0\0\0\0\0"), tlv(0x100, big)))
    yield "p2mp-256-status-tlv-too-long", pdu(message(1, tlv(0x300, b"\0\0\0\x28\0\0\0\0\0\0\0"), PW_STATUS, tlv(0x100, big)))
    yield "p2mp-in-wrapped-fec-tlv", pdu(WRAPPED_P2MP)
    # Total lengths of 1 to 3 overlap what follows, which then is a header.
    yield "wrapped-tlv-65533-then-65532", pdu(message(0x402, b"\1\0\xff\xfd\xff\xfc\0\0"))
    yield "message-3-octets-header-in-next", pdu(tlv(0x201, length=65535), tlv(0x100, length=0), KEEP_ALIVE)


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
    folder = os.path.join(HERE, "corpus", target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as file:
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
    for name, octets in by_hand_pdus():
        write("PduFuzz", name, b"\0" + octets)
    write("PduFuzz", "at-offset-3", b"\3" + b"\xff\xfc\0" + pdu(*GOOD.values()) + b"trailing")
    write("PduFuzz", "wrapped-fec-tlv-in-large-packet", b"\x80" + pdu(message(0x402, b"\1\0\xff\xfd", b"\6\0\1\0")))
    write("PduFuzz", "fatal-p2mp-in-wrapped-fec-tlv-in-large-packet", b"\x80" + pdu(WRAPPED_P2MP))
    for name, good in GOOD.items():
        write("MessageFuzz", name, message_input(good))
        for size in range(1, 12):
            if name == "mapping":
                write("MessageFuzz", "mapping-cut-to-%d" % size, message_input(good)[: 2 + size])
    for name in ("notification-pw-status", "hello-ipv4", "init", "address-ipv4", "mapping"):
        for odd, octets in odd_lengths(GOOD[name]):
            write("MessageFuzz", name + "-" + odd, message_input(octets))
    for name, value in FEC_VALUES.items():
        write("FecTlvFuzz", name, b"\0" + tlv(0x100, value))
    for length in (0, 1, len(PREFIX) - 1, len(PREFIX) + 1, 0xFFFC, 0xFFFD, 0xFFFF):
        write("FecTlvFuzz", "prefix-tlv-length-%d" % length, b"\0" + tlv(0x100, PREFIX, length))
    write("FecTlvFuzz", "header-cut-short", b"\0\1\0\0")
    for name, octets in capture_inputs():
        write("CaptureFuzz", name, octets)
    for name, text in texts():
        write("TextFuzz", name, text.encode())


if __name__ == "__main__":
    main()
