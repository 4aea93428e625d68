#!/usr/bin/env python3
"""Prints the JSON Schema of what `ldptool watch --json` prints, made from the table of types.

    ldptool types --json | scripts/json_schema.py >watch.schema.json
"""

import json
import sys

BUILTIN = {"bool": {"type": "boolean"}, "double": {"type": ["number", "null"]}, "Vorn::String": {"type": "string"},
           **{f"U{bits}": {"type": "integer", "minimum": 0, "maximum": 2**bits - 1} for bits in (8, 16, 32, 64)}}
FORMS = {"boolean": BUILTIN["bool"], "number": BUILTIN["double"], "integer": {"type": "integer", "minimum": 0},
         "reference": {"type": ["string", "null"]}, "word": {"type": ["string", "integer"]}}
STORED = {"mutable", "constructor", "state", "child", "entities", "reference", "references", "values", "set", "queue"}
VIEW = 0x20 << 40  # of a value's attribute: it is a view of the fields


def value_of(types, name):
    if name in BUILTIN or name not in types:
        return BUILTIN.get(name, FORMS["word"])
    row = types[name]
    if row["kind"] == "entity" or row.get("json") == "object":
        return {"$ref": "#/$defs/" + name}
    if row["kind"] == "enum":
        return {"anyOf": [{"enum": list(row["enumerators"])}, FORMS["integer"]]}
    return FORMS[row["json"]]


def attribute_of(types, attribute):
    value = value_of(types, attribute["type"])
    if attribute["kind"] in ("reference", "references"):
        value = FORMS["reference"]
    form = attribute.get("json")
    if form == "array":
        return {"type": "array", "items": value if attribute["kind"] == "queue" else value_of(types, attribute["key"])}
    if form == "pairs":
        return {"type": "array", "items": closed({"key": value_of(types, attribute["key"]), "value": value})}
    if form == "object":
        return {"type": "object", "additionalProperties": value, "propertyNames": {"pattern": "^[^']*$"}}
    return {"anyOf": [value, {"type": "null"}]} if attribute["kind"] == "child" else value


def closed(properties):
    return {"type": "object", "properties": properties, "required": list(properties), "additionalProperties": False}


def is_in_json(types, row, attribute):
    if row["kind"] == "entity":
        return attribute["kind"] in STORED
    is_view = attribute["kind"] == "state" and int(attribute["flags"], 16) & VIEW
    return attribute["type"] == "bool" if is_view else attribute["kind"] in ("constructor", "state")


def schema_of(rows, root):
    types = {row["type"]: row for row in rows}
    definitions, wanted = {}, [root]
    while wanted:
        name = wanted.pop()
        if name in definitions:
            continue
        row = types[name]
        definitions[name] = closed({attribute["name"]: attribute_of(types, attribute)
                                    for attribute in row["attributes"] if is_in_json(types, row, attribute)})
        text = json.dumps(definitions[name])
        wanted += [other for other in types if f'"#/$defs/{other}"' in text]
    return {"$schema": "https://json-schema.org/draft/2020-12/schema", "$ref": "#/$defs/" + root, "$defs": definitions}


if __name__ == "__main__":
    json.dump(schema_of([json.loads(line) for line in sys.stdin], "LdpTool::Network"), sys.stdout, indent=1)
    print()
