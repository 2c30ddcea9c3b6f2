"""Reads linked files of macOS: what the system's loader and its check of signatures go by."""
import hashlib
import pathlib
import re
import struct

PROCESSORS = {0x01000007: "x86_64", 0x0100000C: "arm64"}
_FAT, _THIN = 0xCAFEBABE, 0xFEEDFACF
_SYMTAB, _LOAD, _ID, _SEGMENT, _SIGNATURE, _BUILD_VERSION = 0x2, 0xC, 0xD, 0x19, 0x1D, 0x32
_WEAK_LOAD, _RPATH, _REEXPORT, _INFO, _TRIE, _CHAINED = 0x80000018, 0x8000001C, 0x8000001F, 0x80000022, \
    0x80000033, 0x80000034
_LIBRARIES = (_LOAD, _WEAK_LOAD, _REEXPORT)
WEAK_LOOKUP = -3


def slices(data):
    """The parts of a file by their processor."""
    if struct.unpack_from(">I", data)[0] != _FAT:
        return {PROCESSORS[struct.unpack_from("<I", data, 4)[0]]: data}
    parts, count = {}, struct.unpack_from(">I", data, 4)[0]
    if count > len(PROCESSORS):
        raise ValueError(f"{count} parts")
    for number in range(count):
        kind, _, start, size, _ = struct.unpack_from(">IIIII", data, 8 + 20 * number)
        parts[PROCESSORS[kind]] = data[start:start + size]
    return parts


def _text(data, start):
    return data[start:data.index(b"\0", start)].decode()


def _uleb(data, start):
    value = shift = 0
    while True:
        byte = data[start]
        value |= (byte & 0x7F) << shift
        start, shift = start + 1, shift + 7
        if byte < 0x80:
            return value, start


class Image:
    """One part: load commands, imports and exports."""

    def __init__(self, data):
        self.data = data
        magic, _, _, self.kind, count, _, _, _ = struct.unpack_from("<8I", data)
        if magic != _THIN:
            raise ValueError("not a 64-bit Mach-O")
        self.commands, start = [], 32
        for _ in range(count):
            command, size = struct.unpack_from("<II", data, start)
            if size < 8:
                raise ValueError("a load command without a size")
            self.commands.append((command, start))
            start += size
        self.libraries = [self._string(s) for c, s in self.commands if c in _LIBRARIES]
        self.reexported = [self._string(s) for c, s in self.commands if c == _REEXPORT]
        self.rpaths = [self._string(s) for c, s in self.commands if c == _RPATH]
        self.name = next((self._string(s) for c, s in self.commands if c == _ID), None)

    def _string(self, start):
        return _text(self.data, start + struct.unpack_from("<I", self.data, start + 8)[0])

    def _find(self, *kinds):
        return next((start for command, start in self.commands if command in kinds), None)

    def section(self, wanted):
        """Content of the section of this name, or None."""
        for command, start in self.commands:
            if command != _SEGMENT:
                continue
            for number in range(struct.unpack_from("<I", self.data, start + 64)[0]):
                name, _, _, size, place = struct.unpack_from("<16s16sQQI", self.data, start + 72 + 80 * number)
                if name.rstrip(b"\0").decode() == wanted:
                    return self.data[place:place + size]
        return None

    def minimum(self):
        """Platform (1 is macOS) and lowest version, as (major, minor)."""
        start = self._find(_BUILD_VERSION)
        if start is None:
            return None
        platform, version = struct.unpack_from("<II", self.data, start + 8)
        return platform, (version >> 16, version >> 8 & 0xFF)

    def symbols(self):
        """Entries of the symbol table: name, type, description."""
        place, count, texts, _ = struct.unpack_from("<IIII", self.data, self._find(_SYMTAB) + 8)
        for number in range(count):
            text, kind, _, description, _ = struct.unpack_from("<IBBHQ", self.data, place + 16 * number)
            yield _text(self.data, texts + text), kind, description

    def imports(self):
        """Pairs of a name and the ordinal of the library that has it, WEAK_LOOKUP for any."""
        found = set()
        for name, kind, description in self.symbols():
            if not kind & 0xE0 and kind & 0x0E == 0 and kind & 0x01:
                found.add((name, struct.unpack("b", bytes([description >> 8]))[0]))
        start = self._find(_CHAINED)
        if start is not None:
            place = struct.unpack_from("<I", self.data, start + 8)[0]
            _, _, table, texts, count, form = struct.unpack_from("<6I", self.data, place)
            if form != 1:
                raise ValueError(f"imports of the form {form}")
            for number in range(count):
                entry, = struct.unpack_from("<I", self.data, place + table + 4 * number)
                ordinal = struct.unpack("b", bytes([entry & 0xFF]))[0]
                found.add((_text(self.data, place + texts + (entry >> 9)), ordinal))
        return found

    def exports(self):
        """Exported names, from the trie that the loader searches."""
        start = self._find(_TRIE)
        if start is not None:
            place, size = struct.unpack_from("<II", self.data, start + 8)
        else:
            place, size = struct.unpack_from("<II", self.data, self._find(_INFO) + 40)
        trie, names = self.data[place:place + size], set()
        open_nodes, seen = [(0, b"")] if size else [], set()
        while open_nodes:
            node, prefix = open_nodes.pop()
            if node in seen:
                raise ValueError("two exported names end in the same place")
            seen.add(node)
            terminal, next_byte = _uleb(trie, node)
            if terminal:
                names.add(prefix.decode())
            next_byte += terminal
            children, next_byte = trie[next_byte], next_byte + 1
            for _ in range(children):
                end = trie.index(b"\0", next_byte)
                child, after = _uleb(trie, end + 1)
                open_nodes.append((child, prefix + trie[next_byte:end]))
                next_byte = after
        return names

    def signature_faults(self):
        """What is wrong with the ad hoc signature: every page must have the hash that it holds."""
        start = self._find(_SIGNATURE)
        if start is None:
            return ["no signature"]
        place, size = struct.unpack_from("<II", self.data, start + 8)
        blob = self.data[place:place + size]
        magic, _, count = struct.unpack_from(">III", blob)
        slots = dict(struct.unpack_from(">II", blob, 12 + 8 * number) for number in range(count))
        if magic != 0xFADE0CC0 or 0 not in slots:
            return ["no code directory"]
        directory = blob[slots[0]:]
        magic, _, _, flags, hashes, _, _, pages, limit, width, kind, _, shift = struct.unpack_from(
            ">9I4B", directory)
        if magic != 0xFADE0C02 or kind != 2 or width != 32:
            return ["a code directory without SHA-256"]
        faults = [] if flags & 0x2 else ["not signed ad hoc"]
        page = 1 << shift
        if limit != place or pages != -(-limit // page):
            return [*faults, "the signature ends at another place than the code"]
        wrong = sum(hashlib.sha256(self.data[n * page:min(limit, (n + 1) * page)]).digest() !=
                    directory[hashes + 32 * n:hashes + 32 * (n + 1)] for n in range(pages))
        return faults + ([f"{wrong} of {pages} pages do not have their hash"] if wrong else [])


class Stubs:
    """The names that the libraries of a SDK export, from its .tbd files."""

    _ENTRY = re.compile(r"^( *)(?:- )?([a-z-]+): *(\[[^\]]*\]|[^\n]*)", re.M)
    _FORMS = {"symbols": ("{}",), "weak-symbols": ("{}",), "thread-local-symbols": ("{}",),
              "objc-classes": ("_OBJC_CLASS_$_{}", "_OBJC_METACLASS_$_{}"),
              "objc-eh-types": ("_OBJC_EHTYPE_$_{}",), "objc-ivars": ("_OBJC_IVAR_$_{}",)}

    def __init__(self, sdk):
        self._documents, self._known = {}, {}
        stubs = [*sdk.glob("usr/lib/**/*.tbd"), *sdk.glob("System/Library/**/*.tbd")]
        for path in filter(pathlib.Path.is_file, stubs):
            for document in path.read_text().split("--- !tapi-tbd")[1:]:
                name = re.search(r"^install-name: *'?([^'\n]+)'?", document, re.M)[1]
                self._documents.setdefault(name, document)

    def has(self, library):
        return library in self._documents

    def exports(self, library, processor):
        """All names that a program can import from this library, passed on by it or its own."""
        key = library, processor
        if key in self._known:
            return self._known[key]
        names = self._known[key] = set()
        matching = False
        for _, entry, value in self._ENTRY.findall(self._documents.get(library, "")):
            items = [item.strip().strip("'\"") for item in value.strip("[]").split(",") if item.strip()]
            if entry == "targets":
                matching = f"{processor}-macos" in items
            elif matching and entry == "libraries":
                for other in items:
                    names |= self.exports(other, processor)
            elif matching and entry in self._FORMS:
                names.update(form.format(item) for item in items for form in self._FORMS[entry])
        return names
