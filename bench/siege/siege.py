"""What the attacks share: their table, their figures, and what is checked after each of them."""

import collections
import shutil
import time

import namespaces
from agent import Service, processes, until
from server import ManagementServer

# Megabytes. A service needs about 35; all users together may make it use 64 more, and requests of root some.
PEAK, SETTLED = 120, 60
ANSWER = 5  # seconds for a command of root
# What the collectors leave in folders of temporary files.
LEFT_BY_TOOLS = {"/tmp/shareList", "/tmp/propertyShare", "/tmp/diskInfo.plist"}

Attack = collections.namedtuple("Attack", "tried must_hold run is_short")
Figure = collections.namedtuple("Figure", "text holds")
ATTACKS = []


def attack(tried, must_hold, is_short=True):
    """Registers a function that gets the `Siege` and yields the figures of an attack."""
    return lambda run: ATTACKS.append(Attack(tried, must_hold, run, is_short))


def at_most(what, value, limit, unit=""):
    """A figure and its limit. None stands for something that did not happen, which is no figure."""
    number = lambda value: f"{value:,.0f}" if abs(value) >= 100 or value == int(value) else f"{value:.1f}"
    known = "never" if value is None else number(value)
    return holds(f"{what} {known} (limit {number(limit)}{unit and ' ' + unit})", value is not None and value <= limit)


def holds(what, does):
    return Figure(what if does else f"**{what}**", bool(does))


class Siege:
    def __init__(self, seconds, is_short):
        self.seconds = seconds  # how long a load lasts
        self.is_short = is_short
        self.folder = namespaces.PLACE / "attack"

    def service(self, configuration=None, **options):
        return Service(self.folder, configuration, **options)

    def server(self):
        return ManagementServer(self.folder)

    def served(self, server, **more):
        """A service that asks the server for tasks every two seconds."""
        return self.service({"server": server.configuration(),
                             "pendingTasksSchedule": {"periodSeconds": 2, "next": 1}, **more})

    def under_load(self, service):
        """Has root ask for the status again and again."""
        longest, unanswered, asked, end = 0, 0, 0, time.monotonic() + self.seconds
        while time.monotonic() < end:
            agent, taken = service.status()
            longest, unanswered, asked = max(longest, taken), unanswered + (agent is None), asked + 1
            time.sleep(0.1)
        yield at_most("`status` took", longest, ANSWER, "s")
        yield holds(f"{asked - unanswered} of {asked} were answered", not unanswered)

    def settled(self, service):
        """The memory goes back after the users have left."""
        until(lambda: service.memory() <= SETTLED, 15)
        return at_most("after it", service.memory(), SETTLED, "MB")

    def serve(self, service):
        """A user's message and an inventory do not wait for what goes on."""
        before, reader = service.sessions(), service.add_user(20)
        until(lambda: service.sessions() > before, 10)
        service.run("message", "xxxxx")
        yield at_most("a message was shown after", until(lambda: reader.count == 5, 20), ANSWER, "s")
        service.forget_inventory()
        yield at_most("an inventory took", service.take_inventory(), 10, "s")

    def aftermath(self, service):
        """What must hold of every service soon after its attack."""
        def left():
            sessions = service.sessions()  # first: those that end meanwhile would count as left
            return max(0, service.open_descriptors() - service.first_descriptors - sessions)
        yield holds("the service runs" if service.runs() else "the service has ended", service.runs())
        if service.runs():
            until(lambda: left() <= 8, 15)
            yield at_most("more descriptors", left(), 8)
            yield at_most("ended children", sum(p == service.process.pid and s == "Z" for _, s, p in processes()), 0)

    def carry_out(self, attack):
        self.folder.mkdir()
        figures = []
        try:
            figures += attack.run(self)
        except Exception as error:  # one attack must not end the others
            figures.append(holds(f"ended by {type(error).__name__}: {error}", False))
        namespaces.end_all_others()
        left = [path for path in self.folder.iterdir()
                if not path.name.startswith(("data", "user", "agent.", "server."))]
        for folder in namespaces.SCRATCH:
            for path in folder.iterdir():
                # A recorded machine's process that is killed leaves its folder of filters.
                known = str(path) in LEFT_BY_TOOLS or path.name.startswith("norvik-filters-")
                left += [] if known else [path]
                shutil.rmtree(path) if path.is_dir() else path.unlink()
        figures.append(at_most("files elsewhere", len(left), 0))
        shutil.rmtree(self.folder)
        held = all(figure.holds for figure in figures)
        print(f"| {attack.tried} | {attack.must_hold} | {'; '.join(figure.text for figure in figures)} "
              f"| {'yes' if held else '**no**'} |", flush=True)
        return held
