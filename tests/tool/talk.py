"""Captures of two speakers, 10.0.0.1 and 10.0.0.2, made to order, and the state that ldptool watch makes of captures."""

import json
import struct

import ldptool
from ldptool import ACK, FIN, SYN, address, ether, hello, message, pcap, pdu, prefix, tcp, tlv, udp


GROUP = {4: "224.0.0.2", 6: "ff02::2"}


def say_hello(lsr, source, transport=None, space=0, hold=15, **wrap):
    group = GROUP[6 if ":" in source else 4]
    tlvs = [tlv(0x0400, struct.pack("!HH", hold, 0))] + ([tlv(0x0401, address(transport))] if transport else [])
    packet = udp(pdu(message(0x0100, 1, *tlvs), lsr=lsr, space=space), src=source, dst=group)
    return wrap["link"](packet) if "link" in wrap else ether(packet, **wrap)


class Talk:
    """Frames of a session between 10.0.0.1, who listens, and 10.0.0.2; or between others."""

    def __init__(self, port=40000, who=None, keep_alive=30, ft=b""):
        self.who = who or {1: "10.0.0.1", 2: "10.0.0.2"}
        self.port, self.frames, self.next, self.ident = port, [], {1: 1000, 2: 2000}, 0
        for lsr in self.who.values():
            self.frames.append(ether(udp(pdu(hello(0), lsr=lsr), src=lsr, dst="224.0.0.2")))
        self.segment(2, flags=SYN)
        self.segment(1, flags=SYN | ACK)
        for who in (2, 1):
            parameters = struct.pack("!HHBBH", 1, keep_alive, 0, 0, 4096) + address(self.who[3 - who]) + b"\0\0"
            self.say(who, 0x0200, tlv(0x0500, parameters), *([tlv(0x8503, ft)] if ft else []))
        for who in (1, 2):
            self.say(who, 0x0201)

    def segment(self, who, payload=b"", flags=ACK):
        ports = (646, self.port) if who == 1 else (self.port, 646)
        self.frames.append(ether(tcp(payload, seq=self.next[who], ack=self.next[3 - who], flags=flags, sport=ports[0], dport=ports[1],
                                     src=self.who[who], dst=self.who[3 - who])))
        self.next[who] += len(payload) + bool(flags & (SYN | FIN))

    def say(self, who, kind, *tlvs):
        self.ident += 1
        self.segment(who, pdu(message(kind, self.ident, *tlvs), lsr=self.who[who]))
        return self.ident


def fec(*elements):
    return tlv(0x0100, b"".join(elements))


def label(value):
    return tlv(0x0200, struct.pack("!I", value))


def status_tlv(code, ident=0, kind=0):
    return tlv(0x0300, struct.pack("!IIH", code, ident, kind))


TEN, ELEVEN, WILDCARD = prefix("10.1.0.0", 16), prefix("11.0.0.0", 8), b"\1"
P2MP = struct.pack("!BHB", 6, 1, 4) + address("10.0.0.1") + struct.pack("!H", 7) + bytes.fromhex("0100040000002a")


def pw_id(number, control_word=1, mtu=1500):
    return struct.pack("!BHBII", 0x80, control_word << 15 | 5, 8, 0, number) + struct.pack("!BBH", 1, 4, mtu)


def states_of(result):
    """The state of each speaker's VRF, of what watch --json has printed."""
    assert (result.status, result.err) == (0, ""), (result.status, result.err)
    speakers = json.loads(result.raw)["speaker"]
    return {speaker: state["ldpStatusColl"]["status"]["default"] for speaker, state in speakers.items()}


def rows(text):
    """{speaker: [{column: cell}]} of a table of each speaker; {} has none."""
    tables = {}
    for part in text.split("speaker ")[1:]:
        name, *lines = part.splitlines()
        tables[name] = []
        if len(lines) > 1:
            starts = [i for i, c in enumerate(lines[0]) if c != " " and lines[0][max(i - 2, 0):i].strip() == "" and (i < 2 or lines[0][i - 2:i] == "  ")]
            for line in lines[1:]:
                cells = [line[a:b].strip() for a, b in zip(starts, starts[1:] + [None])]
                tables[name].append(dict(zip([lines[0][a:b].strip() for a, b in zip(starts, starts[1:] + [None])], cells)))
    return tables
