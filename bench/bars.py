"""What the comparisons share: the processor time of a command, and limits of figures."""

import os
import subprocess
import sys


MISSED = 3  # exit code of a comparison with a missed limit


def usage_of(command, most_code=0, output=subprocess.DEVNULL):
    """Runs a command; what it used, of itself and the children that it waited for."""
    process = subprocess.Popen(command, stdout=output)
    _, status, usage = os.wait4(process.pid, 0)
    if not 0 <= os.waitstatus_to_exitcode(status) <= most_code:
        sys.exit(f"{os.path.basename(sys.argv[0])}: {command[0]} failed")
    return usage


def processor_seconds(command, most_code=0):
    usage = usage_of(command, most_code)
    return usage.ru_utime + usage.ru_stime


class Bars:
    """Prints each figure with its limit, and at the end how many exceeded it."""

    def __init__(self):
        self.held = []
        self.missed = []

    def line(self, name, value, bar=None, unit=""):
        """A figure without a bar is only printed."""
        if bar is None:
            print(f"{name:28} {value:8.2f}{unit}", flush=True)
            return
        (self.missed if value > bar else self.held).append(name)
        verdict = "MISSED" if value > bar else "held"
        print(f"{name:28} {value:8.2f}{unit}  at most {bar:.2f}  {verdict}", flush=True)

    def end(self):
        print(f"{len(self.held)} bars held, {len(self.missed)} missed"
              + "".join(f"\n  missed: {name}" for name in self.missed))
        return MISSED if self.missed else 0
