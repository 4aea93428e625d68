"""What ldptool watch believes: a table of small conversations, each with what must be known at its end. Many of them are what a
monitor is tempted to get wrong: captures that begin late, strays, several links in one file, labels that come back."""

import os
import pty
import resource
import select
import signal
import socket
import subprocess
import tempfile
import time
import unittest

import ldptool
from ldptool import *
from talk import P2MP, TEN, Talk, fec, label, pw_id, rows, say_hello, states_of, status_tlv

SANITIZED = os.environ.get("LDP_SANITIZE") == "1"


def states(frames, **kw):
    return states_of(ldptool.watch(pcap(frames, **kw), "--json"))


def neighbors(frames, form=pcap, **kw):
    """{speaker: {(peer, link)}}."""
    table = rows(ldptool.watch(form(frames, **kw), "--neighbors").out)
    found = {}
    for who, of in table.items():
        peer = None
        for row in of:
            peer = row["peer"] or peer  # said once for all adjacencies with it
            found.setdefault(who, set()).add((peer, row["adjacency"]))
    return found


def session(frames, own="10.0.0.1:0", peer="10.0.0.2:0", **kw):
    return states(frames, **kw)[own]["ldpSessionStatusColl"]["sessionStatus"][peer]


def is_up(status):
    return status["ldpSessionState"]["sessionState"] == "stateOperational"


class Links(unittest.TestCase):
    def test_who_is_a_neighbour(self):
        R1, R2, R3, R4 = (f"{i}.{i}.{i}.{i}" for i in range(1, 5))
        chain = [say_hello(lsr, f"10.0.0.{i}") for i, lsr in enumerate((R1, R2, R2, R3, R3, R4))]
        tag = lambda vlan: [(0x8100, vlan)]
        local = [say_hello(R1, "fe80::1", vlans=tag(10)), say_hello(R2, "fe80::2", vlans=tag(10)),
                 say_hello(R1, "fe80::1", vlans=tag(20)), say_hello(R3, "fe80::3", vlans=tag(20))]
        index = lambda packet, number: sll2(packet)[:4] + struct.pack("!I", number) + sll2(packet)[8:]
        cooked = [say_hello(lsr, src, link=lambda p, n=n: index(p, n))
                  for lsr, src, n in ((R1, "10.0.0.1", 2), (R2, "10.0.0.2", 2), (R1, "10.0.0.5", 3), (R3, "10.0.0.6", 3))]
        macs = [b"\2\0\0\0\0" + bytes([i]) for i in range(4)]
        dual = [say_hello(lsr, src, src=macs[n]) for lsr, v4, v6, n in (  # two links in one file; the senders' interfaces tell
            (R1, "10.0.1.1", "fe80::1", 0), (R1, "10.0.2.1", "fe80::11", 1), (R2, "10.0.1.2", "fe80::2", 2), (R3, "10.0.2.3", "fe80::3", 3))
            for src in (v4, v6)]
        ids = lambda *pairs: {(f"{R}:0", link) for R, link in pairs}
        cases = {
            "three /31 links in one file": (chain, {}, {
                R1: ids((R2, "10.0.0.0")), R2: ids((R1, "10.0.0.1"), (R3, "10.0.0.2")),
                R3: ids((R2, "10.0.0.3"), (R4, "10.0.0.4")), R4: ids((R3, "10.0.0.5"))}),
            "VLANs with link-local addresses": (local, {}, {
                R1: ids((R2, "vlan10:ipv6"), (R3, "vlan20:ipv6")), R2: ids((R1, "vlan10:ipv6")), R3: ids((R1, "vlan20:ipv6"))}),
            "interfaces of cooked packets": (cooked, {"link": LINUX_SLL2}, {
                R1: ids((R2, "if2"), (R3, "if3")), R2: ids((R1, "if2")), R3: ids((R1, "if3"))}),
            "both families": (dual, {}, {
                R1: ids((R2, "10.0.1.1"), (R2, "fe80::1"), (R3, "10.0.2.1"), (R3, "fe80::11")),
                R2: ids((R1, "10.0.1.2"), (R1, "fe80::2")), R3: ids((R1, "10.0.2.3"), (R1, "fe80::3"))}),
            "/31 links of one block": ([say_hello(lsr, f"10.0.0.{n}") for n, lsr in ((10, R1), (11, R2), (12, R3), (13, R4))], {}, {
                R1: ids((R2, "10.0.0.10")), R2: ids((R1, "10.0.0.11")), R3: ids((R4, "10.0.0.12")), R4: ids((R3, "10.0.0.13"))}),
            "far addresses of one file": ([say_hello(R1, "10.0.0.1"), say_hello(R2, "10.9.0.1")], {}, {}),
        }
        for name, (frames, kw, expected) in cases.items():
            with self.subTest(name):
                self.assertEqual(neighbors(frames, **kw), {f"{lsr}:0": peers for lsr, peers in expected.items()})

    def test_targeted_hello_needs_an_answer(self):
        targeted = lambda lsr, src, dst: ether(udp(pdu(message(0x0100, 1, tlv(0x0400, struct.pack("!HH", 45, 0xC000))), lsr=lsr),
                                                   src=src, dst=dst))
        one, two = targeted("1.1.1.1", "1.1.1.1", "2.2.2.2"), targeted("2.2.2.2", "2.2.2.2", "1.1.1.1")
        self.assertEqual(neighbors([one, one]), {})
        self.assertEqual(neighbors([one, two]), {"1.1.1.1:0": {("2.2.2.2:0", "target 2.2.2.2")},
                                                 "2.2.2.2:0": {("1.1.1.1:0", "target 1.1.1.1")}})
        # An Initialization goes to who was heard; where link hellos were, it proves nothing about targeted ones.
        hello, talk = targeted("10.0.0.1", "10.0.0.1", "10.0.0.2"), Talk().frames
        heard = lambda frames: ("10.0.0.1:0", "target 10.0.0.1") in neighbors(frames + [hello]).get("10.0.0.2:0", ())
        self.assertEqual((heard(talk[2:]), heard(talk), heard(talk[2:4] + talk[5:6])), (True, False, False))

    def test_pcapng_names_the_interfaces(self):
        capture = pcapng_of([(0, say_hello("1.1.1.1", "10.0.0.1")), (0, say_hello("2.2.2.2", "10.9.0.2")),
                             (1, say_hello("1.1.1.1", "10.0.0.1")), (1, say_hello("3.3.3.3", "10.0.0.3"))], ["eth0", "eth1"])
        self.assertEqual(neighbors(None, form=lambda _: capture), {
            "1.1.1.1:0": {("2.2.2.2:0", "eth0"), ("3.3.3.3:0", "eth1")},
            "2.2.2.2:0": {("1.1.1.1:0", "eth0")}, "3.3.3.3:0": {("1.1.1.1:0", "eth1")}})
        for size in range(0, len(capture), 7):
            result = ldptool.watch(capture[:size], "--neighbors")
            self.assertIn(result.status, (0, 2))
            self.assertLessEqual(result.err.count("\n"), 1)


def pcapng_of(frames, names):
    def block(kind, body):
        body += b"\0" * (-len(body) % 4)
        return struct.pack("<II", kind, len(body) + 12) + body + struct.pack("<I", len(body) + 12)

    out = block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1))
    for name in names:  # nanoseconds
        option = lambda code, value: struct.pack("<HH", code, len(value)) + value + b"\0" * (-len(value) % 4)
        out += block(1, struct.pack("<HHI", ETHERNET, 0, 0) + option(2, name.encode()) + option(9, b"\x09") + option(0, b""))
    for number, (interface, octets) in enumerate(frames):
        when = (1600000000 * 1000 + number) * 1000000
        out += block(6, struct.pack("<IIIII", interface, when >> 32, when & 0xFFFFFFFF, len(octets), len(octets)) + octets)
    return out


class Sessions(unittest.TestCase):
    def test_strays_do_not_end_a_session(self):
        stray = lambda payload, **kw: ether(tcp(payload, src="10.0.0.2", dst="10.0.0.1", sport=kw.pop("sport", 39999), dport=646, **kw))
        shutdown = pdu(message(0x0001, 9, status_tlv(0x8000000A)), lsr="10.0.0.2")
        cases = {
            "Notification on a connection of before": lambda talk: [stray(shutdown, seq=77)],
            "lone mapping on another connection": lambda talk: [stray(pdu(mapping(9), lsr="10.0.0.2"), seq=77)],
            "reset outside the window": lambda talk: [stray(b"", sport=talk.port, seq=talk.next[2] + 2_000_000_000, flags=RST)],
            "lone segment far away": lambda talk: [stray(shutdown, sport=talk.port, seq=talk.next[2] + 2_000_000_000)],
            "PDU of another identifier": lambda talk: [stray(pdu(keepalive(9), lsr="9.9.9.9"), sport=talk.port, seq=talk.next[2])],
        }
        for name, frames in cases.items():
            with self.subTest(name):
                talk = Talk()
                talk.say(2, 0x0400, fec(TEN), label(100))
                at_end = states(talk.frames + frames(talk))["10.0.0.1:0"]
                self.assertTrue(is_up(at_end["ldpSessionStatusColl"]["sessionStatus"]["10.0.0.2:0"]))
                self.assertEqual(len(at_end["ldpFecSessionStatusColl"]["fecSessionStatus"]), 1)

    def test_both_sides_at_work_revive_it(self):
        talk = Talk()
        talk.segment(2, flags=RST)
        self.assertFalse(is_up(session(talk.frames)))
        talk.say(2, 0x0201)
        self.assertFalse(is_up(session(talk.frames)))
        talk.say(1, 0x0201)
        self.assertTrue(is_up(session(talk.frames)))

    def test_label_spaces_have_sessions_of_their_own(self):
        frames = [say_hello("10.0.0.1", "10.0.0.1")] + [say_hello("10.0.0.2", "10.0.0.2", space=space) for space in (0, 3)]
        for port, space in ((40000, 0), (40001, 3)):
            talk = Talk(port)
            for octets in talk.frames[2:]:  # behind its own hellos
                own, other = b"\x0a\0\0\2\0\0", b"\x0a\0\0\2" + struct.pack("!H", space)
                frames.append(octets.replace(own, other))
        speakers = states(frames)
        self.assertEqual(set(speakers), {"10.0.0.1:0", "10.0.0.2:0", "10.0.0.2:3"})
        found = {who: {peer: is_up(s) for peer, s in state["ldpSessionStatusColl"]["sessionStatus"].items()} for who, state in speakers.items()}
        self.assertEqual(found, {"10.0.0.1:0": {"10.0.0.2:0": True, "10.0.0.2:3": True}, "10.0.0.2:0": {"10.0.0.1:0": True},
                                 "10.0.0.2:3": {"10.0.0.1:0": True}})

    def test_up_before_watching_began(self):
        talk = Talk()
        hellos = talk.frames[:2]
        late = len(talk.frames)
        talk.say(2, 0x0201)
        talk.say(1, 0x0201)
        quiet = [(say_hello("10.0.0.3", "10.0.0.3"), None, second) for second in range(10, 900, 10)]
        self.assertTrue(is_up(session(hellos + talk.frames[late:] + quiet)))  # nobody knows its KeepAlive time
        talk.say(2, 0x0400, fec(TEN), label(100))
        result = ldptool.watch(pcap(hellos + [talk.frames[-1]]), "--neighbors")
        self.assertIn("Operational, one side seen", result.out)

    def test_each_session_has_its_own_keepalive_time(self):
        def between(port, other, time):
            talk = Talk(port, {1: "10.0.0.1", 2: other}, keep_alive=time)
            return talk.frames
        slow, fast = between(40000, "10.0.0.2", 180), between(40001, "10.0.0.3", 30)
        mixed = [frame for pair in zip(slow, fast) for frame in pair]
        later = [(say_hello("10.0.0.9", "10.0.0.9"), None, second) for second in (20, 40)]
        self.assertTrue(is_up(session(mixed + later, peer="10.0.0.2:0")))
        self.assertEqual(session(mixed + later, peer="10.0.0.3:0")["ldpSessionState"]["code"], "keepAliveExpired")

    def test_attempts_are_counted_from_syns(self):
        hellos = [say_hello(f"10.0.0.{i}", f"10.0.0.{i}") for i in (1, 2)]
        syn = ether(tcp(seq=1000, flags=SYN, src="10.0.0.2", dst="10.0.0.1", sport=40000, dport=646))
        reset = ether(tcp(seq=0, ack=1001, flags=RST | ACK, src="10.0.0.1", dst="10.0.0.2", sport=646, dport=40000))
        unanswered = [(syn, None, n) for n in range(1, 9)]
        twice = [(syn, None, n + d) for n in range(1, 9) for d in (0, 0.00002)]  # captured on two interfaces
        counts = lambda frames: tuple(int(states(hellos + frames)["10.0.0.2:0"]["ldpTcpConnStatusColl"]["connStatus"]["10.0.0.1:0"][
            f"connection{what}Count"]) for what in ("Attempt", "Error", "Success"))
        self.assertEqual(counts(unanswered), (8, 7, 0))
        self.assertEqual(counts(twice), (8, 7, 0))
        self.assertEqual(counts([syn, reset]), (1, 1, 0))
        self.assertEqual(counts(Talk().frames), (1, 0, 1))


class Labels(unittest.TestCase):
    """10.0.0.2 speaks, 10.0.0.1 hears."""

    def words(self, talk):
        """The bits of the words that each end has about 10.1.0.0/16: what it has said, and what was said to it."""
        at_end = states(talk.frames)
        one, two = (at_end[f"10.0.0.{i}:0"]["ldpFecSessionStatusColl"]["fecSessionStatus"] for i in (1, 2))
        return (two["10.1.0.0/16_10.0.0.1:0"]["localLabelSessionState"]["value"] & 0xff,
                one["10.1.0.0/16_10.0.0.2:0"]["peerLabelSessionState"]["value"] & 0xff)

    def test_mapped_anew(self):
        talk = Talk()
        talk.say(2, 0x0400, fec(TEN), label(100))
        fresh = self.words(talk)
        self.assertEqual(fresh, (0b100, 0b100))
        talk.say(2, 0x0402, fec(TEN), label(100))
        self.assertEqual(self.words(talk), (0b010, 0b11000))
        talk.say(2, 0x0400, fec(TEN), label(100))
        self.assertEqual(self.words(talk), fresh)

    def test_unsolicited_mapping_takes_the_place_of_the_one_before(self):
        talk = Talk()
        for value in (100, 101):
            talk.say(2, 0x0400, fec(TEN), label(value))
        table = rows(ldptool.watch(pcap(talk.frames), "--bindings").out)
        self.assertEqual(table["10.0.0.2:0"][0]["local"], "101")
        self.assertEqual(table["10.0.0.1:0"][0]["its label"], "101")
        talk.say(1, 0x0403, fec(TEN), label(100))
        self.assertEqual(self.words(talk), (0b100, 0b110))

    def test_label_resources(self):
        """A peer that had no label to give has some again: that is about what it refused, and about nothing else."""
        talk = Talk()
        talk.say(1, 0x0400, fec(TEN, prefix("11.0.0.0", 8)), label(30))
        words = lambda: [state["peerLabelSessionState"]["value"] for _, state in sorted(
            states(talk.frames)["10.0.0.1:0"]["ldpFecSessionStatusColl"]["fecSessionStatus"].items())]
        for _ in range(2):
            talk.say(2, 0x0001, status_tlv(14, talk.say(1, 0x0401, fec(TEN)), 0x0401))
            self.assertEqual(words(), [0x80000020, 0])
            talk.say(2, 0x0001, status_tlv(15))
            self.assertEqual(words(), [0x80000000, 0])

    def test_typed_wildcard(self):
        wildcard = lambda family: b"\5\2\2" + struct.pack("!H", family)
        talk = Talk()
        talk.say(2, 0x0400, fec(TEN), label(100))
        talk.say(2, 0x0400, fec(prefix("2001:db8::", 32)), label(101))
        talk.say(2, 0x0402, fec(wildcard(1)))
        talk.say(1, 0x0403, fec(wildcard(1)))
        for state in states(talk.frames).values():
            self.assertEqual([key.split("_")[0] for key in state["ldpFecSessionStatusColl"]["fecSessionStatus"]], ["2001:db8::/32"])
        talk.say(2, 0x0402, fec(b"\5\x80\2\0\5"))
        talk.say(2, 0x0401, fec(wildcard(2)))
        result = ldptool.watch(pcap(talk.frames), "--bindings")
        self.assertEqual(result.err, "ldptool: not followed: 2 typed wildcards in requests, or of other FECs than prefixes\n")

    def test_p2mp_label_for_another_upstream_stays(self):
        to_one, to_three = Talk(40000), Talk(40001, {1: "10.0.0.3", 2: "10.0.0.2"})
        to_one.say(2, 0x0400, fec(P2MP), label(300))
        to_three.say(2, 0x0400, fec(P2MP), label(300))
        cut = len(to_one.frames)
        to_one.say(2, 0x0402, fec(P2MP), label(300))
        leaf = states(to_one.frames[:cut] + to_three.frames + to_one.frames[cut:])["10.0.0.2:0"]
        (tree,) = leaf["p2mpFecStateColl"]["p2mpFecState"].values()
        self.assertEqual((set(tree["mplsLabelSet"]["mplsLabel"]), tree["upstreamLsr"]), ({"300"}, "10.0.0.3:0"))
        self.assertEqual(list(leaf["p2mpLocalLabelBindingTable"]["labelBinding"].values()), [300])

    def test_pseudowire_mapped_anew_before_its_release(self):
        short = struct.pack("!BHBII", 0x80, 5, 4, 0, 7)
        talk = Talk()
        talk.say(2, 0x0400, fec(pw_id(7)), label(500), tlv(0x896A, b"\0\0\0\0"))
        talk.say(2, 0x0402, fec(short), label(500))
        talk.say(2, 0x0400, fec(pw_id(7)), label(501), tlv(0x896A, b"\0\0\0\0"))
        talk.say(1, 0x0403, fec(short), label(500))
        at_end = states(talk.frames)
        (mine,) = at_end["10.0.0.2:0"]["localPwFecSessionStatusColl"]["fecSessionStatus"].values()
        (theirs,) = at_end["10.0.0.1:0"]["remotePwFecSessionStatusColl"]["fecSessionStatus"].values()
        self.assertEqual((mine["labelSessionState"]["value"] & 0xff, mine["labelMappingSent"], mine["labelWithdrawOutstanding"]),
                         (0b100, 501, 1048576))
        self.assertEqual((theirs["labelSessionState"]["value"] & 0xff, theirs["mplsReleaseLabelSet"]["mplsLabel"]), (0b100, {}))
        for value, status in ((6, "pwConnectorDown"), (0, "pwConnectorUp")):
            talk.say(2, 0x0001, status_tlv(0x28), tlv(0x896A, struct.pack("!I", value)), fec(short))
            (request,) = states(talk.frames)["10.0.0.2:0"]["pwConfigColl"]["config"].values()
            self.assertEqual(request["status"], status)

    def test_graceful_restart_keeps_labels_for_the_time_that_was_agreed(self):
        talk = Talk(ft=struct.pack("!HHII", 1, 0, 30000, 20000))
        talk.say(2, 0x0400, fec(TEN), label(100))
        talk.segment(2, flags=RST)
        at = lambda second: [(say_hello("10.0.0.9", "10.0.0.9"), None, second)]
        labels = lambda frames: [row["its label"] for row in rows(ldptool.watch(pcap(frames), "--bindings").out)["10.0.0.1:0"]]
        self.assertEqual((labels(talk.frames + at(20)), labels(talk.frames + at(40))), (["100"], []))
        again = [(frame, None, 25 + i / 1000) for i, frame in enumerate(Talk(40001, ft=struct.pack("!HHII", 1, 0, 30000, 20000)).frames)]
        self.assertEqual((labels(talk.frames + again + at(40)), labels(talk.frames + again + at(50))), (["100"], []))

        # So with the labels of trees and pseudowires; what comes again is not stale.
        both = Talk(ft=struct.pack("!HHII", 1, 0, 30000, 20000))
        both.say(2, 0x0400, fec(P2MP), label(300))
        both.say(2, 0x0400, fec(pw_id(7)), label(500), tlv(0x896A, b"\0\0\0\0"))
        both.segment(2, flags=RST)

        def kept(frames):
            end = states(frames)["10.0.0.1:0"]
            return (len(end["p2mpFecSessionRemoteStateColl"].get("p2mpFecSessionRemoteStateColl", {})),
                    len(end["remotePwFecSessionStatusColl"].get("fecSessionStatus", {})))
        self.assertEqual((kept(both.frames + at(20)), kept(both.frames + at(40))), ((1, 1), (0, 0)))
        after = Talk(40001, ft=struct.pack("!HHII", 1, 0, 30000, 20000))
        after.say(2, 0x0400, fec(P2MP), label(301))
        again = [(frame, None, 25 + i / 1000) for i, frame in enumerate(after.frames)]
        self.assertEqual((kept(both.frames + again + at(40)), kept(both.frames + again + at(50))), ((1, 1), (1, 0)))

    def test_wildcards_find_what_they_are_about_each_time(self):
        talk = Talk()
        left = lambda: tuple(len(states(talk.frames)["10.0.0.1:0"][coll].get(name, {})) for coll, name in (
            ("p2mpFecSessionRemoteStateColl", "p2mpFecSessionRemoteStateColl"), ("remotePwFecSessionStatusColl", "fecSessionStatus")))
        group = struct.pack("!BHBI", 0x80, 5, 0, 0)
        for fecs, value in ((P2MP, 300), (pw_id(7), 500), (pw_id(8), 501), (pw_id(7), 502)):  # 500 is replaced
            talk.say(2, 0x0400, fec(fecs), label(value))
        for kind, fecs, values, expected in (
                (0x0402, b"\1", [label(777)], (1, 2)),   # nobody's label
                (0x0403, b"\1", [label(500)], (1, 2)),   # of the one that is replaced
                (0x0402, b"\1", [label(300)], (1, 2)),   # withdrawn, not released
                (0x0403, b"\1", [label(300)], (0, 2)),
                (0x0402, group, [label(502)], (0, 2)), (0x0403, group, [label(502)], (0, 1)),
                (0x0402, group, [], (0, 1)), (0x0403, b"\1", [], (0, 0))):
            talk.say(1 if kind == 0x0403 else 2, kind, fec(fecs), *values)
            self.assertEqual(left(), expected, (hex(kind), fecs, values))
        talk.say(2, 0x0400, fec(P2MP), label(300))
        for kind in (0x0402, 0x0403):
            talk.say(1 if kind == 0x0403 else 2, kind, fec(b"\1"))
        self.assertEqual(left(), (0, 0))


class History(unittest.TestCase):
    def test_history_and_moments(self):
        talk = Talk()
        up = len(talk.frames)
        talk.segment(2, flags=RST)
        lines = ldptool.watch(pcap(talk.frames), "--history=10.0.0.1").out.splitlines()
        self.assertEqual(lines[0].split(), ["time", "frame", "speaker", "peer", "what", "from", "to", "cause"])
        self.assertRegex(lines[-1], rf"^12:26:40\.\d+ +{up + 1} +10\.0\.0\.\d:0 .*session +Operational +NonExist +TCP connection closed$")
        for option in (f"--until={up}", "--at=12:26:40.0075", "--at=1600000000.0075"):
            self.assertIn("Operational", ldptool.watch(pcap(talk.frames), "--neighbors", option).out, option)
        self.assertIn("NonExist", ldptool.watch(pcap(talk.frames), "--neighbors").out)
        self.assertRegex(ldptool.watch(pcap(talk.frames), "--neighbors").out, r"12:26:40 TCP connection closed")
        self.assertIn("no neighbour: nobody", ldptool.watch(pcap(talk.frames), "--neighbors", "--until=1").out)
        self.assertEqual(ldptool.watch(pcap(talk.frames), "--at=noon").status, 2)


class Endings(unittest.TestCase):
    """One line, and the status for an error."""

    def ends(self, *arguments, **kw):
        result = subprocess.run([LDPTOOL, *arguments], stderr=subprocess.PIPE, timeout=60, **kw)
        self.assertEqual((result.returncode, result.stderr.count(b"\n")), (2, 1), result.stderr)
        self.assertTrue(result.stderr.startswith(b"ldptool: "), result.stderr)
        return result.stderr

    def test_output_that_cannot_be_written(self):
        file = os.path.join(CAPTURES, "basic-v4.pcap")
        for arguments in (["types"], ["types", "--json"], ["decode", file], ["watch", file], ["watch", "--replicate", file], ["--help"]):
            with self.subTest(arguments), open("/dev/full", "wb") as full:
                self.ends(*arguments, stdout=full)
                self.ends(*arguments, preexec_fn=lambda: os.close(1))

    @unittest.skipIf(SANITIZED, "the sanitizer wants descriptors of its own")
    def test_replica_that_cannot_be(self):
        def only_process():
            resource.setrlimit(resource.RLIMIT_NPROC, (1, 1))
            if os.geteuid() == 0:  # whom no such limit holds
                os.setuid(54321)

        def few_descriptors():
            resource.setrlimit(resource.RLIMIT_NOFILE, (4, 4))

        with open(os.path.join(CAPTURES, "basic-v4.pcap"), "rb") as capture:
            for limit in (only_process, few_descriptors):
                self.ends("watch", "--replicate", "-", stdin=capture, stdout=subprocess.DEVNULL, preexec_fn=limit, close_fds=True)

    @unittest.skipIf(SANITIZED, "the sanitizer takes all address space")
    def test_memory_that_runs_out(self):
        talk = Talk()
        for i in range(400):
            talk.segment(1, pdu(*(mapping(40 * i + j, f"10.{i // 250}.{i % 250}.{j}", 32, 100 + j) for j in range(40))))
        with tempfile.NamedTemporaryFile() as file:
            file.write(pcap(talk.frames))
            file.flush()
            for arguments in (["--json"], ["--replicate"], ["--bindings"]):
                with self.subTest(arguments):  # the rest of what it needs is below 20 MB
                    self.ends("watch", *arguments, file.name, stdout=subprocess.DEVNULL,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (40 << 20, 40 << 20)))

    def test_interrupted_replica(self):
        process = subprocess.Popen([LDPTOOL, "watch", "--replicate", "--check", "-i", "lo"], stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        try:
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
                time.sleep(1.0)  # until it listens
                sender.sendto(pdu(hello(1)), ("127.0.0.1", 646))
            time.sleep(0.3)
            if process.poll() == 2:
                self.skipTest("no right to capture: " + process.stderr.read().decode())
            process.send_signal(signal.SIGINT)
            out, err = process.communicate(timeout=60)
        finally:
            process.kill()
        self.assertEqual((process.returncode, out.decode(), err), (0, "the replica agrees\n", b""))

    def test_no_right_to_capture(self):
        error = self.ends("watch", "-i", "lo", stdout=subprocess.DEVNULL, preexec_fn=lambda: os.geteuid() or os.setuid(54321))
        self.assertIn(b"setcap cap_net_raw+ep", error)

    def test_live_tables_refresh_on_a_terminal(self):
        ours, its = pty.openpty()
        process = subprocess.Popen([LDPTOOL, "watch", "-i", "lo"], stdout=its, stderr=subprocess.PIPE)
        os.close(its)
        shown = b""
        try:
            with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
                while process.poll() is None and b"1 speakers" not in shown:
                    sender.sendto(pdu(hello(1)), ("127.0.0.1", 646))
                    if select.select([ours], [], [], 0.2)[0]:
                        shown += os.read(ours, 65536)
            if process.poll() == 2:
                self.skipTest("no right to capture: " + process.stderr.read().decode())
            process.send_signal(signal.SIGINT)
            self.assertEqual((process.wait(60), process.stderr.read()), (0, b""))
        finally:
            process.kill()
            os.close(ours)
        self.assertIn(b"\x1b[H", shown)

    def test_replica_that_dies(self):
        with open(os.path.join(CAPTURES, "basic-v4.pcap"), "rb") as capture:
            octets = capture.read()
        process = subprocess.Popen([LDPTOOL, "watch", "--replicate", "-"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        process.stdin.write(octets[:24])
        process.stdin.flush()
        children = f"/proc/{process.pid}/task/{process.pid}/children"
        while not open(children).read():
            pass
        os.kill(int(open(children).read()), signal.SIGKILL)
        _, err = process.communicate(octets[24:], timeout=60)
        self.assertEqual((process.returncode, err), (2, b"ldptool: the replica went away\n"))


if __name__ == "__main__":
    unittest.main()
