"""JSON of watch and explain: the schema that follows from the types, the views, the changes."""

import glob
import json
import os
import sys
import unittest

import ldptool
from ldptool import CAPTURES, pcap, run
from talk import TEN, Talk, fec, label, pw_id, rows

sys.path.insert(0, os.path.join(CAPTURES, os.pardir, os.pardir, "scripts"))
from json_schema import schema_of

TIMERS = os.path.join(CAPTURES, "timers.pcap")


def tree_of(*arguments):
    return json.loads(run("watch", "--json", *arguments).raw)


class Json(unittest.TestCase):
    def test_schema_made_of_the_types(self):
        try:
            import jsonschema
        except ImportError:
            self.skipTest("python3-jsonschema is not installed")
        schema = schema_of(run("types", "--json").objects, "LdpTool::Network")
        validator = jsonschema.Draft202012Validator(schema)
        for path in glob.glob(os.path.join(CAPTURES, "*.pcap")):
            self.assertEqual([error.message for error in validator.iter_errors(tree_of(path))], [], path)
        tree = tree_of(TIMERS)
        state = next(iter(tree["speaker"].values()))["ldpStatusColl"]["status"]["default"]
        session = state["ldpSessionStatusColl"]["sessionStatus"]["10.255.0.2:0"]
        for wrong in ({"operKeepAliveTime": "30"}, {"ldpSessionState": "up"}, {"news": 1}, {"peerIntfIp": ["'10.0.0.1'", {}]}):
            before = dict(session)
            session.update(wrong)
            self.assertFalse(validator.is_valid(tree), wrong)
            session.clear()
            session.update(before)

    def test_changes_lead_to_the_tree(self):
        tree, last = tree_of(TIMERS), {}
        for change in run("watch", "--json", "--follow", TIMERS).objects:
            path = tuple(change["path"])
            if change["value"] in (None, {}):  # what comes to stand there begins anew
                last = {other: value for other, value in last.items() if other[: len(path)] != path}
            last[path] = change["value"]
        checked = 0
        for path, value in last.items():
            at = tree
            for step in path:
                at = at.get(step) if isinstance(at, dict) else None
            if at is not None and not isinstance(value, (dict, list)) and value is not None:
                checked += 1
                self.assertEqual(at, value, path)
        self.assertGreater(checked, 500)

    def test_views(self):
        talk = Talk()
        talk.say(2, 0x0400, fec(TEN), label(100))
        talk.say(2, 0x0400, fec(pw_id(7)), label(500))
        result = ldptool.watch(pcap(talk.frames), "--json", "--neighbors", "--bindings", "--pseudowires", "--history")
        views = json.loads(result.raw)
        tables = rows(ldptool.watch(pcap(talk.frames), "--neighbors").out)
        self.assertEqual([row["speaker"] for row in views["neighbors"]], list(tables))
        neighbor = views["neighbors"][0]
        self.assertEqual((neighbor["peer"], neighbor["session"], neighbor["role"], neighbor["lastDown"], neighbor["oneSided"]),
                         ("10.0.0.2:0", "Operational", "passive", None, False))
        (adjacency,) = neighbor["adjacencies"]
        self.assertEqual(adjacency["helloFrom"], "10.0.0.2")
        self.assertIn({"speaker": "10.0.0.2:0", "prefix": "10.1.0.0/16", "local": [100], "peer": "10.0.0.1:0", "advertised": True,
                       "remote": [], "inUse": False}, views["bindings"])
        self.assertIn({"speaker": "10.0.0.1:0", "peer": "10.0.0.2:0", "pwId": 7, "type": "pwTypeRaw", "local": None,
                       "remote": {"label": 500, "controlWord": True, "mtu": 1500, "pwStatus": 0}, "status": "no local label"},
                      views["pseudowires"])
        self.assertEqual([change["to"] for change in views["history"] if change["what"] == "session"][-1], "Operational")

    def test_explain(self):
        (accounts,) = run("explain", "--json", TIMERS).objects
        text = run("explain", TIMERS).out
        self.assertEqual(sum(len(account.get("findings", [])) for account in accounts), text.count("\n  ! "))
        for account in accounts:
            for finding in account.get("findings", []):
                self.assertIn(finding["what"], text)
                self.assertTrue(all(isinstance(frame, int) for frame in finding["frames"]))


if __name__ == "__main__":
    unittest.main()
