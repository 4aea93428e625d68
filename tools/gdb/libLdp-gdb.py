"""How gdb shows the library's values: strings, pointers, identifiers, addresses, FECs' prefixes, maps, queues, entities.

gdb loads this by itself beside the installed library, where that lies in one of its auto-load folders; else
`source libLdp-gdb.py`. `print *status` shows an entity's attributes, `call Vorn::dump( *status )` all that hangs below it.
"""

import ipaddress

import gdb
import gdb.printing


def octets(value):
    """Those of a std::array or C array of octets."""
    if value.type.strip_typedefs().code == gdb.TYPE_CODE_STRUCT:
        value = value["_M_elems"]
    first, last = value.type.strip_typedefs().range()
    return bytes(int(value[i]) for i in range(first, last + 1))


def number(value):
    """A number in network order."""
    return int.from_bytes(octets(value["v_"]), "big")


class String:
    """Vorn::String: the octets, with what does not print as escapes."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        data = self.value["data_"]
        if int(data) == 0:
            return ""
        text = (data + 1).cast(gdb.lookup_type("unsigned char").pointer())
        return text.cast(gdb.lookup_type("char").pointer()).string("latin-1", length=int(data["bytes"]))

    def display_hint(self):
        return "string"


class Ptr:
    """Vorn::Ptr: where it leads, the object's own type, and who else holds it."""

    def __init__(self, value):
        self.object = value["object_"]

    def to_string(self):
        if int(self.object) == 0:
            return "null"
        # No attribute, no type: a debugger must show what lies at a wild pointer too.
        try:
            references = int(self.object["refs_"]) & 0x1FFFFFFF
            return f"{self.object.dynamic_type.target()} at {int(self.object):#x}, {references} references"
        except gdb.error:
            return f"{self.object.type.target()} at {int(self.object):#x}"


class Text:
    """A value with a text of its own, which `text` makes."""

    def __init__(self, value, text):
        self.value, self.text = value, text

    def to_string(self):
        return self.text(self.value)


def address(value):
    return str(ipaddress.ip_address(octets(value["octets_"])))


def general_address(value):
    family = int(value["family_"])
    if family == 0:
        return "none"
    return str(ipaddress.ip_address(octets(value["addr_"]["octets_"])[: 4 if family == 1 else 16]))


def prefix(value):
    return f"{general_address(value['address_'])}/{int(value['len_'])}"


def identifier(value):
    return f"{ipaddress.ip_address(number(value['lsrId_']))}:{number(value['lblSpace_'])}"


class Children:
    """What all collections share: members in turn, in pairs where they have keys."""

    def __init__(self, value):
        self.value = value

    def display_hint(self):
        return "map"

    def children(self):
        for place, (key, member) in enumerate(self.members()):
            yield f"[{place}]", key
            yield f"[{place}]", member


class HashMap2018(Children):
    """Values by key: a directory of buckets, each a block of hash words, a header and nodes."""

    def to_string(self):
        return f"{int(self.value['members_'])} members"

    def members(self):
        key_type, value_type = self.value.type.template_argument(1), self.value.type.template_argument(2)
        # The node's type has no name in the map's, but each kind of node has key_, value_ or both.
        header = gdb.lookup_type("Vorn::HashMap2018BktHdr")
        bits, root = int(self.value["directoryBits_"]), self.value["root_"]
        buckets = [root]
        if bits:
            directory = root.cast(root.type.pointer())
            buckets = [directory[i] for i in range(1 << bits)]
        node = self.node(key_type, value_type)
        last = 0
        for bucket in buckets:
            if int(bucket) == 0 or int(bucket) == last:  # neighbouring entries may lead to one bucket
                continue
            last = int(bucket)
            bucket = bucket.cast(header.pointer())
            nodes = (bucket + 1).cast(node.pointer())
            for i in range(int(bucket["bits_"]) >> 18):
                fields = {field.name for field in node.fields()}
                value = nodes[i]["value_"] if "value_" in fields else True
                yield nodes[i]["key_"] if "key_" in fields else value, value

    def node(self, key_type, value_type):
        functor = self.value.type.template_argument(3)
        if functor.code != gdb.TYPE_CODE_VOID:
            return gdb.lookup_type(f"Vorn::HashMap2018NodeInternalKey<{key_type}, {value_type}, {functor}>")
        return gdb.lookup_type(f"Vorn::HashMap2018NodeExternKey<{key_type}, {value_type}, false>")


class HashMap(Children):
    """Owned entities: chains through the members' own links."""

    def to_string(self):
        return f"{int(self.value['memberCount_'])} members"

    def display_hint(self):
        return "array"

    def children(self):
        buckets, member = self.value["buckets_"], self.value.type.template_argument(1).pointer()
        if int(buckets) == 0:
            return
        place = 0
        for bucket in range(1 << int(self.value["exponent_"])):
            at = buckets[bucket]
            while int(at):
                entity = at.cast(member)
                yield f"[{place}]", entity.dereference()
                place += 1
                at = entity["next_"]


class LinkQueue(Children):
    """Values by index, the oldest first."""

    def to_string(self):
        return f"{int(self.value['members_'])} elements"

    def members(self):
        node = self.value["head_"]["object_"]
        while int(node):
            yield node["index_"], node["value_"]
            node = node["next_"]["object_"]


class Attributes:
    """The attributes of an entity or of a value, its bases' first; what the framework keeps in it is left out."""

    HIDDEN = {"notifieeList_", "next_", "parent_", "refs_", "status_"}

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return str(self.value.type.strip_typedefs().unqualified())

    def children(self):
        yield from self.fields(self.value)

    def fields(self, value):
        for field in value.type.strip_typedefs().fields():
            if field.is_base_class:
                if field.name != "Vorn::Entity":
                    yield from self.fields(value[field])
            elif hasattr(field, "bitpos") and not field.artificial and field.name not in self.HIDDEN:
                yield field.name.rstrip("_"), value[field]


def is_recorded(kind):
    """Whether the type is one of the model: it has a record."""
    return any(field.name == "_vornType" for field in kind.fields() if not field.is_base_class)


class Printers(gdb.printing.PrettyPrinter):
    TEXTS = {"Lumo::IpAddr": address, "Lumo::Ip6Addr": address, "Lumo::IpGenAddr": general_address,
             "Lumo::IpGenPrefix": prefix, "Ldp::LdpIdentifier": identifier,
             "Lumo::NetU16": lambda value: str(number(value)), "Lumo::NetU32": lambda value: str(number(value))}
    KINDS = {"Vorn::String": String, "Vorn::Name": String, "Vorn::Ptr": Ptr, "Vorn::HashMap2018": HashMap2018,
             "Vorn::HashMap": HashMap, "Vorn::LinkQueue": LinkQueue}

    def __call__(self, value):
        kind = value.type.strip_typedefs().unqualified()
        if kind.code != gdb.TYPE_CODE_STRUCT:
            return None
        if not kind.name: # g++ 12 leaves out the name of a constant Ptr
            return Ptr(value) if [field.name for field in kind.fields()] == ["object_"] else None
        if kind.name in self.TEXTS:
            return Text(value, self.TEXTS[kind.name])
        printer = self.KINDS.get(kind.name.split("<")[0])
        if not printer and is_recorded(kind):
            printer = Attributes
        return printer and printer(value)


gdb.printing.register_pretty_printer(gdb.current_objfile(), Printers("libLdp"), replace=True)
