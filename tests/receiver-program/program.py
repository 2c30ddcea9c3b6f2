"""Starts norvik-receiver and speaks to it."""

import contextlib
import hashlib
import http.client
import json
import pathlib
import re
import ssl
import subprocess
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIME = 40  # seconds until something must have happened


def until(what, holds):
    end = time.monotonic() + TIME
    while not (value := holds()):
        if time.monotonic() > end:
            raise AssertionError(f"not within {TIME} s: {what}")
        time.sleep(0.05)
    return value


def make_certificate(folder):
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
                    "-keyout", folder / "server.key", "-out", folder / "server.pem", "-days", "2", "-subj",
                    "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1"], check=True, capture_output=True)


class Receiver:
    def __init__(self, build, folder, database):
        """`database` is an address, or empty for SQLite."""
        self.program, self.folder, self.database = build / "bin/norvik-receiver", folder, database
        self.data, self.log = folder / "receiver", folder / "receiver.log"
        self.process, self.port = None, 0
        make_certificate(folder)

    def place(self):
        return ["--data", self.data, *(["--database", self.database] if self.database else [])]

    def start(self, *options):
        listened = self.log.read_text().count("listening") if self.log.exists() else 0
        with open(self.log, "ab") as log:
            self.process = subprocess.Popen(
                [self.program, *self.place(), "run", "--address", "127.0.0.1", "--port", str(self.port),
                 "--certificate", self.folder / "server.pem", "--certificate-key", self.folder / "server.key",
                 *options], stdout=log, stderr=log)

        def listens():
            if self.process.poll() is not None:
                raise AssertionError(f"the receiver has ended: {self.log.read_text()[-300:]}")
            return self.log.read_text().count("listening") > listened
        until("the receiver listens", listens)
        self.port = int(re.findall(r"listening on port (\d+)", self.log.read_text())[-1])

    def kill(self):
        if self.process:
            self.process.kill()
            self.process.wait()

    def run(self, *command, status=0, stdin="", output=""):
        """Returns the standard output of a command or, with another status than 0, its errors unless `output`."""
        done = subprocess.run([self.program, *self.place(), *command], capture_output=True, text=True, input=stdin)
        if done.returncode != status:
            raise AssertionError(f"{command}: exits with {done.returncode}, not {status}: {done.stderr}")
        return done.stderr if status and not output else done.stdout

    def rows(self, *command):
        return [json.loads(line) for line in self.run("--json", *command).splitlines()]

    def send(self, method, path, body=b"", headers=()):
        context = ssl.create_default_context(cafile=self.folder / "server.pem")
        connection = http.client.HTTPSConnection("127.0.0.1", self.port, context=context, timeout=TIME)
        with contextlib.closing(connection):
            connection.request(method, path, body, dict(headers))
            answer = connection.getresponse()
            return answer.status, json.loads(answer.read())


class Agent:
    """Speaks the protocol without being one."""

    def __init__(self, receiver, identifier, token):
        self.receiver, self.identifier, self.token = receiver, identifier, token

    def send(self, method, resource, body=b"", token=None, **headers):
        body = body if isinstance(body, bytes) else json.dumps(body).encode()
        return self.receiver.send(method, f"/norvik/v1/agents/{self.identifier}{resource}", body,
                                  {"Authorization": f"Bearer {token or self.token}", **headers})

    def enrol(self, **facts):
        return self.send("PUT", "", facts)

    def upload(self, content, name="mac.jsonkob"):
        return self.send("PUT", "/files/" + hashlib.sha256(content).hexdigest(), content,
                         **{"Norvik-File-Name": name})
