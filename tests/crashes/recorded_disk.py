"""Disks whose writes and flushes are recorded in their order, so that each can be had as a power cut would leave it.

A disk is an image file in a file system of FUSE, with a loop device on it. A flush of the loop device arrives as an fsync.
What else is told in the meantime is recorded between them.
"""

import errno
import multiprocessing
import os
import stat
import struct
import subprocess
import time

BLOCK = 4096
PROMISES = "promises"
FLUSH, WRITE, PROMISE = range(3)
_HEADER = struct.Struct("<BBQI")  # kind, disk, place, length


def serve(images, record, point):
    """Shows the images and a file of promises at `point` until that is unmounted; runs in a process of its own."""
    import fusepy as fuse  # its own process alone needs it

    class Recorder(fuse.Operations):
        def __init__(self):
            self._files = [os.open(image, os.O_RDWR) for image in images]
            self._record = open(record, "wb", buffering=0)
            self._promised = 0

        def _disk(self, path):
            name = path.lstrip("/")
            if name == PROMISES:
                return None
            if not name.isdigit() or int(name) >= len(images):
                raise fuse.FuseOSError(errno.ENOENT)
            return int(name)

        def getattr(self, path, handle=None):
            if path == "/":
                return {"st_mode": stat.S_IFDIR | 0o755, "st_nlink": 2}
            disk = self._disk(path)
            size = self._promised if disk is None else os.fstat(self._files[disk]).st_size
            return {"st_mode": stat.S_IFREG | 0o600, "st_nlink": 1, "st_size": size}

        def read(self, path, size, offset, handle):
            disk = self._disk(path)
            return b"" if disk is None else os.pread(self._files[disk], size, offset)

        def write(self, path, data, offset, handle):
            disk = self._disk(path)
            if disk is None:
                self._write(PROMISE, 0, 0, data)
                self._promised += len(data)
            else:
                os.pwrite(self._files[disk], data, offset)
                self._write(WRITE, disk, offset, data)
            return len(data)

        def fsync(self, path, datasync, handle):
            disk = self._disk(path)
            if disk is not None:
                self._write(FLUSH, disk, 0, b"")
            return 0

        def _write(self, kind, disk, place, data):
            self._record.write(_HEADER.pack(kind, disk, place, len(data)) + data)

    fuse.FUSE(Recorder(), point, foreground=True, nothreads=True, big_writes=True, fsname="recorded")


class RecordedDisks:
    """`images` are changed, and everything that happens to them is recorded."""

    def __init__(self, images, record, point):
        os.makedirs(point, exist_ok=True)
        self._point = point
        self._server = multiprocessing.Process(target=serve, args=(images, record, point))
        self._server.start()
        began = time.monotonic()
        while not os.path.ismount(point):
            if not self._server.is_alive() or time.monotonic() - began > 10:
                raise RuntimeError("the file system of FUSE does not start")
            time.sleep(0.01)

    @property
    def promises(self):
        return os.path.join(self._point, PROMISES)

    def image(self, disk):
        return os.path.join(self._point, str(disk))

    def close(self):
        subprocess.run(["umount", self._point], check=True)
        self._server.join(10)
        if self._server.is_alive():
            self._server.kill()


class Record:
    """What was recorded, and what a cut leaves of it."""

    def __init__(self, file):
        self.entries = []
        with open(file, "rb") as source:
            data = source.read()
        at = 0
        while at < len(data):
            kind, disk, place, length = _HEADER.unpack_from(data, at)
            at += _HEADER.size
            self.entries.append((kind, disk, place, data[at:at + length]))
            at += length

    def promises(self, cut):
        """Whole ones: a line may come in two writes."""
        text = b"".join(data for kind, _, _, data in self.entries[:cut] if kind == PROMISE)
        return text.decode().split("\n")[:-1]

    def blocks(self, disk, cut, dice):
        """The blocks that a cut before the entry of this number has written to a disk: all until its last flush, and of
        each block after that the first so many of its writes."""
        safe, loose = {}, {}
        for kind, which, place, data in self.entries[:cut]:
            if which != disk or kind == PROMISE:
                continue
            if kind == FLUSH:
                for block, writes in loose.items():
                    safe[block] = writes[-1]
                loose = {}
                continue
            if place % BLOCK or len(data) % BLOCK:
                raise RuntimeError(f"a write of {len(data)} bytes at {place} is not one of blocks")
            for at in range(0, len(data), BLOCK):
                loose.setdefault((place + at) // BLOCK, []).append(data[at:at + BLOCK])
        # Nearly nothing, nearly all and everything between.
        likelihood = dice.choice([0, 0.1, 0.5, 0.9, 1])
        for block in sorted(loose):
            writes = loose[block]
            if dice.random() < likelihood:
                safe[block] = writes[dice.randrange(len(writes)) if dice.random() < 0.5 else -1]
        return safe
