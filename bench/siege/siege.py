"""What the attacks share: folders, services, the server, and what is checked after each attack."""

import itertools
import shutil
import time

import namespaces
from agent import Service
from namespaces import PLACE
from server import ManagementServer
from table import at_most, exactly, yes

# Megabytes. A service needs about 30; all users together may make it use 64 more.
PEAK, SETTLED = 110, 60
ANSWER = 5  # seconds for a command of root
DOCUMENTED = {"/tmp/shareList", "/tmp/propertyShare", "/tmp/diskInfo.plist"}


class Siege:
    def __init__(self, seconds, is_short):
        self.seconds = seconds  # how long a load lasts
        self.is_short = is_short
        self.numbers = itertools.count(1)
        self.services = []
        self.folders = []
        self.ends = []

    def folder(self):
        folder = PLACE / f"attack{next(self.numbers)}"
        folder.mkdir()
        self.folders.append(folder)
        return folder

    def service(self, configuration=None, **options):
        service = Service(self.folder(), configuration, **options)
        self.services.append(service)
        service.start()
        service.first_descriptors = service.open_descriptors()
        return service

    def server(self):
        server = ManagementServer(self.folder())
        self.ends.append(server.end)
        return server

    def served(self, server, **more):
        """A service that asks the server for tasks every two seconds."""
        return self.service({"server": server.configuration(),
                             "pendingTasksSchedule": {"periodSeconds": 2, "next": 1}, **more})

    def under_load(self, service, seconds=None):
        """Has root ask for the status again and again; the figures of its answers."""
        longest, unanswered, end = 0, 0, time.monotonic() + (seconds or self.seconds)
        while time.monotonic() < end:
            status, taken = service.status()
            longest = max(longest, taken)
            unanswered += status["agent"] is None
            time.sleep(0.1)
        yield at_most("`status` takes", longest, ANSWER, "s")
        yield exactly("unanswered", unanswered, 0)

    def aftermath(self, service):
        """What must hold of every service after its attack."""
        yield yes("the service runs", service.runs())
        if not service.runs():
            return
        time.sleep(1)
        yield at_most("descriptors left open", max(0, service.open_descriptors() - service.first_descriptors), 4)
        yield exactly("ended children not awaited", service.children("Z"), 0)

    def clean(self):
        for service in self.services:
            service.end()
        for end in self.ends:
            end()
        namespaces.end_all_others()
        others = [name for name in namespaces.scratch_files() if name not in DOCUMENTED]
        others += [str(path) for folder in self.folders for path in folder.glob("*") if self.is_foreign(folder, path)]
        for folder in self.folders:
            shutil.rmtree(folder, ignore_errors=True)
        namespaces.clean_scratch()
        self.services, self.folders, self.ends = [], [], []
        return others

    @staticmethod
    def is_foreign(folder, path):
        return not path.name.startswith(("data", "user", "agent.sock", "server."))
