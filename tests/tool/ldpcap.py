"""Builds LDP messages, packets and captures for the tests of ldptool, and runs the program on them."""

import json
import os
import socket
import struct
import subprocess
import tempfile

LDPTOOL = os.environ["LDPTOOL"]
CAPTURES = os.path.join(os.path.dirname(os.path.abspath(__file__)), os.pardir, "captures")

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


def ether(packet, vlans=()):
    """vlans: (tag protocol, id) from the outermost in."""
    out = b"\x02\0\0\0\0\x01" + b"\x02\0\0\0\0\x02"
    for protocol, vlan in vlans:
        out += struct.pack("!HH", protocol, vlan)
    return out + struct.pack("!H", ethertype(packet)) + packet


def sll(packet):
    return struct.pack("!HHH8sH", 0, 1, 6, b"\x02\0\0\0\0\x01", ethertype(packet)) + packet


def sll2(packet):
    return struct.pack("!HHIHBB8s", ethertype(packet), 0, 3, 1, 0, 6, b"\x02\0\0\0\0\x01") + packet


# Captures --------------------------------------------------------------------------------------------------------


def pcap(frames, link=ETHERNET, order="<", nano=False, step=0.001):
    """frames: octets, or (octets, length on the wire), or (octets, length, time in seconds from the start)."""
    out = struct.pack(order + "IHHiIII", 0xA1B23C4D if nano else 0xA1B2C3D4, 2, 4, 0, 0, 262144, link)
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


# The program -----------------------------------------------------------------------------------------------------


class Result:
    def __init__(self, process):
        self.status = process.returncode
        self.out = process.stdout.decode("latin-1")
        self.err = process.stderr.decode("latin-1")
        self.raw = process.stdout
        # Anything else there is a sanitizer's report, whose exit status could pass for one of the program's own.
        assert all(line.startswith("ldptool: ") for line in self.err.splitlines()), self.err

    @property
    def objects(self):
        # Strict UTF-8: whatever a peer sent, the output must be JSON.
        return [json.loads(line) for line in self.raw.decode("utf-8").splitlines()]


def run(*arguments, stdin=b""):
    return Result(subprocess.run([LDPTOOL, *arguments], input=stdin, capture_output=True, timeout=120))


def on_file(command, capture, *options):
    """Run a command on a capture (octets) in a file."""
    with tempfile.NamedTemporaryFile(suffix=".pcap") as file:
        file.write(capture)
        file.flush()
        return run(command, *options, file.name)


def decode(capture, *options):
    return on_file("decode", capture, *options)


def watch(capture, *options):
    return on_file("watch", capture, *options)


def decode_hex(packets, *options):
    """Decode packets, each a line of hexadecimal on standard input."""
    text = "\n".join(packet.hex() for packet in packets) + "\n"
    return run("decode", "--hex", "-", *options, stdin=text.encode())


def idents(result):
    """(frame, message id) of each message of a JSON result."""
    return [(o["frame"], o["msgId"]) for o in result.objects]
