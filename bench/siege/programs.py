"""Attacks by programs: tasks that hang or print without end, and tools of the system that do."""

import pathlib
import shutil
import subprocess

from agent import SlowReader, until
from namespaces import PLACE
from siege import ANSWER, PEAK
from table import at_most, attack, exactly, yes

HANGING = 4  # more than enough for all threads of the agent
STOP = 5  # seconds, and what the running step needs
TOOL_LIMIT = 2  # seconds
TOOLS = 12  # calls of the tool that hangs in one inventory, at most


def everyone_is_served(siege, service, server):
    """A later task, a message and an inventory do not wait for what hangs."""
    reader = SlowReader(service.add_user(20, subprocess.PIPE).stdout, b"x", 1e6)
    until(lambda: service.sessions() == 1, 10)
    service.run("message", "xxxxx")
    yield yes("a message is shown", until(lambda: reader.count == 5, 10) is not None)
    yield at_most("an inventory takes", service.take_inventory(), 20, "s")


def hanging(command, later):
    def run(siege):
        server = siege.server()
        for task in range(HANGING):
            server.give(f"hang{task}", command)
        service = siege.served(server)
        until(lambda: len(server.states) >= HANGING, 15)
        yield exactly("hanging tasks started", sum(status == 7 for _, status in server.states), HANGING)
        if later:
            server.give("later", "/bin/true")
            yield at_most("a later task ends after", until(lambda: 2 in server.status_of("later"), 20), 10, "s")
        yield from everyone_is_served(siege, service, server)
        yield from siege.under_load(service, 1)
        yield exactly("ended children not awaited", service.children("Z"), 0)
        yield at_most("stop takes", service.stop(), STOP + 2, "s")
        yield yes("the log says what a stop waits for", later or service.log_lines(r"1013 .*(did not end|waits for)"))
    return run


attack("4 tasks leave a process that holds their output: `sh -c 'sleep 100000 & echo started'`",
       "a later task ends, a message and an inventory go on; a stop takes 5 s at most")(
           hanging("sh -c 'sleep 100000 & echo started'", True))
attack("4 tasks hang themselves: `sleep 100000`", "messages and inventories go on; a stop takes 5 s at most, and "
       "the log says what for")(hanging("sleep 100000", False))


@attack("a task prints without end: action 1013 with `yes`", "bounded memory, answers for root")
def endless_task(siege):
    server = siege.server()
    server.give("flood", "yes")
    service = siege.served(server)
    until(lambda: server.status_of("flood"), 15)
    yield yes("the task runs", 7 in server.status_of("flood"))
    service.forget_peak()
    yield from siege.under_load(service)
    yield at_most("memory", service.peak(), PEAK, "MB")
    yield at_most("stop takes", service.stop(), STOP + 2, "s")


def machine_with(folder, script):
    """A copy of a recorded Mac whose system_profiler is another program."""
    machine = folder / "user-machine"
    shutil.copytree(PLACE / "machine", machine, symlinks=True)
    tool = machine / "bin/system_profiler"
    tool.unlink()
    tool.write_text(f"#!/bin/sh\n{script}\n")
    tool.chmod(0o755)
    return machine


def odd_tool(script, warning, peak):
    def run(siege):
        machine = machine_with(siege.folder(), script)
        service = siege.service({"toolTimeLimitSeconds": TOOL_LIMIT}, words=["--machine", str(machine)])
        service.forget_peak()
        yield at_most("first inventory after", until(service.outbox, 120), TOOLS * (TOOL_LIMIT + 2), "s")
        yield yes("a warning names the tool", service.log_lines(r"\[3\].*system_profiler.*" + warning))
        yield at_most("memory", service.peak(), peak, "MB")
        yield at_most("tools still running", running("sleep") + running("yes"), 0)
        yield from siege.aftermath(service)
    return run


def running(program):
    """The number of processes of a program, by its name in the kernel."""
    return sum(name.read_text().strip() == program for name in pathlib.Path("/proc").glob("[0-9]*/comm"))


HANGS = 'case "$*" in *Displays*) sleep 100000 & sleep 100000 ;; *) exit 1 ;; esac'
attack("a tool of the system hangs, and so does a process that it started; `toolTimeLimitSeconds` is 2",
       "the inventory goes on without it, and nothing of it is left running")(odd_tool(HANGS, "too long", PEAK))
attack("a tool of the system prints without end", "64 MiB of it are read; the inventory goes on without it",
       is_short=False)(odd_tool("exec yes", "too (much|long)", PEAK + 2 * 64))


@attack("a task ends the agent at each start: action 1012 with `id=abc`, while the server lists it",
        "it is not started a third time, and the server learns it as failed", is_short=False)
def deadly_task(siege):
    server = siege.server()
    server.give("deadly", "abc", 1012)
    service = siege.served(server)
    deaths = 0
    for _ in range(4):
        if until(lambda: not service.runs(), 6) is None:
            break
        deaths += 1
        service.start()
    yield at_most("deaths", deaths, 2)
    yield yes("the server has status 8", until(lambda: 8 in server.status_of("deadly"), 15) is not None)
    yield from siege.aftermath(service)
