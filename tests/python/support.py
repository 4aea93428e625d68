"""What the tests of the Python module share."""

import glob
import ipaddress
import json
import os
import subprocess

CAPTURES = sorted(glob.glob(os.path.join(os.path.dirname(__file__), os.pardir, "captures", "*.pcap")))
BASIC = next(path for path in CAPTURES if "basic-v4" in path)
SMALL = [path for path in CAPTURES if "many" not in path]


def ldptool(*arguments):
    """What ldptool prints, one object a line."""
    output = subprocess.run([os.environ["LDPTOOL"], *arguments], capture_output=True, timeout=120).stdout.decode()
    return [json.loads(line) for line in output.splitlines()]


def plain(value):
    """A value as the JSON has it."""
    if hasattr(value, "_fields"):
        return {name: plain(part) for name, part in zip(value._fields, value)}
    if isinstance(value, dict):
        return {key_of(key): plain(member) for key, member in value.items()}
    if isinstance(value, list):
        return [plain(member) for member in value]
    if isinstance(value, bytes):
        return value.hex()
    return str(value) if isinstance(value, ipaddress._IPAddressBase) else value


def key_of(key):
    """A key as the JSON has it: some identities have a text of their own."""
    if type(key).__name__ == "LdpFecSessionId":
        return f"{key.fwdEqvClass}_{key.ldpSessionId}"
    if type(key).__name__ == "LdpAdjId":
        return f"{key.ldpIdentifier}_{key.intfId or 'TARGET_' + str(key.targetIpAddr)}"
    return json.dumps(plain(key)) if hasattr(key, "_fields") else str(plain(key))


def canonical(json_value):
    """What the JSON has as pairs, as an object; a type or code without a name as its number."""
    if isinstance(json_value, list):
        if all(isinstance(each, dict) and each.keys() == {"key", "value"} for each in json_value):
            return {json.dumps(each["key"]): canonical(each["value"]) for each in json_value}
        return [canonical(each) for each in json_value]
    if isinstance(json_value, dict):  # one time is the wall clock's
        return {key: canonical(value) for key, value in json_value.items() if key != "requestTime"} or {}
    if json_value == "none":  # an address that is not set
        return None
    number = isinstance(json_value, str) and json_value.startswith("0x")
    return int(json_value, 16) if number else json_value
