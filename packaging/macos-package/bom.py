"""The bill of materials of a macOS package: writes one, and reads it.

The file is a store of numbered blocks, big-endian: a header, the blocks, a table of their addresses and
the names of some. "Paths" names a tree whose leaves pair a path's facts with its name and parent.
"""
import os
import struct
import zlib
from collections import namedtuple

Entry = namedtuple("Entry", "path folder mode user group size time checksum")

_HEADER = struct.Struct(">8sIIIIII")
_TREE = struct.Struct(">4sIIIIB")
_LEAF = struct.Struct(">HHII")
_FACTS = struct.Struct(">BBHHIIIIBII")
_FILE, _FOLDER = 1, 2
_MAGIC, _HEADER_SIZE = b"BOMStore", 512
_PAGE = 4096


# zlib's CRC has the same polynomial, with the bits of each byte and of the result in the other order.
_MIRRORED = bytes(int(f"{byte:08b}"[::-1], 2) for byte in range(256))


def checksum(data):
    """The CRC that POSIX's cksum prints: of the data and of their length."""
    data += len(data).to_bytes((len(data).bit_length() + 7) // 8, "little")
    return int(f"{zlib.crc32(data.translate(_MIRRORED), 0xFFFFFFFF):032b}"[::-1], 2)


def entries_of(root, modes, time):
    """What a bill of `root` says, the folder itself first. All belongs to root and wheel.

    modes: by path as in the bill ("./bin/x"); time: seconds since 1970 of every path.
    """
    paths = ["."]
    for folder, folders, files in os.walk(root):
        folders.sort()
        place = os.path.relpath(folder, root)
        paths += [os.path.join(".", os.path.normpath(os.path.join(place, n))) for n in folders + files]
    for path in sorted(paths, key=lambda path: path.split("/")):
        full = os.path.join(root, path)
        if os.path.isdir(full):
            yield Entry(path, True, modes[path], 0, 0, 0, time, 0)
        else:
            with open(full, "rb") as file:
                data = file.read()
            yield Entry(path, False, modes[path], 0, 0, len(data), time, checksum(data))


class _Store:
    def __init__(self):
        self.blocks = [b""]  # block 0 is no block
        self.names = []

    def add(self, data, name=None):
        self.blocks.append(data)
        if name:
            self.names.append((len(self.blocks) - 1, name))
        return len(self.blocks) - 1

    def tree(self, pairs, page=_PAGE, name=None):
        leaf = _LEAF.pack(1, len(pairs), 0, 0) + b"".join(struct.pack(">II", *pair) for pair in pairs)
        if len(leaf) > page:
            raise ValueError("more paths than one leaf of the tree can hold")
        child = self.add(leaf.ljust(page, b"\0"))
        return self.add(_TREE.pack(b"tree", 1, child, page, len(pairs), 0), name)

    def image(self):
        body, table = b"", b""
        for data in self.blocks:
            place = _HEADER_SIZE + len(body) if data else 0
            table += struct.pack(">II", place, len(data))
            body += data
        names = struct.pack(">I", len(self.names))
        for block, name in self.names:
            names += struct.pack(">IB", block, len(name)) + name.encode()
        # Two empty blocks end the list of free ones.
        index = struct.pack(">I", len(self.blocks)) + table + struct.pack(">IIIII", 2, 0, 0, 0, 0)
        start = _HEADER_SIZE + len(body)
        header = _HEADER.pack(_MAGIC, 1, len(self.blocks) - 1, start + len(names), len(index), start,
                              len(names))
        return header.ljust(_HEADER_SIZE, b"\0") + body + names + index


def write(entries):
    """The bytes of a bill of these entries, a parent before what is in it."""
    entries = list(entries)
    store = _Store()
    store.add(struct.pack(">III4I", 1, len(entries) + 1, 1, 0, 0, sum(e.size for e in entries), 0),
              "BomInfo")
    numbers, pairs = {}, []
    for number, entry in enumerate(entries, 1):
        numbers[entry.path] = number
        parent, name = os.path.split(entry.path)
        kind = 0o040000 if entry.folder else 0o100000
        facts = store.add(_FACTS.pack(_FOLDER if entry.folder else _FILE, 1, 3, kind | entry.mode,
                                      entry.user, entry.group, entry.time, entry.size, 1,
                                      entry.checksum, 0))
        key = store.add(struct.pack(">I", numbers.get(parent, 0)) + (name or ".").encode() + b"\0")
        pairs.append((numbers.get(parent, 0), name, (store.add(struct.pack(">II", number, facts)), key)))
    # The tree is searched by parent and name.
    store.tree([pair for _, _, pair in sorted(pairs)], name="Paths")
    store.tree([], name="HLIndex")
    store.add(struct.pack(">IIIB", 1, store.tree([], page=128), 0, 0), "VIndex")
    store.tree([], name="Size64")
    return store.image()


def _block(image, index, number):
    place, length = struct.unpack_from(">II", image, index + 4 + 8 * number)
    if place + length > len(image):
        raise ValueError(f"block {number} ends after the file")
    return image[place:place + length]


def _leaves(image, index, tree):
    """Pairs of block numbers, of all leaves from the first on."""
    magic, _, child, _, count, _ = _TREE.unpack_from(_block(image, index, tree))
    if magic != b"tree":
        raise ValueError("no tree is where the paths belong")
    block, found, seen = child, [], set()
    while block:
        if block in seen:
            raise ValueError("the blocks of the tree form a ring")
        seen.add(block)
        leaf = _block(image, index, block)
        is_leaf, number, forward, _ = _LEAF.unpack_from(leaf)
        if is_leaf:
            found += [struct.unpack_from(">II", leaf, _LEAF.size + 8 * i) for i in range(number)]
        block = forward if is_leaf else struct.unpack_from(">I", leaf, _LEAF.size)[0]
    if len(found) != count:
        raise ValueError(f"the tree has {len(found)} paths and says {count}")
    return found


def _variables(image, start):
    count, = struct.unpack_from(">I", image, start)
    start += 4
    for _ in range(count):
        block, length = struct.unpack_from(">IB", image, start)
        yield image[start + 5:start + 5 + length].decode(), block
        start += 5 + length


def read(image):
    """The entries of a bill, sorted by path. Throws ValueError or struct.error if it is damaged."""
    magic, version, _, index, _, names, _ = _HEADER.unpack_from(image)
    if magic != _MAGIC or version != 1:
        raise ValueError("not a bill of materials")
    variables = dict(_variables(image, names))
    for name in ("BomInfo", "Paths", "HLIndex", "VIndex", "Size64"):
        if name not in variables:
            raise ValueError(f"the bill has no {name}")
    paths, found = {0: None}, []
    rows = []
    for info, key in _leaves(image, index, variables["Paths"]):
        number, facts = struct.unpack(">II", _block(image, index, info))
        name = _block(image, index, key)
        rows.append((number, struct.unpack_from(">I", name)[0], name[4:].rstrip(b"\0").decode(), facts))
    for number, parent, name, facts in sorted(rows):
        if parent not in paths:
            raise ValueError(f"{name} is in no folder")
        paths[number] = name if paths[parent] is None else f"{paths[parent]}/{name}"
        kind, _, _, mode, user, group, time, size, _, crc, _ = _FACTS.unpack_from(
            _block(image, index, facts))
        found.append(Entry(paths[number], kind == _FOLDER, mode & 0o7777, user, group, size, time, crc))
    if struct.unpack_from(">II", _block(image, index, variables["BomInfo"]))[1] != len(found) + 1:
        raise ValueError("BomInfo counts other paths")
    return sorted(found, key=lambda entry: entry.path.split("/"))
