"""The Label Distribution Protocol: messages decoded, captures read, the state of speakers as live objects.

    for message in ldp.read("session.pcap"):          # or ldp.decode(octets)
        print(message["time"], message["src"], message["type"], message.get("label"))

    watch = ldp.watch("session.pcap").run()
    for speaker in watch.root.speaker.values():
        print(speaker.ldpIdentifier)

Each type of the state has a class here, made from its record: help(ldp.LdpSessionStatus).
"""

import sys

from ._ldp import *
from ._ldp import __version__, define_types, records

try:
    from ._texts import TEXTS
except ImportError:  # while the package is being built
    TEXTS = {}

define_types(sys.modules[__name__], TEXTS)
del sys, TEXTS, define_types
