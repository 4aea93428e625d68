#!/usr/bin/env python3
"""Writes what people and tools read of the Python module: its types, from the type records, and texts, from the headers.

    make_stubs.py PACKAGE HEADER...    PACKAGE has the extension; writes PACKAGE/__init__.pyi and PACKAGE/_texts.py
"""

import pathlib
import re
import sys
import textwrap

HERE = pathlib.Path(__file__).parent
CLASS = re.compile(r"^\s*class (?:VORN_API )?(\w+)\b(?!.*;)")
LINE = re.compile(r"^\s*VORN_\w+\(")
WORD = re.compile(r"\w+")


def first_sentence(comment):
    text = " ".join(comment)
    end = re.search(r"[.:](?=\s+[A-Z]|\s*$)", text)
    return (text[: end.start()] if end else text).strip().replace("`", "") + "."


def texts_of(header, names):
    """("Type" or "Type.attribute", first sentence) of what has a comment; `names` are the attributes of each type."""
    comment, owner, line = [], None, ""
    for raw in header.read_text(encoding="utf-8").splitlines():
        stripped = raw.strip()
        if stripped.startswith("/// ") and not stripped.startswith(("/// \\", "///<")):
            comment.append(stripped[4:])
            continue
        found = CLASS.match(raw)
        if found:
            owner = found[1]
            if comment and owner in names:
                yield owner, first_sentence(comment)
        line = line + " " + stripped if line else stripped if LINE.match(raw) else ""
        if line and line.count("(") == line.count(")"):
            for word in WORD.findall(line):
                if comment and word in names.get(owner, ()):
                    yield f"{owner}.{word}", first_sentence(comment)
                    break
            line = ""
        if not line:
            comment = []


def doc(text, indent):
    quoted = text.replace("\\", "\\\\").replace('"', "'")
    return textwrap.fill(f'"""{quoted}"""', 120, initial_indent=indent, subsequent_indent=indent)


def class_lines(record, texts):
    name, base = record["name"], record["base"]
    head = "NamedTuple" if record["kind"] == "tuple" else base if record["kind"] == "entity" and name != "Entity" else ""
    yield f"class {name}({head}):" if head else f"class {name}:"
    if name in texts:
        yield doc(texts[name], "    ")
    if name == "Entity":
        yield (HERE / "ldp" / "entity.pyi").read_text(encoding="utf-8").rstrip()
    written = name in texts or name == "Entity"
    for attribute, form, owner in record["attributes"]:
        if record["kind"] == "tuple":
            yield f"    {attribute}: {form}"
        elif owner == name:
            yield f"    @property\n    def {attribute}(self) -> {form}:"
            yield doc(texts[f"{owner}.{attribute}"], "        ") if f"{owner}.{attribute}" in texts else "        ..."
        else:
            continue
        written = True
    if not written:
        yield "    ..."


def stub(records, texts):
    lines = [(HERE / "ldp" / "stub.pyi").read_text(encoding="utf-8")]
    for record in records:
        if record["kind"] == "enum":
            names = ", ".join(f'"{name}"' for name, _ in record["attributes"])
            lines.append(f"{record['name']} = Union[Literal[{names}], int]")
    done = set()
    entities = {r["name"]: r for r in records if r["kind"] == "entity"}

    def add(record):
        if record["name"] in done:
            return
        done.add(record["name"])
        if record["base"] in entities:
            add(entities[record["base"]])
        lines.extend(["", *class_lines(record, texts)])

    for record in records:
        if record["kind"] != "enum":
            add(record)
    return "\n".join(lines) + "\n"


def main():
    package = pathlib.Path(sys.argv[1])
    sys.path.insert(0, str(package))
    sys.dont_write_bytecode = True
    import _ldp

    records = _ldp.records()
    names = {r["name"]: {a[0] for a in r["attributes"]} for r in records if r["kind"] != "enum"}
    texts = {}
    for header in map(pathlib.Path, sys.argv[2:]):
        for name, text in texts_of(header, names):
            texts.setdefault(name, text)
    rows = "".join(f"    {name!r}: {text!r},\n" for name, text in sorted(texts.items()))
    (package / "_texts.py").write_text(f'"""First sentences of the headers, made by make_stubs.py."""\n\nTEXTS = {{\n{rows}}}\n',
                                       encoding="utf-8")
    (package / "__init__.pyi").write_text(stub(records, texts), encoding="utf-8")


if __name__ == "__main__":
    main()
