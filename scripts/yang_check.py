#!/usr/bin/env python3
"""Validates what `ldptool watch --yang` makes of captures, its notifications too, with yanglint against the modules themselves.

    LDPTOOL=... scripts/yang_check.py DIR [CAPTURE...]      DIR: the folder of the modules (docs/standard-shapes.md names them)

The documents refer to interfaces of the router, which a capture does not have: each gets the `ietf-interfaces` that the router
itself would have, and is then held against all that the modules demand, references and `must` included.
"""

import glob
import json
import os
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
MODULES = ["ietf-mpls-ldp", "ietf-mpls-ldp-extended", "ietf-interfaces", "ietf-ip", "iana-if-type"]
AT_ONCE = 200  # files that one yanglint is given
MOST = 1000  # notifications of one kind and capture: the first ones


def module(folder, name):
    found = sorted(glob.glob(os.path.join(folder, name + "@*.yang"))) or glob.glob(os.path.join(folder, name + ".yang"))
    if not found:
        sys.exit(f"yang_check.py: {folder} has no {name}.yang")
    return found[-1]


def names_in(value):
    """The names of interfaces that a document refers to."""
    if isinstance(value, list):
        return set().union(*map(names_in, value))
    if not isinstance(value, dict):
        return set()
    own = {value[key] for key in ("interface", "next-hop-interface") if isinstance(value.get(key), str)}
    listed = value.get("interface")
    if isinstance(listed, list):
        own |= {entry["name"] for entry in listed}
    return own.union(*map(names_in, value.values()))


def with_interfaces(document, names):
    one = {"type": "iana-if-type:ethernetCsmacd", "oper-status": "up", "statistics": {"discontinuity-time": "2000-01-01T00:00:00Z"},
           "ietf-ip:ipv4": {}, "ietf-ip:ipv6": {}}
    return {**document, "ietf-interfaces:interfaces": {"interface": [{"name": name, **one} for name in sorted(names)]}}


def lint(folder, options, documents):
    """What yanglint says of the documents."""
    said = ""
    with tempfile.TemporaryDirectory() as work:
        files = []
        for number, document in enumerate(documents):
            files.append(os.path.join(work, f"{number}.json"))
            with open(files[-1], "w", encoding="ascii") as file:
                json.dump(document, file)
        for begin in range(0, len(files), AT_ONCE):
            result = subprocess.run(["yanglint", "-p", folder, *[option.replace("WORK", work) for option in options],
                                     *[module(folder, name) for name in MODULES], *files[begin:begin + AT_ONCE]],
                                    capture_output=True, text=True, check=False)
            said += result.stderr if result.returncode or result.stderr else ""
    return said


def watch(capture, *options):
    output = subprocess.run([os.environ.get("LDPTOOL", "ldptool"), "watch", "--yang", *options, capture], capture_output=True, check=True)
    return [json.loads(line) for line in output.stdout.splitlines()]


def main(folder, captures):
    status = 0
    for capture in captures or sorted(map(str, (ROOT / "tests/captures").glob("*.pcap"))):
        documents = watch(capture)
        said = lint(folder, ["-e"], [with_interfaces(document, names_in(document)) for document in documents])
        events = [line["ietf-restconf:notification"] for line in watch(capture, "--follow")]
        kept = {}
        for event in events:
            (kind,) = event.keys() - {"eventTime"}
            kept.setdefault(kind, []).append({kind: event[kind]})
        for of_kind in kept.values():
            said += lint(folder, ["-t", "notif"], of_kind[:MOST])
        print(f"{os.path.basename(capture)}: {len(documents)} speakers, {len(events)} notifications: {'BAD' if said else 'valid'}")
        if said:
            print(said[:4000])
            status = 1
    return status


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2:]))
