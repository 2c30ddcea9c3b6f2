#!/usr/bin/env python3
"""Writes MACHINE/smbios.bin from MACHINE/smbios.json, as in: make-smbios.py intel-t2

The description has the version ([3, 2]) and the structures in table order: type, handle, the fields
after the header in hexadecimal, and the texts. "length" sets a wrong length byte and "cut" removes bytes
from the end of the table, for machines whose firmware is damaged.
"""
import json
import pathlib
import struct
import sys


def structure(description):
    fields = bytes.fromhex(description["fields"])
    length = description.get("length", 4 + len(fields))
    texts = b"".join(text.encode() + b"\0" for text in description["texts"]) or b"\0"
    return struct.pack("<BBH", description["type"], length, description["handle"]) + fields + texts + b"\0"


def checksum(data):
    return -sum(data) % 256


def short_entry_point(major, minor, table, count):
    """The entry point of SMBIOS 2: it contains a second anchor with its own checksum."""
    inner = b"_DMI_\0" + struct.pack("<HIHB", len(table), 0xE0000, count, major * 16 + minor)
    inner = inner[:5] + bytes([checksum(inner)]) + inner[6:]
    outer = b"_SM_\0" + struct.pack("<BBBHB5x", 31, major, minor, 256, 0) + inner
    return outer[:4] + bytes([checksum(outer)]) + outer[5:]


def long_entry_point(major, minor, table):
    point = b"_SM3_\0" + struct.pack("<BBBBBxIQ", 24, major, minor, 0, 1, len(table), 0xE0000)
    return point[:5] + bytes([checksum(point)]) + point[6:]


def main(machine):
    folder = pathlib.Path(__file__).parent / machine
    description = json.loads((folder / "smbios.json").read_text())
    major, minor = description["version"]
    structures = description["structures"]
    table = b"".join(structure(one) for one in structures)
    table = table[: len(table) - description.get("cut", 0)]
    if major >= 3:
        point = long_entry_point(major, minor, table)
    else:
        point = short_entry_point(major, minor, table, len(structures))
    (folder / "smbios.bin").write_bytes(point + table)


if __name__ == "__main__":
    for name in sys.argv[1:]:
        main(name)
