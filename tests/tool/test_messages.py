"""The JSON form of every kind of message, from packets in hexadecimal: the fields, their names and their order are what scripts
rely on. And the two inputs that must not reach the parser."""

import unittest

from ldptool import *

PREFIX = prefix("10.1.2.0", 24)
LABEL = tlv(0x0200, struct.pack("!I", 77))
FEC = tlv(0x0100, PREFIX)


def status(word, ident=0, kind=0):
    return tlv(0x0300, struct.pack("!IIH", word, ident, kind))


def pw_element(pw_type=5, group=0, pw=None, params=b"", info_length=None):
    info = b"" if pw is None else struct.pack("!I", pw) + params
    return struct.pack("!BHBI", 128, pw_type, len(info) if info_length is None else info_length, group) + info


def p2mp(opaque, root="10.0.0.1"):
    octets = address(root)
    return struct.pack("!BHB", 6, 1 if len(octets) == 4 else 2, len(octets)) + octets + struct.pack("!H", len(opaque)) + opaque


GOOD_FEC = {"valid": True, "status": "success", "reason": "", "elements": [{"type": "prefix", "prefix": "10.1.2.0/24"}]}
COMMON = ["line", "lsrId", "labelSpace", "pduLength", "pduStatus", "pduReason", "type", "typeValue", "unknownBit", "msgId",
          "msgLength", "status", "reason", "valid", "text"]

SESSION = struct.pack("!HHBBH", 1, 180, 0xC0, 7, 4096) + address("10.0.0.2") + b"\0\3"

# name: (message, type, what follows the common fields, a piece of the text)
GOOD = {
    "link hello": (message(0x0100, 1, tlv(0x0400, struct.pack("!HH", 15, 0))), "LdpHello",
                   {"hello": {"holdTime": 15, "targeted": False, "requestTargeted": False}}, "HT(15),0,0"),
    "targeted hello": (message(0x0100, 1, tlv(0x0400, struct.pack("!HH", 45, 0xC000)), tlv(0x0401, address("10.9.9.9")),
                               tlv(0x0402, struct.pack("!I", 8))), "LdpHello",
                       {"hello": {"holdTime": 45, "targeted": True, "requestTargeted": True, "ipv4": "10.9.9.9",
                                  "configSeqNum": 8}}, "LDP Hello Msg:"),
    "hello over IPv6": (message(0x0100, 1, tlv(0x0400, struct.pack("!HH", 15, 0)), tlv(0x0403, address("2001:db8::1"))), "LdpHello",
                        {"hello": {"holdTime": 15, "targeted": False, "requestTargeted": False, "ipv6": "2001:db8::1"}}, "2001:db8::1"),
    "init": (message(0x0200, 1, tlv(0x0500, SESSION), tlv(0x8503, struct.pack("!HHII", 1, 0, 1000, 2000)),
                     tlv(0x850B, b"\x80"), tlv(0x8508, b"\0")), "LdpInit",
             {"init": {"version": 1, "keepAlive": 180, "advDiscipline": True, "loopDetect": True, "pathVecLim": 7, "maxPdu": 4096,
                       "receiver": "10.0.0.2:3",
                       "capabilities": [{"type": 0x508, "name": "p2mpCapabilityTlv", "state": False},
                                        {"type": 0x50B, "name": "typedWildcardFecCapabilityTlv", "state": True}],
                       "ft": {"flags": 1, "reconnect": 1000, "recovery": 2000}}}, "LDP Init Msg:"),
    "keep alive": (keepalive(1), "LdpKeepAlive", {}, "LdpKeepAlive, Id: 0x00000001, numTlv: 0"),
    "notification": (message(0x0001, 1, status(0x8000000A)), "LdpNotification",
                     {"notification": {"error": True, "forward": False, "statusData": 10, "statusName": "shutdown", "refMsgId": 0,
                                       "refMsgType": 0}}, "LDP Notification Msg:"),
    "notification of an unknown status": (message(0x0001, 1, status(0x40000123, 9, 0x400)), "LdpNotification",
                                          {"notification": {"error": False, "forward": True, "statusData": 0x123, "statusName": "291",
                                                            "refMsgId": 9, "refMsgType": 0x400}}, "291"),
    "pseudowire status": (message(0x0001, 1, status(40), tlv(0x096A, b"\0\0\0\x18"), tlv(0x0100, pw_element(pw=9))), "LdpNotification",
                          {"fec": {"valid": True, "status": "success", "reason": "",
                                   "elements": [{"type": "pwId", "pwId": 9, "pwType": 5, "controlWord": False, "groupId": 0}]},
                           "notification": {"error": False, "forward": False, "statusData": 40, "statusName": "pwStatus",
                                            "refMsgId": 0, "refMsgType": 0, "pwStatus": 0x18}}, "0x00000018"),
    "address": (message(0x0300, 1, tlv(0x0101, b"\0\1" + address("10.0.0.1") + address("10.0.0.2"))), "LdpAddress",
                {"addresses": {"family": "ipv4", "list": ["10.0.0.1", "10.0.0.2"]}}, "LDP Address Msg:"),
    "address withdraw": (message(0x0301, 1, tlv(0x0101, b"\0\2" + address("2001:db8::7"))), "LdpAddressWithdraw",
                         {"addresses": {"family": "ipv6", "list": ["2001:db8::7"]}}, "LDP Address Withdraw Msg:"),
    "mapping": (message(0x0400, 1, FEC, LABEL), "LdpLabelMapping", {"fec": GOOD_FEC, "label": 77}, "10.1.2.0/24"),
    "mapping with everything": (
        message(0x0400, 1, FEC, LABEL, tlv(0x0600, b"\0\0\0\5"), tlv(0x0103, b"\3"), tlv(0x0104, address("1.1.1.1") + address("2.2.2.2")),
                tlv(0x096A, b"\0\0\0\1")), "LdpLabelMapping",
        {"fec": GOOD_FEC, "label": 77, "hopCount": 3, "pathVector": ["1.1.1.1", "2.2.2.2"], "reqMsgId": 5, "pwStatus": 1}, "LDP Label Mapping"),
    "mapping of several elements": (
        message(0x0400, 1, tlv(0x0100, prefix("0.0.0.0", 0) + struct.pack("!BHB", 3, 1, 4) + address("10.5.5.5") + prefix("2001:db8::", 33)),
                LABEL), "LdpLabelMapping",
        {"fec": {"valid": True, "status": "success", "reason": "",
                 "elements": [{"type": "prefix", "prefix": "0.0.0.0/0"}, {"type": "host", "prefix": "10.5.5.5/32"},
                              {"type": "prefix", "prefix": "2001:db8::/33"}]}, "label": 77}, ""),
    "mapping of a multicast tree": (message(0x0400, 1, tlv(0x0100, p2mp(b"\1\0\4\0\0\0\x2a")), LABEL), "LdpLabelMapping",
                                    {"fec": {"valid": True, "status": "success", "reason": "",
                                             "elements": [{"type": "p2mp", "root": "10.0.0.1", "opaque": "0100040000002a"}]},
                                     "label": 77}, ""),
    "mapping of a pseudowire": (
        message(0x0400, 1, tlv(0x0100, pw_element(0x8004, 6, 100, b"\1\4\5\xdc" + b"\3\6if\xe9\0" + b"\6\4\0\x0a" + b"\x09\4\0\1" + b"\x0c\4\3\x21")),
                LABEL), "LdpLabelMapping",
        {"fec": {"valid": True, "status": "success", "reason": "",
                 "elements": [{"type": "pwId", "pwId": 100, "pwType": 4, "controlWord": True, "groupId": 6, "mtu": 1500,
                               "description": "if\xe9\0", "requestedVlan": 10, "fragmentation": True, "vccvCc": 3, "vccvCv": 0x21}]},
         "label": 77}, ""),
    "request": (message(0x0401, 1, FEC, tlv(0x0103, b"\1"), tlv(0x0104, address("1.1.1.1"))), "LdpLabelRequest",
                {"fec": GOOD_FEC, "hopCount": 1, "pathVector": ["1.1.1.1"]}, "LDP Label Request Msg:"),
    "abort": (message(0x0404, 1, FEC, tlv(0x0600, b"\0\0\0\5")), "LdpLabelAbortReq", {"fec": GOOD_FEC, "reqMsgId": 5}, "LDP Label Abort"),
    "withdraw of all": (message(0x0402, 1, tlv(0x0100, b"\1")), "LdpLabelWithdraw",
                        {"fec": {"valid": True, "status": "success", "reason": "", "elements": [{"type": "wildcard"}]}}, "[Wildcard]"),
    "withdraw of a group of pseudowires": (
        message(0x0402, 1, tlv(0x0100, pw_element(group=3))), "LdpLabelWithdraw",
        {"fec": {"valid": True, "status": "success", "reason": "",
                 "elements": [{"type": "pwId", "pwType": 5, "controlWord": False, "groupId": 3}]}}, ""),
    "release with label and status": (
        message(0x0403, 1, FEC, LABEL, status(36, 4, 0x400)), "LdpLabelRelease",
        {"fec": GOOD_FEC, "label": 77,
         "statusTlv": {"error": False, "forward": False, "statusData": 36, "statusName": "illegalCBit", "refMsgId": 4,
                       "refMsgType": 0x400}}, "LDP Label Release Msg:"),
    "release of a bad FEC": (message(0x0403, 1, tlv(0x0100, PREFIX + b"\5")), "LdpLabelRelease",
                             {"fec": {"valid": False, "status": "unknownFec", "reason": "Unhandled FEC TLV Element type 0x05",
                                      "elements": GOOD_FEC["elements"]}}, "LDP Label Release Msg:"),
    "capability": (message(0x0202, 1, tlv(0x8508, b"\x80")), "LdpCapability",
                   {"capability": {"valid": True, "status": "success", "reason": "",
                                   "text": "LDP Capability Msg:\n   Msg Id: 1\n   p2mpCapabilityTlv: State(1)",
                                   "capabilities": [{"type": 0x508, "name": "p2mpCapabilityTlv", "state": True}]}},
                   "LdpCapability, Id: 0x00000001, numTlv: 1"),
}

# name: (message, type, status, reason)
BAD = {
    "unknown type": (message(0x3000, 1), "12288", "unknownMessageType", "Unknown Message Type: 12288"),
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
        for name, (octets, kind, body, words) in GOOD.items():
            with self.subTest(name):
                result = decode_hex([pdu(octets, space=5)], "--json")
                self.assertEqual((result.err, result.status), ("", 0))
                (o,) = result.objects
                self.assertEqual(list(o), COMMON + list(body))
                self.assertEqual([list(o[key]) for key in body if isinstance(o[key], dict)],
                                 [list(value) for value in body.values() if isinstance(value, dict)])
                text = o.pop("text")
                self.assertIn(words, text)
                self.assertEqual(o, {
                    "line": 1, "lsrId": "10.0.0.1", "labelSpace": 5, "pduLength": len(octets) + 6, "pduStatus": "success",
                    "pduReason": "", "type": kind, "typeValue": int.from_bytes(octets[:2], "big"), "unknownBit": False, "msgId": 1,
                    "msgLength": len(octets) - 4, "status": "success", "reason": "success" if kind == "LdpInit" else "",
                    "valid": True, **body})

    def test_bad(self):
        for name, (octets, kind, code, reason) in BAD.items():
            with self.subTest(name):
                result = decode_hex([pdu(octets) + b"\0"], "--json")
                self.assertEqual(result.status, 1)
                (o,) = result.objects
                self.assertEqual((o["type"], o["status"], o["reason"], o["valid"]), (kind, code, reason, False))
                self.assertEqual(list(o)[: len(COMMON)], COMMON)
                self.assertTrue(set(o) - set(COMMON) <= {"fec"})
                line = decode_hex([pdu(octets) + b"\0"]).out
                self.assertIn(f"BAD {code}: {reason}", line)

    def test_unknown_type_to_be_ignored_is_not_bad(self):
        result = decode_hex([pdu(message(0xB000, 1), keepalive(2))], "--json")
        first, second = result.objects
        self.assertEqual((first["type"], first["typeValue"], first["unknownBit"], first["status"], first["valid"]),
                         ("12288", 12288, True, "unknownMessageTypeIgnore", False))
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
                result = decode_hex([octets, pdu(keepalive(2))], "--json")
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
                result = decode_hex([octets, pdu(keepalive(3))], "--json")
                fatal, good = result.objects
                self.assertEqual((fatal["line"], fatal["valid"], fatal["fatalOffset"], fatal["lsrId"], fatal["pduLength"]),
                                 (1, False, offset, "10.0.0.1", len(octets) - 4))
                self.assertEqual("unboundedP2mpDump" if "multicast" in name else "wrappedUnit", fatal["fatal"])
                self.assertNotIn("type", fatal)
                self.assertEqual((good["msgId"], result.status), (3, 1))
                for form in ([], ["--full"], ["--stats"], ["--count"]):
                    self.assertEqual(decode_hex([octets], *form).status, 1)
        # One octet less is an ordinary message.
        (o,) = decode_hex([pdu(message(0x0400, 2, tlv(0x0100, p2mp(b"x" * 245)), LABEL))], "--json").objects
        self.assertEqual((o["valid"], len(o["fec"]["elements"][0]["opaque"])), (True, 490))

    def test_octets_that_are_no_text(self):
        every = bytes(range(256))
        for part in (every[i : i + 64] for i in range(0, 256, 64)):
            octets = pdu(message(0x0400, 1, tlv(0x0100, pw_element(pw=1, params=bytes([3, 2 + len(part)]) + part)), LABEL))
            result = decode_hex([octets], "--json")  # strict UTF-8 and JSON, or this fails
            (o,) = result.objects
            self.assertEqual(o["fec"]["elements"][0]["description"], part.decode("latin-1"))
            self.assertIn(part.decode("latin-1"), o["text"])
            for form in ([], ["--full"]):
                printed = decode_hex([octets], *form).raw
                self.assertTrue(all(32 <= c < 127 or c == 10 for c in printed), printed)


if __name__ == "__main__":
    unittest.main()
