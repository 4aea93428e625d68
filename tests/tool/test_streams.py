"""TCP conversations as captures show them: begun earlier, cut anyhow, with segments lost, repeated, overlapping, late."""

import unittest

from ldptool import *

ISN = 5000
PDUS = [pdu(mapping(1)), pdu(keepalive(2)), pdu(mapping(3), mapping(4, bits=24)), pdu(keepalive(5)), pdu(mapping(6))]
STREAM = b"".join(PDUS)
ENDS = [sum(map(len, PDUS[: i + 1])) for i in range(len(PDUS))]


def segment(begin, end, isn=ISN, stream=STREAM, **kw):
    """The octets [begin, end) of the stream, which begins behind the SYN."""
    return ether(tcp(stream[begin:end], seq=isn + 1 + begin, **kw))


def syn(isn=ISN, **kw):
    return ether(tcp(seq=isn, flags=SYN, **kw))


def back(acked, isn=ISN):
    """The other side acknowledges that many octets."""
    return ether(tcp(seq=1, ack=isn + 1 + acked, sport=40000, dport=646, src="10.0.0.2", dst="10.0.0.1"))


class Streams(unittest.TestCase):
    def check(self, frames, expected, warnings=(), isn=ISN, status=0):
        result = decode(pcap(frames), "--json")
        self.assertEqual([ident for _, ident in idents(result)] if isinstance(expected[0], int) else idents(result), expected)
        lines = result.err.splitlines()
        self.assertEqual(len(lines), len(warnings), result.err)
        for line, words in zip(lines, warnings):
            self.assertIn(words, line)
        self.assertEqual(result.status, status)
        return result

    def test_one_segment_of_several_pdus(self):
        self.check([syn(), segment(0, len(STREAM))], [(2, 1), (2, 2), (2, 3), (2, 4), (2, 5), (2, 6)])

    def test_every_place_to_cut_in_two(self):
        for cut in range(1, len(STREAM)):
            with self.subTest(cut=cut):
                # Frame 2 ends with the cut; a PDU belongs to the frame of its last octet.
                first = sum(end <= cut for end in ENDS)
                counts = [1, 1, 2, 1, 1]
                expected, ident = [], 1
                for number, count in enumerate(counts):
                    for _ in range(count):
                        expected.append((2 if number < first else 3, ident))
                        ident += 1
                self.check([syn(), segment(0, cut), segment(cut, len(STREAM))], expected)

    def test_octet_by_octet(self):
        frames = [syn()] + [segment(i, i + 1) for i in range(len(STREAM))]
        ends = [ENDS[0], ENDS[1], ENDS[2], ENDS[2], ENDS[3], ENDS[4]]
        self.check(frames, [(end + 1, ident + 1) for ident, end in enumerate(ends)])

    def test_sequence_numbers_wrap(self):
        for isn in (0xFFFFFFFF, 0xFFFFFFF0, 0xFFFFFFFE):
            frames = [syn(isn), segment(0, 40, isn), segment(60, 90, isn), segment(40, 60, isn), segment(90, len(STREAM), isn)]
            self.check(frames, [1, 2, 3, 4, 5, 6])

    def test_repeated_and_overlapping(self):
        end = len(STREAM)
        for cuts in ([(0, 50), (0, 50), (50, end)], [(0, 50), (20, 70), (60, end)], [(0, 50), (10, 30), (0, end)],
                     [(0, end), (0, end)], [(0, 50), (49, 50), (50, end)]):
            with self.subTest(cuts=cuts):
                self.check([syn()] + [segment(*cut) for cut in cuts], [1, 2, 3, 4, 5, 6])

    def test_keep_alive_probe(self):
        self.check([syn(), segment(0, ENDS[0]), segment(ENDS[0] - 1, ENDS[0]), segment(ENDS[0], ENDS[1])], [1, 2])

    def test_out_of_order(self):
        a, b, c, end = 30, 70, 100, len(STREAM)
        for cuts in ([(a, b), (0, a), (b, end)], [(b, end), (a, b), (0, a)], [(c, end), (a, b), (b, c), (0, a)],
                     [(a, c), (b, end), (0, a)], [(a, b), (a - 10, c), (c, end), (0, a)], [(a, b), (0, end)]):
            with self.subTest(cuts=cuts):
                self.check([syn()] + [segment(*cut) for cut in cuts], [1, 2, 3, 4, 5, 6])

    def test_late_segment_belongs_to_its_own_frame(self):
        frames = [syn(), segment(ENDS[0], ENDS[1]), segment(0, ENDS[0])]
        self.check(frames, [(3, 1), (2, 2)])

    def test_capture_begins_in_the_middle(self):
        self.check([segment(0, ENDS[1]), segment(ENDS[1], len(STREAM))], [1, 2, 3, 4, 5, 6])
        for begin in range(1, ENDS[0] + 1):
            skipped = ENDS[0] - begin
            with self.subTest(begin=begin):
                warnings = [f"{skipped} octets skipped before the next PDU"] if skipped else []
                self.check([segment(begin, ENDS[1]), segment(ENDS[1], len(STREAM))], [2, 3, 4, 5, 6], warnings)
        # Cut so that the first segment ends inside the header that is looked for.
        for cut in range(ENDS[0] + 1, ENDS[0] + 18):
            with self.subTest(cut=cut):
                warnings = [f"{ENDS[0] - 5} octets skipped before the next PDU"]
                self.check([segment(5, cut), segment(cut, len(STREAM))], [2, 3, 4, 5, 6], warnings)

    def test_lost_segment(self):
        # The segment that held the end of the first PDU and the beginning of the second never shows up.
        begin, end = ENDS[0] - 6, ENDS[0] + 4
        rest = ENDS[1] - end
        words = f"{end - begin} octets missing, {begin + rest} octets skipped before the next PDU"
        frames = [syn(), segment(0, begin), segment(end, len(STREAM))]
        with self.subTest("told at the end of the capture"):
            self.check(frames, [3, 4, 5, 6], [words])
        with self.subTest("told once the other side has acknowledged it and time has passed"):
            late = [(back(len(STREAM)), None, 0.1), (back(len(STREAM)), None, 3)]
            again = [(ether(tcp(pdu(keepalive(7)), seq=ISN + 1 + len(STREAM))), None, 3.1)]
            self.check(frames + late + again, [(3, 3), (3, 4), (3, 5), (3, 6), (6, 7)], [words])
        with self.subTest("told when the connection is reset"):
            self.check(frames + [ether(tcp(seq=ISN + 1, flags=RST))], [3, 4, 5, 6], [words])

    def test_lost_whole_pdu(self):
        frames = [syn(), segment(0, ENDS[0]), segment(ENDS[1], len(STREAM))]
        self.check(frames, [1, 3, 4, 5, 6], [f"{ENDS[1] - ENDS[0]} octets missing, 0 octets skipped"])

    def test_retransmission_fills_the_hole_in_time(self):
        frames = [syn(), segment(0, 20), segment(60, len(STREAM)), (back(20), None, 2), (segment(20, 60), None, 2.5)]
        self.check(frames, [1, 2, 3, 4, 5, 6])

    def test_several_holes(self):
        frames = [syn(), segment(0, ENDS[0]), segment(ENDS[1], ENDS[2]), segment(ENDS[3], ENDS[4])]
        self.check(frames, [1, 3, 4, 6], [f"{len(PDUS[1])} octets missing", f"{len(PDUS[3])} octets missing"])

    def test_hole_with_much_behind_it(self):
        # More than may wait: the hole is given up, and the conversation goes on.
        many = [pdu(*[mapping(i) for i in range(n * 50, n * 50 + 50)]) for n in range(700)]
        at, frames = len(many[0]), [syn(), ether(tcp(many[0], seq=ISN + 1))]
        at += len(many[1])
        for octets in many[2:]:
            frames.append(ether(tcp(octets, seq=ISN + 1 + at)))
            at += len(octets)
        expected = list(range(50)) + list(range(100, 700 * 50))
        self.check(frames, expected, [f"{len(many[1])} octets missing, 0 octets skipped"])

    def test_looks_like_a_header_behind_a_hole(self):
        # Behind the hole stand octets that begin like a PDU: version 1, a length in bounds, a known message type.
        fake = pdu(keepalive(99)[:4], length=9000) + b"\0\1" * 20
        for tail in (b"", b"\0", b"\0\1", b"\0\1\0", fake):
            with self.subTest(tail=tail):
                stream = b"\xee" * 20 + tail + STREAM
                frames = [syn(), ether(tcp(PDUS[0], seq=ISN + 1)), ether(tcp(stream, seq=ISN + 1 + len(PDUS[0]) + 100))]
                self.check(frames, [1, 1, 2, 3, 4, 5, 6], [f"100 octets missing, {20 + len(tail)} octets skipped"])

    def test_false_header_at_the_end_hides_nothing(self):
        fake = b"\0\1" + struct.pack("!H", 9000) + b"\n\0\0\1\0\0" + struct.pack("!HHI", 0x0400, 4000, 0)
        frames = [ether(tcp(fake + STREAM, seq=ISN + 1))]
        self.check(frames, [1, 2, 3, 4, 5, 6], [f"{len(fake)} octets skipped"])

    def test_new_connection_on_the_same_ports(self):
        isn = 77_000_000
        other = [syn(isn), segment(0, len(STREAM), isn)]
        with self.subTest("after FIN"):
            self.check([syn(), segment(0, ENDS[1], flags=ACK | FIN)] + other, [1, 2, 1, 2, 3, 4, 5, 6])
        with self.subTest("in the middle of a PDU"):
            words = "10 octets skipped at the end of the conversation"
            self.check([syn(), segment(0, ENDS[1] + 10)] + other, [1, 2, 1, 2, 3, 4, 5, 6], [words])
        with self.subTest("with a hole"):
            words = f"{len(PDUS[0])} octets missing"
            self.check([syn(), segment(ENDS[0], ENDS[1])] + other, [2, 1, 2, 3, 4, 5, 6], [words])
        with self.subTest("its SYN not captured"):
            self.check([syn(), segment(0, ENDS[1]), segment(0, len(STREAM), isn)], [1, 2, 1, 2, 3, 4, 5, 6])

    def test_repeated_syn_and_late_repetition_after_the_end(self):
        whole = segment(0, len(STREAM), flags=ACK | FIN)
        self.check([syn(), syn(), whole, whole, segment(0, 50)], [1, 2, 3, 4, 5, 6])
        self.check([syn(), segment(0, ENDS[0]), syn(), segment(ENDS[0], len(STREAM))], [1, 2, 3, 4, 5, 6])

    def test_unfinished_pdu_at_the_end(self):
        self.check([syn(), segment(0, ENDS[0] + 7)], [1], ["7 octets skipped at the end of the conversation"])

    def test_both_directions_and_many_connections(self):
        frames = []
        for port in range(40000, 40050):
            frames.append(ether(tcp(PDUS[0], seq=port, dport=port)))
            frames.append(ether(tcp(PDUS[1], seq=port + 7, sport=port, dport=646, src="10.0.0.2", dst="10.0.0.1")))
        self.check(frames, [1, 2] * 50)

    def test_flood_of_connections(self):
        # More than are kept: the oldest is forgotten and found again as one that was begun earlier.
        frames = [syn(), segment(0, ENDS[0])]
        frames += [ether(tcp(seq=1, flags=SYN, sport=1024 + n % 60000, dport=646, src="10.9.%d.1" % (n // 60000)))
                   for n in range(9000)]
        frames += [segment(ENDS[0], len(STREAM))]
        self.check(frames, [1, 2, 3, 4, 5, 6])

    def test_bad_header_in_the_stream(self):
        for length, reason in ((9597, "PDU length field too big, length = 9601"), (9, "PDU length field too small, length = 13")):
            with self.subTest(length=length):
                bad = pdu(mapping(50), length=length)
                frames = [syn(), ether(tcp(PDUS[0] + bad + STREAM, seq=ISN + 1))]
                result = decode(pcap(frames), "--json")
                objects = result.objects
                self.assertEqual([o.get("msgId") for o in objects], [1, None, 1, 2, 3, 4, 5, 6])
                self.assertEqual((objects[1]["pduStatus"], objects[1]["pduReason"]), ("badPduLength", reason))
                self.assertIn(f"{len(bad)} octets skipped before the next PDU", result.err)
                self.assertEqual(result.status, 1)
        bad = pdu(mapping(50), version=2)  # its length is good, so the next PDU is found without a search
        result = decode(pcap([syn(), ether(tcp(PDUS[0] + bad + STREAM, seq=ISN + 1))]), "--json")
        self.assertEqual([o.get("msgId") for o in result.objects], [1, None, 1, 2, 3, 4, 5, 6])
        self.assertEqual((result.err, result.status), ("", 1))

    def test_segment_cut_off_by_the_capture(self):
        whole = segment(0, len(STREAM))
        short = (whole[: len(whole) - (len(STREAM) - ENDS[1]) + 5], len(whole))
        more = ether(tcp(pdu(keepalive(9)), seq=ISN + 1 + len(STREAM)))
        words = f"{len(STREAM) - ENDS[1] - 5} octets missing, 5 octets skipped before the next PDU"
        self.check([syn(), short, more], [1, 2, 9], [words])


if __name__ == "__main__":
    unittest.main()
