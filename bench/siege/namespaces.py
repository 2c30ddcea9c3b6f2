"""A place of its own for the siege: namespaces in which only a few memory disks can be written to."""

import fcntl
import os
import pathlib
import shutil
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
        return "only root may make namespaces and become other users"
    if subprocess.run([*UNSHARE, "true"], capture_output=True).returncode != 0:
        return "this account may not make namespaces"
    return ""


def mount(*words):
    return subprocess.run(["mount", *map(str, words)], capture_output=True, text=True)


def unmount(folder):
    subprocess.run(["umount", "--lazy", folder], check=True)


def make_disk(folder, size, *options):
    folder.mkdir(parents=True, exist_ok=True)
    if mount("-t", "tmpfs", "-o", ",".join([f"size={size}", "mode=0755", *options]), "siege", folder).returncode:
        sys.exit(f"siege: no disk can be mounted at {folder}")


def furnish(build, sources, machine):
    """Makes the memory disks, and everything else read-only. Users see the programs below PLACE."""
    make_disk(PLACE, "4g")
    for name, folder in ("build", build), ("siege", sources), ("machine", machine):
        (PLACE / name).mkdir()
        if mount("--bind", folder, PLACE / name).returncode:
            sys.exit(f"siege: {folder} cannot be shown to the users")
    for folder in SCRATCH:
        make_disk(folder, "256m")
        folder.chmod(0o1777)
    with open("/proc/self/mounts") as mounts:
        points = [line.split()[1] for line in mounts]
    kept = {str(folder) for folder in [PLACE, *SCRATCH]}
    for point in points:
        if point not in kept and not point.startswith(("/proc", "/sys", "/dev")):
            mount("-o", "remount,bind,ro", point)
    start_loopback()
    os.chdir(PLACE)


def start_loopback():
    SIOCSIFFLAGS, IFF_UP = 0x8914, 1
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as any_socket:
        fcntl.ioctl(any_socket, SIOCSIFFLAGS, struct.pack("16sh", b"lo", IFF_UP))


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


def scratch_files():
    """What anyone has left in the folders of temporary files."""
    return sorted(str(path) for folder in SCRATCH for path in folder.rglob("*"))


def clean_scratch():
    for folder in SCRATCH:
        for path in folder.iterdir():
            shutil.rmtree(path) if path.is_dir() else path.unlink()
