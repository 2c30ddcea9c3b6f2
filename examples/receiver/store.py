"""What the receiver keeps: an SQLite database, and the sealed files as they came."""

import contextlib
import hashlib
import hmac
import json
import os
import pathlib
import secrets
import sqlite3
import threading
import time

import documents
from sealed import NotUsable, document_in

TABLES = """PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;
CREATE TABLE IF NOT EXISTS agents(agent TEXT PRIMARY KEY, token TEXT, new_token TEXT, approved INTEGER, facts TEXT);
CREATE TABLE IF NOT EXISTS tasks(agent TEXT, task TEXT, code INTEGER, period INTEGER, parameters TEXT,
                                 ended INTEGER DEFAULT 0, PRIMARY KEY(agent, task));
CREATE TABLE IF NOT EXISTS reports(agent TEXT, id TEXT, task TEXT, body TEXT, PRIMARY KEY(agent, id));
CREATE TABLE IF NOT EXISTS files(number INTEGER PRIMARY KEY, agent TEXT, sha256 TEXT, name TEXT,
                                 state TEXT DEFAULT 'new', reason TEXT, UNIQUE(agent, sha256));
CREATE TABLE IF NOT EXISTS documents(agent TEXT, kind TEXT, body BLOB, complete INTEGER, PRIMARY KEY(agent, kind));
CREATE TABLE IF NOT EXISTS settings(secret TEXT);"""
FULL = {"inventory": 1071, "file-inventory": 1037}  # the task that asks for a full document


class Store:
    """Safe on any thread. What was written is durable when a call returns."""

    def __init__(self, folder):
        self.files = pathlib.Path(folder) / "files"
        self.files.mkdir(mode=0o700, parents=True, exist_ok=True)
        self.lock = threading.RLock()
        self.database = sqlite3.connect(pathlib.Path(folder) / "receiver.sqlite3", check_same_thread=False, timeout=30)
        self.database.executescript(TABLES)
        with self.transaction() as run:
            run("INSERT INTO settings SELECT ? WHERE NOT EXISTS (SELECT 1 FROM settings)", secrets.token_hex(32))
            self.secret = run("SELECT secret FROM settings").fetchone()[0].encode()

    @contextlib.contextmanager
    def transaction(self):
        with self.lock, self.database:
            yield lambda sql, *values: self.database.execute(sql, values)

    # Of a token only its hash is kept.

    def enrol(self, agent, token, facts, is_approved):
        """The status of the answer and, with 200, the agent's token from now on."""
        # Always the same one for a proposed token, since the answer with it may be lost.
        new = hmac.digest(self.secret, token.encode(), "sha256").hex()
        with self.transaction() as run:
            run("INSERT OR IGNORE INTO agents VALUES(?,?,?,0,'')", agent, hashed(token), hashed(new))
            run("UPDATE agents SET approved=approved OR ? WHERE agent=?", is_approved, agent)
            former, current, approved = run("SELECT token, new_token, approved FROM agents WHERE agent=?", agent).fetchone()
            if not matches(token, former, current):
                return 409, None
            run("UPDATE agents SET facts=? WHERE agent=?", facts, agent)
        return (200, token if matches(token, current) else new) if approved else (202, None)

    def knows(self, agent, token):
        with self.transaction() as run:
            tokens = run("SELECT token, new_token FROM agents WHERE agent=? AND approved", agent).fetchone()
            if not tokens or not matches(token, *tokens):
                return False
            if matches(token, tokens[1]):  # the first use of the new token ends the former one
                run("UPDATE agents SET token=new_token WHERE agent=?", agent)
            return True

    def approve(self, agent):
        with self.transaction() as run:
            return run("UPDATE agents SET approved=1 WHERE agent=?", agent).rowcount == 1

    def add_task(self, agent, code, parameters=(), period=0):
        with self.transaction() as run:
            run("INSERT INTO tasks(agent, task, code, period, parameters) VALUES(?,?,?,?,?)", agent,
                secrets.token_hex(8), code, period,
                json.dumps([{"name": name, "type": "text", "value": value} for name, value in parameters]))

    def tasks(self, agent):
        with self.transaction() as run:
            rows = run("SELECT task, code, period, parameters FROM tasks WHERE agent=? AND NOT ended", agent).fetchall()
        return [{"identifier": task, "requestId": task, "name": f"action {code}", "code": code,
                 "schedule": {"periodSeconds": period, "next": 0}, "parameters": json.loads(parameters)}
                for task, code, period, parameters in rows]

    def keep_reports(self, agent, reports):
        """States and answers, by their `id`. One of an unknown task is kept too: a refusal would hold up the others."""
        with self.transaction() as run:
            for report in reports:
                task = report.get("taskIdentifier", report.get("requestId"))
                run("INSERT OR IGNORE INTO reports VALUES(?,?,?,?)", agent, report["id"], task, json.dumps(report))
                if report.get("status", 2) in (2, 3, 8):
                    run("UPDATE tasks SET ended=1 WHERE agent=? AND task=? AND period=0", agent, task)

    def keep_file(self, agent, sha256, name, received):
        os.replace(received, self.files / f"{agent}-{sha256}")
        folder = os.open(self.files, os.O_RDONLY)
        os.fsync(folder)
        os.close(folder)
        with self.transaction() as run:
            run("INSERT OR IGNORE INTO files(agent, sha256, name) VALUES(?,?,?)", agent, sha256, name)

    def process_files(self, keys):
        """Takes the files in the order in which they came, for ever. After a restart it goes on where it was."""
        while True:
            with self.transaction() as run:
                for number, agent, sha256 in run("SELECT number, agent, sha256 FROM files WHERE state='new' LIMIT 1"):
                    reason = ""
                    try:
                        self.take_document(run, agent, document_in(self.files / f"{agent}-{sha256}", keys))
                    except (NotUsable, documents.Gap, OSError, MemoryError) as error:
                        reason = str(error)
                    state = "aside" if reason else "applied"
                    run("UPDATE files SET state=?, reason=? WHERE number=?", state, reason, number)
                    break
                else:
                    time.sleep(0.2)

    def take_document(self, run, agent, text):
        document = documents.parse(text)
        kind, is_incremental = documents.kind_of(document)
        if document["device"]["guid"] != agent:
            raise NotUsable("of another machine than the one that sent it")
        if is_incremental:
            base = run("SELECT body FROM documents WHERE agent=? AND kind=? AND complete", agent, kind).fetchone()
            try:
                if not base:
                    raise documents.Gap("a full document is awaited")
                text = documents.text_of(documents.apply(documents.parse(base[0]), document))
            except documents.Gap:
                run("UPDATE documents SET complete=0 WHERE agent=? AND kind=?", agent, kind)
                if not run("SELECT 1 FROM tasks WHERE agent=? AND code=? AND NOT ended", agent, FULL[kind]).fetchone():
                    self.add_task(agent, FULL[kind])
                raise
        run("INSERT OR REPLACE INTO documents VALUES(?,?,?,1)", agent, kind, text)


def hashed(token):
    return hashlib.sha256(token.encode()).hexdigest()


def matches(token, *hashes):
    return any(hmac.compare_digest(hashed(token), each) for each in hashes)
