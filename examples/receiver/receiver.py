#!/usr/bin/env python3
"""A small management server: docs/server-protocol.md. --task and --approve change the database of one that runs."""
import argparse
import collections
import hashlib
import http.server
import json
import os
import pathlib
import re
import ssl
import tempfile
import threading
import urllib.parse

from sealed import private_keys
from store import Store

RESOURCE = re.compile(r"/norvik/v1/agents/([0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12})(?:/([a-z]+))?(?:/([0-9a-f]{64}))?")
LARGEST = {"answers": 9 << 20, "files": 2 << 30}  # bytes of a body; others have 1 MiB


class Refusal(Exception):
    """Has the status of the answer and a sentence."""


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"  # so that connections stay open; the class answers `Expect: 100-continue`
    timeout = 60

    def do_PUT(self):
        length = self.headers.get("Content-Length", "")
        self.left = int(length) if length.isdecimal() else 0
        try:
            status, body = self.dispatch()
        except Refusal as refusal:
            status, body = refusal.args[0], {"error": refusal.args[1]}
        except (KeyError, IndexError, TypeError, AttributeError, ValueError, RecursionError) as error:
            status, body = 400, {"error": f"not as described: {error!r}"}
        # With a part of the request unread, the end of the connection could take the answer along.
        if self.left <= 16 << 20:
            collections.deque(self.body(), 0)
        text = json.dumps(body).encode()
        self.send_response(status)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(text)))
        if self.left:
            self.send_header("Connection", "close")
        self.end_headers()
        self.wfile.write(text)

    do_POST = do_PUT

    def dispatch(self):
        found = RESOURCE.fullmatch(self.path) or [None] * 4
        self.agent, resource, self.sha256 = found[1], found[2], found[3]
        handle = {("PUT", None): self.enrol, ("POST", "messages"): self.message, ("POST", "tasks"): self.tasks,
                  ("POST", "statuses"): self.reports, ("POST", "answers"): self.reports,
                  ("PUT", "files"): self.file}.get((self.command, resource))
        if not self.agent or not handle or bool(self.sha256) != (resource == "files"):
            raise Refusal(404, "no such resource")
        scheme, _, self.token = self.headers.get("Authorization", "").partition(" ")
        if scheme != "Bearer" or not re.fullmatch("[!-~]{16,512}", self.token):
            raise Refusal(401, "no token")
        if resource and not self.server.store.knows(self.agent, self.token):
            raise Refusal(401, "not enrolled")
        if self.left > LARGEST.get(resource, 1 << 20):
            raise Refusal(413, "too large")
        return handle() if self.sha256 else handle(json.loads(b"".join(self.body())))

    def body(self):
        while self.left:
            piece = self.rfile.read(min(self.left, 1 << 20))
            if not piece:
                raise ConnectionError("the request ends early")
            self.left -= len(piece)
            yield piece

    def enrol(self, facts):
        secret = self.server.options.secret
        is_approved = bool(secret) and facts.pop("secret", None) == secret
        status, token = self.server.store.enrol(self.agent, self.token, json.dumps(facts), is_approved)
        return status, {"identifier": self.agent, "token": token} if token else {"error": "not enrolled"}

    def message(self, body):
        return 200, {"result": 0 if (body["code"], body["subcode"]) == (1003, 1) else 1, "message": "{}"}

    def tasks(self, body):
        return 200, {"tasks": self.server.store.tasks(self.agent) if body["product"] == 1 else []}

    def reports(self, body):
        """States come in a list, an answer comes alone."""
        reports = body.get("statuses", [body])
        self.server.store.keep_reports(self.agent, reports)
        return 200, {"acknowledged": reports[-1]["id"] if reports else ""}

    def file(self):
        name, size, digest = urllib.parse.unquote(self.headers["Norvik-File-Name"]), self.left, hashlib.sha256()
        received = tempfile.NamedTemporaryFile(dir=self.server.store.files, delete=False)
        try:
            with received:
                for piece in self.body():
                    digest.update(piece)
                    received.write(piece)
                received.flush()
                os.fsync(received.fileno())
            if digest.hexdigest() != self.sha256:
                raise Refusal(400, "its checksum is another")
            self.server.store.keep_file(self.agent, self.sha256, name, received.name)
        finally:
            pathlib.Path(received.name).unlink(missing_ok=True)
        return 200, {"sha256": self.sha256, "size": size}

    def log_message(self, form, *values):
        print(json.dumps(form % values), flush=True)  # as JSON: a path may hold control characters


class Server(http.server.ThreadingHTTPServer):
    def finish_request(self, request, client):
        """On the connection's own thread: a client that stalls in the handshake holds up no other."""
        request.settimeout(Handler.timeout)
        super().finish_request(self.tls.wrap_socket(request, server_side=True), client)


def serve(options):
    server = Server(("", options.port), Handler)
    server.options, server.store = options, Store(options.folder)
    server.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    server.tls.minimum_version = ssl.TLSVersion.TLSv1_2
    server.tls.load_cert_chain(options.certificate, options.certificate_key)
    # With a connection of its own: while it reads a large document, it locks nothing.
    worker = Store(options.folder).process_files
    threading.Thread(target=worker, args=[private_keys(options.keys)], daemon=True).start()
    print(f"listening on port {server.server_address[1]}", flush=True)
    server.serve_forever()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", help="of the database and the files")
    parser.add_argument("parameters", nargs="*", metavar="NAME=VALUE", type=lambda text: text.split("=", 1))
    for name, kind, text in (
            ("--certificate", str, "of this server, PEM"), ("--certificate-key", str, "its private key, PEM"),
            ("--keys", str, "folder with server.key, and keys before it"), ("--port", int, "8443 by default"),
            ("--secret", str, "lets in agents that have it as enrolment.secret"),
            ("--approve", str, "lets this agent in"), ("--task", str, "gives this agent a task, with:"),
            ("--code", int, "its code"), ("--period", int, "its period in seconds; 0: once")):
        parser.add_argument(name, type=kind, default={"--port": 8443, "--period": 0}.get(name), help=text)
    options = parser.parse_args()
    if options.task:
        Store(options.folder).add_task(options.task, options.code, options.parameters, options.period)
    elif not options.approve:
        serve(options)
    elif not Store(options.folder).approve(options.approve):
        parser.error("no such agent")


if __name__ == "__main__":
    main()
