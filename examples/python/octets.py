"""Octets with a place to read on from, for the readers beside this file."""

import ipaddress
import struct


class Refused(Exception):
    """Octets that the format does not allow."""


class Octets:
    def __init__(self, data, order=">"):
        self.data, self.at, self.order = data, 0, order

    def left(self):
        return len(self.data) - self.at

    def take(self, size):
        if size > self.left():
            raise Refused("the octets end within a value")
        self.at += size
        return self.data[self.at - size:self.at]

    def number(self, code):
        """A number by its letter in `struct`: B, H, I, Q without sign, i and q with one, d."""
        return struct.unpack(self.order + code, self.take(struct.calcsize(code)))[0]

    def address(self, size):
        return str(ipaddress.ip_address(bytes(self.take(size))))
