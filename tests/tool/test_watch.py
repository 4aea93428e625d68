"""ldptool watch: the model of a capture, its changes, its views, and its replica."""

import glob
import json
import os
import re
import shutil
import struct
import subprocess
import unittest

import ldptool
from ldptool import ACK, CAPTURES, FIN, RST, address, ether, hello, ip_packet, message, pcap, pdu, prefix, records, run, segment, tlv, udp
from talk import ELEVEN, P2MP, TEN, WILDCARD, Talk, fec, label, pw_id, states_of, status_tlv

def capture(name):
    return os.path.join(CAPTURES, name + ".pcap")


def watch(source, *options):
    """source: the name of a capture, or frames."""
    if isinstance(source, str):
        return run("watch", *options, capture(source))
    return ldptool.watch(pcap(source), *options)


def watched(source):
    """The state of each speaker's VRF at the end, as JSON."""
    return states_of(watch(source, "--json"))


# What the oracle implies -------------------------------------------------------------------------------------------


class Oracle:
    """What the messages up to a frame leave in force: a Mapping adds, a Withdraw or Release takes away, and the end of a session
    takes all. Speakers go by the last octet of their addresses."""

    def __init__(self, name):
        self.octets, self.link, self.places = records(capture(name))
        self.rows = {}
        with open(os.path.join(CAPTURES, name + ".oracle.tsv"), encoding="ascii") as file:
            for line in file:
                row = line.rstrip("\n").split("\t")
                if not line.startswith("#"):
                    self.rows.setdefault(int(row[0]), []).append((row[8], row[12], row[13], row[14]))

    def frame(self, number):
        """Sender, receiver, and whether it ends its connection; frames are numbered from 1."""
        begin, end = self.places[number - 1]
        found = segment(ip_packet(self.link, self.octets[begin:end]))
        return found.src[-1], found.dst[-1], bool(found.flags & (FIN | RST))

    @staticmethod
    def spelled(fec):
        """A FEC without what differs between the messages about one pseudowire."""
        return "/".join(part for part in fec.split("/") if not part.startswith(("infolen", "group", "mtu", "params")))

    def bindings(self, count):
        """{(speaker, peer): {FEC: labels}}."""
        bindings = {}
        for number in range(1, count + 1):
            source, destination, ends = self.frame(number)
            sent, received = bindings.setdefault((source, destination), {}), bindings.setdefault((destination, source), {})
            for kind, fecs, value, detail in self.rows.get(number, []):
                for name in map(self.spelled, fecs.split(";")):
                    if kind == "0x0400":
                        sent[name] = {value}  # in the place of the label before it (RFC 5036, A.1.2)
                    elif kind in ("0x0402", "0x0403"):
                        (sent if kind == "0x0402" else received).get(name, set()).discard(value)
                ends = ends or kind == "0x0001" and "E=1" in detail
            if ends:
                sent.clear()
                received.clear()
        return {pair: {name: labels for name, labels in fecs.items() if labels} for pair, fecs in bindings.items()}


def last_octet(identifier):
    return int(identifier.split(":")[0].split(".")[3])


def in_force(states, state):
    """{(peer's last octet, prefix as in the oracle): labels} of the labels in that state."""
    found = {}
    for key, member in states["ldpFecSessionStatusColl"]["fecSessionStatus"].items():
        name, peer = key.rsplit("_", 1)
        labels = {each for each, value in member["localLabelState" if state == "mappingSent" else "peerLabelState"].items()
                  if value == state}
        if labels:
            found[last_octet(peer), "prefix/%s/%s" % ("ipv6" if ":" in name else "ipv4", name)] = labels
    return found


def pseudowires(states, which):
    """The same of the pseudowires whose mapping is in force in one direction, by the FEC as a mapping spells it."""
    found = {}
    for key, status in states[which + "PwFecSessionStatusColl"]["fecSessionStatus"].items():
        config = states[which + "PwFecSessionConfigColl"]["fecSessionConfig"][key]
        peer, number, kind, control_word = re.fullmatch(r"(\S+)_pw(\d+):(\w+):cbit(\d)", key).groups()
        active = status["mappingActive"] if which == "local" else status["labelSessionState"]["peerLabelMappingCached"]
        if active:
            name = "pwid/c=%s/type=0x%04x/id=%s" % (control_word, {"pwTypeTagged": 4, "pwTypeRaw": 5}[kind], number)
            found[last_octet(peer), name] = {str(config["label"])}
    return found


class Captures(unittest.TestCase):
    maxDiff = None

    def check_oracle(self, name, cuts):
        """The bindings after each of some numbers of frames, evenly spaced; pseudowires as well."""
        oracle, most = Oracle(name), 0
        for cut in range(1, cuts + 1):
            number = len(oracle.places) * cut // cuts
            with self.subTest(name=name, frames=number):
                speakers = states_of(ldptool.watch(oracle.octets[: oracle.places[number - 1][1]], "--json"))
                expected = oracle.bindings(number)
                for speaker, states in speakers.items():
                    own = last_octet(speaker)
                    sent = {(peer, name): labels for (source, peer), fecs in expected.items() if source == own
                            for name, labels in fecs.items()}
                    received = {(peer, name): labels for (peer, destination), fecs in expected.items() if destination == own
                                for name, labels in fecs.items()}
                    self.assertEqual(in_force(states, "mappingSent") | pseudowires(states, "local"), sent)
                    self.assertEqual(in_force(states, "mappingRcvd") | pseudowires(states, "remote"), received)
                    most = max(most, len(sent))
                    self.check_views(states, {key: labels for key, labels in sent.items() if "prefix/" in key[1]})
        self.assertGreater(most, 5)

    def test_bindings_are_those_of_the_oracle(self):
        for name, cuts in (("basic-v4", 24), ("dual-stack", 24), ("timers", 24), ("pw-targeted", 24), ("many-initial", 1)):
            self.check_oracle(name, cuts)

    def check_views(self, states, sent):
        """What else must follow from the FEC sessions."""
        sessions = states["ldpFecSessionStatusColl"]["fecSessionStatus"]
        by_session = {key: set(view["fecSessionStatus"])
                      for key, view in states["ldpFecSessionStatusColl"]["fecSessionStatusBySessionColl"].items()}
        self.assertEqual(set().union(*by_session.values()), set(sessions))
        for session, view in by_session.items():
            self.assertEqual({key.rsplit("_", 1)[1] for key in view}, {session} if view else set())
        fecs = states["ldpFecConfigColl"]["fecConfig"]
        self.assertEqual({key + "_" + member for key, config in fecs.items() for member in config["sessionMember"]}, set(sessions))
        users, labels_of = {}, {}
        for (_, name), labels in sent.items():
            for value in labels:
                users.setdefault(value, set()).add(name.split("/", 2)[2])
                labels_of.setdefault(name.split("/", 2)[2], set()).add(value)
        index = states["index"]["labelToFec"]
        self.assertEqual({value: set(entry["fec"]) for value, entry in index.items()}, users)
        bound = states["localLabelBindingTable"]["labelBinding"]
        self.assertEqual(set(bound), set(labels_of))
        for name, value in bound.items():
            self.assertIn(str(value), labels_of[name])

    def test_adjacencies_are_those_of_the_links(self):
        speakers = watched("timers")
        self.assertEqual(set(speakers), {"10.255.0.1:0", "10.255.0.2:0", "10.255.0.3:0"})
        states = speakers["10.255.0.1:0"]
        adjacencies = states["ldpAdjStatusColl"]["adjStatus"]
        self.assertEqual(set(adjacencies), {"10.255.0.2:0_10.0.12.1", "10.255.0.3:0_10.0.13.1"})
        adjacency = adjacencies["10.255.0.2:0_10.0.12.1"]
        self.assertEqual(adjacency["peerIpAddr"], "10.255.0.2")
        self.assertEqual(adjacency["peerSrcIpAddr"], "10.0.12.2")
        self.assertEqual(adjacency["operHoldTime"], 120)
        self.assertEqual(set(states["ldpPeerConfigColl"]["peerConfig"]), {"10.255.0.2:0", "10.255.0.3:0"})
        links = {link: set(entry["ldpAdj"]) for link, entry in states["index"]["ldpAdjPerLinkColl"].items()}
        self.assertEqual(links, {"10.0.12.1": {"10.255.0.2:0_10.0.12.1"}, "10.0.13.1": {"10.255.0.3:0_10.0.13.1"}})

    def test_sessions_tell_their_history(self):
        states = watched("basic-v4")["10.255.0.1:0"]
        session = states["ldpSessionStatusColl"]["sessionStatus"]["10.255.0.2:0"]
        self.assertEqual(session["ldpSessionState"], {"sessionState": "stateNonExist", "code": "shutdown"})
        history = session["sessionStateLogEntryColl"]["sessionStateLogEntry"]
        names = [entry["sessionState"] for entry in history]
        self.assertEqual(names[-2:], ["stateOperational", "stateNonExist"])
        self.assertEqual((session["operKeepAliveTime"], session["addressMsgRcvd"], session["addressMsgTsmt"]),
                         (180, False, False))  # no longer: the session has ended

    def test_statistics_count_every_message_once_at_each_end(self):
        decoded = run("decode", "--json", capture("basic-v4")).objects
        totals = {"ldpMsgTxCount": 0, "ldpMsgRxCount": 0, "ldpPduTxCount": 0, "ldpPduRxCount": 0}
        for states in watched("basic-v4").values():
            for session in states["statistics"]["sessionStatisticsColl"]["sessionStatistics"].values():
                for name in totals:
                    value = session[name]
                    totals[name] += sum(value.values()) if isinstance(value, dict) else value
        messages = [o for o in decoded if o["proto"] == "tcp"]
        pdus = {(o["frame"], i) for i, o in enumerate(messages)}
        self.assertEqual((totals["ldpMsgTxCount"], totals["ldpMsgRxCount"]), (len(messages),) * 2)
        self.assertEqual(totals["ldpPduTxCount"], totals["ldpPduRxCount"])
        self.assertLessEqual(totals["ldpPduTxCount"], len(pdus))

    def test_hold_timers_run_by_the_clock_of_the_capture(self):
        result = watch("timers", "--follow")
        self.assertEqual(result.status, 0)
        self.assertIn("holdTimerExpired", result.out)
        self.assertRegex(result.out, r"(?m)^\d\d:\d\d:\d\d\.\d{6} network/speaker\[\S+\]/\S+ \S+ = ")
        self.assertNotIn("\n   ", result.out)  # changes alone, no tree

    def test_replica_agrees_on_every_capture(self):
        files = sorted(glob.glob(os.path.join(CAPTURES, "*.pcap")))
        self.assertGreater(len(files), 5)
        for file in files:
            result = run("watch", "--replicate", "--check", file)
            self.assertEqual((result.status, result.out, result.err), (0, "the replica agrees\n", ""), file)

    def test_bindings_are_the_same_when_the_tree_is_kept(self):
        # Without the tree they are kept in few octets, and become objects of the model only to be shown.
        for name in sorted(os.listdir(CAPTURES)):
            if name.endswith(".pcap"):
                file = os.path.join(CAPTURES, name)
                alone = run("watch", "--bindings", file).out
                self.assertTrue(run("watch", "--tree", "--bindings", file).out.endswith("\n" + alone), name)

    def test_replica_prints_what_it_holds(self):
        result = watch("basic-v4", "--replicate")
        self.assertEqual(result.status, 0)
        original, replica = result.out.split("\nnetwork\n")
        self.assertIn("ldpFecSessionStatusColl\n", original)
        self.assertNotIn("ldpFecSessionStatusColl\n", replica)  # local: it stays in its process
        for line in ("adjStatus[10.255.0.2:0_10.0.12.1]", "sessionStatus[10.255.0.2:0]", "sessionStateLogEntry[0]",
                     "ldpMsgRxCount[LdpLabelMapping] = "):
            self.assertIn(line, replica)

    def test_dot(self):
        result = watch("pw-targeted", "--dot")
        self.assertEqual(result.status, 0)
        self.assertIn('"10.255.0.1:0" -- "10.255.0.3:0" [style=dashed, label="targeted"]', result.out)
        if shutil.which("dot"):
            plain = subprocess.run(["dot", "-Tplain"], input=result.raw, capture_output=True, check=True).stdout.decode()
            self.assertEqual(sum(line.startswith("node ") for line in plain.splitlines()), 3)
            self.assertEqual(sum(line.startswith("edge ") for line in plain.splitlines()), result.out.count(" -- "))
        else:
            self.assertRegex(result.out, r'\Agraph ldp \{\n(   (node \[.*\]|"\S+"|"\S+" -- "\S+" \[.*\]);\n)+\}\n\Z')

    def test_usage(self):
        self.assertEqual(run("watch").status, 2)
        self.assertEqual(run("watch", "--check", capture("basic-v4")).status, 2)
        self.assertEqual(run("watch", "--bindings=10.0.0.0/33", capture("basic-v4")).status, 2)
        result = run("watch", "/nowhere.pcap")
        self.assertEqual((result.status, result.err.count("\n")), (2, 1))


class Messages(unittest.TestCase):
    """What each message shows, on sessions made to order. 10.0.0.2 speaks, 10.0.0.1 hears, unless said otherwise."""

    def ends(self, talk):
        states = watched(talk.frames)
        return states["10.0.0.2:0"], states["10.0.0.1:0"]

    def sessions(self, states):
        return {key.rsplit("_", 1)[0]: value for key, value in states["ldpFecSessionStatusColl"]["fecSessionStatus"].items()}

    def test_withdraw_waits_for_its_release(self):
        talk = Talk()
        talk.say(2, 0x0400, fec(TEN), label(100))
        talk.say(2, 0x0402, fec(TEN), label(100))
        speaker, hearer = self.ends(talk)
        sent, heard = self.sessions(speaker)["10.1.0.0/16"], self.sessions(hearer)["10.1.0.0/16"]
        self.assertEqual((sent["localLabelState"], heard["peerLabelState"]), ({"100": "withdrawSent"}, {"100": "withdrawRcvd"}))
        self.assertEqual(set(sent["withdrawLabel"]), {"100"})
        self.assertEqual(speaker["localLabelBindingTable"]["labelBinding"], {})
        self.assertEqual(hearer["ldpFecConfigColl"]["fecConfig"]["10.1.0.0/16"]["mappedLsr"], {})
        talk.say(1, 0x0403, fec(TEN), label(100))
        for states in self.ends(talk):
            self.assertEqual(self.sessions(states), {})
            self.assertEqual(states["ldpFecConfigColl"]["fecConfig"], {})

    def test_wildcards_take_all_or_all_of_a_label(self):
        for tlvs, left in (([fec(WILDCARD)], set()), ([fec(WILDCARD), label(100)], {"11.0.0.0/8"})):
            talk = Talk()
            talk.say(2, 0x0400, fec(TEN), label(100))
            talk.say(2, 0x0400, fec(ELEVEN), label(101))
            talk.say(2, 0x0402, *tlvs)
            talk.say(1, 0x0403, *tlvs)
            for states in self.ends(talk):
                self.assertEqual(set(self.sessions(states)), left)

    def test_request_and_its_answers(self):
        mapped = lambda talk, ident: talk.say(1, 0x0400, fec(TEN), label(100), tlv(0x0600, struct.pack("!I", ident)))
        refused = lambda talk, ident: talk.say(1, 0x0001, status_tlv(13, ident, 0x0401))
        for answer, left in ((None, 1), (mapped, 0), (refused, None)):
            talk = Talk()
            ident = talk.say(2, 0x0401, fec(TEN))
            if answer:
                answer(talk, ident)
            asker, asked = (self.sessions(states).get("10.1.0.0/16") for states in self.ends(talk))
            if left is None:
                self.assertEqual((asker, asked), (None, None))
                continue
            # The lowest bit of either word: the request is outstanding.
            self.assertEqual((asker["peerLabelSessionState"]["value"] & 1, asked["localLabelSessionState"]["value"] & 1), (left, left))
            self.assertEqual((asker["isNexthopLsr"], set(asker["msgIdReqMsg"])), (True, {str(ident)} if left else set()))

    def test_bindings_table(self):
        talk = Talk()
        ident = talk.say(2, 0x0401, fec(TEN))
        talk.say(1, 0x0400, fec(TEN), label(3), tlv(0x0600, struct.pack("!I", ident)))
        talk.say(2, 0x0400, fec(ELEVEN), label(101))
        talk.say(2, 0x0400, fec(P2MP), label(300))
        rows = lambda *options: [re.split(r"  +", line.strip()) for line in watch(talk.frames, *options).out.splitlines()]
        heading = ["FEC", "local", "peer", "advertised", "its label", "in use"]
        p2mp = "p2mp 10.0.0.1 0100040000002a"
        self.assertEqual(rows("--bindings"), [
            ["speaker 10.0.0.1:0"], heading,
            ["10.1.0.0/16", "imp-null", "10.0.0.2:0", "yes", "-", "-"],
            ["11.0.0.0/8", "-", "10.0.0.2:0", "no", "101", "-"],
            [p2mp, "-", "10.0.0.2:0", "no", "300", "yes"],
            ["speaker 10.0.0.2:0"], heading,
            ["10.1.0.0/16", "-", "10.0.0.1:0", "no", "imp-null", "yes"],
            ["11.0.0.0/8", "101", "10.0.0.1:0", "yes", "-", "-"],
            [p2mp, "300", "10.0.0.1:0", "yes", "-", "-"]])
        self.assertEqual([row[0] for row in rows("--bindings=10.0.0.0/8") if "speaker" not in row[0]],
                         ["FEC", "10.1.0.0/16"] * 2)

    def test_p2mp_is_known_on_both_sides_until_released(self):
        talk = Talk()
        talk.say(2, 0x0400, fec(P2MP), label(300))
        leaf, root = self.ends(talk)
        (state,) = leaf["p2mpFecStateColl"]["p2mpFecState"].values()
        self.assertEqual((state["p2mpFecRole"], state["upstreamLsr"]), ("leaf", "10.0.0.1:0"))
        self.assertEqual(len(root["p2mpFecStateColl"]["p2mpFecState"]), 1)
        self.assertEqual(set(root["p2mpFecSessionRemoteStateColl"]["p2mpFecSessionRemoteStateColl"]), {"10.0.0.2:0"})
        talk.say(2, 0x0402, fec(P2MP), label(300))
        talk.say(1, 0x0403, fec(P2MP), label(300))
        for states in self.ends(talk):
            self.assertEqual(states["p2mpFecStateColl"]["p2mpFecState"], {})
            self.assertEqual(states["p2mpOpaqueTable"]["freeId"], [1])  # the index has been given back

    def pseudowires(self, talk):
        """Rows of 10.0.0.1's table behind the heading."""
        lines = watch(talk.frames, "--pseudowires").out.split("speaker ")[1].splitlines()[2:]
        return [re.split(r"  +", line.strip()) for line in lines]

    def test_pseudowire_from_mapping_to_release(self):
        talk = Talk()
        up = tlv(0x896A, struct.pack("!I", 0))
        row = ["10.0.0.2:0", "7", "pwTypeRaw"]
        talk.say(2, 0x0400, fec(pw_id(7)), label(500), up)
        self.assertEqual(self.pseudowires(talk), [row + ["-", "500", "-/yes", "-/1500", "no local label"]])
        talk.say(1, 0x0400, fec(pw_id(7)), label(600), up)
        self.assertEqual(self.pseudowires(talk), [row + ["600", "500", "yes", "1500", "up"]])
        short = struct.pack("!BHBII", 0x80, 5, 4, 0, 7)  # as routers refer to it: no C bit, no parameters
        talk.say(2, 0x0001, status_tlv(0x28), tlv(0x896A, struct.pack("!I", 6)), fec(short))
        self.assertEqual(self.pseudowires(talk)[0][-1], "remote fault 0x6")
        talk.say(2, 0x0402, fec(short), label(500))
        self.assertEqual(self.pseudowires(talk), [row + ["600", "-", "yes/-", "1500/-", "no remote label"]])
        talk.say(1, 0x0403, fec(short), label(500))
        talk.say(1, 0x0400, fec(pw_id(7, control_word=0, mtu=1400)), label(601))
        talk.say(2, 0x0400, fec(pw_id(7, control_word=0)), label(501))
        self.assertEqual(self.pseudowires(talk), [row + ["601", "501", "no", "1400/1500", "MTU differs"]])
        key = "10.0.0.2_7"
        listener = watched(talk.frames)["10.0.0.1:0"]
        self.assertEqual(set(listener["pwConfigColl"]["config"]), {key})
        status = listener["pwStatusColl"]["status"][key]
        self.assertEqual((status["pwStatusMethod"], status["negotiatedControlWord"]), ("pwStatusMethodWithdraw", False))
        self.assertEqual([len(listener["index"]["pwKeyToPwFecSessionInfo"][key][name])
                          for name in ("localConfig", "remoteConfig", "localStatus", "remoteStatus")], [1, 1, 1, 1])
        group = struct.pack("!BHBI", 0x80, 5, 0, 0)  # all of the group
        for who in (1, 2):
            talk.say(who, 0x0402, fec(group))
            talk.say(3 - who, 0x0403, fec(group))
        self.assertEqual(self.pseudowires(talk), [])
        listener = watched(talk.frames)["10.0.0.1:0"]
        self.assertEqual((listener["pwConfigColl"]["config"], listener["index"]["pwKeyToPwFecSessionInfo"]), ({}, {}))

    def test_what_was_learnt_goes_with_the_session(self):
        def fatal(talk):
            talk.say(1, 0x0001, status_tlv(0x8000000A))
            talk.say(2, 0x0400, fec(TEN), label(102))  # was still under way

        def closed(talk):
            talk.segment(1, flags=ACK | FIN)

        def reset(talk):
            talk.segment(2, flags=RST)

        def another(talk):
            talk.frames += Talk(port=40001).frames

        def silence(talk):
            for second in (20, 40):
                talk.frames.append((ether(udp(pdu(hello(9), lsr="10.0.0.3"), src="10.0.0.3", dst="224.0.0.2")), None, second))

        cases = {fatal: "shutdown", closed: "tcpConnectionClosed", reset: "tcpConnectionClosed", another: "success",
                 silence: "keepAliveExpired"}
        for end, code in cases.items():
            with self.subTest(end=end.__name__):
                talk = Talk()
                talk.say(2, 0x0300, tlv(0x0101, struct.pack("!H", 1) + address("10.0.0.2")))
                talk.say(2, 0x0400, fec(TEN), label(100))
                talk.say(2, 0x0400, fec(P2MP), label(300))
                talk.say(2, 0x0400, fec(pw_id(7)), label(500))
                frames = list(talk.frames)
                for states in watched(frames).values():
                    self.assertTrue(self.sessions(states) and states["p2mpFecStateColl"]["p2mpFecState"] and
                                    states["index"]["pwKeyToPwFecSessionInfo"])
                end(talk)
                for speaker, states in watched(talk.frames).items():
                    for session in states["ldpSessionStatusColl"]["sessionStatus"].values():
                        self.assertEqual(session["ldpSessionState"]["code"], code, speaker)
                        self.assertEqual(session["peerIntfIp"], {})
                    self.assertEqual(self.sessions(states), {})
                    empty = [states["ldpFecConfigColl"]["fecConfig"], states["p2mpFecStateColl"]["p2mpFecState"],
                             states["index"]["pwKeyToPwFecSessionInfo"], states["index"]["labelToFec"],
                             states["index"]["peerToPwRequest"], states["localPwFecSessionConfigColl"]["fecSessionConfig"],
                             states["remotePwFecSessionStatusColl"]["fecSessionStatus"]]
                    self.assertEqual(empty, [{}] * len(empty), speaker)

    def test_session_that_began_before_the_capture(self):
        talk = Talk()
        beginning = len(talk.frames)
        talk.say(2, 0x0400, fec(TEN), label(100))
        speaker, _ = self.ends(type("Late", (), {"frames": talk.frames[:2] + talk.frames[beginning:]}))
        self.assertEqual(speaker["ldpSessionStatusColl"]["sessionStatus"]["10.0.0.1:0"]["ldpSessionState"]["sessionState"], "stateOperational")
        self.assertEqual(set(self.sessions(speaker)), {"10.1.0.0/16"})

    def test_changes_come_in_the_same_order_every_time(self):
        # The maps do not: each process has a secret of its own.
        talk = Talk()
        for i in range(40):
            talk.say(2, 0x0300, tlv(0x0101, struct.pack("!HI", 1, 0x0a0a0000 + i)))
            talk.say(2, 0x0400, fec(prefix(f"10.{i}.0.0", 16)), label(100 + i))
            talk.say(2, 0x0400, fec(P2MP[:-1] + bytes([i])), label(300 + i))
        talk.say(2, 0x0402, fec(b"\1"))
        talk.segment(2, flags=FIN | ACK)
        first, second = ([line for line in watch(talk.frames, "--follow").out.splitlines() if "requestTime" not in line] for _ in range(2))
        self.assertGreater(len(first), 1000)
        self.assertEqual(first, second)

    def test_who_floods_is_not_followed_beyond_a_bound(self):
        def one(ident, source, destination="224.0.0.2", flags=0, lsr=None):
            parameters = tlv(0x0400, struct.pack("!HH", 0xffff, flags))
            return ether(udp(pdu(message(0x0100, ident, parameters), lsr=lsr or source), src=source, dst=destination))
        sources = [f"11.0.{i >> 8}.{i & 255}" for i in range(1, 301)]
        cases = (  # frames, limit, what is said, speakers
            ([one(1, source) for source in sources], "speakers=250", "not kept (see --limit): 50 messages of further speakers, 40 further adjacencies", 250),
            ([one(1, source) for source in sources], "link=200", "not kept (see --limit): 55 further adjacencies", 300),
            ([one(i, "10.0.0.2", source, 0xC000) for i, source in enumerate(sources)], "adjacencies=256",
             "not kept (see --limit): 44 further adjacencies", 1))
        for frames, limit, words, speakers in cases:
            with self.subTest(limit=limit):
                result = watch(frames, "--neighbors", "--limit", limit, *(["--limit", "link=210"] if "speakers" in limit else []))
                self.assertEqual((result.status, result.err), (0, f"ldptool: {words}\n"))
                self.assertEqual(result.out.count("speaker 1"), speakers)
        talk = Talk()
        for i in range(20):
            talk.say(2, 0x0400, fec(prefix(f"10.{i}.0.0", 16)), label(100 + i))
        result = watch(talk.frames, "--bindings", "--limit", "fecs=12")
        self.assertEqual(result.err, "ldptool: not kept (see --limit): 8 further FECs\n")
        self.assertEqual(result.out.count("/16"), 24)
        for wrong in ("speakers", "speakers=0", "speakers=x", "people=3"):
            self.assertEqual(watch(talk.frames, "--limit", wrong).status, 2)


if __name__ == "__main__":
    unittest.main()
