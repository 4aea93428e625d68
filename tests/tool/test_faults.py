"""Where a message is refused, and what is not supported here: read from the lines, the JSON and all of the text."""

import re
import unittest

from ldptool import *

LABEL = tlv(0x0200, struct.pack("!I", 77))
PREFIX = bytes.fromhex("020001180a0102")
GOOD = keepalive(1)
FIRST = 10 + len(GOOD)  # where the message in question begins


def mapping(*tlvs):
    return message(0x0400, 2, *tlvs)


def fec(octets, kind=0x0400, *more):
    return message(kind, 2, tlv(0x0100, octets), *more)


# name: (message, offset in it, TLV, FEC element, octets from there on)
WRONG = {
    "unknown type": (message(0x3000, 2), 0, None, None, "3000000400000002"),
    "no TLV": (message(0x0100, 2), 0, None, None, "0100000400000002"),
    "unknown TLV": (message(0x0201, 2, tlv(0x0302, b"x"), tlv(0x0999)), 13, 0x0999, None, "09990000"),
    "hop count too long": (mapping(tlv(0x0100, PREFIX), LABEL, tlv(0x0103, b"\3\4")), 27, 0x0103, None, "010300020304"),
    "label not second": (mapping(tlv(0x0100, PREFIX), tlv(0x0103, b"\3"), LABEL), 24, 0x0200, None, "020000040000004d"),
    "no label": (mapping(tlv(0x0100, PREFIX), tlv(0x0103, b"\3")), 0, None, None, mapping(tlv(0x0100, PREFIX), tlv(0x0103, b"\3")).hex()),
    "TLV longer than its message": (mapping(tlv(0x0100, PREFIX), LABEL, tlv(0x0103, b"\3", length=9)), 27, 0x0103, None, "0103000903"),
    "second element": (fec(PREFIX + bytes.fromhex("02000121"), 0x0400, LABEL), 19, 0x0100, 2, "02000121"),
    "wildcard mapped": (fec(b"\1", 0x0400, LABEL), 8, 0x0100, None, "0100000101"),
    "capability": (message(0x0202, 2, tlv(0x8506, b"\x80"), tlv(0x8508, b"\x80\0")), 13, 0x0508, None, "850800028000"),
    "first TLV of a notification": (message(0x0001, 2, tlv(0x0301)), 8, 0x0301, None, "03010000"),
    "address list": (message(0x0300, 2, tlv(0x0101, b"\0\1\7")), 8, 0x0101, None, "01010003000107"),
}
UNSUPPORTED = {
    "typed wildcard": (fec(bytes.fromhex("0502020001"), 0x0402), 12, 0x0100, 5, "0502020001"),
    "MP2MP behind a prefix": (fec(PREFIX + bytes.fromhex("070001040a0000010000"), 0x0400, LABEL), 19, 0x0100, 7, "070001040a0000010000"),
    "FEC 129": (fec(bytes.fromhex("8100050000000000"), 0x0401), 12, 0x0100, 0x81, "8100050000000000"),
    "address family": (fec(bytes.fromhex("02001d080a"), 0x0400, LABEL), 12, 0x0100, 2, "02001d080a"),
    "ATM label": (mapping(tlv(0x0100, PREFIX), tlv(0x0201, bytes(4))), 19, 0x0201, None, "0201000400000000"),
    "Frame Relay label": (mapping(tlv(0x0100, PREFIX), tlv(0x0202, bytes(4))), 19, 0x0202, None, "0202000400000000"),
    "vendor's message": (message(0x3E01, 2), 0, None, None, "3e01000400000002"),
}


def leaves(value):
    if isinstance(value, dict):
        for each in value.values():
            yield from leaves(each)
    elif isinstance(value, list):
        for each in value:
            yield from leaves(each)
    elif value is not None:
        yield value


class Faults(unittest.TestCase):
    def test_places(self):
        for cases, supported, status, word in ((WRONG, True, 1, " BAD "), (UNSUPPORTED, False, 3, " NOT SUPPORTED HERE ")):
            for name, (octets, offset, kind, element, found) in cases.items():
                with self.subTest(name):
                    packet = [pdu(GOOD, octets)]
                    result = decode_hex(packet, "--json", "--bad")
                    (o,) = result.objects
                    fault = o["fault"]
                    self.assertEqual(
                        (result.status, fault["supported"], fault["offset"], fault["messageOffset"], fault["whole"],
                         fault.get("tlv"), fault.get("element"), fault["octets"]),
                        (status, supported, FIRST + offset, FIRST, offset == 0, kind, element, found))
                    self.assertTrue((GOOD + octets).hex().find(fault["before"] + found) >= 0)
                    (line,) = decode_hex(packet, "--bad").out.splitlines()
                    self.assertIn(word, line)
                    where = "whole message" if offset == 0 else f"octet {offset}, of the PDU {FIRST + offset};"
                    self.assertIn(where, line)
                    self.assertTrue(line.endswith(f"> {found}]"), line)
                    self.assertEqual("TLV 0x%04x" % kind in line if kind else "TLV 0x" not in line, True)
                    # Counted apart, and the worse of the two is the exit status.
                    stats = decode_hex(packet, "--stats")
                    self.assertEqual(("bad ones" in stats.out, "unsupported ones" in stats.out), (supported, not supported))
                    both = decode_hex(packet + [pdu(message(0x3000, 3))], "--count")
                    self.assertEqual(both.status, 1)

    def test_bad_pdu(self):
        bad = pdu(GOOD, message(0x0201, 2, length=90))
        (o,) = decode_hex([bad], "--json").objects
        self.assertEqual((o["fault"]["offset"], o["fault"]["octets"]), (FIRST, "0201005a00000002"))
        self.assertIn(f"[octet {FIRST} of the PDU; message 0x0201 LdpKeepAlive;", decode_hex([bad]).out)
        self.assertIn("[whole PDU; >", decode_hex([pdu(GOOD, version=3)]).out)

    def test_release_of_a_fec_that_is_not_supported(self):
        result = decode_hex([pdu(fec(bytes.fromhex("8100050000000000"), 0x0403))])
        self.assertEqual(result.status, 0)
        self.assertIn("(FEC NOT SUPPORTED HERE unknownFec", result.out)

    def test_words(self):
        (line,) = decode_hex([pdu(mapping(tlv(0x0100, PREFIX), tlv(0x0200, struct.pack("!I", 3)), tlv(0x096A, struct.pack("!I", 9))))]).out.splitlines()
        self.assertTrue(line.endswith("label imp-null pwStatus 0x00000009 (not forwarding, PSN-facing (ingress) receive fault)"), line)
        self.assertTrue(decode(pcap([ether(udp(pdu(hello(1))))])).out.startswith("1 "))

    def test_full_has_every_field_of_the_json(self):
        with open(os.path.join(os.path.dirname(__file__), "messages.txt"), encoding="utf-8") as file:
            packets = [bytes.fromhex(part.strip("\n").split("\n")[1]) for part in file.read().split("\n\n") if not part.startswith("#")]
        packets += [pdu(octets) for octets, *_ in [*WRONG.values(), *UNSUPPORTED.values()]] + [pdu(GOOD, version=3)]
        for packet in packets:
            (o,) = decode_hex([packet], "--json").objects
            full = decode_hex([packet], "--full").out
            o.pop("text", None)
            for value in leaves(o):
                if isinstance(value, str):
                    text = "".join(c if " " <= c <= "~" else "\\x%02x" % ord(c) for c in value)
                elif isinstance(value, bool):
                    text = str(value).lower()
                else:
                    text = str(value)
                    if " " + text not in full:
                        text = "0x%04x" % value
                self.assertIn(text, full)
            for name in re.findall(r'"(\w+)":', json.dumps(o)):
                self.assertIn(name + " ", full)


if __name__ == "__main__":
    unittest.main()
