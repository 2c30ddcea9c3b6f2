"""Attacks by programs: tasks that hang or print without end, and tools of the system that do."""

import shutil
import subprocess

from agent import processes, until
from namespaces import PLACE
from siege import PEAK, at_most, attack, holds

HANGING = 4  # more than enough for all threads of the agent
STOP = 5 + 2  # seconds, with what the running step needs
TOOL_LIMIT = 2  # seconds
TOOL_CALLS = 12  # of one tool in one inventory, at most


def stop(service):
    return at_most("the stop took", service.end(subprocess.Popen.terminate), STOP, "s")


def hanging(command, ends):
    def run(siege):
        server = siege.server()
        for task in range(HANGING):
            server.give(f"hang{task}", command)
        service = siege.served(server)
        started = lambda: sum(server.has(f"hang{task}", 7) for task in range(HANGING))
        until(lambda: started() == HANGING, 15)
        yield holds(f"{started()} of {HANGING} tasks have started", started() == HANGING)
        if ends:
            server.give("later", "/bin/true")
            yield at_most("a later task ended after", until(lambda: server.has("later", 2), 20), 10, "s")
        yield from siege.serve(service)
        yield from siege.under_load(service)
        yield stop(service)
        if not ends:
            yield holds("the log names what is waited for", service.log_lines(r"1013 .*(did not end|waits for)"))
    return run


attack("4 tasks leave a process that holds their output: `sh -c 'sleep 100000 & echo started'`", "later tasks, "
       "messages and inventories go on; a stop takes 5 s", is_short=False)(
           hanging("sh -c 'sleep 100000 & echo started'", True))
attack("4 tasks hang: `sleep 100000`", "messages and inventories go on; a stop takes 5 s, and the log names what it "
       "waits for")(hanging("sleep 100000", False))


@attack("a task prints without end: action 1013 with `yes`", "bounded memory, answers for root; a stop takes 5 s",
        is_short=False)
def endless_task(siege):
    server = siege.server()
    server.give("flood", "yes")
    service = siege.served(server)
    until(lambda: server.has("flood", 7), 15)
    yield from siege.under_load(service)
    yield holds("the task runs", running("yes"))
    yield at_most("memory", service.peak(), PEAK, "MB")
    yield stop(service)


def running(*programs):
    return sum(name in programs and state != "Z" for name, state, _ in processes())


def odd_tool(script, peak):
    """A recorded Mac whose system_profiler is another program."""
    def run(siege):
        machine = siege.folder / "data-of-a-mac"
        shutil.copytree(PLACE / "machine", machine, symlinks=True)
        tool = machine / "bin/system_profiler"
        tool.unlink()
        tool.write_text("#!/bin/sh\n" + script)
        tool.chmod(0o755)
        service = siege.service({"toolTimeLimitSeconds": TOOL_LIMIT}, options=["--machine", str(machine)])
        took = until(service.outbox, 120)
        yield at_most("the inventory took", took, TOOL_CALLS * (TOOL_LIMIT + 2), "s")
        yield holds("a warning names the tool", service.log_lines(r"\[3\].*system_profiler.*it (ran|printed) too"))
        yield at_most("memory", service.peak(), peak, "MB")
        yield at_most("tools left running", running("sleep", "yes"), 0)
        yield from siege.aftermath(service)
    return run


HANGS = 'case "$*" in *Displays*) sleep 100000 & sleep 100000 ;; *) exit 1 ;; esac\n'
attack("a tool of the system hangs, with a process that it started; `toolTimeLimitSeconds` is 2",
       "the inventory goes on without it, nothing of it is left running", is_short=False)(odd_tool(HANGS, PEAK))
attack("a tool of the system prints without end", "64 MiB of it are read; the inventory goes on without it",
       is_short=False)(odd_tool("exec /usr/bin/yes\n", PEAK + 2 * 64))


@attack("a task ends the agent at each start, as long as the server lists it: action 1012 with `id=abc`",
        "it is not started a third time, and the server learns it as failed", is_short=False)
def deadly_task(siege):
    server = siege.server()
    server.give("deadly", "abc", 1012)
    service = siege.served(server)
    deaths = 0
    while deaths < 4 and until(lambda: not service.runs(), 6) is not None:
        deaths += 1
        service.start()
    yield at_most("deaths", deaths, 2)
    yield at_most("the server had status 8 after", until(lambda: server.has("deadly", 8), 15), 15, "s")
    yield from siege.aftermath(service)
