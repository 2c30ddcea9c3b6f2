"""The real agent against the receiver: it enrols, sends documents, gets tasks, answers; both are killed."""

import functools
import hashlib
import io
import json
import os
import pathlib
import shutil
import sqlite3
import subprocess
import zipfile

from nacl import bindings as sodium

from program import ROOT, Agent, until

LIST_PROCESSES, FULL, INCREMENTAL, FILES = 1011, 1071, 1036, 1037


class Story:
    def __init__(self, build, receiver):
        self.program, self.receiver = build / "bin/norvik-agent", receiver
        self.folder, self.data = receiver.folder, receiver.folder / "agent"
        self.machine = self.folder / "machine"
        self.agent, self.identifier = None, ""
        shutil.copytree(ROOT / "tests/machines/intel-t2", self.machine, symlinks=True)
        (self.folder / "tree").mkdir()
        (self.folder / "configuration.json").write_text(json.dumps({
            "server": {"address": "127.0.0.1", "port": receiver.port, "caFile": str(self.folder / "server.pem")},
            "includedExtensions": ["txt"], "excludedPaths": self.other_folders()}))
        (self.data / "keys").mkdir(mode=0o700, parents=True)
        self.data.chmod(0o700)
        shutil.copy(receiver.data / "keys/server.pub", self.data / "keys")
        self.norvik("--machine", self.machine, "configure", self.folder / "configuration.json")

    def other_folders(self):
        """All folders of the system but `tree`."""
        tree = self.folder / "tree"
        return [str(each) for parent in tree.parents for each in parent.iterdir()
                if each != tree and each not in tree.parents]

    def norvik(self, *arguments):
        done = subprocess.run([self.program, "--data", self.data, "--socket", self.folder / "socket", *arguments],
                              capture_output=True, cwd=self.folder)
        assert not done.returncode, f"{arguments}: {done.stderr.decode(errors='replace')}"
        return done.stdout

    def start_agent(self):
        command = [self.program, "--data", self.data, "--socket", self.folder / "socket", "--machine", self.machine]
        with open(self.folder / "agent.log", "ab") as log:
            self.agent = subprocess.Popen([*command, "run"], stdout=log, stderr=log, cwd=self.folder)

    def kill_agent(self):
        if self.agent:
            self.agent.kill()
            self.agent.wait()

    def printers(self, *names):
        """The machine has these printers besides those of its recording."""
        conf = "etc/cups/printers.conf"
        text = (ROOT / "tests/machines/intel-t2/root" / conf).read_bytes()
        for name in names:
            text += b"<Printer " + name.encode() + b">\nInfo \xc3\xa9 \xff\xe9 \"\nState Idle\n</Printer>\n"
        (self.machine / "root" / conf).write_bytes(text)

    def finds(self, *names):
        """Whether exactly these of the printers that tests add are found."""
        found = {name for name in ("one", "two", "lost", "after", "killed")
                 if self.receiver.rows("search", f'printer.name = "{name}"')}
        return found == set(names)

    def task(self, code, *parameters):
        task, = self.receiver.rows("task", "add", "--agent", self.identifier, "--code", str(code), *parameters)
        self.norvik("action", "COMMON_ACTION_GET_PENDING_TASKS")

        def ended():
            return [row for row in self.receiver.rows("task", "list", "--agent", self.identifier)
                    if row["task"] == task["task"] and row["ended"]]
        until(f"task {code} ends", ended)
        return [json.loads(row["body"]) for row in self.receiver.rows(
            "task", "show", "--agent", self.identifier, "--task", task["task"])]

    def changes(self, since=""):
        return self.receiver.rows("export", *(["--since", since] if since else []))


def enrolment(story):
    story.start_agent()
    waiting = until("the agent asks", lambda: story.receiver.rows("approve"))
    story.identifier = waiting[0]["agent"]
    assert story.receiver.rows("search", 'device.guid ~ ""') == []
    story.receiver.run("approve", story.identifier)
    found = until("the document is stored", lambda: story.receiver.rows("search", 'os.name ~ "mac"'))
    assert [row["agent"] for row in found] == [story.identifier], found
    assert [change["data"] for change in story.changes()] == [{"change": "first"}], story.changes()


def tasks_and_answers(story):
    answer, = [report for report in story.task(LIST_PROCESSES) if "titles" in report]
    assert answer["titles"][:3] == ["Pid", "Name", "Path"] and len(answer["rows"]) > 3, answer
    assert [state["status"] for state in story.task(FULL)] == [7, 2]


def expressions(story):
    """Each expression finds the recorded machine or not, or is refused at the right place."""
    for expression, expected in json.loads((ROOT / "tests/receiver-program/expressions.json").read_text()):
        text = expression.replace("NESTED", "(" * 50)
        if isinstance(expected, str):
            assert expected in (error := story.receiver.run("search", "--", text, status=2)), (expression, error)
            continue
        found = story.receiver.rows("search", "--", text)
        assert [row["agent"] for row in found] == [story.identifier] * expected, (expression, found)
    assert story.receiver.rows("search", "--count", 'os.name ~ "mac"') == [{"machines": 1}]


def increments(story):
    cursor = story.changes()[-1]["cursor"]
    for printers in (("one", "two"), ("two",), ()):
        story.printers(*printers)
        story.task(INCREMENTAL)
        until(f"printers {printers}", lambda: story.finds(*printers))
    changes = [(change["data"]["change"], change["data"]["identity"]["name"]) for change in story.changes(cursor)
               if change["section"] == "printer"]
    assert sorted(changes[:2]) == [("came", "one"), ("came", "two")] and changes[2:] == [
        ("went", "one"), ("went", "two")], changes
    whole = story.changes()
    pages, since = [], ""
    while page := story.receiver.rows("export", "--limit", "2", *(["--since", since] if since else [])):
        pages, since = pages + page, page[-1]["cursor"]
    assert pages == whole, "pages of the changes are not the whole"


def files(story):
    for name in (b"a.txt", b"\xff\xfe.txt", "\u00e9\n.txt".encode()):
        (pathlib.Path(os.fsdecode(os.fsencode(story.folder / "tree") + b"/" + name))).write_text("x")
    story.task(FILES)
    until("the file inventory is stored", lambda: [
        change for change in story.changes() if change["inventory"] == "file-inventory"])


def lost_document(story):
    """A document is lost: the next one does not fit, and a full one is asked for, once."""
    story.receiver.kill()
    story.printers("lost")
    story.norvik("inventory", "--incremental")
    for file in (story.data / "outbox").iterdir():
        file.unlink()
    for printers in (("after",), ("after", "one")):
        story.printers(*printers)
        story.norvik("inventory", "--incremental")
    story.receiver.start("--keep-files")
    until("a full document is asked for", lambda: story.receiver.rows("task", "list"))
    story.norvik("action", "COMMON_ACTION_GET_PENDING_TASKS")
    until("the full document is stored", lambda: story.finds("after", "one"))
    until("the task has ended", lambda: not story.receiver.rows("task", "list"))
    asked = [row for row in story.receiver.rows("task", "list", "--agent", story.identifier)
             if row["name"].startswith("Full document")]
    assert len(asked) == 1, asked


def wrong_files(story):
    """Files that nothing can use are acknowledged and put aside, and the document stays as it is."""
    kept = max((story.receiver.data / "files").rglob(story.identifier + "-*"), key=lambda path: path.stat().st_mtime)
    sealed, before = kept.read_bytes(), story.changes()
    agent = Agent(story.receiver, story.identifier, json.loads((story.data / "identity.json").read_text())["token"])
    altered = lambda at: sealed[:at] + bytes([sealed[at] ^ 1]) + sealed[at + 1:]
    aside = len(story.receiver.rows("aside"))
    for row, content in {
        "nothing": b"", "no sealed file": b"{}", "format version 3": altered(8), "another key": altered(9),
        "an altered box": altered(30), "an altered chunk": altered(len(sealed) - 1), "cut": sealed[:-1],
        "something after it": sealed + b"x", "a bomb": seal(story, bomb()), "no archive": seal(story, b"{}"),
        "no document": seal(story, archive(b"[]")), "deep": seal(story, archive(b"[" * 100000)),
        "of another machine": seal(story, archive(b'{"device":{"guid":"x"}}')),
        "no section": seal(story, archive(json.dumps({"device": {"guid": story.identifier}}).encode())),
    }.items():
        status, answer = agent.upload(content)
        assert (status, answer["size"]) == (200, len(content)), f"{row}: {status} {answer}"
        aside += 1
        rows = until(f"{row} is put aside", lambda: (
            found := story.receiver.rows("aside", story.identifier)) and len(found) == aside and found)
        print(f"  {row}: {rows[-1]['reason']}")
    assert story.changes() == before, "a document has changed"


def archive(content):
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w", zipfile.ZIP_DEFLATED) as opened:
        opened.writestr("mac.jsonkob", content)
    return file.getvalue()


@functools.lru_cache
def bomb():
    """An archive of a few MB that unpacks to 1 GiB and a byte."""
    file = io.BytesIO()
    with zipfile.ZipFile(file, "w", zipfile.ZIP_DEFLATED, compresslevel=1) as opened, opened.open(
            "mac.jsonkob", "w") as entry:
        for _ in range(1024):
            entry.write(bytes(1 << 20))
        entry.write(b"x")
    return file.getvalue()


def seal(story, content):
    """As docs/outbox-format.md says."""
    public = bytes.fromhex((story.receiver.data / "keys/server.pub").read_text())
    start = b"NRVKSEAL\x02" + hashlib.blake2b(public, digest_size=16).digest()
    state, key = sodium.crypto_secretstream_xchacha20poly1305_state(), os.urandom(32)
    sealed = start + sodium.crypto_box_seal(key, public)
    sealed += sodium.crypto_secretstream_xchacha20poly1305_init_push(state, key)
    for at in range(0, max(len(content), 1), 65536):
        tag = 3 if at + 65536 >= len(content) else 0
        sealed += sodium.crypto_secretstream_xchacha20poly1305_push(state, content[at:at + 65536], start, tag)
    return sealed


def restarts(story):
    """Either side is killed while a document is under way."""
    for printers, side in ((("killed",), "receiver"), (("killed", "two"), "agent")):
        story.printers(*printers)
        story.norvik("inventory", "--incremental")
        if side == "receiver":
            story.receiver.kill()
            story.receiver.start("--keep-files")
        else:
            story.kill_agent()
            story.start_agent()
        until(f"the document after {side} was killed", lambda: story.finds(*printers))


def problems_of(story):
    lines = story.receiver.run("--json", "check", status=1, output="standard").splitlines()
    return [json.loads(line) for line in lines]


def examination(story):
    """`check` finds nothing, and then what was damaged."""
    assert story.receiver.run("check") == ""
    kept = sorted(path for path in (story.receiver.data / "files").rglob("*") if path.is_file())
    kept[0].write_bytes(b"other")
    (kept[1].parent / "stray").write_bytes(b"")
    problems = [(row["table"], row["problem"].partition(":")[0]) for row in problems_of(story)]
    assert problems == [("uploads", "its file has another checksum"), ("files", "no row belongs to it")], problems
    if story.receiver.database:
        return
    # A database of a newer version is left alone.
    story.receiver.kill()
    database = sqlite3.connect(story.receiver.data / "receiver.sqlite3")
    database.execute("DELETE FROM records WHERE section='os'")
    database.commit()
    assert [row["problem"] for row in problems_of(story)][-1] == "a record of os is missing"
    database.execute("UPDATE schema_version SET version=99")
    database.commit()
    database.close()
    assert "version 99" in story.receiver.run("check", status=1)
    assert "version 99" in story.receiver.run("run", "--plain", "--address", "127.0.0.1", status=1)


CHAPTERS = (enrolment, tasks_and_answers, expressions, increments, files, lost_document, wrong_files, restarts, examination)
