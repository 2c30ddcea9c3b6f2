"""Attacks by other users of the machine, at the socket."""

import subprocess
import time

from agent import SlowReader, until
from siege import ANSWER, PEAK, SETTLED
from table import at_most, attack, exactly, yes

MESSAGES, LENGTH = 8, 300_000
LOG_LINES = 8 * 25  # in a minute: 20 for each of 8 users, and what sums up the rest
SUMMARY = r"[0-9]+ .*(left out|more lines)"
JOINING = 45  # seconds


def settled(service):
    """Waits until the memory has gone back, for at most 15 seconds."""
    until(lambda: service.memory() <= SETTLED, 15)
    return at_most("memory after it", service.memory(), SETTLED, "MB")


@attack("8 messages of 300,000 bytes for a user whose output is read slowly; then a restart of the service",
        "all are shown, and the session is back within 10 s")
def slow_reader(siege):
    service = siege.service()
    user = service.add_user(1, subprocess.PIPE)
    reader = SlowReader(user.stdout, b"x", 800_000)
    until(lambda: service.sessions() == 1, 10)
    for _ in range(MESSAGES):
        service.request(request="message", text="x" * LENGTH)
        time.sleep(0.2)
    wanted = MESSAGES * LENGTH
    until(lambda: reader.count >= wanted, 30)
    yield exactly("bytes shown", reader.count, wanted)
    service.stop()
    service.start()
    yield at_most("session back after", until(lambda: service.sessions() == 1, 20), 10, "s")
    yield from siege.aftermath(service)


def flood(kind, **options):
    """The figures of a load of one kind of stream."""
    def run(siege):
        service = siege.service()
        service.forget_peak()
        lines = service.log_lines()
        crowd = service.attack(kind, **options)
        yield from siege.under_load(service)
        yield at_most("memory", service.peak(), PEAK, "MB")
        crowd.end()
        yield at_most("lines in the log", service.log_lines() - lines,
                      LOG_LINES * (2 + siege.seconds // 60))
        if kind == "archives" and not siege.is_short:
            yield at_most("a line counts the rest after", until(lambda: service.log_lines(SUMMARY), 70), 70, "s")
        yield settled(service)
        yield from siege.aftermath(service)
    return run


attack("8 users with 4 connections each send damaged network drives as fast as they can",
       "bounded log with a line for the rest, memory, answers for root")(flood("archives", connections=4))
attack("8 users break the protocol in ten ways, on 256 connections that they open again and again",
       "the same")(flood("violations"))
attack("8 users keep a frame of 1 MiB unfinished on each of 256 connections",
       "at most 64 MB for all users, given back after they leave")(flood("unfinished"))
attack("8 users send messages of 200,000 bytes on 256 connections, faster than they are handled",
       "the same")(flood("long messages"))


@attack("256 sessions of 8 users read nothing, and root sends 40 messages of 100,000 bytes",
        "the same", is_short=False)
def never_reading(siege):
    service = siege.service()
    crowd = service.attack("silent")
    for _ in range(40):
        try:
            service.request(request="message", text="x" * 100_000)
        except (OSError, KeyError):
            pass
        time.sleep(0.1)
    yield from siege.under_load(service, 2)
    yield at_most("memory", service.peak(), PEAK, "MB")
    crowd.end()
    yield settled(service)
    yield from siege.aftermath(service)


@attack("8 users report new network drives with texts of 1,000 to 200,000 bytes as fast as they can",
        "a bounded database whose space is given back; answers for root")
def network_drives(siege):
    service = siege.service()
    crowds = [service.attack("drives", users=4, connections=4), service.attack("long drives", users=4, connections=4)]
    yield from siege.under_load(service)
    yield at_most("memory", service.peak(), PEAK, "MB")
    for crowd in crowds:
        crowd.end()
    yield at_most("database", service.database_size(), 32, "MB")
    yield at_most("an inventory takes", service.take_inventory(), 20, "s")
    yield settled(service)
    yield from siege.aftermath(service)


def joins(service):
    before = service.sessions()
    service.add_user(21)
    return until(lambda: service.sessions() > before, JOINING)


def idle(descriptors):
    def run(siege):
        service = siege.service(descriptors=descriptors)
        reader = SlowReader(service.add_user(20, subprocess.PIPE).stdout, b"x", 1e6)
        until(lambda: service.sessions() == 1, 10)
        crowd = service.attack("idle")
        yield from siege.under_load(service, 2)
        code, _, taken = service.run("message", "xxxxx")
        yield yes("`message` works", code == 0)
        yield at_most("it takes", taken, ANSWER, "s")
        yield yes("the message is shown", until(lambda: reader.count == 5, 10) is not None)
        yield at_most("an inventory takes", service.take_inventory(), 20, "s")
        yield exactly("files of the outbox that do not open", len(service.damaged_files()), 0)
        yield at_most("a ninth user joins after", joins(service), JOINING, "s")
        crowd.end()
        used = service.open_descriptors()
        crowd = service.attack("idle once", users=4, connections=8)
        yield at_most("idle connections are closed after",
                      until(lambda: service.open_descriptors() <= used, JOINING), JOINING, "s")
        crowd.end()
        yield from siege.aftermath(service)
    return run


attack("8 users hold 32 connections each without joining", "root's `status`, `message` and `notify` work; who does "
       "not join in time is closed, and a ninth user gets in")(idle((1024, 4096)))
attack("the same, and the service may have only 256 descriptors, as launchd gives it",
       "the same", is_short=False)(idle((256, 256)))


@attack("SIGKILL for the service while 8 users send network drives, three times",
        "the next start serves, the user's session is back within 10 s, the database and the outbox are whole")
def killed(siege):
    service = siege.service()
    service.add_user(20)
    crowd = service.attack("drives", connections=4)
    for _ in range(3):
        time.sleep(max(1, siege.seconds / 6))
        service.kill()
        service.start()
    crowd.end()
    yield at_most("session back after", until(lambda: service.sessions() == 1, 20), 10, "s")
    yield at_most("an inventory takes", service.take_inventory(), 20, "s")
    yield exactly("files of the outbox that do not open", len(service.damaged_files()), 0)
    yield yes("the database is whole", service.database_is_whole())
    yield from siege.aftermath(service)
