#!/usr/bin/env python3
"""Time and peak memory of a whole incremental inventory of a machine with many packages.

Makes a recorded machine with a package database, takes a total inventory of it, changes one
package in a hundred, turns their order round, which is the worst case of the comparison, and takes
the incremental one. Usage: incremental-run.py AGENT [PACKAGES]
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile


def package(number, version):
    return (
        f"Package: signal-analysis-{number}\nStatus: install ok installed\nPriority: optional\n"
        f"Section: science\nInstalled-Size: {1000 + number}\n"
        "Maintainer: Makers of Software <packages@example.com>\nArchitecture: amd64\n"
        f"Version: {version}\nDescription: reads, filters and plots signals\n"
        f" Of up to {number} channels, from files and from devices.\n"
        f"Homepage: https://software.example.com/{number}\n\n")


def write_packages(machine, packages, changed):
    status = machine / "root/var/lib/dpkg/status"
    status.parent.mkdir(parents=True, exist_ok=True)
    numbers = range(packages)
    with status.open("w") as file:
        for number in reversed(numbers) if changed else numbers:
            isNew = changed and number % 100 == 0
            file.write(package(number, "2.0" if isNew else f"1.{number}"))


def run(agent, data, machine, *words):
    """The report of one inventory, and its peak memory and processor time."""
    process = subprocess.Popen(
        [agent, "--data", data, "--machine", machine, "inventory", "--json", *words],
        stdout=subprocess.PIPE)
    output = process.stdout.read()
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit("incremental-run: the inventory failed")
    return json.loads(output), usage


def main():
    agent = sys.argv[1]
    packages = int(sys.argv[2]) if len(sys.argv) > 2 else 8192
    with tempfile.TemporaryDirectory() as folder:
        machine = pathlib.Path(folder) / "machine"
        (machine / "bin").mkdir(parents=True)
        data = pathlib.Path(folder) / "data"
        for changed, words in ((False, []), (True, ["--incremental"])):
            write_packages(machine, packages, changed)
            report, usage = run(agent, data, machine, *words)
        if report["kind"] != "incremental":
            sys.exit("incremental-run: not incremental: " + report["fallback"])
        size = next((data / "previous").iterdir()).stat().st_size
        peak = usage.ru_maxrss * 1024
        print(f"packages:        {report['records']['software']}")
        print(f"full document:   {size / 1e6:.1f} MB")
        print(f"incremental run: {usage.ru_utime + usage.ru_stime:.2f} s of processor time")
        print(f"peak memory:     {peak / 1e6:.1f} MB, {peak / size:.1f} times the document")


main()
