#!/usr/bin/env python3
"""Dependencies point one way: tools -> model -> framework, tools -> decode -> framework; and so do those of ldptool's folders.

Reads the #include lines of the tree (first argument) and names every one that points elsewhere. The library includes, besides
itself, only standard headers and the few system headers listed here. Exit 1 if something was named.
"""

import pathlib
import re
import sys

# include/Ldp/NAME.h belongs to the layer that holds NAME.cpp; a header without a source of its own is entered here.
WITHOUT_SOURCE = {"Version.h": "framework", "Fwd.h": "framework", "LdpIndexed.h": "decode"}

# The values that decode and model share: status codes, identifiers, FEC values, the protocol's parameters.
SHARED_WITH_MODEL = {"LdpEnums.h", "LdpIdentifier.h", "LdpFecHdr.h", "LdpProtoParam.h", "PwTypes.h",
                     "LdpMsgParser.h"}  # the last for the two parsers that a cross-session notification keeps

MAY_INCLUDE = {
    "framework": {"framework"},
    "decode": {"decode", "framework"},
    "model": {"model", "framework"},
    "tools": {"tools", "model", "decode", "framework"},
    "python": {"python", "tools", "model", "decode", "framework"},
    "examples": {"model", "decode", "framework"},
}

# Which folders of ldptool know which; tools/ldptool/README.md says what is in them.
ROOMS = {
    "capture": set(),
    "ring": set(),
    "log": {"capture", "text"},
    "text": {"capture"},
    "messages": {"capture", "text"},
    "reporters": {"capture", "text", "messages"},
    "monitor/speaker": {"capture"},
    "monitor/discovery": {"capture", "monitor/speaker"},
    "monitor/labels": {"capture", "monitor/speaker"},
    "monitor/session": {"capture", "monitor/speaker", "monitor/labels"},
    "monitor": {"capture", "messages", "monitor/speaker", "monitor/discovery", "monitor/labels", "monitor/session"},
    "views": {"capture", "text", "monitor", "monitor/speaker"},
    "standards": {"capture", "text", "monitor", "monitor/speaker", "views"},
    "findings": {"capture", "text", "messages", "monitor", "monitor/speaker"},
    "commands": {"capture", "ring", "log", "text", "messages", "reporters", "monitor", "monitor/speaker", "views", "standards", "findings"},
}
TOOL = pathlib.Path("tools/ldptool")

LIBRARY = {"framework", "decode", "model"}

# What the headers of include/Vorn are made of; whoever uses them includes those.
MACHINE_ROOM = ("include", "Vorn", "Impl")

# Beside the C++ standard headers, which have neither folder nor suffix.
SYSTEM_HEADERS = {"cxxabi.h", "fcntl.h", "unistd.h", "time.h", "immintrin.h", "emmintrin.h", "x86intrin.h", "pthread.h",
                  "arpa/inet.h", "netinet/in.h", "sys/mman.h", "sys/resource.h", "sys/socket.h", "sys/stat.h", "sys/types.h"}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)


def owner(root, path):
    """The layer that a file, given relative to the root, belongs to; None outside of all layers."""
    if path.parts[0] != "include":
        return path.parts[0] if path.parts[0] in MAY_INCLUDE else None
    if path.parts[1] != "Ldp":
        return "framework"
    layers = [layer for layer in ("decode", "model") if (root / layer / f"{path.stem}.cpp").is_file()]
    return layers[0] if len(layers) == 1 else WITHOUT_SOURCE.get(path.name, "unknown")


def resolve(root, including, name):
    """The file of the tree that an include line means, relative to the root; None if it is none of ours."""
    for base in (including.parent, pathlib.Path("include"), TOOL, pathlib.Path(".")):
        candidate = base / name
        if (root / candidate).is_file():
            return pathlib.Path((root / candidate).resolve().relative_to(root))
    return None


def room(path):
    """The folder of ldptool that a file belongs to: the innermost that ROOMS knows; None for main and for other places."""
    if not path.is_relative_to(TOOL):
        return None
    return next((str(p) for p in path.relative_to(TOOL).parents if str(p) in ROOMS), None)


def offences(root):
    """One text for each include line that points where it must not."""
    for path in sorted(p.relative_to(root) for top in ("include", *MAY_INCLUDE) for p in (root / top).rglob("*.*")
                       if p.suffix in {".h", ".cpp"}):
        layer = owner(root, path)
        if layer == "unknown":
            yield f"{path}: is this decode or model? it has not one source there; see tests/build/layering.py"
            continue
        for bracket, name in INCLUDE.findall((root / path).read_text(encoding="utf-8")):
            found = resolve(root, path, name)
            if found is None:
                standard = "/" not in name and "." not in name
                if layer in LIBRARY and not (bracket == "<" and (standard or name in SYSTEM_HEADERS)):
                    yield f"{path}: includes {name}, which is neither of the library nor a standard header"
                continue
            target = owner(root, found)
            shared = layer == "model" and found.parts[:2] == ("include", "Ldp") and found.name in SHARED_WITH_MODEL
            if target not in MAY_INCLUDE[layer] and not shared:
                yield f"{path}: {layer} includes {found}, which belongs to {target or found.parts[0]}"
            here, there = room(path), room(found)
            if here and there and there not in ROOMS[here] | {here}:
                yield f"{path}: {here} includes {found}, which is above it"
            if found.parts[:3] == MACHINE_ROOM and "vorn" not in {part.lower() for part in path.parts[:2]}:
                yield f"{path}: includes {found}, which only the framework's own headers and sources may"
            if path.parts[0] in {"include", "examples"} and found.parts[0] not in {"include", path.parts[0]}:
                yield f"{path}: a public header or example includes {found}, which is not installed"


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    found = list(offences(root))
    print("\n".join(found) or "every include points the right way")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
