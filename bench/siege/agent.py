"""A service of the agent with users' processes and attackers, and what can be measured of it."""

import json
import os
import pathlib
import re
import resource
import sqlite3
import subprocess
import sys
import threading
import time

from namespaces import PLACE

PROGRAM = str(PLACE / "build/bin/norvik-agent")
FIRST_USER = 61000
MEGABYTE = 1 << 20
DATABASE = "Agent.9.24.2.0.sqlite3"


def until(condition, seconds):
    """The seconds until the condition held; None if it did not in time."""
    start = time.monotonic()
    while time.monotonic() - start < seconds:
        if condition():
            return time.monotonic() - start
        time.sleep(0.05)
    return None


def processes():
    """Name, state and parent of each process."""
    for file in pathlib.Path("/proc").glob("[0-9]*/stat"):
        try:
            words, _, numbers = file.read_text().rpartition(")")
        except OSError:
            continue
        state, parent = numbers.split()[:2]
        yield words.partition("(")[2], state, int(parent)


class Service:
    def __init__(self, folder, configuration=None, options=(), descriptors=(1024, 4096), data=None):
        self.folder, self.data, self.socket = folder, data or folder / "data", folder / "agent.sock"
        self.words = [PROGRAM, "--data", str(self.data), "--socket", str(self.socket), *options]
        self.descriptors = descriptors
        self.data.mkdir(exist_ok=True)
        (self.data / "configuration.json").write_text(json.dumps(configuration or {}))
        self.start()
        self.first_descriptors = self.open_descriptors()

    def start(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, self.descriptors)
        self.process = subprocess.Popen([*self.words, "run"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                        cwd=self.data, start_new_session=True, preexec_fn=limit)
        if b"runs as process" not in self.process.stdout.readline():
            raise RuntimeError("the service does not run")

    def end(self, by):
        """Ends it by a method of its process; the seconds that it took."""
        start = time.monotonic()
        by(self.process)
        self.process.wait(60)
        return time.monotonic() - start

    def runs(self):
        return self.process.poll() is None

    # What root asks for.

    def run(self, *words):
        """A command as root gives it: its exit code, its output, and the seconds that it took."""
        start = time.monotonic()
        done = subprocess.run([*self.words, *words], capture_output=True, text=True, cwd=self.folder)
        return done.returncode, done.stdout, time.monotonic() - start

    def status(self):
        """The running agent's status, None if it did not answer; and the seconds that it took."""
        # It exits with 3 if something needs a person.
        _, output, seconds = self.run("status", "--json")
        return json.loads(output)["agent"] if output else None, seconds

    def sessions(self):
        agent, _ = self.status()
        return len(agent["sessions"]) if agent else 0

    def forget_inventory(self):
        """Lets the next notice of a change lead to an inventory at once."""
        with sqlite3.connect(self.data / DATABASE, timeout=30) as base:
            base.execute("update DATA set value = '0' where name = 'KOB_INVENTORY'")

    def take_inventory(self, seconds=30):
        """The seconds until a new file is in the outbox after a notice of a change."""
        before = self.outbox_state()
        self.run("notify", "hardware")
        return until(lambda: self.outbox_state() - before, seconds)

    def seal_for_server(self):
        """Lets the next documents be delivered. Nobody has the private key."""
        (self.data / "keys").mkdir(exist_ok=True)
        (self.data / "keys/server.pub").write_text("09".ljust(64, "0") + "\n")

    # What the kernel and the data folder show.

    def figure(self, file, name):
        text = pathlib.Path(f"/proc/{self.process.pid}/{file}").read_text()
        return int(re.search(rf"^{name}:\s*(\d+)", text, re.M).group(1))

    def memory(self):
        return self.figure("status", "VmRSS") / 1024

    def peak(self):
        return self.figure("status", "VmHWM") / 1024

    def written(self):
        return self.figure("io", "wchar") / MEGABYTE

    def processor(self):
        words = pathlib.Path(f"/proc/{self.process.pid}/stat").read_text().rpartition(")")[2].split()
        return (int(words[11]) + int(words[12])) / os.sysconf("SC_CLK_TCK")

    def open_descriptors(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def outbox(self):
        return [file for file in (self.data / "outbox").glob("*") if file.name[0] != "."]

    def outbox_state(self):
        # The names of files that wait for the server change.
        return {file.stat().st_ino for file in self.outbox()}

    def damaged(self):
        """The number of files in the outbox that do not open, and whether the database is damaged."""
        with sqlite3.connect(self.data / DATABASE, timeout=30) as base:
            whole = base.execute("pragma integrity_check").fetchone() == ("ok",)
        return sum(self.run("open", file)[0] != 0 for file in self.outbox()) + (not whole)

    def database_size(self):
        return sum(file.stat().st_size for file in self.data.glob(DATABASE + "*")) / MEGABYTE

    def file_size(self):
        """The database without its log, which becomes small again when the next rows are written."""
        return (self.data / DATABASE).stat().st_size / MEGABYTE

    def log_lines(self, pattern=""):
        logs = [file.read_text(errors="replace") for file in (self.data / "log").glob("*")]
        return sum(bool(re.search(pattern, line)) for log in logs for line in log.splitlines())

    # The other side.

    def add_user(self, number):
        """The process of a logged-on user, whose messages consist of x."""
        user, data = str(FIRST_USER + number), self.folder / f"user{number}"
        data.mkdir(exist_ok=True)
        os.chown(data, int(user), int(user))
        command = ["setpriv", "--reuid", user, "--regid", user, "--clear-groups", PROGRAM, "--data", data,
                   "--socket", self.socket, "user"]
        return Reader(subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, cwd="/").stdout)

    def attack(self, kind, users=8, connections=32):
        """Has other users attack from now on; ends by `end_attack`."""
        crowd = [subprocess.Popen([sys.executable, "-B", PLACE / "siege/attacker.py", kind, self.socket,
                                   str(FIRST_USER + 1 + user), str(connections)], stdout=subprocess.PIPE)
                 for user in range(users)]
        if not all(attacker.stdout.readline() for attacker in crowd):
            raise RuntimeError("an attacker does not run")
        return crowd


def end_attack(crowd):
    for attacker in crowd:
        attacker.kill()
        attacker.wait()


class Reader(threading.Thread):
    """Reads the output of a process, 0.8 MB a second, and counts the letters x."""

    def __init__(self, stream):
        super().__init__(daemon=True)
        self.stream, self.count = stream, 0
        self.start()

    def run(self):
        while piece := os.read(self.stream.fileno(), 16384):
            self.count += piece.count(b"x")
            time.sleep(len(piece) / 800_000)
