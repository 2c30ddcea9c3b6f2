"""A management server (docs/server-protocol.md) that can stall at each step of a request."""

import http.server
import json
import ssl
import subprocess
import threading
import time


def compact(value):
    return json.dumps(value, separators=(",", ":"))


class ManagementServer:
    """`mode` is how it treats requests from now on: "well", or how `Handler` stalls or floods."""

    def __init__(self, folder):
        self.mode = "well"
        self.tasks = []  # given out until a final state of them has come
        self.states = set()  # (requestId, status)
        self.asked = 0  # requests for tasks
        self.files = 0  # that were delivered
        self.reached = 0  # connections that came while the mode was another than "well"
        self.certificate, key = folder / "server.pem", folder / "server.key"
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=siege",
             "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", self.certificate],
            check=True, capture_output=True)
        self.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.tls.load_cert_chain(self.certificate, key)
        handler = type("BoundHandler", (Handler,), {"owner": self})
        listener = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        listener.handle_error = lambda *_: None  # a client that hangs up is expected
        self.port = listener.server_address[1]
        threading.Thread(target=listener.serve_forever, daemon=True).start()

    def configuration(self):
        return {"address": "127.0.0.1", "port": self.port, "caFile": str(self.certificate),
                "connectTimeoutSeconds": 3, "requestTimeoutSeconds": 3}

    def give(self, name, text, code=1013):
        """A task that runs a program, or of another code with an `id`."""
        parameters = {"cmd": text, "type": "0"} if code == 1013 else {"id": text}
        self.tasks.append({"identifier": name, "requestId": name, "name": name, "code": code,
                           "parameters": [{"name": key, "value": value} for key, value in parameters.items()]})

    def has(self, name, status):
        return (name, status) in self.states

    def answer_to(self, resource, body):
        if resource == "tasks":
            self.asked += 1
            return {"tasks": self.tasks}
        if resource == "statuses":
            sent = json.loads(body)["statuses"]
            self.states |= {(state["requestId"], state["status"]) for state in sent}
            self.tasks = [task for task in self.tasks if not {(task["identifier"], end) for end in (2, 3, 8)} & self.states]
            return {"acknowledged": sent[-1]["id"]}
        if resource.startswith("files/"):
            self.files += 1
            return {"sha256": resource[6:], "size": len(body)}
        return {"result": 0, "message": "{}"}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    owner = None

    def setup(self):
        self.stall_in("connect")
        self.request = self.owner.tls.wrap_socket(self.request, server_side=True)
        super().setup()

    def stall_in(self, step):
        self.owner.reached += self.owner.mode != "well"
        while self.owner.mode == step:
            time.sleep(0.05)

    def answer(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        agent, _, resource = self.path.partition("/norvik/v1/agents/")[2].partition("/")
        self.stall_in("headers")
        self.send_response(200)
        while self.owner.mode == "endless headers":
            self.wfile.write(b"X: " + b"x" * 5000 + b"\r\n")
        if self.owner.mode == "well":
            text = compact(self.owner.answer_to(resource, body) if resource else {"identifier": agent}).encode()
            self.send_header("Content-Length", str(len(text)))
            self.end_headers()
            return self.wfile.write(text)
        self.send_header("Content-Length", str(1 << 40))
        self.end_headers()
        while self.owner.mode == "body":
            self.wfile.write(b" ")
            time.sleep(0.2)
        while self.owner.mode == "endless body":
            self.wfile.write(b" " * 65536)

    do_PUT = do_POST = answer

    def log_message(self, *_):
        pass
