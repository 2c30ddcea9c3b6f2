"""Attacks by other users of the machine, at the socket."""

import subprocess
import time

from agent import end_attack, until
from siege import ANSWER, PEAK, at_most, attack, holds

MESSAGES, LENGTH = 20, 100_000
LOG_LINES = 8 * 25  # in a minute: 20 for each of 8 users, and what sums up the rest
SUMMARY = r"[0-9]+ lines that user [0-9]+ caused are left out"
JOINING = 20  # seconds
GIVEN_BACK = 4  # megabytes of the database's file


def clean_end(service):
    service.end(subprocess.Popen.terminate)


@attack("20 messages of 100,000 bytes for a user whose output is read slowly, then a restart of the service",
        "all are shown, and the session is back within 10 s")
def slow_output(siege):
    service = siege.service()
    reader = service.add_user(1)
    until(service.sessions, 10)
    for _ in range(MESSAGES):
        service.run("message", "x" * LENGTH)
    until(lambda: reader.count >= MESSAGES * LENGTH, 20)
    yield holds(f"{reader.count:,} of {MESSAGES * LENGTH:,} bytes were shown", reader.count == MESSAGES * LENGTH)
    clean_end(service)
    service.start()
    yield at_most("the session was back after", until(service.sessions, 20), 10, "s")
    yield from siege.aftermath(service)


def flood(kind, connections=32):
    def run(siege):
        service = siege.service()
        lines = service.log_lines()
        crowd = service.attack(kind, connections=connections)
        yield from siege.under_load(service)
        yield at_most("memory", service.peak(), PEAK, "MB")
        end_attack(crowd)
        yield siege.settled(service)
        yield at_most("lines in the log", service.log_lines() - lines, LOG_LINES * (2 + siege.seconds // 60))
        if kind == "archives" and not siege.is_short:
            yield at_most("a line counted the rest after", until(lambda: service.log_lines(SUMMARY), 70), 70, "s")
        yield from siege.aftermath(service)
    return run


attack("8 users send damaged network drives, on 4 connections each", "a bounded log with a line for the rest; memory; "
       "answers for root")(flood("archives", 4))
attack("8 users break the protocol in ten ways, on 32 connections each that they open again and again",
       "the same")(flood("violations"))
attack("8 users begin frames of 30,000 and 200,000 bytes on 32 connections each and do not end them",
       "at most 64 MB for all users, given back after they leave")(flood("unfinished"))
attack("8 users send messages of 30,000 and 200,000 bytes on 32 connections each", "the same")(flood("long messages"))


@attack("8 users with 32 sessions each read nothing, and root sends 40 messages of 100,000 bytes", "the same",
        is_short=False)
def never_reading(siege):
    service = siege.service()
    crowd = service.attack("silent")
    for _ in range(40):
        service.run("message", "x" * LENGTH)
        time.sleep(0.1)
    yield from siege.under_load(service)
    yield at_most("memory", service.peak(), PEAK, "MB")
    end_attack(crowd)
    yield siege.settled(service)
    yield from siege.aftermath(service)


@attack("8 users report new network drives with paths of 20 to 200,000 bytes, on 4 connections each",
        "a bounded database that gives its space back; answers for root")
def network_drives(siege):
    service = siege.service()
    crowd = service.attack("drives", connections=4)
    yield from siege.under_load(service)
    yield at_most("memory", service.peak(), PEAK, "MB")
    end_attack(crowd)
    yield at_most("database", service.database_size(), 64, "MB")
    yield from siege.serve(service)
    crowd = service.attack("no drives once", 1, 1)
    until(lambda: service.file_size() <= GIVEN_BACK, 15)
    yield at_most("after a report of no drives its file", service.file_size(), GIVEN_BACK, "MB")
    end_attack(crowd)
    yield siege.settled(service)
    yield from siege.aftermath(service)


def idle(descriptors):
    def run(siege):
        service = siege.service(descriptors=descriptors)
        crowd = service.attack("idle")
        yield from siege.under_load(service)
        yield from siege.serve(service)
        yield at_most("damaged files", service.damaged(), 0)
        end_attack(crowd)
        yield from siege.aftermath(service)
        if siege.is_short:
            return
        used = service.open_descriptors()
        crowd = service.attack("idle once", 4, 8)
        yield holds("idle connections were open", until(lambda: service.open_descriptors() > used, 5) is not None)
        ended = lambda: service.open_descriptors() <= used
        yield at_most("an idle connection was closed after", until(ended, JOINING), JOINING, "s")
    return run


attack("8 users open 32 connections each and do not join", "root's `status`, `message` and `notify` work, a ninth user "
       "gets in, and who does not join in time is closed")(idle((1024, 4096)))
attack("the same, and the service may open only 256 descriptors", "the same", is_short=False)(idle((256, 256)))


@attack("SIGKILL for the service, three times, while 8 users send network drives",
        "the next start serves, the session is back within 10 s, database and outbox are whole", is_short=False)
def killed(siege):
    service = siege.service()
    service.add_user(20)
    crowd = service.attack("drives", connections=4)
    for _ in range(3):
        time.sleep(max(1, siege.seconds / 6))
        service.end(subprocess.Popen.kill)
        service.start()
    end_attack(crowd)
    yield at_most("the session was back after", until(service.sessions, 20), 10, "s")
    service.forget_inventory()
    yield at_most("an inventory took", service.take_inventory(), 10, "s")
    yield at_most("damaged files", service.damaged(), 0)
    yield from siege.aftermath(service)
