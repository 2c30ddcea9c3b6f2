"""A PostgreSQL cluster of its own in a folder, on a local socket."""

import contextlib
import os
import pathlib
import shutil
import subprocess

ACCOUNT = "postgres"  # of Debian's package; the server does not run as root


def as_account(*command):
    return ["runuser", "-u", ACCOUNT, "--", *map(str, command)] if os.geteuid() == 0 else [*map(str, command)]


@contextlib.contextmanager
def cluster(folder):
    """Yields a function that creates an empty database and returns its address."""
    places = sorted(pathlib.Path("/usr/lib/postgresql").glob("*/bin"), key=lambda path: int(path.parent.name))
    if not places:
        raise SystemExit("receiver-program: PostgreSQL is missing: install the package postgresql")
    programs, data = places[-1], folder / "cluster"
    data.mkdir(mode=0o700)
    if os.geteuid() == 0:
        shutil.chown(data, ACCOUNT, ACCOUNT)
    run = dict(check=True, cwd="/", stdout=subprocess.DEVNULL)
    subprocess.run(as_account(programs / "initdb", "-D", data, "-A", "trust", "-U", ACCOUNT, "-E", "UTF8",
                              "--locale=C.UTF-8", "--no-sync"), **run)
    # Durability is not what is tested here, and a shared disk is slow.
    options = f"-k {data} -c listen_addresses= -c fsync=off -c max_connections=60"
    start = as_account(programs / "pg_ctl", "-D", data, "-l", data / "log", "-o", options, "-w")
    subprocess.run([*start, "start"], **run)
    try:
        def make(name):
            subprocess.run([programs / "createdb", "-h", data, "-U", ACCOUNT, name], **run)
            return f"postgresql:///{name}?host={data}&user={ACCOUNT}"
        yield make
    finally:
        subprocess.run([*start, "-m", "immediate", "stop"], **run)
