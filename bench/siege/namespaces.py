"""A place of its own for the siege: namespaces in which only a few memory disks can be written to."""

import fcntl
import os
import pathlib
import signal
import socket
import struct
import subprocess
import sys

UNSHARE = ["unshare", "--mount", "--pid", "--net", "--ipc", "--uts", "--fork", "--kill-child", "--mount-proc",
           "--propagation", "private"]
PLACE = pathlib.Path("/mnt")
SCRATCH = [pathlib.Path(folder) for folder in ("/tmp", "/var/tmp", "/dev/shm")]


def reason_not_to():
    """Why this system cannot be besieged; empty if it can."""
    if sys.platform != "linux":
        return "this system has no namespaces"
    if os.geteuid() != 0:
        return "only root can make namespaces and become other users"
    if subprocess.run([*UNSHARE, "true"], capture_output=True).returncode != 0:
        return "this account may not make namespaces"
    return ""


def mount(*words, check=True):
    subprocess.run(["mount", *map(str, words)], capture_output=True, check=check)


def make_disk(folder, size, mode="0755"):
    folder.mkdir(parents=True, exist_ok=True)
    mount("-t", "tmpfs", "-o", f"size={size},mode={mode}", "siege", folder)


def furnish(sources):
    """Shows folders to all users, by their names in PLACE, and makes everything but memory disks read-only."""
    make_disk(PLACE, "4g")
    for name, folder in sources.items():
        (PLACE / name).mkdir()
        mount("--bind", folder, PLACE / name)
    for folder in SCRATCH:
        make_disk(folder, "256m", "1777")
    kept = {str(folder) for folder in [PLACE, *SCRATCH]}
    with open("/proc/self/mounts") as mounts:
        for point in [line.split()[1] for line in mounts]:
            if point not in kept and not point.startswith(("/proc", "/sys", "/dev")):
                # Mounts below the memory disks cannot be reached any more.
                mount("-o", "remount,bind,ro", point, check=point == "/")
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:  # the loopback interface goes up
        SIOCSIFFLAGS, IFF_UP = 0x8914, 1
        fcntl.ioctl(any_socket, SIOCSIFFLAGS, struct.pack("16sh", b"lo", IFF_UP))
    os.chdir(PLACE)


def end_all_others():
    """Kills what runs in the namespace beside this process, as programs that tasks have started."""
    if os.getpid() != 1:
        sys.exit("siege: this is not the first process of a namespace")
    try:
        os.kill(-1, signal.SIGKILL)
        while True:
            os.waitpid(-1, 0)
    except (ProcessLookupError, ChildProcessError):
        pass
