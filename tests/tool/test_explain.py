"""ldptool explain: each cause, in a small capture of its own, with the words for it; and a capture in which all is well."""

import os
import unittest

from ldptool import *
from talk import TEN, Talk, fec, label, pw_id, say_hello, status_tlv


def targeted(lsr, src, dst):
    return ether(udp(pdu(message(0x0100, 1, tlv(0x0400, struct.pack("!HH", 45, 0xC000))), lsr=lsr), src=src, dst=dst))


HELLOS = [say_hello(f"10.0.0.{i}", f"10.0.0.{i}") for i in (1, 2)]
TO = {"src": "10.0.0.2", "dst": "10.0.0.1", "sport": 40000, "dport": 646}
BACK = {"src": "10.0.0.1", "dst": "10.0.0.2", "sport": 646, "dport": 40000}
SYN_ = ether(tcp(seq=1000, flags=SYN, **TO))
PREFIX = struct.pack("!HHBBH", 1, 30, 0, 0, 4096)


def with_md5(packet):
    """The same with an option of TCP MD5 behind its header."""
    option = b"\1\1\x13\x12" + b"\0" * 16
    packet = bytearray(packet + option)
    packet[2:4] = struct.pack("!H", len(packet))
    packet[20 + 12] = 0xA0
    return bytes(packet)


def talk(*steps):
    """A session, and what is said on it then: (who, type, TLVs...)."""
    made = Talk()
    for step in steps:
        made.say(*step)
    return made.frames


def opening(active=2, parameters=PREFIX, receiver="10.0.0.1", space=0, answer=None):
    """A connection with an Initialization of 10.0.0.2, and what 10.0.0.1 answers."""
    made = Talk()
    made.frames = made.frames[:4]
    made.next = {1: 1001, 2: 2001}
    made.say(2, 0x0200, tlv(0x0500, parameters + address(receiver) + struct.pack("!H", space)))
    if answer:
        made.say(1, *answer)
    return made.frames


def lost_to_mtu():
    made = Talk()
    big = pdu(*[mapping(100 + i, f"10.{i}.0.0") for i in range(40)], lsr="10.0.0.2")
    made.segment(2, big)
    repeated = [(made.frames[-1], None, second) for second in (1, 2, 4)]
    made.say(1, 0x0001, status_tlv(0x80000014))
    return made.frames[:-1] + repeated + [(made.frames[-1], None, 30)]


CAUSES = {
    "targeted hellos one way only: 10.0.0.1:0 sends": [targeted("10.0.0.1", "10.0.0.1", "10.0.0.2"), HELLOS[1], targeted("10.0.0.1", "10.0.0.1", "10.0.0.2")],
    "hold time too short: hellos of 10.0.0.1:0 from 10.0.0.1 come every 20 s and hold for 15 s":
        [(HELLOS[0], None, second) for second in (0, 20, 40)],
    "transport addresses differ between hellos of 10.0.0.1:0": [say_hello("10.0.0.1", f"10.{i}.0.1", f"10.{i}.0.1") for i in (1, 2)],
    "two routers may use the identifier 10.0.0.1:0":
        [say_hello("10.0.0.1", f"10.0.0.{i}", f"10.0.0.{i}", src=b"\2\0\0\0\0" + bytes([i])) for i in (1, 2)],
    "IPv6 hellos of 10.0.0.1:0 from 2001:db8::1, which is not link-local": [say_hello("10.0.0.1", "2001:db8::1")],
    "nobody connects: hellos go both ways, and 10.0.0.2:0 sends no SYN":
        [(hello, None, second) for second in (0, 5, 10) for hello in HELLOS],
    "silence: 3 SYNs of 10.0.0.2:0 to 10.0.0.1:0": HELLOS + [(SYN_, None, second) for second in (1, 2, 4)],
    "silence: 3 SYNs of 10.0.0.2:0 to address 10.0.0.1, the last": [HELLOS[1]] + [(SYN_, None, second) for second in (1, 2, 4)],
    "silence: 2 SYNs of 10.0.0.2:0 to 10.0.0.1:0": [SYN_, (SYN_, None, 1), *HELLOS],
    "address 10.0.0.2 to address 10.0.0.1 is established, and nobody sends":
        [SYN_, ether(tcp(seq=7, ack=1001, flags=SYN | ACK, **BACK)), ether(tcp(seq=1001, ack=8, **TO))],
    "targeted hellos of 10.0.0.2:0 to address 10.0.0.9 have no answer": [targeted("10.0.0.2", "10.0.0.2", "10.0.0.9")],
    "the connection of 10.0.0.2:0 to 10.0.0.1:0 is refused": HELLOS + [SYN_, ether(tcp(seq=0, ack=1001, flags=RST | ACK, **BACK))],
    "the answer to the SYN of 10.0.0.2:0 to 10.0.0.1:0 is not taken":
        HELLOS + [(f, None, second) for second in (1, 2, 4) for f in (SYN_, ether(tcp(seq=7, ack=1001, flags=SYN | ACK, **BACK)))],
    "TCP authentication on one side: the segments of 10.0.0.2:0 have":
        HELLOS + [(ether(with_md5(tcp(seq=1000, flags=SYN, **TO))), None, second) for second in (1, 2, 4)],
    "role clash: 10.0.0.1:0 connects": HELLOS + [ether(tcp(seq=1, flags=SYN, src="10.0.0.1", dst="10.0.0.2", sport=40000, dport=646))],
    "10.0.0.1:0 refuses the Initialization of 10.0.0.2:0: session rejected: no hello (0x00000010)":
        opening(answer=(0x0001, status_tlv(0x80000010))),
    "10.0.0.1:0 ends the session: keepAlive timer expired (0x00000014) [": talk((1, 0x0001, status_tlv(0x80000014))),
    "large segments of 10.0.0.2:0 were repeated while small ones passed": lost_to_mtu(),
    "10.0.0.2:0 ends the session: shutdown (0x0000000a)": talk((2, 0x0001, status_tlv(0x8000000A))),
    "label space: the Initialization of 10.0.0.2:0 is for 10.0.0.1:5": opening(space=5, answer=(0x0201,)),
    "advertisement mode: 10.0.0.2:0 wants labels on demand":
        opening(parameters=struct.pack("!HHBBH", 1, 30, 0x80, 0, 4096), answer=(0x0200, tlv(0x0500, PREFIX + address("10.0.0.2") + b"\0\0"))),
    "10.0.0.1:0 refuses 1 message(s) of 10.0.0.2:0: no route (0x0000000d)": talk((1, 0x0001, status_tlv(13, 5, 0x0401))),
    "1 message(s) of 10.0.0.2:0 that no receiver takes": talk((2, 0x0402, fec(b"\x77"))),
    "withdrawn and never released: 10.1.0.0/16 label 100": talk((2, 0x0400, fec(TEN), label(100)), (2, 0x0402, fec(TEN), label(100))),
    "released and never withdrawn: 10.1.0.0/16":
        talk((2, 0x0400, fec(TEN), label(100)), (1, 0x0403, fec(TEN), label(100)), (2, 0x0400, fec(TEN), label(100))),
    "one label for two FECs: 11.0.0.0/8 label 100, which 10.1.0.0/16 has too":
        talk((2, 0x0400, fec(TEN), label(100)), (2, 0x0400, fec(prefix("11.0.0.0", 8)), label(100))),
    "mapped twice, the first label never released: 10.1.0.0/16 label 100":
        talk((2, 0x0400, fec(TEN), label(100)), (2, 0x0400, fec(TEN), label(101))),
    "pseudowire 7: only the peer has mapped it": talk((2, 0x0400, fec(pw_id(7)), label(500))),
    "pseudowire 7: control word differs: the peer wants one": talk((2, 0x0400, fec(pw_id(7)), label(500)), (1, 0x0400, fec(pw_id(7, 0)), label(600))),
    "pseudowire 7: MTU differs, 9000 here and 1500 there": talk((2, 0x0400, fec(pw_id(7)), label(500)), (1, 0x0400, fec(pw_id(7, 1, 9000)), label(600))),
    "pseudowire 7: the peer reports: attachment circuit (ingress) receive fault, attachment circuit (egress) transmit fault":
        talk((2, 0x0400, fec(pw_id(7)), label(500), tlv(0x896A, struct.pack("!I", 6))), (1, 0x0400, fec(pw_id(7)), label(600), tlv(0x896A, b"\0\0\0\0"))),
    "the capture has only one side of the session": [frame for i, frame in enumerate(talk((2, 0x0400, fec(TEN), label(100)))) if i not in (3, 5, 6)],
}


class Explain(unittest.TestCase):
    def test_each_cause_has_its_words(self):
        for words, frames in CAUSES.items():
            with self.subTest(words):
                result = on_file("explain", pcap(frames))
                self.assertIn("  ! ", result.out)
                self.assertIn(words, result.out)
                self.assertEqual((result.status, result.err), (1, ""))

    def test_nothing_is_found_where_all_is_well(self):
        result = on_file("explain", pcap(talk()))
        self.assertNotIn("!", result.out)
        self.assertEqual((result.status, result.err), (0, ""))
        self.assertEqual([line.split()[0] for line in result.out.splitlines()],
                         ["10.0.0.1:0", "hellos", "connection", "Initialization", "KeepAlive", "session"])

    def test_real_routers(self):
        result = run("explain", os.path.join(CAPTURES, "timers.pcap"))
        self.assertRegex(result.out, r"! 10\.255\.0\.\d:0 ends the session: hold timer expired \(0x00000009\)")
        self.assertRegex(result.out, r"! 10\.255\.0\.\d:0 ends the session: keepAlive timer expired \(0x00000014\)")
        one = run("explain", "--peer", "10.255.0.2", os.path.join(CAPTURES, "timers.pcap")).out
        self.assertNotIn("10.255.0.1:0 and 10.255.0.3:0", one)
        self.assertEqual(run("explain", "--peer", "nobody", os.path.join(CAPTURES, "timers.pcap")).status, 2)


if __name__ == "__main__":
    unittest.main()
