"""The frames of the agent's local socket (host/ipc/Frames.h), and the archive of a network drive."""

import json
import socket
import struct


def frame(kind, content=b""):
    return struct.pack(">I", 1 + len(content)) + kind.encode() + content


def message(code, key, value):
    key, value = key.encode(), value.encode()
    return frame("M", struct.pack(">iII", 1, code, len(key)) + key + value)


def drive(number, path, server="files.example.com"):
    archive = f"22 serialization::archive 18 0 0 {number} 2 Z: {len(path)} {path} {len(server)} {server}"
    return message(32001, "getNetworkDrives", archive)


JOIN = frame("J")


def ask(path, request, seconds=20):
    """The answer of the service to a request of root."""
    with socket.socket(socket.AF_UNIX) as connection:
        connection.settimeout(seconds)
        connection.connect(str(path))
        connection.sendall(frame("R", json.dumps(request).encode()))
        received = b""
        while len(received) < 4 or len(received) < 4 + struct.unpack(">I", received[:4])[0]:
            piece = connection.recv(65536)
            if not piece:
                raise OSError("the service hung up")
            received += piece
    return json.loads(received[5:])
