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
MODULES = ["ietf-interfaces", "ietf-ip", "iana-if-type", "ietf-routing-types", "ietf-mpls-ldp", "ietf-mpls-ldp-extended"]
AT_ONCE = 200  # files that one yanglint is given
MOST = 25  # notifications of one kind, speaker and capture: the first ones


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
    rib = {"name": "main", "address-family": "ietf-routing:ipv4"}  # ietf-routing demands one in its obsolete part
    return {**document, "ietf-routing:routing-state": {"ribs": {"rib": [rib]}},
            "ietf-interfaces:interfaces": {"interface": [{"name": name, **one} for name in sorted(names)]}}


def without_bindings(value):
    if isinstance(value, list):
        return [without_bindings(each) for each in value]
    return {key: without_bindings(each) for key, each in value.items() if key != "bindings"} if isinstance(value, dict) else value


def lint(folder, documents, state=None):
    """What yanglint says of the documents; of notifications, if there is a state that they can refer to."""
    said = ""
    with tempfile.TemporaryDirectory() as work:
        def written(name, document):
            path = os.path.join(work, name)
            pathlib.Path(path).write_text(json.dumps(document), encoding="ascii")
            return path

        files = [written(f"{number}.json", document) for number, document in enumerate(documents)]
        kind = ["-t", "notif", "-O", written("state.json", state)] if state else ["-e"]
        for begin in range(0, len(files), AT_ONCE):
            result = subprocess.run(["yanglint", "-Q", "-p", folder, "-F", "ietf-interfaces:", *kind, *[module(folder, name) for name in MODULES],
                                     *files[begin:begin + AT_ONCE]], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
            said += result.stderr.decode() or (f"status {result.returncode}" if result.returncode else "")
    return said


def watch(capture, *options):
    output = subprocess.run([os.environ.get("LDPTOOL", "ldptool"), "watch", "--yang", *options, capture], capture_output=True, check=True)
    return [json.loads(line) for line in output.stdout.splitlines()]


def name_of(document):
    return document["ietf-routing:routing"]["control-plane-protocols"]["control-plane-protocol"][0]["name"]


def speaker_of(content):
    return content.get("protocol-name") or content["peer"]["protocol-name"]


def main(folder, captures):
    status = 0
    for capture in captures or sorted(map(str, (ROOT / "tests/captures").glob("*.pcap"))):
        documents = {name_of(document): document for document in watch(capture)}
        said = lint(folder, [with_interfaces(document, names_in(document)) for document in documents.values()])
        events, by_speaker = watch(capture, "--follow"), {}
        for event in events:
            (kind, content), = ((name, value) for name, value in event["ietf-restconf:notification"].items() if name != "eventTime")
            by_speaker.setdefault((kind, speaker_of(content)), []).append({kind: content})
        for (_, speaker), told in by_speaker.items():
            state = without_bindings(documents[speaker])  # no notification refers to them
            said += lint(folder, told[:MOST], with_interfaces(state, names_in(state) | names_in(told)))
        print(f"{os.path.basename(capture)}: {len(documents)} speakers, {len(events)} notifications: {'BAD' if said else 'valid'}")
        if said:
            print(said[:4000])
            status = 1
    return status


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2:]))
