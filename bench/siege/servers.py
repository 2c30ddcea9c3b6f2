"""Attacks by the server: answers that stall, never end or hold too much."""

import time

from agent import until
from server import compact
from siege import PEAK, at_most, attack, holds

UNKNOWN = 20_000


def stalling(mode):
    def run(siege):
        server = siege.server()
        server.mode = mode
        service = siege.served(server, survey={"macos": True, "windows": True, "linux": True})
        service.seal_for_server()
        yield holds("the server was asked", until(lambda: server.reached, 15) is not None)
        for user in range(4):
            service.add_user(30 + user)
        until(lambda: service.sessions() == 4, 10)
        yield from siege.serve(service)
        yield from siege.under_load(service)
        yield at_most("memory", service.peak(), PEAK, "MB")
        server.mode = "well"
        server.give("later", "/bin/true")
        yield at_most("a task ended after", until(lambda: server.has("later", 2), 20), 10, "s")
        if not siege.is_short:
            # The agent waits longer after each failure.
            yield at_most("a file was delivered after", until(lambda: server.files, 90), 60, "s")
        yield from siege.aftermath(service)
    return run


for place, tried in {"connect": "accepts connections and says nothing", "headers": "answers no request",
                     "body": "sends a byte of an answer every 0.2 s", "endless headers": "sends headers without end",
                     "endless body": "sends a body without end"}.items():
    attack(f"the server {tried}, and 5 users join", "messages and inventories go on; afterwards tasks and deliveries do",
           is_short=place == "headers")(stalling(place))


@attack("an answer of 1 MiB with 20,000 tasks of an unknown code", "2 s of processor time, 10 MB written, a bounded log")
def unknown_tasks(siege):
    server = siege.server()
    service = siege.served(server)
    until(lambda: server.asked, 15)
    tasks = [{"identifier": f"u{task}", "code": 9, "requestId": str(task)} for task in range(UNKNOWN)]
    yield at_most("bytes of the answer", len(compact({"tasks": tasks})), 1 << 20)
    before, written, lines = service.processor(), service.written(), service.log_lines()
    server.asked, server.tasks = 0, tasks
    yield holds("the answer was fetched", until(lambda: server.asked, 15) is not None)
    server.tasks = []
    last, end = None, time.monotonic() + 60
    while last != (last := service.processor()) and time.monotonic() < end:
        time.sleep(2)
    yield at_most("processor time", service.processor() - before, 2, "s")
    yield at_most("written", service.written() - written, 10, "MB")
    yield at_most("lines in the log", service.log_lines() - lines, 200)
    yield from siege.aftermath(service)
