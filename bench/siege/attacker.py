"""One hostile user: attacker.py KIND SOCKET UID CONNECTIONS. It is started as root and becomes the user. Its
connections write what the stream of this kind gives, as fast as the service reads, and are opened again after
the service has closed them, unless the kind ends with "once". Prints a line after it has tried to open each.
"""

import itertools
import os
import random
import selectors
import socket
import struct
import sys

LENGTHS = itertools.cycle([200_000, 30_000])  # bytes of a long message; the second is within the limits
DRIVES = itertools.cycle([7000, 20, 200_000])  # bytes of a path


def frame(kind, content=b""):
    return struct.pack(">I", 1 + len(content)) + kind + content


def message(code, key, value):
    return frame(b"M", struct.pack(">iII", 1, code, len(key)) + key + value)


def archive(text):
    return message(32001, b"getNetworkDrives", text)


def drives(length):
    for number in itertools.count(random.randrange(1 << 30)):
        path = f"/volumes/{number}/" + "x" * length
        yield archive(f"22 serialization::archive 18 0 0 {number} 2 Z: {len(path)} {path} 8 nas.test".encode())


def joined(*parts, rest=()):
    return itertools.chain([frame(b"J"), *parts], rest)


# What breaks the protocol. Each connection takes the next one.
VIOLATIONS = itertools.cycle([
    lambda: itertools.repeat(frame(b"R", b'{"request": "status"}')),
    lambda: itertools.repeat(frame(b"J")),
    lambda: drives(1),
    lambda: [frame(b"A", b"{}")],
    lambda: [struct.pack(">I", 0)],
    lambda: [struct.pack(">I", 0xFFFFFFFF)],
    lambda: joined(frame(b"M", b"short")),
    lambda: joined(frame(b"M", struct.pack(">iII", 1, 32001, 0xFFFFFFFF))),
    lambda: joined(rest=itertools.repeat(message(1013, b"\x1b[2J\nforged", b"\xed\xa0\x80"))),
    lambda: iter(lambda: random.randbytes(4096), b""),
])

STREAMS = {
    "idle": lambda: (),
    "idle once": lambda: (),
    "silent": joined,
    "unfinished": lambda: joined(frame(b"M", bytes(next(LENGTHS)))[:-1]),
    "archives": lambda: joined(rest=itertools.repeat(archive(b"22 serialization::archive 18 0 0 x") * 50)),
    "drives": lambda: joined(rest=drives(next(DRIVES))),
    "no drives once": lambda: joined(message(1066, b"truncateNetDrivesTable", b"truncateNetDrivesTable")),
    "long messages": lambda: joined(rest=itertools.repeat(archive(b"x" * next(LENGTHS)))),
    "violations": lambda: next(VIOLATIONS)(),
}


class Attacker:
    def __init__(self, kind, path):
        self.kind, self.path = kind, path
        self.selector = selectors.DefaultSelector()
        self.silent = []  # connections that nobody reads

    def open(self):
        connection = socket.socket(socket.AF_UNIX)
        connection.settimeout(0.05)  # the service's queue of new connections may be full
        try:
            connection.connect(self.path)
        except OSError:
            return connection.close()
        connection.setblocking(False)
        state = {"stream": iter(STREAMS[self.kind]()), "left": b""}
        self.selector.register(connection, selectors.EVENT_READ | selectors.EVENT_WRITE, state)

    def close(self, connection):
        self.selector.unregister(connection)
        connection.close()

    def write(self, connection, state):
        state["left"] = state["left"] or memoryview(next(state["stream"], b""))
        if state["left"]:
            state["left"] = state["left"][connection.send(state["left"]):]
        elif self.kind == "silent":
            self.selector.unregister(connection)
            self.silent.append(connection)
        else:
            self.selector.modify(connection, selectors.EVENT_READ, state)

    def turn(self):
        for key, events in self.selector.select(0.1):
            try:
                if events & selectors.EVENT_READ and not key.fileobj.recv(65536):
                    self.close(key.fileobj)
                elif events & selectors.EVENT_WRITE:
                    self.write(key.fileobj, key.data)
            except BlockingIOError:
                pass
            except OSError:
                self.close(key.fileobj)


def main(kind, path, user, count):
    os.setgroups([])
    os.setresgid(user, user, user)
    os.setresuid(user, user, user)
    attacker = Attacker(kind, path)
    for turn in itertools.count():
        if turn == 0 or not kind.endswith("once"):
            for _ in range(count - len(attacker.selector.get_map()) - len(attacker.silent)):
                attacker.open()
        if turn == 0:
            print("ready", flush=True)
        attacker.turn()


main(sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4]))
