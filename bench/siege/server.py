"""A management server (docs/server-protocol.md) that can stall at each step of a request."""

import http.server
import json
import pathlib
import ssl
import subprocess
import threading
import time


def compact(value):
    return json.dumps(value, separators=(",", ":"))


class ManagementServer:
    """`mode` is how it treats every connection from now on: "well", or it stalls or floods as `Handler` says."""

    def __init__(self, folder):
        self.mode = "well"
        self.tasks = []  # given out until a final state of them has come
        self.states = []  # (requestId, status)
        self.asked = 0  # requests for tasks
        self.files = 0
        self.reached = 0  # connections that came while the mode was another than "well"
        self.certificate = pathlib.Path(folder) / "server.pem"
        key = pathlib.Path(folder) / "server.key"
        subprocess.run(
            ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj", "/CN=siege",
             "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", self.certificate],
            check=True, capture_output=True)
        self.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.tls.load_cert_chain(self.certificate, key)
        handler = type("BoundHandler", (Handler,), {"owner": self})
        self.listener = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        self.listener.daemon_threads = True
        self.listener.handle_error = lambda *_: None  # a client that hangs up is expected
        threading.Thread(target=self.listener.serve_forever, daemon=True).start()

    def end(self):
        self.mode = "ended"
        self.listener.shutdown()
        self.listener.server_close()

    def configuration(self):
        return {"address": "127.0.0.1", "port": self.listener.server_address[1],
                "caFile": str(self.certificate), "connectTimeoutSeconds": 3, "requestTimeoutSeconds": 3}

    def give(self, name, command, code=1013):
        """A task that runs a program, or of another code, with its number as a process."""
        parameters = [("cmd", command), ("type", "0")] if code == 1013 else [("id", command)]
        self.tasks.append({"identifier": name, "requestId": name, "name": name, "code": code,
                           "parameters": [{"name": key, "value": value} for key, value in parameters]})

    def status_of(self, name):
        return [status for task, status in self.states if task == name]

    def keep(self, resource, handler, body):
        if resource == "tasks":
            self.asked += 1
            return {"tasks": self.tasks}
        if resource == "statuses":
            sent = json.loads(body)["statuses"]
            self.states += [(state["requestId"], state["status"]) for state in sent]
            ended = {state["requestId"] for state in sent if state["status"] != 7}
            self.tasks = [task for task in self.tasks if task["identifier"] not in ended]
            return {"acknowledged": sent[-1]["id"]}
        if resource.startswith("files/"):
            self.files += 1
            return {"sha256": resource[6:], "size": len(body)}
        return {"result": 0, "message": "{}"}


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    owner = None

    def setup(self):
        if self.owner.mode != "well":
            self.owner.reached += 1
        self.stall("connect")
        self.request = self.owner.tls.wrap_socket(self.request, server_side=True)
        super().setup()

    def stall(self, step):
        while self.owner.mode == step:
            time.sleep(0.05)

    def answer(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0)))
        resource = self.path.partition("/norvik/v1/agents/")[2].partition("/")[2]
        if self.owner.mode == "well":
            answer = self.owner.keep(resource, self, body) if resource else {"identifier": self.path.split("/")[-1]}
            return self.send(compact(answer).encode())
        self.owner.reached += 1
        self.stall("headers")
        self.send_response(200)
        while self.owner.mode == "endless headers":
            self.wfile.write(b"X: " + b"x" * 5000 + b"\r\n")
        self.send_header("Content-Length", str(1 << 40))
        self.end_headers()
        while self.owner.mode == "body":
            self.wfile.write(b" ")
            time.sleep(0.2)
        while self.owner.mode == "endless body":
            self.wfile.write(b" " * 65536)
        self.close_connection = True

    def send(self, body):
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    do_PUT = do_POST = answer

    def log_message(self, *_):
        pass
