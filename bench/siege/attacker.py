"""One hostile user: attacker.py KIND SOCKET UID CONNECTIONS. It is started as root and becomes the user. All
its connections write what the stream of this kind gives, as fast as the service reads, and are opened again
after the service has closed them, unless the kind ends with "once". Prints "ready" after it has tried to open each, and at SIGTERM, as JSON, what
happened to them.
"""

import itertools
import json
import os
import random
import selectors
import signal
import socket
import struct
import sys

from frames import JOIN, drive, frame, message

numbers = itertools.count(random.randrange(1 << 30))
LONG = 200_000  # bytes of a message


def forever(*parts):
    while True:
        yield from parts


def joined(*parts):
    return itertools.chain([JOIN], parts)


def drives(length):
    for number in numbers:
        yield drive(number, f"/volumes/{number}/" + "x" * length)


def noise():
    while True:
        yield random.randbytes(4096)


# What breaks the protocol. Each connection takes the next one.
VIOLATIONS = itertools.cycle([
    lambda: forever(frame("R", b'{"request": "status"}')),
    lambda: forever(JOIN),
    lambda: iter([drive(1, "/early")]),
    lambda: iter([frame("A", b"{}")]),
    lambda: iter([struct.pack(">I", 0)]),
    lambda: iter([struct.pack(">I", 0xFFFFFFFF)]),
    lambda: joined(frame("M", b"short")),
    lambda: joined(frame("M", struct.pack(">iII", 1, 32001, 0xFFFFFFFF))),
    lambda: joined(message(1013, "cmd", "reboot"), message(1066, "\x1b[2J\nforged", "x"),
                   b"\0\0\0\x10M" + b"\xed\xa0\x80" * 5),
    noise,
])

STREAMS = {
    "idle": lambda: iter(()),
    "idle once": lambda: iter(()),
    "silent": joined,
    "unfinished": lambda: joined(struct.pack(">I", 1 << 20) + b"M", bytes((1 << 20) - 2)),
    "archives": lambda: itertools.chain(
        [JOIN], forever(message(32001, "getNetworkDrives", "22 serialization::archive 18 0 0 x") * 50)),
    "drives": lambda: itertools.chain([JOIN], drives(1000)),
    "long drives": lambda: itertools.chain([JOIN], drives(LONG)),
    "long messages": lambda: itertools.chain(
        [JOIN], forever(message(32001, "getNetworkDrives", "x" * LONG))),
    "violations": lambda: next(VIOLATIONS)(),
}


class Connections:
    def __init__(self, path, kind):
        self.path, self.kind = path, kind
        self.selector = selectors.DefaultSelector()
        self.unread = []
        self.figures = {"opened": 0, "closed": 0, "refused": 0, "sent": 0, "open": 0}

    def open(self):
        connection = socket.socket(socket.AF_UNIX)
        try:
            # The queue of connections may be full.
            connection.settimeout(0.05)
            connection.connect(self.path)
        except OSError:
            connection.close()
            self.figures["refused"] += 1
            return False
        connection.setblocking(False)
        self.figures["opened"] += 1
        self.figures["open"] += 1
        state = {"stream": STREAMS[self.kind](), "left": b""}
        self.selector.register(connection, selectors.EVENT_READ | selectors.EVENT_WRITE, state)
        return True

    def close(self, connection):
        self.figures["closed"] += 1
        self.figures["open"] -= 1
        self.selector.unregister(connection)
        connection.close()

    def write(self, connection, state):
        if not state["left"]:
            state["left"] = memoryview(next(state["stream"], b""))
        if not state["left"]:
            if self.kind == "silent":
                self.selector.unregister(connection)
                self.unread.append(connection)
            else:
                self.selector.modify(connection, selectors.EVENT_READ, state)
            return
        sent = connection.send(state["left"])
        self.figures["sent"] += sent
        state["left"] = state["left"][sent:]

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
    connections = Connections(path, kind)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit())
    try:
        for _ in range(count):
            connections.open()
        print("ready", flush=True)
        while True:
            for _ in range(0 if kind.endswith("once") else count - connections.figures["open"]):
                connections.open()
            connections.turn()
    finally:
        print(json.dumps(connections.figures), flush=True)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4]))
