"""ldptool watch --yang and --metrics: the shapes of standards, held against the views of the same state."""

import glob
import json
import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import time
import unittest
import urllib.error
import urllib.request

from ldptool import CAPTURES, LDPTOOL, hello, pdu, run

SCRIPTS = os.path.join(os.path.dirname(__file__), "..", "..", "scripts")
NAMES = [os.path.basename(path)[:-5] for path in sorted(glob.glob(os.path.join(CAPTURES, "*.pcap")))]
SPECIAL = {"ipv4-explicit-null-label": 0, "router-alert-label": 1, "ipv6-explicit-null-label": 2, "implicit-null-label": 3}


def watch(name, *options):
    return run("watch", *options, os.path.join(CAPTURES, name + ".pcap"))


def ldp_of(document):
    (protocol,) = document["ietf-routing:routing"]["control-plane-protocols"]["control-plane-protocol"]
    assert protocol["type"] == "ietf-mpls-ldp:mpls-ldp", protocol["type"]
    return protocol["name"], protocol["ietf-mpls-ldp:mpls-ldp"]


def peer_of(entry):
    return f'{entry["lsr-id"]}:{entry["label-space-id"]}'


def number(label):
    return label if isinstance(label, int) else SPECIAL[label.removeprefix("ietf-routing-types:")]


def bindings_of(ldp):
    """{(FEC, peer, direction, label)} of both families."""
    return {(fec["fec"], peer_of(entry), entry["advertisement-type"], number(entry["label"]))
            for family in ldp["global"]["address-families"].values() for fec in family["bindings"]["fec-label"] for entry in fec["peer"]}


def samples_of(text):
    """{(name, labels)}: value, and that the text is what Prometheus reads."""
    found, kinds = {}, {}
    for line in text.splitlines():
        if line.startswith("# TYPE "):
            _, _, name, kind = line.split(" ")
            assert name not in kinds and (kind == "counter") == name.endswith("_total"), line
            kinds[name] = kind
        elif not line.startswith("# HELP "):
            name, labels, value = re.fullmatch(r'([a-z_]+)(?:\{((?:[a-z]+="[^"\\]*",?)+)\})? ([0-9.]+)', line).groups()
            key = name, tuple(re.findall(r'="([^"]*)"', labels or ""))
            assert name in kinds and key not in found, line
            found[key] = float(value)
    return found


class Yang(unittest.TestCase):
    def test_state_is_that_of_the_views(self):
        for name in NAMES:
            with self.subTest(name):
                views = json.loads(watch(name, "--json", "--neighbors", "--bindings").raw)
                rows, states = {}, {}
                for row in views["bindings"]:
                    if "prefix" in row:
                        rows.setdefault(row["speaker"], set()).update((row["prefix"], row["peer"], label) for label in row["remote"])
                for row in views["neighbors"]:
                    none = row["session"] in (None, "Unknown", "NonExist", "Expired")
                    states[row["speaker"], row["peer"]] = "non-existent" if none else row["session"].lower()
                documents = dict(map(ldp_of, watch(name, "--yang").objects))
                told = {(speaker, peer_of(peer)): peer for speaker, ldp in documents.items() for peer in ldp["peers"]["peer"]}
                self.assertEqual({key: peer["session-state"] for key, peer in told.items()}, states)
                all_bindings = {speaker: bindings_of(ldp) for speaker, ldp in documents.items()}
                for speaker, bindings in all_bindings.items():
                    self.assertEqual({(fec, peer, label) for fec, peer, way, label in bindings if way == "received"}, rows.get(speaker, set()))
                    # What a speaker has advertised is what its peer has received.
                    for fec, peer, way, label in bindings:
                        self.assertIn((fec, speaker, {"received": "advertised", "advertised": "received"}[way], label), all_bindings[peer])

    def test_a_known_peer(self):
        documents = dict(map(ldp_of, watch("any-sll", "--yang", "--until", "100").objects))
        (peer,) = (peer for peer in documents["10.255.0.1:0"]["peers"]["peer"] if peer["lsr-id"] == "10.255.0.2")
        self.assertEqual(peer["label-advertisement-mode"], dict.fromkeys(("local", "peer", "negotiated"), "downstream-unsolicited"))
        self.assertEqual(peer["session-holdtime"]["negotiated"], 180)
        self.assertEqual(sorted(peer["address-families"]), ["ietf-mpls-ldp-extended:ipv6", "ipv4"])
        self.assertEqual(peer["received-peer-state"]["capability"]["typed-wildcard-fec"], {"enabled": True})
        self.assertEqual(peer["tcp-connection"]["local-port"], 646)
        self.assertEqual(peer["statistics"]["received"]["initialization"], "1")
        self.assertRegex(peer["up-time"], r"^[1-9]\d*$")
        self.assertRegex(peer["statistics"]["discontinuity-time"], r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z$")

    def test_notifications_lead_to_the_state(self):
        for name in NAMES:
            with self.subTest(name):
                present = {"mpls-ldp-peer-event": set(), "mpls-ldp-hello-adjacency-event": set(), "mpls-ldp-fec-event": set()}
                for line in watch(name, "--yang", "--follow").objects:
                    ((kind, event),) = ((key, value) for key, value in line["ietf-restconf:notification"].items() if key != "eventTime")
                    up, what = event.pop("event-type") == "up", json.dumps(event)
                    kept = present[kind.removeprefix("ietf-mpls-ldp:")]
                    self.assertNotEqual(what in kept, up, line)  # nothing comes twice, nothing goes that is not there
                    (kept.add if up else kept.remove)(what)
                documents = dict(map(ldp_of, watch(name, "--yang").objects))
                events = {kind: [json.loads(event) for event in events] for kind, events in present.items()}
                self.assertEqual({(event["protocol-name"], event["fec"]) for event in events["mpls-ldp-fec-event"]},
                                 {(speaker, binding[0]) for speaker, ldp in documents.items() for binding in bindings_of(ldp)})
                self.assertEqual({(event["peer"]["protocol-name"], peer_of(event["peer"])) for event in events["mpls-ldp-peer-event"]},
                                 {(speaker, peer_of(peer)) for speaker, ldp in documents.items() for peer in ldp["peers"]["peer"]
                                  if peer["session-state"] == "operational"})
                self.assertEqual({(event["protocol-name"], event["link"]["next-hop-interface"], event["link"]["next-hop-address"])
                                  for event in events["mpls-ldp-hello-adjacency-event"] if "link" in event},
                                 {(speaker, link["name"], each["adjacent-address"])
                                  for speaker, ldp in documents.items() for link in ldp["discovery"]["interfaces"]["interface"]
                                  for family in link["address-families"].values() for each in family["hello-adjacencies"]["hello-adjacency"]})

    def test_the_modules_take_it(self):
        modules = os.environ.get("LDP_YANG_MODULES")
        if not modules or not shutil.which("yanglint"):
            self.skipTest("needs yanglint and LDP_YANG_MODULES, the folder of the modules")
        result = subprocess.run([sys.executable, os.path.join(SCRIPTS, "yang_check.py"), modules], capture_output=True, check=False)
        self.assertEqual(result.returncode, 0, result.stdout.decode())


class Metrics(unittest.TestCase):
    def test_numbers_are_those_of_the_state(self):
        for name in NAMES:
            with self.subTest(name):
                samples = samples_of(watch(name, "--metrics", "--bindings").out)
                for speaker, ldp in map(ldp_of, watch(name, "--yang").objects):
                    bindings = {(fec, peer, {"advertised": "sent"}.get(way, way), label) for fec, peer, way, label in bindings_of(ldp)}
                    told = {(fec, peer, way, int(label)) for metric, (own, peer, way, fec, label) in
                            (key for key in samples if key[0] == "ldp_binding_info") if own == speaker}
                    self.assertEqual(told, bindings)
                    for peer in ldp["peers"]["peer"]:
                        key = speaker, peer_of(peer)
                        if ("ldp_session_up", key) not in samples:
                            continue  # an adjacency without a session
                        self.assertEqual(samples["ldp_session_up", key], peer["session-state"] == "operational")
                        for way in ("sent", "received"):
                            self.assertEqual(samples["ldp_bytes_total", (*key, way)], int(peer["statistics"][way]["total-octets"]))
                            self.assertEqual(samples["ldp_bindings", (*key, way, "prefix")],
                                             len({binding[0] for binding in bindings if binding[1:3] == (key[1], way)}))
                stats = sum(samples[key] for key in samples if key[0] == "ldp_messages_total" and "sent" in key[1])
                decoded = [line["type"] for line in run("decode", "--json", os.path.join(CAPTURES, name + ".pcap")).objects if "type" in line]
                if name != "synthetic-mixed":  # which speaks to nobody too
                    self.assertEqual(stats, sum(kind != "LdpHello" for kind in decoded))

    def test_refusals(self):
        samples = samples_of(watch("synthetic-mixed", "--metrics").out)
        self.assertTrue(any(name == "ldp_refusals_total" for name, _ in samples))

    @unittest.skipUnless(shutil.which("promtool"), "needs promtool")
    def test_promtool_takes_it(self):
        for name in NAMES:
            result = subprocess.run(["promtool", "check", "metrics"], input=watch(name, "--metrics", "--bindings").raw, capture_output=True, check=False)
            self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""))

    def test_served(self):
        process = subprocess.Popen([LDPTOOL, "watch", "--metrics", "--listen", "127.0.0.1:0", "-i", "lo"], stderr=subprocess.PIPE)
        try:
            line = process.stderr.readline().decode()
            if "metrics at" not in line:
                self.skipTest("no right to capture: " + line)
            url = line.split(" ")[-1].strip()
            stalled = socket.create_connection(("127.0.0.1", int(url.split(":")[2].split("/")[0])))
            stalled.sendall(b"GET /metr")
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
                sender.sendto(pdu(hello(1)), ("127.0.0.1", 646))
            speakers, until = 0, time.monotonic() + 20
            while not speakers and time.monotonic() < until:
                speakers = samples_of(urllib.request.urlopen(url, timeout=10).read().decode())["ldp_speakers", ()]
            self.assertEqual(speakers, 1)
            for wrong, status in (((url, b"x"), 405), ((url.replace("/metrics", "/"),), 404)):
                with self.assertRaises(urllib.error.HTTPError) as refused:
                    urllib.request.urlopen(*wrong, timeout=10)
                self.assertEqual(refused.exception.code, status)
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(timeout=10), 0)
            stalled.close()
        finally:
            process.kill()
            process.stderr.close()

    def test_wrong_addresses(self):
        for where in ("9646", "localhost:9646", "::1:9646", "127.0.0.1:http", "127.0.0.1:70000"):
            result = run("watch", "--metrics", "--listen", where, "-i", "lo")
            self.assertEqual((result.status, "not an address" in result.err), (2, True), where)


if __name__ == "__main__":
    unittest.main()
