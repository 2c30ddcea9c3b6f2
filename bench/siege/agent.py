"""A service of the agent, users' processes and attackers, and what can be measured of them."""

import json
import os
import pathlib
import re
import resource
import shutil
import signal
import sqlite3
import subprocess
import sys
import threading
import time

import frames
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


def until_quiet(figure, seconds=60):
    """Waits until a figure stays as it is for two seconds."""
    last, end = None, time.monotonic() + seconds
    while last != (last := figure()) and time.monotonic() < end:
        time.sleep(2)


class Service:
    def __init__(self, folder, configuration=None, words=(), descriptors=(1024, 4096), disk=None):
        self.folder = folder
        self.data = disk or folder / "data"
        self.socket = folder / "agent.sock"
        self.words = [*words]
        self.descriptors = descriptors
        self.process = None
        self.others = []
        self.data.mkdir(exist_ok=True)
        (self.data / "configuration.json").write_text(json.dumps(configuration or {}))

    def command(self, *words):
        return [PROGRAM, "--data", str(self.data), "--socket", str(self.socket), *self.words, *words]

    def start(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, self.descriptors)
        self.process = subprocess.Popen(self.command("run"), stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                                        cwd=self.data, start_new_session=True, preexec_fn=limit)
        if b"runs as process" not in self.process.stdout.readline():
            raise RuntimeError("the service does not run")
        return self

    def stop(self):
        """Seconds until the end."""
        start = time.monotonic()
        self.process.terminate()
        try:
            self.process.wait(60)
        except subprocess.TimeoutExpired:
            self.kill()
        return time.monotonic() - start

    def kill(self):
        self.process.kill()
        self.process.wait()

    def runs(self):
        return self.process.poll() is None

    def end(self):
        for process in [*self.others, self.process]:
            if process and process.poll() is None:
                process.kill()
                process.wait()

    # What root asks for.

    def run(self, *words):
        """A command as root gives it: its exit code, its output, and the seconds that it took."""
        start = time.monotonic()
        done = subprocess.run(self.command(*words), capture_output=True, text=True, cwd=self.folder)
        return done.returncode, done.stdout, time.monotonic() - start

    def status(self):
        """The status of the running agent and the seconds that it took; None if it did not answer."""
        code, output, seconds = self.run("status", "--json")
        return (json.loads(output) if code == 0 else {"agent": None}), seconds

    def sessions(self):
        try:
            return len(frames.ask(self.socket, {"request": "status"}, 5)["sessions"])
        except OSError:
            return -1

    def request(self, **request):
        return frames.ask(self.socket, request)

    def forget_inventory(self):
        """Lets the next notice of a change lead to an inventory at once."""
        with sqlite3.connect(self.data / DATABASE, timeout=30) as base:
            base.execute("update DATA set value = '0' where name = 'KOB_INVENTORY'")

    def take_inventory(self, seconds=30, forget=True):
        """The seconds until a new file is in the outbox, after a notice of a change; None if none came."""
        before = self.outbox_state()
        if forget:
            self.forget_inventory()
        if self.run("notify", "hardware")[0] != 0:
            return None
        return until(lambda: self.outbox_state() - before, seconds)

    # What the kernel and the data folder show.

    def figure(self, file, name):
        for line in pathlib.Path(f"/proc/{self.process.pid}/{file}").read_text().splitlines():
            if line.startswith(name + ":"):
                return int(line.split()[1])
        return 0

    def memory(self):
        return self.figure("status", "VmRSS") / 1024

    def peak(self):
        return self.figure("status", "VmHWM") / 1024

    def forget_peak(self):
        pathlib.Path(f"/proc/{self.process.pid}/clear_refs").write_text("5")

    def written(self):
        return self.figure("io", "wchar") / MEGABYTE

    def processor(self):
        words = pathlib.Path(f"/proc/{self.process.pid}/stat").read_text().rpartition(")")[2].split()
        return (int(words[11]) + int(words[12])) / os.sysconf("SC_CLK_TCK")

    def open_descriptors(self):
        return len(os.listdir(f"/proc/{self.process.pid}/fd"))

    def children(self, state=None):
        """The number of its child processes, or of those in one state, as Z for ended ones."""
        found = 0
        for stat in pathlib.Path("/proc").glob("[0-9]*/stat"):
            try:
                words = stat.read_text().rpartition(")")[2].split()
            except OSError:
                continue
            found += int(words[1]) == self.process.pid and state in (None, words[0])
        return found

    def outbox(self):
        folder = self.data / "outbox"
        return sorted(file for file in folder.glob("*") if file.name[0] != ".") if folder.exists() else []

    def outbox_state(self):
        return {(file.name, file.stat().st_ino) for file in self.outbox()}

    def damaged_files(self):
        return [file.name for file in self.outbox() if self.run("open", file)[0] != 0]

    def database_size(self):
        return sum(file.stat().st_size for file in self.data.glob(DATABASE + "*")) / MEGABYTE

    def database_is_whole(self):
        with sqlite3.connect(self.data / DATABASE, timeout=30) as base:
            return base.execute("pragma integrity_check").fetchone() == ("ok",)

    def log_lines(self, pattern=""):
        lines = 0
        for file in (self.data / "log").glob("*"):
            with open(file, errors="replace") as text:
                lines += sum(bool(re.search(pattern, line)) for line in text)
        return lines

    # The other side.

    def add_user(self, number, output=subprocess.DEVNULL):
        """The process of a logged-on user."""
        user = FIRST_USER + number
        data = self.folder / f"user{number}"
        data.mkdir(exist_ok=True)
        os.chown(data, user, user)
        process = subprocess.Popen(
            ["setpriv", f"--reuid={user}", f"--regid={user}", "--clear-groups", PROGRAM, "--data", data,
             "--socket", self.socket, "user"], stdout=output, stderr=subprocess.DEVNULL, cwd="/")
        self.others.append(process)
        return process

    def attack(self, kind, users=8, connections=32):
        """Other users attack from now on."""
        crowd = Crowd(self, kind, users, connections)
        self.others += crowd.processes
        crowd.wait()
        return crowd


class Crowd:
    def __init__(self, service, kind, users, connections):
        self.processes = [
            subprocess.Popen([sys.executable, "-B", PLACE / "siege/attacker.py", kind, service.socket,
                              str(FIRST_USER + 1 + user), str(connections)], stdout=subprocess.PIPE, text=True)
            for user in range(users)]

    def wait(self):
        for process in self.processes:
            if process.stdout.readline() != "ready\n":
                raise RuntimeError("an attacker does not run")

    def end(self):
        """The figures of all, added."""
        for process in self.processes:
            process.terminate()
        all_figures = [json.loads(process.communicate()[0]) for process in self.processes]
        return {name: sum(figures[name] for figures in all_figures) for name in all_figures[0]}


class SlowReader(threading.Thread):
    """Reads the output of a process at a limited rate and counts a byte in it."""

    def __init__(self, stream, byte, rate):
        super().__init__(daemon=True)
        self.stream, self.byte, self.rate, self.count = stream, byte, rate, 0
        self.start()

    def run(self):
        while piece := os.read(self.stream.fileno(), 16384):
            self.count += piece.count(self.byte)
            time.sleep(len(piece) / self.rate)
