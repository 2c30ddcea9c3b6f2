"""Attacks by full disks, and by a machine that can be written to nowhere else."""

import errno
import subprocess

import namespaces
from agent import until
from siege import at_most, attack


def fill(folder, left):
    """Fills the disk of a folder except for some bytes."""
    hog = folder / "hog"
    with open(hog, "wb", buffering=0) as file:
        try:
            while file.write(bytes(4096)):
                pass
        except OSError as error:
            if error.errno != errno.ENOSPC:
                raise
        file.truncate(max(0, file.tell() - left))
    return hog


@attack("the disk of the data folder is full, or gets full during an inventory; then there is space",
        "the next inventory succeeds, and the outbox holds whole files only")
def full_disk(siege):
    disk = siege.folder / "data"
    namespaces.make_disk(disk, "24m")
    service = siege.service(data=disk)
    until(service.outbox, 20)
    damaged = failed = 0
    levels = (0, 65536, 262144) if siege.is_short else (0, 4096, 65536, 131072, 262144, 600_000)
    for left in levels:
        service.forget_inventory()
        hog = fill(disk, left)
        service.take_inventory(0.7)
        damaged += sum(service.run("open", file)[0] != 0 for file in service.outbox())
        hog.unlink()
        service.forget_inventory()
        failed += service.take_inventory() is None
    yield at_most("damaged files", damaged + service.damaged(), 0)
    yield at_most("next inventories that failed", failed, 0)
    yield from siege.aftermath(service)
    service.end(subprocess.Popen.kill)
    subprocess.run(["umount", "--lazy", disk], check=True)


@attack("every other folder is read-only, those of temporary files too", "the database is created, inventories succeed")
def read_only(siege):
    for folder in namespaces.SCRATCH:
        namespaces.mount("-o", "remount,ro", folder)
    try:
        service = siege.service()
        yield at_most("the first inventory took", until(service.outbox, 20), 10, "s")
        service.forget_inventory()
        yield at_most("the second", service.take_inventory(), 10, "s")
        yield from siege.aftermath(service)
    finally:
        for folder in namespaces.SCRATCH:
            namespaces.mount("-o", "remount,rw", folder)
