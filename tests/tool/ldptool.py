"""Runs ldptool, for its tests."""

import json
import os
import subprocess
import tempfile

from ldpcap import *

LDPTOOL = os.environ["LDPTOOL"]


class Result:
    def __init__(self, process):
        self.status = process.returncode
        self.out = process.stdout.decode("latin-1")
        self.err = process.stderr.decode("latin-1")
        self.raw = process.stdout
        # Anything else there is a sanitizer's report, whose exit status could pass for one of the program's own.
        assert all(line.startswith("ldptool: ") for line in self.err.splitlines()), self.err

    @property
    def objects(self):
        # Strict UTF-8: whatever a peer sent, the output must be JSON.
        return [json.loads(line) for line in self.raw.decode("utf-8").splitlines()]


def run(*arguments, stdin=b""):
    return Result(subprocess.run([LDPTOOL, *arguments], input=stdin, capture_output=True, timeout=120))


def on_file(command, capture, *options):
    """Run a command on a capture (octets) in a file."""
    with tempfile.NamedTemporaryFile(suffix=".pcap") as file:
        file.write(capture)
        file.flush()
        return run(command, *options, file.name)


def decode(capture, *options):
    return on_file("decode", capture, *options)


def watch(capture, *options):
    return on_file("watch", capture, *options)


def decode_hex(packets, *options):
    """Decode packets, each a line of hexadecimal on standard input."""
    text = "\n".join(packet.hex() for packet in packets) + "\n"
    return run("decode", "--hex", "-", *options, stdin=text.encode())


def idents(result):
    """(frame, message id) of each message of a JSON result."""
    return [(o["frame"], o["msgId"]) for o in result.objects]
