"""ldptool watch and ldptool types: the model of a capture, its changes, its replica, and the type table."""

import glob
import json
import os
import subprocess
import unittest

LDPTOOL = os.environ["LDPTOOL"]
CAPTURES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "captures")


def run(*arguments):
    done = subprocess.run([LDPTOOL, *arguments], capture_output=True, text=True, timeout=300)
    return done.returncode, done.stdout, done.stderr


def capture(name):
    return os.path.join(CAPTURES, name + ".pcap")


def watched(name):
    status, out, err = run("watch", "--json", capture(name))
    assert (status, err) == (0, ""), (status, err)
    return json.loads(out)["speaker"]


class Watch(unittest.TestCase):
    def test_adjacencies_are_those_of_the_links(self):
        speakers = watched("timers")
        self.assertEqual(set(speakers), {"10.255.0.1:0", "10.255.0.2:0", "10.255.0.3:0"})
        adjacencies = speakers["10.255.0.1:0"]["adjStatusColl"]["adjStatus"]
        self.assertEqual(set(adjacencies), {"10.255.0.2:0_10.0.12.0/24", "10.255.0.3:0_10.0.13.0/24"})
        adjacency = adjacencies["10.255.0.2:0_10.0.12.0/24"]
        self.assertEqual(adjacency["peerIpAddr"], "10.255.0.2")
        self.assertEqual(adjacency["peerSrcIpAddr"], "10.0.12.2")
        self.assertEqual(adjacency["operHoldTime"], "120")
        self.assertEqual(set(speakers["10.255.0.1:0"]["peerConfigColl"]["peerConfig"]), {"10.255.0.2:0", "10.255.0.3:0"})

    def test_sessions_tell_their_history(self):
        status = watched("basic-v4")["10.255.0.1:0"]["sessionStatusColl"]["sessionStatus"]["10.255.0.2:0"]
        self.assertIn("stateNonExist, 'code': shutdown", status["ldpSessionState"])
        history = status["sessionStateLogEntryColl"]["sessionStateLogEntry"]
        states = [next(s for s in ("OpenSent", "OpenRecv", "Operational", "NonExist") if "state" + s in entry)
                  for entry in (history[str(i)] for i in sorted(map(int, history)))]
        self.assertEqual(states[-2:], ["Operational", "NonExist"])
        self.assertEqual((status["operKeepAliveTime"], status["addressMsgRcvd"], status["addressMsgTsmt"]),
                         ("180", "True", "True"))

    def test_hold_timers_run_by_the_clock_of_the_capture(self):
        status, out, _ = run("watch", "--follow", capture("timers"))
        self.assertEqual(status, 0)
        self.assertIn("holdTimerExpired", out)
        self.assertRegex(out, r"(?m)^\d\d:\d\d:\d\d\.\d{6} network/speaker\[\S+\]/\S+ \S+( = |\[)")
        self.assertNotIn("\n   ", out)  # changes alone, no tree

    def test_replica_agrees_on_every_capture(self):
        files = sorted(glob.glob(os.path.join(CAPTURES, "*.pcap")))
        self.assertGreater(len(files), 5)
        for file in files:
            self.assertEqual(run("watch", "--replicate", "--check", file), (0, "the replica agrees\n", ""), file)

    def test_replica_prints_what_it_holds(self):
        status, out, _ = run("watch", "--replicate", capture("basic-v4"))
        self.assertEqual(status, 0)
        original, replica = out.split("\nnetwork\n")
        self.assertIn("rxPktCount = 0\n", replica)  # counters stay in their process
        self.assertNotIn("rxPktCount = 0\n", original)
        for line in ("adjStatus[10.255.0.2:0_10.0.12.0/24]", "sessionStatus[10.255.0.2:0]", "sessionStateLogEntry[0]"):
            self.assertIn(line, replica)

    def test_usage(self):
        self.assertEqual(run("watch")[0], 2)
        self.assertEqual(run("watch", "--check", capture("basic-v4"))[0], 2)
        status, out, err = run("watch", "/nowhere.pcap")
        self.assertEqual(status, 2)
        self.assertEqual(err.count("\n"), 1)


class Types(unittest.TestCase):
    def test_table_as_json(self):
        status, out, _ = run("types", "--json")
        self.assertEqual(status, 0)
        types = {row["type"]: row for row in map(json.loads, out.splitlines())}
        adj = types["Ldp::LdpAdjStatus"]
        self.assertEqual((adj["kind"], adj["base"], adj["ctor"]),
                         ("entity", "Vorn::Entity", [["ldpAdjId", "Ldp::LdpAdjId"]]))
        self.assertEqual(len(adj["attributes"]), 16)
        self.assertIn({"name": "adjStatusCode", "id": 259, "type": "Ldp::LdpStatusCode", "key": None,
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
        status, out, _ = run("types", "LdpAdj*Coll")
        self.assertEqual(status, 0)
        self.assertEqual([line.split()[0] for line in out.splitlines() if line and line[0] != " "],
                         ["Ldp::LdpAdjConfigColl", "Ldp::LdpAdjStatusColl"])
        self.assertEqual(run("types", "NoSuch*")[0], 2)


if __name__ == "__main__":
    unittest.main()
