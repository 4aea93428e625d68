"""Every capture of tests/captures, decoded with --json, beside what an independent dissector made of it: message by message and
field by field. Where the two rightly differ the tables below list the rows and say why; any other difference fails."""

import csv
import glob
import os
import unittest

from ldptool import CAPTURES, run

# Messages that this decoder refuses and the dissector prints: (status, reason, why). Their header fields are compared all the
# same. The key is (capture, frame, number of the PDU in the frame, number of the message in the PDU).
MAC_WITHDRAW = ("malformedTlv", "malformedTlv", "a MAC withdraw (RFC 4762): its address list is empty, which is no address list here")
IGNORED = "unknownMessageTypeIgnore"
REFUSED = {
    ("pw-targeted", 84, 1, 1): MAC_WITHDRAW,
    ("pw-targeted", 86, 1, 1): MAC_WITHDRAW,
    ("pw-targeted", 107, 1, 1): MAC_WITHDRAW,
    ("pw-targeted", 110, 1, 1): MAC_WITHDRAW,
    ("synthetic-mixed", 11, 1, 1): ("malformedTlv", "mbbCapabilityTlv TLV is not the right size", "it has 2 octets instead of 1"),
    ("synthetic-mixed", 27, 1, 4): ("unknownFec", "Unhandled FEC TLV Element type 0x08", "MP2MP elements are not handled"),
    ("synthetic-mixed", 27, 1, 5): ("unknownFec", "Unhandled FEC TLV Element type 0x07", "MP2MP elements are not handled"),
    ("synthetic-mixed", 30, 1, 3): ("unknownFec", "Invalid FEC PW ID Element: Unknown PW type 0x0011", "not an Ethernet pseudowire"),
    ("synthetic-mixed", 30, 1, 4): ("unknownTlv", "Unknown TLV Type: 2412", "generalized pseudowires are not handled"),
    ("synthetic-mixed", 30, 1, 5): ("unknownTlv", "Unknown TLV Type: 2411", "generalized pseudowires are not handled"),
    ("synthetic-mixed", 34, 1, 1): (IGNORED, "Unknown Message Type: 15873", "vendor-private, to be ignored by its U bit"),
    ("synthetic-mixed", 34, 1, 2): (IGNORED, "Unknown Message Type: 16130", "experimental, to be ignored by its U bit"),
    ("synthetic-mixed", 34, 1, 3): (IGNORED, "Unknown Message Type: 1911", "unknown, to be ignored by its U bit"),
    ("synthetic-mixed", 73, 1, 2): ("missingMessageParams", "Missing LdpGenLabelTlv", "an ATM label is passed over"),
    ("synthetic-mixed", 73, 1, 3): ("missingMessageParams", "Missing LdpGenLabelTlv", "a Frame Relay label is passed over"),
}

# Messages that only this decoder finds.
ADDITIONAL = {
    ("synthetic-mixed", 57, 0x68): "its segment came early and waits for frame 58; the dissector does not put such segments in order",
    ("synthetic-mixed", 63, 0x6d): "the same, behind frame 64",
}

# Fields of valid messages that the dissector prints and this decoder does not: (capture, frame, field).
PASSED_OVER = {
    ("synthetic-mixed", 24, "lbl_req_id"): "a Label Request Message ID TLV has no meaning in a Notification",
}

CAPABILITIES = {0x0506, 0x0507, 0x0508, 0x0509, 0x050A, 0x050B, 0x050C, 0x050D, 0x050E, 0x050F, 0x0603}


def oracle_rows(name):
    with open(os.path.join(CAPTURES, name + ".oracle.tsv"), encoding="ascii") as file:
        rows = list(csv.DictReader((line.lstrip("#") for line in file), delimiter="\t"))
    return [row for row in rows if row["type"] != "MALFORMED"]


def fec_text(element):
    """A FEC element of the JSON in the words of the oracle, without what only one of the two has."""
    kind = element["type"]
    if kind == "wildcard":
        return "wildcard"
    if kind == "prefix":
        return "prefix/%s/%s" % ("ipv6" if ":" in element["prefix"] else "ipv4", element["prefix"])
    if kind == "p2mp":
        return "p2mp/af=%d/root=%s/oplen=%d/opaque=%s" % (
            2 if ":" in element["root"] else 1, element["root"], len(element["opaque"]) // 2, element["opaque"])
    text = "pwid/c=%d/type=0x%04x/group=%d/id=%d" % (
        element["controlWord"], element["pwType"], element["groupId"], element["pwId"])
    names = {"mtu": "0x01", "description": "0x03", "requestedVlan": "0x06", "fragmentation": "0x09", "vccvCc": "0x0c"}
    params = "+".join(code for name, code in names.items() if name in element)
    return text + ("/mtu=%d" % element["mtu"] if "mtu" in element else "") + ("/params=" + params if params else "")


def without_length(fec):
    """infolen counts the octets of the parameters, which the JSON has one by one."""
    return "/".join(part for part in fec.split("/") if not part.startswith("infolen="))


def status_fields(status):
    return {"E": str(int(status["error"])), "F": str(int(status["forward"])), "status": "0x%08x" % status["statusData"],
            "smsgid": "0x%08x" % status["refMsgId"], "smsgtype": "0x%04x" % status["refMsgType"]}


def detail_fields(o):
    """The fields of a JSON object that the oracle's last column has, in its words."""
    fields = {}
    if hello := o.get("hello"):
        fields |= {"hold": str(hello["holdTime"]), "T": str(int(hello["targeted"])), "R": str(int(hello["requestTargeted"]))}
        names = {"ipv4": "taddr4", "ipv6": "taddr6", "configSeqNum": "cfgseq"}
        fields |= {theirs: str(hello[ours]) for ours, theirs in names.items() if ours in hello}
    if init := o.get("init"):
        lsr, space = init["receiver"].split(":")
        fields |= {"sver": str(init["version"]), "ka": str(init["keepAlive"]), "A": str(int(init["advDiscipline"])),
                   "D": str(int(init["loopDetect"])), "pvlim": str(init["pathVecLim"]), "mxpdu": str(init["maxPdu"]),
                   "rxlsr": lsr, "rxls": space}
        if ft := init.get("ft"):
            fields |= {"ftflags": "0x%04x" % ft["flags"], "ftre": str(ft["reconnect"]), "ftrec": str(ft["recovery"])}
    if status := o.get("notification") or o.get("statusTlv"):
        fields |= status_fields(status)
    if addresses := o.get("addresses"):
        fields["addrs"] = ",".join(addresses["list"])
    if "hopCount" in o:
        fields["hc"] = str(o["hopCount"])
    if "pathVector" in o:
        fields["pv"] = ",".join(o["pathVector"])
    if "reqMsgId" in o:
        fields["lbl_req_id"] = "0x%08x" % o["reqMsgId"]
    return fields


def capability_types(row):
    types = [int(tlv.lstrip("UF").split(":")[0], 16) for tlv in row["tlvs"].split() if tlv != "-"]
    return sorted(set(types) & CAPABILITIES)


class Oracle(unittest.TestCase):
    maxDiff = None

    def check_capture(self, name):
        result = run("decode", "--json", os.path.join(CAPTURES, name + ".pcap"))
        self.assertEqual(result.err, "")
        objects, additional = [], []
        for o in result.objects:
            (additional if (name, o["frame"], o.get("msgId")) in ADDITIONAL else objects).append(o)
        self.assertEqual(len(additional), sum(key[0] == name for key in ADDITIONAL))
        rows = oracle_rows(name)
        self.assertEqual(len(objects), len(rows))
        refused = passed_over = 0
        for o, row in zip(objects, rows):
            key = (name, int(row["frame"]), int(row["pdu"]), int(row["msg"]))
            with self.subTest(key=key):
                self.check_header(o, row)
                self.assertEqual(o["valid"], key not in REFUSED, o["reason"])
                if o["valid"]:
                    passed_over += self.check_body(name, o, row)
                else:
                    refused += 1
                    self.assertEqual((o["status"], o["reason"]), REFUSED[key][:2])
        # No line of the tables is idle.
        self.assertEqual(refused, sum(key[0] == name for key in REFUSED))
        self.assertEqual(passed_over, sum(key[0] == name for key in PASSED_OVER))
        bad = any(not o["valid"] and o["status"] != "unknownMessageTypeIgnore" for o in objects)
        self.assertEqual(result.status, int(bad))

    def check_header(self, o, row):
        ours = (o["frame"], o["pduLength"], o["lsrId"], o["labelSpace"], o["pduStatus"], int(o["unknownBit"]), o["typeValue"],
                o["msgLength"], o["msgId"])
        theirs = (int(row["frame"]), int(row["pdu_len"]), row["lsr_id"], int(row["label_space"]), "success", int(row["ubit"]),
                  int(row["type"], 16), int(row["msg_len"]), int(row["msg_id"], 16))
        self.assertEqual(ours, theirs)

    def check_body(self, name, o, row):
        """Returns how many fields of PASSED_OVER the message has."""
        passed_over = 0
        fec = ";".join(map(fec_text, o["fec"]["elements"])) if "fec" in o else "-"
        self.assertEqual(fec, without_length(row["fec"]))
        self.assertEqual(str(o.get("label", "-")), row["label"])
        ours, theirs = detail_fields(o), {}
        for field in row["detail"].split():
            if field == "-":
                continue
            key, value = field.split("=")
            if (name, o["frame"], key) in PASSED_OVER:
                passed_over += 1
            else:
                theirs[key] = value
        self.assertEqual(ours, theirs)
        holder = o.get("init") or o.get("capability")
        if holder:
            self.assertEqual([c["type"] for c in holder["capabilities"]], capability_types(row))
        return passed_over


def add_case(name):
    setattr(Oracle, "test_" + name.replace("-", "_"), lambda self: self.check_capture(name))


for path in glob.glob(os.path.join(CAPTURES, "*.pcap")):
    add_case(os.path.basename(path)[: -len(".pcap")])

if __name__ == "__main__":
    unittest.main()
