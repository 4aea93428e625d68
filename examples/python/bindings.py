#!/usr/bin/env python3
"""The label bindings that a capture shows, as a pandas table: who has which label of whom for which FEC.

    bindings.py CAPTURE [FRAME]     as they were with that frame; without it, in the end
"""

import sys

import ldp
import pandas


def rows(root):
    for speaker, state in root.speaker.items():
        status = state.ldpStatusColl.status["default"]
        for identity, binding in status.ldpFecSessionStatusColl.fecSessionStatus.items():
            received = [label for label, what in binding.peerLabelState.items() if what == "mappingRcvd"]
            fec = status.ldpFecConfigColl.fecConfig.get(identity.fwdEqvClass)
            yield {"speaker": speaker, "fec": identity.fwdEqvClass, "peer": identity.ldpSessionId,
                   "local": sorted(fec.mplsLabelSet.mplsLabel) if fec else [], "received": received}


def main():
    frame = int(sys.argv[2]) if len(sys.argv) > 2 else None
    columns = ["speaker", "fec", "peer", "local", "received"]
    table = pandas.DataFrame(rows(ldp.watch(sys.argv[1], frame=frame).run().root), columns=columns)
    print(table.to_string(index=False, max_rows=40))
    print(f"{len(table)} bindings, {table.received.str.len().sum()} labels received")


if __name__ == "__main__":
    main()
