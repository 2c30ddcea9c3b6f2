"""Attacks by full disks, and by a machine that may be written to nowhere else."""

import errno

import namespaces
from agent import until
from table import at_most, attack, exactly, yes

SIZE = 24 << 20


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


@attack("the disk of the data folder is full, or gets full during an inventory, at six levels; then there is space",
        "the next inventory succeeds, and the outbox holds whole files only")
def full_disk(siege):
    disk = siege.folder() / "data"
    namespaces.make_disk(disk, SIZE)
    service = siege.service(disk=disk)
    until(service.outbox, 20)
    damaged = failed = 0
    for left in 0, 4096, 65536, 131072, 262144, 600_000:
        service.forget_inventory()
        hog = fill(disk, left)
        service.take_inventory(0.7, forget=False)
        damaged += len(service.damaged_files())
        hog.unlink()
        failed += service.take_inventory() is None
    yield exactly("files of the outbox that do not open", damaged, 0)
    yield exactly("next inventories that failed", failed, 0)
    yield yes("the database is whole", service.database_is_whole())
    yield from siege.aftermath(service)
    service.end()
    namespaces.unmount(disk)


@attack("every other folder is read-only, also those of temporary files", "the database is created, an inventory "
        "succeeds")
def read_only(siege):
    for folder in namespaces.SCRATCH:
        namespaces.mount("-o", "remount,ro", folder)
    try:
        service = siege.service()
        yield at_most("first inventory after", until(service.outbox, 20), 10, "s")
        yield yes("a second inventory succeeds", service.take_inventory() is not None)
        yield from siege.aftermath(service)
    finally:
        for folder in namespaces.SCRATCH:
            namespaces.mount("-o", "remount,rw", folder)
