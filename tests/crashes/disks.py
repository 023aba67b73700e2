"""File systems for crashes, seen by this process alone and gone with it."""

import contextlib
import ctypes
import os
import shutil
import subprocess
import tempfile

MAKE = {"ext4": ["mkfs.ext4", "-q", "-F", "-b", "4096", "-I", "256"], "btrfs": ["mkfs.btrfs", "-q", "-f"],
        "xfs": ["mkfs.xfs", "-q", "-f"]}
SIZE = {"ext4": 64 << 20, "btrfs": 128 << 20, "xfs": 300 << 20}
_CLONE_NEWNS = 0x20000
_scratch = None

can_mount = os.geteuid() == 0


def run(*command):
    path = os.environ["PATH"] + ":/usr/sbin:/sbin"
    done = subprocess.run(command, env={**os.environ, "PATH": path}, capture_output=True, text=True)
    if done.returncode:
        raise RuntimeError(f"{' '.join(command)}: {done.stderr}")
    return done.stdout


def scratch():
    """A folder in memory where there is one, for what is not to be tested."""
    global _scratch
    if _scratch is None:
        memory = "/dev/shm" if os.path.isdir("/dev/shm") else None
        _scratch = tempfile.mkdtemp(prefix="quillmere-crashes-", dir=memory)
    return _scratch


@contextlib.contextmanager
def private_mounts():
    """Whatever is mounted in here is gone with the process; what it lay on is removed."""
    if can_mount:
        if ctypes.CDLL(None, use_errno=True).unshare(_CLONE_NEWNS) != 0:
            raise RuntimeError("no mounts of its own")
        run("mount", "--make-rprivate", "/")
    try:
        yield
    finally:
        shutil.rmtree(scratch(), ignore_errors=True)


def make_image(kind, path):
    with open(path, "wb") as file:
        file.truncate(SIZE[kind])
    run(*MAKE[kind], path)


def copy_sparsely(source, destination):
    run("cp", "--sparse=always", source, destination)


def mount_image(image, point, *options):
    os.makedirs(point, exist_ok=True)
    run("mount", "-o", ",".join(["loop", *options]), image, point)


@contextlib.contextmanager
def mounted():
    """Name, place, and another disk of each file system."""
    with private_mounts():
        if not can_mount:
            with tempfile.TemporaryDirectory() as folder:
                yield [("temporary files", folder, scratch())]
            return
        points = []
        try:
            yield list(_mount_each(points))
        finally:
            for point in reversed(points):
                run("umount", point)


def _mount_each(points):
    other = os.path.join(scratch(), "other")
    os.makedirs(other)
    run("mount", "-t", "tmpfs", "none", other)
    points.append(other)
    for kind in ("ext4", "btrfs", "tmpfs"):
        point = os.path.join(scratch(), kind)
        if kind == "tmpfs":
            os.makedirs(point)
            run("mount", "-t", "tmpfs", "none", point)
        else:
            make_image(kind, point + ".image")
            mount_image(point + ".image", point)
        points.append(point)
        yield kind, point, other
