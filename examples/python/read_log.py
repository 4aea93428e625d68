#!/usr/bin/env python3
"""Reads an attribute log without the library, as docs/attribute-log.md describes it.

    ldptool types --json >types
    ldptool watch --publish state.log session.pcap
    examples/python/read_log.py types state.log          each record, where it begins and what it says
    examples/python/read_log.py --json types state.log   the copy, as docs/json.md has it, an entity a line

A Unix socket is read until the other end closes; a minus is standard input.
"""

import argparse
import json
import os
import socket
import stat
import sys

from octets import Octets, Refused

HEADER = b"VNAL\0\1\0\0"
ATTRIBUTE, MARKER, TYPE, INTRODUCING = range(4)
ORPHAN, GROUP = 0x88, 0x90
NUMBERS = {"U8": "B", "U16": "H", "U32": "I", "U64": "Q", "double": "d"}
BUILT_IN = {name: name for name in (*NUMBERS, "bool")} | {"Vorn::String": "string", "Vorn::Name": "string"}
MAX_LENGTH, MAX_BEGINS = 67108864, 64


class Schema:
    """The types, by name, and how their values are laid down."""

    def __init__(self, lines):
        self.types = {row["type"]: row for row in map(json.loads, lines)}
        for row in self.types.values():
            row["logged"] = {a["id"]: a for a in row.get("attributes", ()) if a["logged"]}
            row["fixed"] = {a["name"] for a in row.get("attributes", ()) if a["kind"] != "mutable"}

    def value(self, octets, name):
        row = self.types.get(name, {})
        wire = row.get("wire") or BUILT_IN.get(name)
        if isinstance(wire, list):
            fields = {field: self.value(octets, kind) for field, kind in wire}
            if "max" in row and fields["value"] > row["max"]:
                raise Refused(f"{name} with flags that it does not have")
            if name == "Ldp::LdpIdentifier":
                return f"{Octets(fields['lsrId'].to_bytes(4, 'big')).address(4)}:{fields['lblSpace']}"
            fields |= {a["name"]: bool(fields["value"] & a["mask"]) for a in row["attributes"] if "mask" in a}
            return fields if row["json"] == "object" else next(iter(fields.values()))
        value = getattr(self, wire)(octets) if wire not in NUMBERS else octets.number(NUMBERS[wire])
        if "max" in row and (len(value) if wire == "string" else value) > row["max"]:
            raise Refused(f"{value} is beyond what {name} holds")
        return next((text for text, number in row.get("enumerators", {}).items() if number == value), value)

    def bool(self, octets):
        value = octets.number("B")
        if value > 1:
            raise Refused(f"a bool of {value}")
        return value == 1

    def string(self, octets):
        return bytes(octets.take(octets.number("I"))).decode("latin-1")

    def ipv4(self, octets):
        return octets.address(4)

    def ipv6(self, octets):
        return octets.address(16)

    def address(self, octets):
        family = octets.number("B")
        if family > 2:
            raise Refused(f"address family {family}")
        return octets.address((0, 4, 16)[family]) if family else "none"

    def prefix(self, octets, address=None):
        address, length = address or self.address(octets), octets.number("B")
        if length > (128 if ":" in address else 32 if "." in address else 0):
            raise Refused(f"a prefix of {length} bits")
        return f"{address}/{length}"

    def ipv4Prefix(self, octets):
        return self.prefix(octets, octets.address(4))

    def fec(self, octets):
        tag = octets.number("B")
        if tag > 2:
            raise Refused(f"a FEC of kind {tag}")
        if tag == 0:
            return self.prefix(octets)
        if tag == 1:
            return f"words({octets.number('I')},{octets.number('I')})"
        return f"p2mp({self.address(octets)},{octets.number('I')})"

    def pwKey(self, octets):
        return f"{self.address(octets)}_{octets.number('I')}"


class Entity:
    def __init__(self, row, arguments, octets):
        self.row, self.arguments, self.octets = row, arguments, octets
        self.number, self.gone = 0, False
        self.attributes = {}  # by id: a value, an entity, or {octets of the key: (key, value)}
        self.begun = {}  # by id: [the keys that are still marked, number of begins]

    def name(self):
        return next(iter(self.arguments.values()), self.row["type"])

    def end(self):
        below = [self]
        while below:
            entity = below.pop()
            entity.gone = True
            for id, held in entity.attributes.items():
                if entity.row["logged"][id]["kind"] == "child":
                    below.append(held)
                elif entity.row["logged"][id]["kind"] == "entities":
                    below += [member for _, member in held.values()]

    def tree(self):
        held = {a["name"]: tree_of(a, self.attributes.get(id)) for id, a in self.row["logged"].items()
                if id in self.attributes or a["kind"] == "child"}
        return {name: value for name, value in self.arguments.items() if name != "name"} | held


def tree_of(attribute, held):
    def one(value):
        if not isinstance(value, Entity):
            return value
        return value.tree() if attribute["instantiating"] else value.name()
    form = attribute.get("json")
    if form == "array":
        return [key if attribute["kind"] == "set" else one(value) for key, value in held.values()]
    if form == "pairs":
        return [{"key": key, "value": one(value)} for key, value in held.values()]
    return {text_of(key): one(value) for key, value in held.values()} if form else one(held)


def text_of(key):
    """A key as the name of a member of an object: that of an adjacency names its link or its target."""
    if isinstance(key, dict) and "targetIpAddr" in key:
        return f"{key['ldpIdentifier']}_" + (key["intfId"] or "TARGET_" + key["targetIpAddr"])
    return "_".join(map(str, key.values())) if isinstance(key, dict) else str(key)


class Reader:
    """Applies records; `said` is told what each says."""

    def __init__(self, schema, said):
        self.schema, self.said = schema, said
        self.types, self.entities, self.roots = [None], [None], {}

    def record(self, kind, number, attribute, octets):
        if kind == TYPE:
            if number or attribute != len(self.types):
                raise Refused(f"type {attribute} out of order")
            name = bytes(octets.take(octets.left())).decode("latin-1")
            if name in self.types or not self.schema.types.get(name, {}).get("carried"):
                raise Refused(f"type {name} is not known, or has a number already")
            self.types.append(name)
            self.said("type", attribute, name)
        elif kind == INTRODUCING and attribute == ORPHAN and not number:
            self.orphan(octets)
        elif kind in (ATTRIBUTE, MARKER, INTRODUCING):
            self.about(kind, self.entity(number), number, attribute, octets)
        else:
            raise Refused(f"a record of kind {kind}")
        if octets.left():
            raise Refused("the record goes on behind its value")

    def entity(self, number):
        if not 0 < number < len(self.entities) or self.entities[number].gone:
            raise Refused(f"entity {number:#x} is not known")
        return self.entities[number]

    def type_name(self, octets):
        number = octets.number("I")
        if not 0 < number < len(self.types):
            raise Refused(f"type {number} has no name")
        return self.types[number]

    def made(self, type_name, octets):
        """An entity by its constructor arguments."""
        row, first = self.schema.types[type_name], octets.at
        arguments, laid_down, fixed = {}, octets.at, []
        for name, kind in row["ctor"]:
            arguments[name] = self.schema.value(octets, kind)
            if name in row["fixed"]:
                fixed.append(bytes(octets.data[laid_down:octets.at]))
            laid_down = octets.at
        key = self.key_of(row, octets.data[first:octets.at])
        return Entity(row, arguments, fixed), key

    def key_of(self, row, data):
        octets = Octets(data)
        if row["ctor"]:
            self.schema.value(octets, row["ctor"][0][1])
        return bytes(data[:octets.at])

    def orphan(self, octets):
        if octets.number("B") != 0:
            raise Refused("an orphan without its type")
        name = self.type_name(octets)
        if octets.number("B") != 2:
            raise Refused("an orphan without its arguments")
        entity = self.made(name, octets)[0]
        if octets.number("B") != 3:
            raise Refused("an orphan without its number")
        number = octets.number("I")
        self.numbered(number, entity)
        self.roots[number] = entity
        self.said("orphan", number, name, *entity.arguments.values())

    def numbered(self, number, entity):
        if number != len(self.entities):
            raise Refused(f"entity {number:#x} comes with another number than the next")
        entity.number = number
        self.entities.append(entity)

    def about(self, kind, entity, number, attribute, octets):
        if attribute == 2**32 - ORPHAN and kind == ATTRIBUTE:
            if self.roots.pop(number, None) is None:
                raise Refused("a withdrawal of what was not introduced by itself")
            entity.end()
            self.said("withdrawn", number, entity.row["type"])
        elif kind == MARKER:
            self.marker(entity, number, entity.row["logged"].get(attribute), octets)
        elif attribute in (GROUP, 2**32 - GROUP) and kind == ATTRIBUTE:
            first, end = octets.number("H"), octets.number("H")
            if first != 4 or end != octets.left() + 4:
                raise Refused("a group with impossible bounds")
            while octets.left():
                word = octets.number("I")
                described = entity.row["logged"].get(min(word, 2**32 - word))
                if described and described["key"] is None:
                    raise Refused("a group with more than collections")
                if described:
                    self.change(None, entity, number, word, octets)
        else:
            self.change(kind, entity, number, attribute, octets)

    def change(self, kind, entity, number, word, octets):
        deletes = word >> 31
        id = 2**32 - word if deletes else word
        attribute = entity.row["logged"].get(id)
        if attribute is None:
            raise Refused(f"attribute {id:#x} of {entity.row['type']} is not logged")
        introduces = attribute["instantiating"] and not deletes
        if kind is not None and (kind == INTRODUCING) != introduces:
            raise Refused("a record of the wrong kind")
        keyed = attribute["key"] is not None
        held = entity.attributes.setdefault(id, {}) if keyed else entity.attributes
        first, key = octets.at, id
        if introduces:
            made, at = self.made(attribute["type"], octets)
            key = next(iter(made.arguments.values()), None) if keyed else id
        elif keyed:
            key = self.schema.value(octets, attribute["key"])
            at = bytes(octets.data[first:octets.at])
        if not keyed:
            at = id
        shown = [key] if keyed else []
        if deletes:
            if not keyed and attribute["kind"] != "child":
                raise Refused("an attribute that cannot be deleted")
            gone = held.pop(at, None)
            if attribute["instantiating"] and gone:
                (gone[1] if keyed else gone).end()
            self.said("deleted", number, entity.row["type"], attribute["name"], *shown)
            return
        if introduces:
            value = self.member(attribute, held.get(at), keyed, made, octets)
            shown.append(value.number)
        elif attribute["kind"] in ("reference", "references"):
            target = octets.number("I")
            value = self.entity(target) if target else None
            shown.append(target)
        elif attribute["kind"] == "set":
            value = True
        else:
            value = self.schema.value(octets, attribute["type"])
            shown.append(value)
        held[at] = (key, value) if keyed else value
        if id in entity.begun:
            entity.begun[id][0].discard(at)
        self.said("set", number, entity.row["type"], attribute["name"], *shown)

    def member(self, attribute, there, keyed, made, octets):
        """The member that is introduced: the one that is there if its arguments agree, or else a new one."""
        if self.type_name(octets) != attribute["type"]:
            raise Refused(f"{attribute['name']} of another type")
        number, there = octets.number("I"), there[1] if keyed and there else there
        if 0 < number < len(self.entities):
            if self.entities[number] is not there:
                raise Refused("a member with the number of another")
            return there
        if there and there.octets == made.octets:
            there.arguments = made.arguments
            made = there
        elif there:
            there.end()
        self.numbered(number, made)
        return made

    def marker(self, entity, number, attribute, octets):
        ends, zero = octets.number("B"), octets.number("I")
        if attribute is None or attribute["key"] is None or ends not in (0, 2) or zero:
            raise Refused("a marker that cannot be")
        id = attribute["id"]
        held = entity.attributes.setdefault(id, {})
        if not ends:
            if attribute["kind"] == "queue":
                head, behind = octets.number("I"), octets.number("I")
                for at in [at for at in held if behind < head or not head <= int.from_bytes(at, "big") < behind]:
                    del held[at]
            begins = entity.begun[id][1] + 1 if id in entity.begun else 1
            if begins == MAX_BEGINS:
                raise Refused("a resynchronisation that begins again and again")
            entity.begun[id] = [set(held), begins]
        elif id in entity.begun:
            for at in entity.begun.pop(id)[0]:
                key, member = held.pop(at)
                if attribute["instantiating"]:
                    member.end()
        self.said("end" if ends else "begin", number, entity.row["type"], attribute["name"])


def read(file, reader, shown):
    """Applies a stream to its end. `shown` is told where each record begins, before what it says."""
    def take(size):
        octets = file.read(size)
        if len(octets) != size:
            raise Refused("the stream ends within a record")
        return octets

    if take(len(HEADER)) != HEADER:
        raise Refused("this is no attribute log of version 1")
    at = len(HEADER)
    while first := file.read(1):
        shown(at)
        length = Octets(first + take(3)).number("I")
        if not 11 <= length <= MAX_LENGTH:
            raise Refused(f"a record of {length} octets")
        data = memoryview(take(length))
        head = Octets(data)
        kind, number, attribute, begin = (head.number(code) for code in "BIIB")
        if begin != 0 or data[-1] != 2:
            raise Refused("a record without its tokens")
        reader.record(kind, number, attribute, Octets(data[10:-1]))
        at += 4 + length


def opened(name):
    if name == "-":
        return sys.stdin.buffer
    if not stat.S_ISSOCK(os.stat(name).st_mode):
        return open(name, "rb")
    connection = socket.socket(socket.AF_UNIX)
    connection.connect(name)
    connection.sendall(HEADER)  # the other direction, which stays empty
    return connection.makefile("rb")


def main():
    arguments = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    arguments.add_argument("--json", action="store_true", help="print the copy in place of the records")
    arguments.add_argument("types", help="what ldptool types --json prints")
    arguments.add_argument("log", help="file, Unix socket, or -")
    given = arguments.parse_args()
    place = [0]

    def said(*words):
        if not given.json:
            print(place[0], words[0], *map(json.dumps, words[1:]))

    with open(given.types) as lines:
        reader = Reader(Schema(lines), said)
    refused = None
    try:
        read(opened(given.log), reader, lambda at: place.__setitem__(0, at))
    except Refused as why:
        refused = f"refused at octet {place[0]}: {why}"
    if given.json:
        for root in reader.roots.values():
            print(json.dumps(root.tree()))
    sys.exit(refused)


if __name__ == "__main__":
    main()
