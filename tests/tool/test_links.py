"""What may stand around a UDP datagram or TCP segment: link headers, VLAN tags, IP versions and extension headers, fragments,
file formats, and packets that the capture cut off."""

import gzip
import unittest

from ldptool import *

HELLO = pdu(hello(7))
V6 = {"src": "2001:db8::1", "dst": "ff02::2"}
FRAME4, FRAME6 = udp(HELLO), udp(HELLO, **V6)


class Links(unittest.TestCase):
    def one(self, capture, src="10.0.0.1", dst="10.0.0.2", proto="udp", ident=7):
        result = decode(capture, "--json")
        self.assertEqual((result.err, result.status), ("", 0))
        found = [(o["src"], o["dst"], o["proto"], o["sport"], o["msgId"]) for o in result.objects]
        self.assertEqual(found, [(src, dst, proto, 646, ident)])
        return result.objects[0]

    def test_link_headers(self):
        links = {
            "Ethernet": (ETHERNET, ether), "VLAN": (ETHERNET, lambda p: ether(p, [(0x8100, 5)])),
            "802.3": (ETHERNET, lambda p: ether(p)[:12] + struct.pack("!H", len(p) + 8) + b"\xaa\xaa\3\0\0\0" + ether(p)[12:] + b"pad"),
            "QinQ": (ETHERNET, lambda p: ether(p, [(0x88A8, 5), (0x8100, 6)])),
            "three tags": (ETHERNET, lambda p: ether(p, [(0x9100, 5), (0x8100, 6), (0x8100, 7)])),
            "cooked 1": (LINUX_SLL, sll), "cooked 2": (LINUX_SLL2, sll2), "raw": (RAW_IP, lambda p: p),
            "null": (NULL, lambda p: struct.pack("<I", 2 if p[0] >> 4 == 4 else 30) + p),
        }
        for name, (link, wrap) in links.items():
            for form in (pcap, pcapng):
                with self.subTest(link=name, form=form.__name__):
                    self.one(form([wrap(FRAME4)], link))
                    self.one(form([wrap(FRAME6)], link), **V6)

    def test_carriers(self):
        def eth(kind, octets):
            return b"\2\0\0\0\0\1" + b"\2\0\0\0\0\2" + struct.pack("!H", kind) + octets

        def mpls(octets, labels=2):
            return b"".join(struct.pack("!I", (100 + i) << 12 | (i + 1 == labels) << 8 | 64) for i in range(labels)) + octets

        def gre(kind, octets, flags=0):
            fields = b"\0\0\0\1" * bin(flags & 0xB000).count("1")
            return ip(47, struct.pack("!HH", flags, kind) + fields + octets, src="192.0.2.1", dst="192.0.2.2")

        def vxlan(octets):
            return udp(b"\x08\0\0\0\0\0\1\0" + octets, sport=50000, dport=4789, src="192.0.2.1", dst="192.0.2.2")

        nested = lambda packet, times: nested(ip(4, packet, src="192.0.2.1", dst="192.0.2.2"), times - 1) if times else packet
        for packet, ends in ((FRAME4, {}), (FRAME6, V6), (tcp(HELLO), {"proto": "tcp"})):
            kind = 0x86DD if ends == V6 else 0x0800
            carriers = {
                "MPLS": eth(0x8847, mpls(packet)), "upstream MPLS": eth(0x8848, mpls(packet, 1)),
                "pseudowire": eth(0x8847, mpls(b"\0\0\0\0" + ether(packet))), "MPLS in a VLAN": eth(0x8100, b"\0\5\x88\x47" + mpls(packet)),
                "PPPoE": eth(0x8864, b"\x11\0\0\7" + struct.pack("!HH", len(packet) + 2, 0x57 if ends == V6 else 0x21) + packet),
                "GRE": ether(gre(kind, packet)), "GRE, all fields": ether(gre(kind, packet, 0xB000)), "GRE bridged": ether(gre(0x6558, ether(packet))),
                "ERSPAN I": ether(gre(0x88BE, ether(packet))), "ERSPAN II": ether(gre(0x88BE, bytes(8) + ether(packet), 0x1000)),
                "ERSPAN III": ether(gre(0x22EB, bytes(12) + ether(packet), 0x1000)),
                "ERSPAN III with subheader": ether(gre(0x22EB, bytes(11) + b"\1" + bytes(8) + ether(packet), 0x1000)),
                "VXLAN": ether(vxlan(ether(packet))), "IP in IP": ether(ip(41 if ends == V6 else 4, packet)), "seven deep": ether(nested(packet, 7)),
            }
            for name, frame in carriers.items():
                with self.subTest(name, ends=ends):
                    self.one(pcap([frame]), **ends)
                    for size in range(0, len(frame), 3):  # none of them reads behind its end
                        decode(pcap([(frame[:size], len(frame))])) if ends == V6 else None
        self.assertEqual(decode(pcap([ether(nested(FRAME4, 200))])).out, "")
        self.one(pcap([b"\xff\x03\0\x21" + FRAME4], 9))
        self.one(pcap([b"\x0f\0\x88\x47" + mpls(FRAME4)], 104))

    def test_gzip(self):
        whole = pcap([ether(FRAME4)])
        for packed in (gzip.compress(whole), gzip.compress(whole[:30]) + gzip.compress(whole[30:]), gzip.compress(pcapng([ether(FRAME4)]))):
            self.one(packed)
            self.assertEqual(len(run("decode", "-", "--json", stdin=packed).objects), 1)
            result = decode(packed[:-9])
            self.assertEqual((result.status, len(result.err.splitlines())), (2, 1))

    def test_file_forms(self):
        for order in "<>":
            for nano in (False, True):
                result = decode(pcap([(ether(FRAME4), None, 0.25)], order=order, nano=nano), "--json")
                self.assertIn('"time":1600000000.250000000,', result.out)

    def test_extension_headers(self):
        hop, route = (0, b"\0" + b"\1\4\0\0\0\0"), (43, b"\2" + b"\0" * 22)
        options, atomic = (60, b"\1" + b"\1\x0c" + b"\0" * 12), (44, b"\0" * 7)
        auth = (51, b"\4\0\0" + b"\0" * 20)
        for chain in ([hop], [hop, route], [hop, options, route, atomic, options], [auth], [atomic]):
            with self.subTest(chain=[kind for kind, _ in chain]):
                self.one(pcap([ether(udp(HELLO, extensions=chain, **V6))]), **V6)
        self.one(pcap([ether(tcp(HELLO, extensions=[hop, options], **V6))]), proto="tcp", **V6)

    def test_ethernet_padding_is_not_payload(self):
        self.one(pcap([ether(FRAME4) + b"\0" * 20]))
        self.one(pcap([ether(FRAME6) + b"\0" * 20]), **V6)

    def test_offloaded_packet_without_a_length(self):
        self.one(pcap([ether(tcp(HELLO, length=0))]), proto="tcp")

    def test_other_traffic_is_passed_over(self):
        others = [ether(udp(HELLO, sport=53, dport=53)), ether(ip(1, b"\2\x86\2\x86" * 4)), b"\0" * 60, ether(FRAME4)[:20],
                  b"\1\2\3", ether(b"\x45" + b"\0" * 3), ether(b"\x60" + b"\0" * 39)]
        result = decode(pcap(others), "--json")
        self.assertEqual((result.out, result.err, result.status),
                         ("", "ldptool: no LDP: none of 7 packets is to or from port 646\n", 0))

    def test_several_pdus_in_a_datagram(self):
        two = HELLO + pdu(hello(8))
        self.assertEqual([o["msgId"] for o in decode(pcap([ether(udp(two))]), "--json").objects], [7, 8])
        result = decode(pcap([ether(udp(HELLO + b"\xde\xad\xbe"))]), "--json")
        self.assertEqual([o["msgId"] for o in result.objects], [7])
        self.assertIn("3 octets behind the PDU of a datagram", result.err)

    def test_bad_datagrams(self):
        for payload, reason in ((b"", "PDU too small, size = 0"), (HELLO[:17], "PDU too small, size = 17"),
                                (HELLO[:-1], "LDP PDU Messages are malformed")):
            result = decode(pcap([ether(udp(payload))]), "--json")
            self.assertEqual([(o["valid"], o["pduReason"]) for o in result.objects], [(False, reason)])
            self.assertEqual(result.status, 1)

    def test_cut_off_by_the_capture(self):
        whole = ether(FRAME4)
        for size in range(len(whole)):
            with self.subTest(size=size):
                result = decode(pcap([(whole[:size], len(whole)), whole]), "--json")
                self.assertEqual([(o["frame"], o["msgId"]) for o in result.objects], [(2, 7)])
                self.assertEqual(result.status, 0)

    def test_ipv4_fragments(self):
        whole = struct.pack("!HHHH", 646, 646, 8 + 400, 0) + pdu(*[hello(i) for i in range(1, 25)], hello(25) + b"")
        payload = struct.pack("!HHHH", 646, 646, len(whole), 0) + whole[8:]
        first = ether(ip(17, payload[:160], fragment=0x2000))
        middle = ether(ip(17, payload[160:320], fragment=0x2000 | 20))
        last = ether(ip(17, payload[320:], fragment=40))
        for frames in ([first, middle, last], [last, middle, first], [first, ether(FRAME6), last, middle]):
            result = decode(pcap(frames), "--json", "--filter", "Hello")
            mine = [o for o in result.objects if o["src"] == "10.0.0.1"]
            self.assertEqual([o["msgId"] for o in mine], list(range(1, 26)))
            self.assertEqual({o["frame"] for o in mine}, {len(frames)})

    def test_fragments_that_stay_alone_are_told(self):
        four = ether(ip(17, FRAME4[20:44], fragment=0x2000))
        six = ether(ip(17, FRAME6[40:], extensions=[(44, b"\0\0\1\0\0\0\1")], **V6))
        result = decode(pcap([four, six]), "--stats")
        self.assertRegex(result.out, r"IP fragments +2\n")
        self.assertIn("2 IP fragments, 0 packets put together", result.err)


if __name__ == "__main__":
    unittest.main()
