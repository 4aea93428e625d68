"""ldptool types: the type table."""

import json
import unittest

from ldptool import run


class Types(unittest.TestCase):
    def test_table_as_json(self):
        result = run("types", "--json")
        self.assertEqual(result.status, 0)
        types = {row["type"]: row for row in map(json.loads, result.out.splitlines())}
        adj = types["Ldp::LdpAdjStatus"]
        self.assertEqual((adj["kind"], adj["base"], adj["ctor"]),
                         ("entity", "Vorn::Entity", [["ldpAdjId", "Ldp::LdpAdjId"]]))
        self.assertEqual(len(adj["attributes"]), 16)
        self.assertIn({"name": "adjStatusCode", "id": 259, "type": "Ldp::LdpStatusCode", "key": None, "kind": "mutable",
                       "flags": "0xb80001ff00000103", "logged": True, "instantiating": False}, adj["attributes"])
        self.assertEqual(types["Ldp::LdpAdjType"]["kind"], "enum")
        self.assertEqual(types["Ldp::LdpAdjType"]["enumerators"], {"LdpLinkAdj": 1, "LdpTargetAdj": 2})
        self.assertEqual(types["Ldp::LdpAdjId"]["kind"], "value")
        hello = types["Ldp::LdpHelloMsgParser"]
        self.assertEqual((hello["kind"], hello["base"], hello["ctor"]),
                         ("object", "Ldp::LdpMsgParser", [["pkt", "Lumo::Pkt"], ["offset", "U32"]]))
        self.assertEqual((types["Ldp::LdpTlvHdr"]["kind"], types["Ldp::LdpHopCountTlv"]["base"]), ("overlay", "Ldp::LdpTlvHdr"))
        coll = types["Ldp::LdpAdjStatusColl"]
        self.assertEqual(coll["ctor"], [["name", "Vorn::Name"]])
        self.assertTrue(coll["attributes"][-1]["instantiating"])

    def test_pattern(self):
        result = run("types", "LdpAdj*Coll")
        self.assertEqual(result.status, 0)
        self.assertEqual([line.split()[0] for line in result.out.splitlines() if line and line[0] != " "],
                         ["Ldp::LdpAdjConfigColl", "Ldp::LdpAdjStatusColl"])
        self.assertEqual(run("types", "NoSuch*").status, 2)


if __name__ == "__main__":
    unittest.main()
