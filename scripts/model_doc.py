#!/usr/bin/env python3
"""Writes docs/model.md from the type table, which ldptool prints: who owns whom, who refers to whom.

    ldptool types --json | scripts/model_doc.py docs/model.md           writes the page
    ldptool types --json | scripts/model_doc.py --check docs/model.md   exit 1 if the page is another
"""

import json
import pathlib
import sys

INTRO = """<!-- Made from the type table by scripts/model_doc.py (`make model-doc`); do not edit. -->
# The model, who owns whom

Every box of state that the library defines, in the order in which its owner declares it. A line reads
`attribute: type` for a single child and `attribute[key]: type` for a collection. A `*` says that the attribute log carries
the attribute with all that is logged below it. The attributes of a type are in its header, and `ldptool types TYPE` prints
them with ids, kinds and flags. [object-model.md](object-model.md) tells how all of them behave.
"""

REFERENCES = """
## Who refers to whom

References keep what they point to alive, and own nothing. In an entity that has one, the attribute and the type that it
points to:
"""

LOOSE = """
## Owned by the agent

No attribute of the model makes these; the agent does, or they are bases of others.
"""

CHILD, COLLECTION, LOCAL_COLLECTION = 0xB920, 0xB921, 0x3921
REFERENCE, REFERENCE_COLLECTION = 0xB820, 0xB821


def kind(attribute):
    return int(attribute["flags"], 16) >> 48


def own_entities(lines):
    """Entities of the library by name: the tool's own are no part of it."""
    types = [json.loads(line) for line in lines]
    return {t["type"]: t for t in types if t["kind"] == "entity" and not t["type"].startswith("LdpTool::")}


def owned(entity):
    return [a for a in entity["attributes"] if kind(a) in (CHILD, COLLECTION, LOCAL_COLLECTION)]


def line_of(attribute):
    key = f"[{attribute['key']}]" if attribute["key"] else ""
    return f"{attribute['name']}{key}: {attribute['type']}" + (" *" if attribute["logged"] else "")


def tree(entities, name, indent, out):
    """The lines below a type. What nothing is below is done; a type below itself does not occur."""
    children = owned(entities[name])
    for number, attribute in enumerate(children):
        last = number == len(children) - 1
        out.append(indent + ("└─ " if last else "├─ ") + line_of(attribute))
        tree(entities, attribute["type"], indent + ("   " if last else "│  "), out)


def page(entities):
    has_owner = {a["type"] for e in entities.values() for a in owned(e)}
    roots = [n for n in entities if n not in has_owner and owned(entities[n])]
    loose = [n for n in entities if n not in has_owner and not owned(entities[n])]
    out = [INTRO]
    # The largest tree first: it is the one that a reader looks for.
    drawn = []
    for root in roots:
        lines = []
        tree(entities, root, "", lines)
        drawn.append((root, lines))
    for root, lines in sorted(drawn, key=lambda item: (-len(item[1]), item[0])):
        out += ["```text", root, *lines, "```", ""]
    out.append(REFERENCES)
    for name, entity in entities.items():
        for attribute in entity["attributes"]:
            if kind(attribute) in (REFERENCE, REFERENCE_COLLECTION):
                out.append(f"- `{name}`: `{line_of(attribute)}`")
    out += [LOOSE]
    for name in loose:
        base = entities[name]["base"]
        out.append(f"- `{name}`" + (f", which is a `{base}`" if base != "Vorn::Entity" else ""))
    return "\n".join(out) + "\n"


def main():
    check = sys.argv[1] == "--check"
    path = pathlib.Path(sys.argv[-1])
    text = page(own_entities(sys.stdin))
    if not check:
        path.write_text(text, encoding="utf-8")
    elif path.read_text(encoding="utf-8") != text:
        sys.exit(f"{path} does not say what the type table says; run `make model-doc`")


if __name__ == "__main__":
    main()
