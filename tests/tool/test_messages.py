"""The JSON form of every kind of message, from packets in hexadecimal (messages.txt). And the two inputs that must not reach the parser."""

import os
import unittest

from ldptool import *

LABEL = tlv(0x0200, struct.pack("!I", 77))


def pw_element(pw_type=5, group=0, pw=None, params=b"", info_length=None):
    info = b"" if pw is None else struct.pack("!I", pw) + params
    return struct.pack("!BHBI", 128, pw_type, len(info) if info_length is None else info_length, group) + info


def p2mp(opaque, root="10.0.0.1"):
    octets = address(root)
    return struct.pack("!BHB", 6, 1 if len(octets) == 4 else 2, len(octets)) + octets + struct.pack("!H", len(opaque)) + opaque


COMMON = ["line", "lsrId", "labelSpace", "pduLength", "pduStatus", "pduReason", "type", "typeValue", "unknownBit", "msgId",
          "msgLength", "status", "reason", "valid", "text"]

# name: (message, type, status, reason)
BAD = {
    "unknown type": (message(0x3000, 1), "0x3000", "unknownMessageType", "Unknown Message Type: 12288"),
    "hello without a TLV": (message(0x0100, 1), "LdpHello", "missingMessageParams", "Message has 0 TLV"),
    "length too big": (message(0x0201, 1, tlv(0x0302, bytes(4085))), "LdpKeepAlive", "malformedTlv",
                       "MSG length field too big, length = 4097"),
    "unknown TLV": (message(0x0201, 1, tlv(0x0999)), "LdpKeepAlive", "unknownTlv", "Unknown TLV Type: 2457"),
    "mapping of all": (message(0x0400, 1, tlv(0x0100, b"\1"), LABEL), "LdpLabelMapping", "unknownFec",
                       "LDP Mapping Msg can not have Wildcard FEC TLV"),
}


class Messages(unittest.TestCase):
    maxDiff = None

    def test_good(self):
        with open(os.path.join(os.path.dirname(__file__), "messages.txt"), encoding="utf-8") as file:
            good = [part.strip("\n").split("\n") for part in file.read().split("\n\n") if not part.startswith("#")]
        self.assertGreater(len(good), 20)
        for name, octets, line in good:
            with self.subTest(name):
                result = decode_hex([bytes.fromhex(octets)], "--json", "--full")
                self.assertEqual((result.err, result.status, result.raw.decode()), ("", 0, line + "\n"))

    def test_bad(self):
        for name, (octets, kind, code, reason) in BAD.items():
            with self.subTest(name):
                result = decode_hex([pdu(octets) + b"\0"], "--json", "--full")
                self.assertEqual(result.status, 1)
                (o,) = result.objects
                self.assertEqual((o["type"], o["status"], o["reason"], o["valid"]), (kind, code, reason, False))
                self.assertEqual(list(o)[: len(COMMON)], COMMON)
                self.assertTrue(set(o) - set(COMMON) <= {"fec", "fault"})
                line = decode_hex([pdu(octets) + b"\0"]).out
                self.assertIn(f"BAD {code}: {reason}", line)

    def test_unknown_type_to_be_ignored_is_not_bad(self):
        result = decode_hex([pdu(message(0xB000, 1), keepalive(2))], "--json")
        first, second = result.objects
        self.assertEqual((first["type"], first["typeValue"], first["unknownBit"], first["status"], first["valid"]),
                         ("0x3000", 12288, True, "unknownMessageTypeIgnore", False))
        self.assertEqual((second["msgId"], result.status), (2, 0))

    def test_bad_capability_message(self):
        # The plain parser of the dispatch finds nothing wrong with it.
        result = decode_hex([pdu(message(0x0202, 1, tlv(0x8508, b"\x80\0")))], "--json")
        (o,) = result.objects
        self.assertEqual((o["valid"], o["status"], o["capability"]["valid"], o["capability"]["reason"]),
                         (True, "success", False, "p2mpCapabilityTlv TLV is not the right size"))
        self.assertEqual(result.status, 1)
        self.assertIn("BAD malformedTlv: p2mpCapabilityTlv", decode_hex([pdu(message(0x0202, 1, tlv(0x8508, b"\x80\0")))]).out)

    def test_bad_pdu(self):
        cases = [
            (pdu(keepalive(1), version=3), "badVersion", "LDP Version 3 not supported", "10.0.0.1"),
            (pdu(keepalive(1), length=15), "malformedTlv", "LDP PDU Messages are malformed", "10.0.0.1"),
            (pdu(keepalive(1))[:17], "badPduLength", "PDU too small, size = 17", "10.0.0.1"),
            (b"\0", "badPduLength", "PDU too small, size = 1", "0.0.0.0"),
        ]
        for octets, code, reason, lsr in cases:
            with self.subTest(reason):
                result = decode_hex([octets, pdu(keepalive(2))], "--json", "--full")
                bad, good = result.objects
                self.assertEqual((bad["valid"], bad["pduStatus"], bad["pduReason"], bad["lsrId"]), (False, code, reason, lsr))
                self.assertNotIn("type", bad)
                self.assertEqual(bad["text"], "Error LDP PDU: " + reason)
                self.assertEqual((good["line"], good["msgId"], result.status), (2, 2, 1))

    def test_fatal(self):
        first = keepalive(1)
        deep = message(0x0400, 2, tlv(0x0100, p2mp(b"x" * 250)), LABEL)
        cases = [
            ("message length 65532", pdu(first + message(0x0201, 2, length=65532)), 10 + 8),
            ("TLV length 65532", pdu(first, message(0x0201, 2, tlv(0x0400, length=65532))), 10 + 8 + 8),
            ("multicast element of 260 octets", pdu(first, deep), 10 + 8 + 8 + 4),
        ]
        for name, octets, offset in cases:
            with self.subTest(name):
                result = decode_hex([octets, pdu(keepalive(3))], "--json", "--full")
                fatal, good = result.objects
                self.assertEqual((fatal["line"], fatal["valid"], fatal["fatalOffset"], fatal["lsrId"], fatal["pduLength"]),
                                 (1, False, offset, "10.0.0.1", len(octets) - 4))
                self.assertEqual("unboundedP2mpDump" if "multicast" in name else "wrappedUnit", fatal["fatal"])
                self.assertNotIn("type", fatal)
                status = 3 if "multicast" in name else 1  # it may be good, and is more than the library takes
                self.assertEqual((good["msgId"], result.status), (3, status))
                for form in ([], ["--full"], ["--stats"], ["--count"]):
                    self.assertEqual(decode_hex([octets], *form).status, status)
        # One octet less is an ordinary message.
        (o,) = decode_hex([pdu(message(0x0400, 2, tlv(0x0100, p2mp(b"x" * 245)), LABEL))], "--json").objects
        self.assertEqual((o["valid"], len(o["fec"]["elements"][0]["opaque"])), (True, 490))

    def test_octets_that_are_no_text(self):
        every = bytes(range(256))
        for part in (every[i : i + 64] for i in range(0, 256, 64)):
            octets = pdu(message(0x0400, 1, tlv(0x0100, pw_element(pw=1, params=bytes([3, 2 + len(part)]) + part)), LABEL))
            result = decode_hex([octets], "--json", "--full")  # strict UTF-8 and JSON, or this fails
            (o,) = result.objects
            self.assertEqual(o["fec"]["elements"][0]["description"], part.decode("latin-1"))
            self.assertIn(part.decode("latin-1"), o["text"])
            for form in ([], ["--full"]):
                printed = decode_hex([octets], *form).raw
                self.assertTrue(all(32 <= c < 127 or c == 10 for c in printed), printed)


if __name__ == "__main__":
    unittest.main()
