#!/usr/bin/env python3
"""How much faster the Python module decodes than scapy's LDP layer, on the PDUs of one capture.

    PYTHONPATH=build/release/python bench/python_ratio.py [CAPTURE]

Both are given the same PDUs, one by one, cut out of the capture beforehand: scapy puts no TCP streams together. Processor time of
the best of several turns each, taken by turns. Exits 1 below 20 times, 77 without scapy. What scapy makes of a PDU is checked by
the number of messages, since it stops where it knows no more.
"""

import logging
import pathlib
import sys
import time

import ldp

logging.getLogger("scapy").setLevel(logging.ERROR)
try:
    from scapy.contrib.ldp import LDP
    from scapy.layers.inet import IP, TCP, UDP
    from scapy.packet import NoPayload, Raw
    from scapy.utils import PcapReader
except ImportError:
    print("skipped: no scapy (python3-scapy)")
    sys.exit(77)

CAPTURE = pathlib.Path(__file__).parent.parent / "tests" / "captures" / "many-initial.pcap"
TURNS = 5
AIM = 20


def streams(path):
    """The octets of each datagram, and of each direction of a TCP conversation, in order and without repetitions."""
    conversations = {}
    for packet in PcapReader(str(path)):
        if IP in packet and UDP in packet and 646 in (packet[UDP].sport, packet[UDP].dport):
            yield bytes(packet[UDP].payload)
        elif IP in packet and TCP in packet and 646 in (packet[TCP].sport, packet[TCP].dport):
            ip, tcp = packet[IP], packet[TCP]
            octets = bytes(tcp.payload)[: ip.len - 4 * ip.ihl - 4 * tcp.dataofs]
            if octets:
                conversations.setdefault((ip.src, ip.dst, tcp.sport, tcp.dport), {})[tcp.seq] = octets
    for segments in conversations.values():
        yield b"".join(segments[at] for at in sorted(segments))


def pdus(path):
    for octets in streams(path):
        while len(octets) >= 10 and octets[:2] == b"\0\1":
            size = 4 + int.from_bytes(octets[2:4], "big")
            yield octets[:size]
            octets = octets[size:]


def by_scapy(octets):
    messages, layer = 0, LDP(octets).payload
    while not isinstance(layer, (NoPayload, Raw)):
        messages, layer = messages + 1, layer.payload
    return messages


def by_module(octets):
    return len(ldp.decode(octets))


def turn(decode, all_pdus):
    begin = time.process_time()
    messages = sum(map(decode, all_pdus))
    return time.process_time() - begin, messages


def main():
    sys.setrecursionlimit(100000)  # scapy's layers lie within each other, a message in the one before it
    path = sys.argv[1] if len(sys.argv) > 1 else CAPTURE
    all_pdus = list(pdus(path))
    per_message = {}
    for _ in range(TURNS):
        for decode in (by_scapy, by_module):
            seconds, messages = turn(decode, all_pdus)
            best = per_message.get(decode, (1e9, 0))
            per_message[decode] = min(best, (seconds / max(messages, 1), messages))
    for decode, (seconds, messages) in per_message.items():
        print(f"{decode.__name__[3:]:8} {messages:8} messages of {len(all_pdus)} PDUs, {seconds * 1e6:8.2f} us for each")
    begin = time.process_time()
    read = sum(1 for _ in ldp.read(path))
    print(f"ldp.read {read:8} messages from the file on, {(time.process_time() - begin) / read * 1e6:8.2f} us for each")
    ratio = per_message[by_scapy][0] / per_message[by_module][0]
    print(f"{ratio:.0f} times as fast as scapy (aim: {AIM})")
    sys.exit(ratio < AIM)


if __name__ == "__main__":
    main()
