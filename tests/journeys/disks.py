"""A disk that comes and goes, seen by one journey alone."""

import ctypes
import os
import subprocess

from harness import expect, wait_until

_CLONE_NEWNS = 0x20000

can_mount = os.geteuid() == 0


class Disk:
    """A file system of its own where removable disks are. Its mounts end with the process of the journey, however
    that ends."""

    def __init__(self, desktop, make=("mkfs.ext4", "-q"), megabytes=16):
        libc = ctypes.CDLL(None, use_errno=True)
        expect("this process has its own mounts", libc.unshare(_CLONE_NEWNS) == 0)
        self._run("mount", "--make-rprivate", "/")
        self._run("mount", "-t", "tmpfs", "none", "/media")
        self._image = os.path.join(desktop.scratch, "disk.img")
        with open(self._image, "wb") as file:
            file.truncate(megabytes << 20)
        self._run(*make, self._image)
        self.point = os.path.join("/media", "someone", "DISK")

    def _run(self, *command):
        subprocess.run(command, check=True, capture_output=True)

    def connect(self):
        os.makedirs(self.point)
        self._run("mount", "-o", "loop", self._image, self.point)

    def disconnect(self):
        # Plainly: a watched folder must not keep its disk busy, but for the moment in which a new picture is read.
        wait_until("the disk is let go", self._is_unmounted)
        os.rmdir(self.point)

    def _is_unmounted(self):
        return subprocess.run(["umount", self.point], capture_output=True, check=False).returncode == 0

    def pull_out(self):
        """Also while it is in use."""
        self._run("umount", "--lazy", self.point)
        os.rmdir(self.point)
