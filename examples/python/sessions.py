#!/usr/bin/env python3
"""The states of all sessions over time, as a picture.

    sessions.py CAPTURE sessions.png
"""

import datetime
import sys

import ldp
import matplotlib

matplotlib.use("Agg")  # a file, and no window
import matplotlib.pyplot as plot  # noqa: E402

STATES = ["stateNonExist", "stateInitialized", "stateOpenSent", "stateOpenRecv", "stateOperational"]


def changes(capture):
    """For each session, by its two ends, its state and since when, in order."""
    watch, sessions = ldp.watch(capture), {}

    def note(thing, attribute, key):
        if isinstance(thing, ldp.LdpSessionStatus) and attribute == "ldpSessionState":
            speaker = thing.fullName.split("[")[1].split("]")[0]
            sessions.setdefault((speaker, thing.ldpSessionId), []).append((watch.time, thing.ldpSessionState.sessionState))

    watch.observe(note)
    watch.run()
    return sessions, watch.time


def main():
    sessions, end = changes(sys.argv[1])
    figure, axes = plot.subplots(len(sessions), sharex=True, figsize=(10, 0.9 * len(sessions) + 1), squeeze=False)
    for (ends, steps), axis in zip(sorted(sessions.items()), axes.flat):
        times = [datetime.datetime.fromtimestamp(time) for time, _ in [*steps, (end, None)]]
        states = [STATES.index(state) if state in STATES else 0 for _, state in steps]
        axis.step(times, [*states, states[-1]], where="post")
        axis.set_ylim(-0.5, len(STATES) - 0.5)
        axis.set_yticks([0, len(STATES) - 1], ["none", "operational"])
        axis.set_ylabel("{} to\n{}".format(*ends), rotation=0, ha="right", va="center", fontsize=8)
    figure.autofmt_xdate()
    figure.tight_layout()
    figure.savefig(sys.argv[2])
    print(f"{sys.argv[2]}: {len(sessions)} ends of sessions, {sum(map(len, sessions.values()))} changes")


if __name__ == "__main__":
    main()
