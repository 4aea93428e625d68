"""Whatever a capture holds, the program ends by itself with one of its own exit statuses. Fixed seeds: a failure repeats."""

import glob
import os
import random
import unittest

from ldptool import *


def damage(rng, octets):
    octets = bytearray(octets)
    for _ in range(rng.randint(1, 8)):
        at = rng.randrange(len(octets))
        octets[at] = rng.choice((0, 1, 4, 0x7F, 0x80, 0xFF, 0xFC, rng.randrange(256)))
    return bytes(octets)


class Garbage(unittest.TestCase):
    def check(self, capture):
        for form in (["--json"], ["--full", "--bad"], ["--stats"]):
            result = decode(capture, *form)
            self.assertIn(result.status, (0, 1, 2, 3), result.err)
            if form == ["--json"]:
                result.objects
        # Whatever it makes of them, the copy in another process is the same.
        views = ("--neighbors", "--bindings", "--pseudowires", "--dot")
        result = watch(capture, "--replicate", "--check", *views)
        self.assertIn(result.status, (0, 2), result.err)
        if result.status == 0:
            self.assertTrue(result.out.endswith("the replica agrees\n"), result.out[-200:])

    def test_damaged_captures(self):
        for path in sorted(glob.glob(os.path.join(CAPTURES, "*.pcap"))):
            name = os.path.basename(path)
            link, whole = frames(path)
            rng = random.Random(name)
            for round_ in range(4):
                chosen = whole[:400]
                mixed = [damage(rng, f) if rng.random() < 0.2 else f for f in chosen]
                if round_ % 2:
                    rng.shuffle(mixed)
                mixed = [f for f in mixed if rng.random() > 0.05]
                mixed = [(f[: rng.randrange(len(f))], len(f)) if rng.random() < 0.05 else f for f in mixed]
                with self.subTest(name=name, round=round_):
                    self.check(pcap(mixed, link))

    def test_noise(self):
        for seed in range(10):
            rng = random.Random(seed)
            frames = []
            for n in range(300):
                noise = rng.randbytes(rng.randrange(600))
                wrap = rng.choice((lambda p: p or b"\0", lambda p: ether(udp(p)), lambda p: ether(tcp(p, seq=n * 300)),
                                   lambda p: ether(tcp(b"\0\1" + p, seq=rng.randrange(1 << 32), flags=rng.randrange(64))),
                                   lambda p: ether(udp(pdu(p[:500]))), lambda p: ether(tcp(pdu(message(0x400, n, tlv(0x100, p[:400]))), seq=n))))
                frames.append(wrap(noise))
            for link in (ETHERNET, RAW_IP, LINUX_SLL, LINUX_SLL2, NULL):
                with self.subTest(seed=seed, link=link):
                    self.check(pcap(frames, link))

    def test_noise_in_hexadecimal(self):
        rng = random.Random(1)
        packets = [pdu(rng.randbytes(rng.randrange(1, 60))) for _ in range(300)]
        packets += [pdu(message(rng.choice((1, 0x100, 0x200, 0x202, 0x300, 0x400, 0x402, 0x403)), n,
                                tlv(rng.choice((0x100, 0x101, 0x300, 0x400, 0x500)), rng.randbytes(rng.randrange(40))),
                                tlv(0x200, rng.randbytes(4)))) for n in range(1000)]
        self.assertIn(decode_hex(packets, "--json").status, (0, 1, 3))
        self.assertEqual(len(decode_hex(packets).out.splitlines()), len(decode_hex(packets, "--json").objects))

    def test_capture_file_cut_off_anywhere(self):
        whole = pcap([ether(udp(pdu(hello(n)))) for n in range(3)])
        for size in range(len(whole)):
            with self.subTest(size=size):
                result = decode(whole[:size], "--count")
                self.assertIn(result.status, (0, 2))
                self.assertEqual(len(result.err.splitlines()), 1 if result.status or result.out == "0\n" else 0)


if __name__ == "__main__":
    unittest.main()
