"""Octets of LDP, of the packets around it and of captures: builders first, then readers. For the tests of ldptool, the seeds of
the fuzz targets and the captures of the benchmarks."""

import collections
import os
import socket
import struct

CAPTURES = os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "captures")

PORT = 646
ETHERNET, RAW_IP, LINUX_SLL, LINUX_SLL2, NULL = 1, 101, 113, 276, 0
SYN, FIN, RST, PSH, ACK = 0x02, 0x01, 0x04, 0x08, 0x10


# LDP -------------------------------------------------------------------------------------------------------------


def tlv(kind, value=b"", length=None):
    return struct.pack("!HH", kind, len(value) if length is None else length) + value


def message(kind, ident, *tlvs, length=None):
    body = struct.pack("!I", ident) + b"".join(tlvs)
    return struct.pack("!HH", kind, len(body) if length is None else length) + body


def pdu(*messages, lsr="10.0.0.1", space=0, version=1, length=None):
    body = socket.inet_aton(lsr) + struct.pack("!H", space) + b"".join(messages)
    return struct.pack("!HH", version, len(body) if length is None else length) + body


def keepalive(ident):
    return message(0x0201, ident)


def hello(ident, hold=15):
    return message(0x0100, ident, tlv(0x0400, struct.pack("!HH", hold, 0)))


def prefix(net, bits):
    family, width = (2, 16) if ":" in net else (1, 4)
    octets = socket.inet_pton(socket.AF_INET6 if family == 2 else socket.AF_INET, net)
    return struct.pack("!BHB", 2, family, bits) + octets[: (bits + 7) // 8]


def mapping(ident, net="10.1.0.0", bits=16, label=100):
    return message(0x0400, ident, tlv(0x0100, prefix(net, bits)), tlv(0x0200, struct.pack("!I", label)))


# Packets ---------------------------------------------------------------------------------------------------------


def address(text):
    return socket.inet_pton(socket.AF_INET6 if ":" in text else socket.AF_INET, text)


def ip(proto, payload, src="10.0.0.1", dst="10.0.0.2", ident=1, fragment=0, extensions=(), length=None):
    if ":" not in src:
        total = 20 + len(payload) if length is None else length
        head = struct.pack("!BBHHHBBH", 0x45, 0xC0, total, ident, fragment, 255, proto, 0)
        return head + address(src) + address(dst) + payload
    chain = b""
    first = proto
    for kind, octets in reversed(extensions):  # octets without their first, the next header
        chain = bytes([first]) + octets + chain
        first = kind
    head = struct.pack("!IHBB", 0x60000000, len(chain) + len(payload), first, 255)
    return head + address(src) + address(dst) + chain + payload


def udp(payload, sport=646, dport=646, **kw):
    return ip(17, struct.pack("!HHHH", sport, dport, 8 + len(payload), 0) + payload, **kw)


def tcp(payload=b"", seq=0, ack=0, flags=ACK, sport=646, dport=40000, **kw):
    head = struct.pack("!HHIIBBHHH", sport, dport, seq & 0xFFFFFFFF, ack & 0xFFFFFFFF, 0x50, flags, 65000, 0, 0)
    return ip(6, head + payload, **kw)


def ethertype(packet):
    return 0x86DD if packet[0] >> 4 == 6 else 0x0800


def ether(packet, vlans=(), dst=b"\x02\0\0\0\0\x01", src=b"\x02\0\0\0\0\x02"):
    """vlans: (tag protocol, id) from the outermost in."""
    out = dst + src
    for protocol, vlan in vlans:
        out += struct.pack("!HH", protocol, vlan)
    return out + struct.pack("!H", ethertype(packet)) + packet


def sll(packet):
    return struct.pack("!HHH8sH", 0, 1, 6, b"\x02\0\0\0\0\x01", ethertype(packet)) + packet


def sll2(packet):
    return struct.pack("!HHIHBB8s", ethertype(packet), 0, 3, 1, 0, 6, b"\x02\0\0\0\0\x01") + packet


# Captures --------------------------------------------------------------------------------------------------------


def pcap_header(link, order="<", nano=False):
    return struct.pack(order + "IHHiIII", 0xA1B23C4D if nano else 0xA1B2C3D4, 2, 4, 0, 0, 262144, link)


def pcap(frames, link=ETHERNET, order="<", nano=False, step=0.001):
    """frames: octets, or (octets, length on the wire), or (octets, length, time in seconds from the start)."""
    out = pcap_header(link, order, nano)
    for number, frame in enumerate(frames):
        octets, wire, when = (tuple(frame) + (None, None))[:3] if isinstance(frame, tuple) else (frame, None, None)
        when = number * step if when is None else when
        part = round((when - int(when)) * (1e9 if nano else 1e6))
        size = len(octets) if wire is None else wire
        out += struct.pack(order + "IIII", 1600000000 + int(when), part, len(octets), size) + octets
    return out


def pcapng(frames, link=ETHERNET):
    def block(kind, body):
        body += b"\0" * (-len(body) % 4)
        return struct.pack("<II", kind, len(body) + 12) + body + struct.pack("<I", len(body) + 12)

    out = block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1)) + block(1, struct.pack("<HHI", link, 0, 262144))
    for number, octets in enumerate(frames):
        when = 1600000000 * 1000000 + number * 1000
        out += block(6, struct.pack("<IIIII", 0, when >> 32, when & 0xFFFFFFFF, len(octets), len(octets)) + octets)
    return out


# Reading ---------------------------------------------------------------------------------------------------------

Segment = collections.namedtuple("Segment", "proto src sport dst dport sequence flags payload")


def records(path):
    """Of a classic capture: its octets, its link type, and where the octets of each frame begin and end."""
    with open(path, "rb") as file:
        data = file.read()
    order = "<" if data[:4] in (b"\xd4\xc3\xb2\xa1", b"\x4d\x3c\xb2\xa1") else ">"
    link = struct.unpack_from(order + "I", data, 20)[0]
    places, at = [], 24
    while at + 16 <= len(data):
        end = at + 16 + struct.unpack_from(order + "I", data, at + 8)[0]
        places.append((at + 16, end))
        at = end
    return data, link, places


def frames(path):
    """Of a classic capture: its link type, and the octets of each frame."""
    data, link, places = records(path)
    return link, [data[begin:end] for begin, end in places]


def ip_packet(link, frame):
    """The IP packet in a frame of Ethernet or Linux cooked, without padding; None for anything else."""
    at = 16 if link == LINUX_SLL else 14
    kind = struct.unpack_from("!H", frame, at - 2)[0]
    if kind == 0x8100:
        kind = struct.unpack_from("!H", frame, at + 2)[0]
        at += 4
    if kind == 0x0800:
        return frame[at : at + struct.unpack_from("!H", frame, at + 2)[0]]
    if kind == 0x86DD:
        return frame[at : at + 40 + struct.unpack_from("!H", frame, at + 4)[0]]
    return None


def segment(packet):
    """What an IP packet carries if it is of UDP or TCP, else None. Sequence and flags are 0 in a datagram."""
    four = packet[0] >> 4 == 4
    at = (packet[0] & 15) * 4 if four else 40
    proto, src, dst = (packet[9], packet[12:16], packet[16:20]) if four else (packet[6], packet[8:24], packet[24:40])
    if proto not in (6, 17):
        return None
    sport, dport = struct.unpack_from("!HH", packet, at)
    if proto == 17:
        return Segment(proto, src, sport, dst, dport, 0, 0, packet[at + 8 :])
    sequence, _, offset, flags = struct.unpack_from("!IIBB", packet, at + 4)
    return Segment(proto, src, sport, dst, dport, sequence, flags, packet[at + (offset >> 4) * 4 :])


def pdus(octets):
    """The PDUs at the front of these octets."""
    while len(octets) >= 18 and octets[:2] == b"\0\1":
        total = struct.unpack_from("!H", octets, 2)[0] + 4
        if not 18 <= total <= len(octets):
            return
        yield octets[:total]
        octets = octets[total:]


def units(run):
    """The messages or TLVs of a run; the last may be cut short."""
    while len(run) >= 4:
        total = struct.unpack_from("!H", run, 2)[0] + 4
        yield run[:total]
        run = run[total:]


def messages(octets):
    """The messages of a PDU."""
    return list(units(octets[10:]))


def message_type(octets):
    return struct.unpack_from("!H", octets)[0] & 0x7FFF
