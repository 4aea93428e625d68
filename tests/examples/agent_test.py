#!/usr/bin/env python3
"""The example agent is a peer that a router could have. agent_test.py AGENT"""

import select
import socket
import struct
import subprocess
import sys

from ldpcap import address, message, pdu, prefix, tlv

HELLO, INIT, KEEP_ALIVE, NOTIFICATION, MAPPING, WITHDRAW, RELEASE = 0x0100, 0x0200, 0x0201, 0x0001, 0x0400, 0x0402, 0x0403
PARAMETERS = struct.pack("!HHBBH", 1, 6, 0, 0, 4096) + address("10.0.0.1") + b"\0\0"
FEC = tlv(0x0100, prefix("10.1.0.0", 16))


def mapping(label):
    return FEC, tlv(0x0200, struct.pack("!I", label))


class Peer:
    """10.0.0.2, who talks to the agent 10.0.0.1 over one end of a connection."""

    def __init__(self):
        ours, its = socket.socketpair()
        self.socket, self.octets, self.last = ours, b"", 0
        self.agent = subprocess.Popen([sys.argv[1], "10.0.0.1:0"], stdin=its, stderr=subprocess.PIPE, text=True)
        its.close()

    def say(self, kind, *tlvs):
        self.last += 1
        self.socket.sendall(pdu(message(kind, self.last, *tlvs), lsr="10.0.0.2"))

    def hear(self):
        """Type and TLVs of the next message."""
        while len(self.octets) < 4 or len(self.octets) < 4 + int.from_bytes(self.octets[2:4], "big"):
            assert select.select([self.socket], [], [], 60)[0], "the agent says nothing"
            more = self.socket.recv(4096)
            if not more:
                return None
            self.octets += more
        end = 4 + int.from_bytes(self.octets[2:4], "big")
        whole, self.octets = self.octets[:end], self.octets[end:]
        return int.from_bytes(whole[10:12], "big"), whole[18:]

    def said(self):
        self.socket.shutdown(socket.SHUT_WR)
        return [line.strip() for line in self.agent.communicate(timeout=60)[1].splitlines()]


def same(found, expected):
    if found != expected:
        sys.exit(f"found {found}\nexpected {expected}")


# A session: opened, kept alive, told labels, and closed by the peer.
peer = Peer()
peer.say(INIT, tlv(0x0500, PARAMETERS))
kind, tlvs = peer.hear()
same((kind, tlvs[4:8], tlvs[12:]), (INIT, PARAMETERS[:4], address("10.0.0.2") + b"\0\0"))
same(peer.hear(), (KEEP_ALIVE, b""))
peer.say(KEEP_ALIVE)
same(peer.hear(), (KEEP_ALIVE, b""))  # after a third of the time
for label in (16, 16, 17):
    peer.say(MAPPING, *mapping(label))
peer.say(WITHDRAW, *mapping(17))
same(peer.hear(), (RELEASE, b"".join(mapping(17))))
peer.say(MAPPING, *mapping(18))
session, fec = "10.0.0.2:0", "10.1.0.0/16_10.0.0.2:0"
same(peer.said(), [f"{session}: stateInitialized, success", f"{session}: stateOpenRecv, success", f"{session}: stateOperational, success",
                   f"{fec}: label 16", f"{fec}: label 17", f"{fec}: no label", f"{fec}: label 18", f"{fec}: no label",
                   f"{session}: stateNonExist, tcpConnectionClosed"])

# What it refuses: a bad length of a PDU, a mapping before the session, silence.
for octets, status in ((b"\0\1\0\1" + bytes(6), 3), (pdu(message(MAPPING, 1, *mapping(16)), lsr="10.0.0.2"), 10)):
    peer = Peer()
    peer.socket.sendall(octets)
    kind, tlvs = peer.hear()
    same((kind, int.from_bytes(tlvs[4:8], "big") & 0x3fffffff, peer.hear(), peer.said()), (NOTIFICATION, status, None, []))
