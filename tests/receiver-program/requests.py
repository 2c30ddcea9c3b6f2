"""The table of requests, and what agents may do to each other."""

import json
import socket
import ssl
import time
import uuid

from program import ROOT, Agent, until

TABLE = json.loads((ROOT / "tests/receiver-program/requests.json").read_text())


def enrolled(receiver, number):
    agent = Agent(receiver, f"00000000-0000-4000-8000-{number:012x}", f"token-of-agent-{number:032x}")
    assert agent.enrol(hostName=f"mac-{number}", serialNumber=f"C0{number}")[0] == 202
    receiver.run("approve", agent.identifier)
    status, body = agent.enrol()
    assert (status, body) == (200, {"identifier": agent.identifier}), (status, body)
    return agent


def table(receiver):
    """Each row gets its status, and the errors are one sentence."""
    agents = {"AGENT": enrolled(receiver, 1), "OTHER": enrolled(receiver, 2),
              "NEW": Agent(receiver, str(uuid.UUID(int=3)), "token-of-nobody-00000000")}
    filled = lambda text: text.replace("NESTED", "[" * 100000).replace("LONG", "x" * 20000)
    for row in TABLE["rows"]:
        method, _, target = row["request"].partition(" ")
        name, slash, rest = target.partition("/")
        agent = agents.get(name, agents["AGENT"])
        path = "/norvik/v1/agents/" + agents[name].identifier + slash + rest if name in agents else \
            "/norvik/v1/agents/" + target
        token = row.get("token", agent.token)
        token = agents[token].token if token in agents else token
        body = b"\0" * row["bytes"] if "bytes" in row else filled(row["text"]).encode() if "text" in row \
            else filled(json.dumps(row["body"])).encode()
        status, answer = receiver.send(method, path, body, {"Authorization": f"Bearer {token}",
                                                            **row.get("headers", {})})
        assert status == row["status"], f"{row['name']}: {status} {answer}"
        expected = {key: agents[value].identifier if isinstance(value, str) and value in agents else value
                    for key, value in row.get("has", {}).items()}
        assert expected.items() <= answer.items(), f"{row['name']}: {answer}"
        assert status in (200, 201) or answer["error"].endswith("."), f"{row['name']}: {answer}"
    assert [row["state"] for row in receiver.rows("approve")] == ["waiting", "conflict"], receiver.rows("approve")


def raw(receiver):
    """What no client of HTTP sends."""
    agent = Agent(receiver, str(uuid.UUID(int=(4 << 76) + (8 << 60) + 1)), f"token-of-agent-{1:032x}")
    agent.identifier = f"00000000-0000-4000-8000-{1:012x}"
    for row in TABLE["raw"]:
        text = row["send"].replace("LONG", "x" * 20000).replace("TOKEN", agent.token)
        text = text.replace("TARGET", "/norvik/v1/agents/" + agent.identifier)
        answers = row.get("answers", 1)
        with connected(receiver) as connection:
            connection.sendall(text.encode())
            received = b""
            while received.count(b"HTTP/1.1 ") < answers:
                piece = connection.recv(65536)
                assert piece, f"{row['name']}: the connection ends after {received}"
                received += piece
        statuses = [int(part[:3]) for part in received.split(b"HTTP/1.1 ")[1:]]
        assert statuses == [row["status"]] * answers, f"{row['name']}: {received}"


def connected(receiver, version=None):
    context = ssl.create_default_context(cafile=receiver.folder / "server.pem")
    if version:
        context.minimum_version = context.maximum_version = version
        context.set_ciphers("ALL:@SECLEVEL=0")
    plain = socket.create_connection(("127.0.0.1", receiver.port), timeout=30)
    return context.wrap_socket(plain, server_hostname="127.0.0.1")


def connections(receiver):
    """Old TLS is refused; clients that do nothing, or end in the middle, disturb nobody."""
    for version in ssl.TLSVersion.TLSv1_2, ssl.TLSVersion.TLSv1_3:
        connected(receiver, version).close()
    try:
        connected(receiver, ssl.TLSVersion.TLSv1_1).close()
        raise AssertionError("TLS 1.1 is accepted")
    except (ssl.SSLError, ConnectionError):
        pass
    idle = [socket.create_connection(("127.0.0.1", receiver.port)) for _ in range(100)]
    agent = Agent(receiver, f"00000000-0000-4000-8000-{1:012x}", f"token-of-agent-{1:032x}")
    with connected(receiver) as half:
        half.sendall(f"PUT /norvik/v1/agents/{agent.identifier}/files/{'0' * 64} HTTP/1.1\r\nHost: x\r\n"
                     f"Authorization: Bearer {agent.token}\r\nContent-Length: 1000\r\n\r\nhalf".encode())
        time.sleep(0.2)
    start = time.monotonic()
    assert agent.send("POST", "/tasks", {"product": 1})[0] == 200
    assert time.monotonic() - start < 5, "idle connections hold up a request"
    for connection in idle:
        connection.close()
    until("the half file is removed", lambda: not [
        path for path in (receiver.data / "files").rglob(".*") if path.is_file()])


def secrets(receiver):
    """A secret lets in who may use it, as often as it may be used."""
    def secret(*options):
        name = f"s{uuid.uuid4()}"
        return name, receiver.rows("secret", "make", name, *options)[0]["secret"]

    def enrol(number, value, **facts):
        agent = Agent(receiver, f"00000000-0000-4000-8000-{number:012x}", f"token-of-agent-{number:032x}")
        return agent.enrol(secret=value, **facts)[0]
    _, once = secret("--uses", "1")
    assert [enrol(0x10, once), enrol(0x11, once), enrol(0x10, once)] == [200, 202, 200], "a secret for one agent"
    _, listed = secret("--serial", "C1", "C2")
    assert [enrol(0x12, listed, serialNumber="C3"), enrol(0x13, listed),
            enrol(0x14, listed, serialNumber="C2")] == [202, 202, 200], "a secret for two serial numbers"
    name, revoked = secret()
    assert enrol(0x15, revoked) == 200
    receiver.run("secret", "revoke", name)
    assert [enrol(0x16, revoked), enrol(0x15, revoked)] == [202, 200], "a secret that was revoked"
    _, any_use = secret()
    board = {"platformUuid": "00000000-0000-4000-8000-00000000B0A0"}
    second = [enrol(0x17, any_use, **board), enrol(0x18, any_use, **board)]
    assert second == [200, 202], "a second agent of a board"
    notes = {row["agent"]: row["note"] for row in receiver.rows("approve")}
    twin = f"00000000-0000-4000-8000-{0x18:012x}"
    assert notes[twin] == "same platformUuid as " + twin[:-1] + "7", notes
    assert {row["usesLeft"] for row in receiver.rows("secret", "list")} == {0, -1}
    # An agent with another token, and one that is shut out.
    stranger = Agent(receiver, f"00000000-0000-4000-8000-{0x17:012x}", "the-token-of-a-stranger")
    assert stranger.enrol(hostName="new")[0] == 409
    receiver.run("approve", "--accept-token", stranger.identifier)
    assert stranger.enrol()[0] == 200
    receiver.run("approve", "--refuse", stranger.identifier)
    refused = [stranger.send("POST", "/tasks", {"product": 1})[0], stranger.enrol()[0]]
    assert refused == [401, 403], "a refused agent"


def tasks(receiver):
    """Tasks are given out until they end, each kind in its own way."""
    agent = enrolled(receiver, 0x20)

    def add(code, *options):
        return receiver.rows("task", "add", "--agent", agent.identifier, "--code", str(code), *options)[0]["task"]

    def given():
        return {task["identifier"]: task for task in agent.send("POST", "/tasks", {"product": 1})[1]["tasks"]}

    def report(task, status):
        body = {"statuses": [{"id": str(uuid.uuid4()), "status": status, "requestId": task}]}
        assert agent.send("POST", "/statuses", body)[0] == 200

    def answer(task, code):
        body = {"id": str(uuid.uuid4()), "taskIdentifier": task, "code": code, "success": True}
        assert agent.send("POST", "/answers", body)[0] == 200
    message = add(1027, "message=L\u00fcnch \"now\"; DROP", "--name", "Show")
    assert given()[message] == {
        "identifier": message, "requestId": message, "code": 1027, "name": "Show",
        "schedule": {"periodSeconds": 0, "next": 0},
        "parameters": [{"name": "message", "type": "text", "value": "L\u00fcnch \"now\"; DROP"}]}, given()
    report(message, 7)
    assert message in given(), "a task that has only begun"
    report(message, 2)
    assert message not in given(), "a task that has ended"
    listing, process, repeated = add(1011), add(1013, "cmd=true", "type=0"), add(1071, "--period", "60")
    answer(listing, 1011)
    answer(process, 1013)
    report(repeated, 2)
    assert set(given()) == {process, repeated}, "what ends a task"
    receiver.run("task", "cancel", "--agent", agent.identifier, "--task", repeated)
    report(process, 8)
    assert not given() and len(receiver.rows("task", "show", "--agent", agent.identifier, "--task", process)) == 2
    # The reports of one agent end no task of another.
    other, mine = enrolled(receiver, 0x21), add(1027, "message=x")
    body = {"statuses": [{"id": "s", "status": 2, "requestId": mine}]}
    assert other.send("POST", "/statuses", body)[0] == 200 and mine in given(), "a report of another agent"


def wrong_uses(receiver):
    """One line, and the status says whose fault it is."""
    for status, *command in (
            (2,), (2, "walk"), (2, "run"), (2, "run", "--plain", "--address", "0.0.0.0"),
            (2, "run", "--plain", "--port", "x"), (2, "search", "software"), (2, "search", "nothing.name = \"x\""),
            (2, "task", "add", "--code", "1027"), (2, "export", "--since", "1"), (2, "secret", "make"),
            (2, "secret", "lend", "x"), (2, "account", "add", "ana"),
            (1, "secret", "revoke", "nobody"), (1, "approve", str(uuid.UUID(int=9))),
            (1, "keys", "list", "/nowhere"),
            (1, "task", "add", "--agent", str(uuid.UUID(int=9)), "--code", "1027")):
        lines = receiver.run(*command, status=status, stdin="short\n").splitlines()
        assert len(lines) == 1 and lines[0].startswith("norvik-receiver: "), (command, lines)


CHAPTERS = (table, raw, connections, secrets, tasks, wrong_uses)
