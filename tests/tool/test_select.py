"""Which part of a capture is looked at, and how its times read."""

import json
import os
import re
import unittest

import ldptool
from ldptool import *
from talk import ELEVEN, TEN, WILDCARD, Talk, fec, label

BASIC, TIMERS = (os.path.join(CAPTURES, name + ".pcap") for name in ("basic-v4", "timers"))
ALL = run("decode", "--json", BASIC).objects


class Select(unittest.TestCase):
    def check(self, options, expected):
        self.assertTrue(0 < len(expected) < len(ALL))
        self.assertEqual(run("decode", "--json", *options, BASIC).objects, expected)

    def test_ranges_and_filters(self):
        middle = ALL[len(ALL) // 2]
        self.check(["--from", str(middle["frame"])], [o for o in ALL if o["frame"] >= middle["frame"]])
        self.check(["--to", str(middle["frame"])], [o for o in ALL if o["frame"] <= middle["frame"]])
        when = middle["time"] + 1e-6
        self.check(["--from", f"{when:.6f}"], [o for o in ALL if o["time"] >= when])
        clock = run("decode", "-t", "u", "--from", str(middle["frame"]), BASIC).out.split()[1]
        self.check(["-t", "u", "--to", clock[:8]], [o for o in ALL if o["time"] <= int(middle["time"])])
        self.check(["--bpf", "udp"], [o for o in ALL if o["proto"] == "udp"])
        self.check(["--filter", "!Hello"], [o for o in ALL if o["type"] != "LdpHello"])
        self.check(["--filter", "!Hello,!KeepAlive"], [o for o in ALL if o["type"] not in ("LdpHello", "LdpKeepAlive")])

    def test_fec_and_peer(self):
        prefixes = lambda o: [e.get("prefix", "") for e in o.get("fec", {}).get("elements", [])]
        self.check(["--fec", "10.255.0.2"], [o for o in ALL if "10.255.0.2/32" in prefixes(o)])
        self.check(["--fec", "10.255.0.0/16"], [o for o in ALL if any(p.startswith("10.255.") for p in prefixes(o))])
        timers = run("decode", "--json", "--peer", "10.255.0.3", TIMERS).objects
        self.assertEqual({o["lsrId"] for o in timers if o["proto"] == "udp"}, {"10.255.0.3"})
        self.assertTrue(all("10.255.0.3" in (o["src"], o["dst"]) for o in timers if o["proto"] == "tcp"))
        views = json.loads(run("watch", "--json", "--neighbors", "--history", "--peer", "10.255.0.3", TIMERS).raw)
        for row in views["neighbors"] + views["history"]:
            self.assertIn("10.255.0.3:0", (row["speaker"], row["peer"]))
        self.assertEqual(list(json.loads(run("watch", "--json", "--peer", "10.255.0.3", TIMERS).raw)["speaker"]), ["10.255.0.3:0"])
        self.assertEqual(re.findall(r"(?m)^   speaker\[(.*?)\]$", run("watch", "--tree", "--peer", "10.255.0.3", TIMERS).out), ["10.255.0.3:0"])
        changes = run("watch", "--json", "--follow", "--peer", "10.255.0.3", TIMERS).objects
        self.assertEqual({tuple(change["path"][:2]) for change in changes}, {("speaker", "10.255.0.3:0")})
        talk = Talk()
        talk.say(2, 0x0400, fec(TEN), label(100))
        talk.say(2, 0x0400, fec(ELEVEN), label(101))
        self.assertNotIn("10.1.0.0", ldptool.watch(pcap(talk.frames), "--bindings", "--fec", "11.0.0.0/8").out)
        talk.say(2, 0x0402, fec(WILDCARD))  # is about all of them
        self.assertEqual(len(decode(pcap(talk.frames), "--fec", "11.0.0.0/8").out.splitlines()), 2)

    def test_mistakes(self):
        for options in (["--bpf", "port"], ["--from", "noon"], ["--to", "25:00:00"], ["--fec", "10.0.0.0/33"], ["--peer", "me"],
                        ["--filter", "Hello,!KeepAlive"], ["-t", "x"]):
            with self.subTest(options):
                for command in ("decode", "watch", "explain"):
                    result = run(command, *options, BASIC)
                    self.assertEqual((result.status, len(result.err.splitlines()), result.out), (2, 1, ""), result.err)
        self.assertIn("--bindings=10.0.0.0/8", run("watch", "--bindings", "10.0.0.0/8", BASIC).err)

    def test_times(self):
        frames = [(ether(udp(pdu(keepalive(1)))), None, 41599.5), (ether(udp(pdu(keepalive(2)))), None, 41600.25)]  # about 00:00 UTC
        styles = {"u": ["23:59:59.500000 ", "2020-09-14 00:00:00.250000 UTC "], "e": ["1600041599.500000000 ", "1600041600.250000000 "],
                  "ud": ["2020-09-13 23:59:59.500000 UTC ", "2020-09-14 00:00:00.250000 UTC "],
                  "r": ["0.000000000 ", "0.750000000 "], "d": ["0.000000000 ", "0.750000000 "]}
        for style, times in styles.items():
            lines = decode(pcap(frames), "-t", style).out.splitlines()
            self.assertTrue(all(line.startswith(f"{i} {time}10.") for i, (line, time) in enumerate(zip(lines, times), 1)), lines)
        os.environ["TZ"] = "Asia/Kolkata"
        try:
            self.assertIn("05:29:59.500000 ", decode(pcap(frames)).out)
            self.assertIn("2020-09-14 05:30:00.250000 IST ", decode(pcap(frames), "-t", "ad").out)
        finally:
            del os.environ["TZ"]


if __name__ == "__main__":
    unittest.main()
