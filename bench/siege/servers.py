"""Attacks by the server: answers that stall, never end or are too many."""

import subprocess

from agent import SlowReader, until, until_quiet
from server import compact
from siege import PEAK
from table import at_most, attack, exactly, yes

UNKNOWN = 20_000


def stalling(mode):
    def run(siege):
        server = siege.server()
        server.mode = mode
        service = siege.served(server, survey={"macos": True, "windows": True, "linux": True})
        service.forget_peak()
        yield yes("the server was asked", until(lambda: server.reached, 15) is not None)
        readers = [SlowReader(service.add_user(20 + user, subprocess.PIPE).stdout, b"x", 1e6) for user in range(4)]
        yield at_most("4 users have joined after", until(lambda: service.sessions() == 4, 10), 10, "s")
        service.run("message", "xxxxx")
        shown = lambda: all(reader.count == 5 for reader in readers)
        yield at_most("a message is shown after", until(shown, 20), 10, "s")
        yield at_most("an inventory takes", service.take_inventory(), 20, "s")
        yield from siege.under_load(service)
        yield at_most("memory", service.peak(), PEAK, "MB")
        server.mode = "well"
        server.give("later", "/bin/true")
        # The agent waits longer after each failure.
        yield at_most("after its end a task is done after", until(lambda: 2 in server.status_of("later"), 60), 45, "s")
        yield from siege.aftermath(service)
    return run


for place, tried in {"connect": "accepts connections and says nothing",
                     "headers": "answers no request",
                     "body": "sends a byte of its answer every 0.2 s"}.items():
    attack(f"the server {tried}, and 4 users join", "messages and inventories go on; work goes on after it",
           is_short=place == "headers")(stalling(place))
for place in "headers", "body":
    attack(f"the server sends {place} without end", "the same", is_short=False)(stalling("endless " + place))


@attack("an answer of 1 MiB with 20,000 tasks of an unknown code", "2 s of processor time, 10 MB written, "
        "a bounded log")
def unknown_tasks(siege):
    server = siege.server()
    service = siege.served(server)
    until(lambda: server.asked, 15)
    tasks = [{"identifier": f"u{task}", "code": 9, "requestId": str(task)} for task in range(UNKNOWN)]
    yield at_most("bytes of the answer", len(compact({"tasks": tasks})), 1 << 20)
    before, written, lines = service.processor(), service.written(), service.log_lines()
    server.asked, server.tasks = 0, tasks
    yield yes("the answer was fetched", until(lambda: server.asked, 15) is not None)
    server.tasks = []
    until_quiet(service.processor)
    yield at_most("processor time", service.processor() - before, 2, "s")
    yield at_most("written", service.written() - written, 10, "MB")
    yield at_most("lines in the log", service.log_lines() - lines, 200)
    yield from siege.aftermath(service)
