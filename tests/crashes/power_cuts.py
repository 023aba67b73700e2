#!/usr/bin/python3
"""The power is cut in bursts of captures and decisions, as the disk's own writes and flushes allow it.

    power_cuts.py [COUNT [SEED]]

COUNT cuts, shared by the file systems, with the list on the disk of the screenshots and on another one. SEED, else the
clock, seeds all but when the kernel writes what. Of what was not flushed each block may or may not be written. After the
cut the list must be whole, with every decision that was told as saved, and every screenshot where the decisions put it or
in the Trash, from where it can be restored.
"""

import os
import random
import sys
import time

import disks
from oracle import Lost, expect
from player import Player
from recorded_disk import BLOCK, FLUSH, PROMISE, Record, RecordedDisks

COUNT = int(sys.argv[1]) if len(sys.argv) > 1 else 80
SEED = int(sys.argv[2]) if len(sys.argv) > 2 else int(time.time())
KINDS = [(system, is_apart) for system in ("ext4", "btrfs") for is_apart in (False, True)]
CUTS_PER_BURST = 40
STEPS = 40
CANNOT = 77  # ctest shows it as skipped


class Session:
    """One burst on two recorded disks, and cuts of it."""

    def __init__(self, kind, is_apart, dice):
        self._kind, self._is_apart, self._dice = kind, is_apart, dice
        root = disks.scratch()
        self._points = [os.path.join(root, name) for name in ("first", "second")]
        self._bases = [os.path.join(root, f"{name}.base") for name in ("first", "second")]
        self._images = [os.path.join(root, f"{name}.image") for name in ("first", "second")]
        self._record_file, self._fuse = os.path.join(root, "record"), os.path.join(root, "recorded")
        self.seed = dice.randrange(1 << 31)

    def _mount(self, images):
        if self._kind == "btrfs":
            # It takes an older copy of a disk that it has seen for a stale one.
            disks.run("btrfs", "device", "scan", "--forget")
        for image, point in zip(images, self._points):
            disks.mount_image(image, point)

    def _unmount(self):
        for point in self._points:
            disks.run("umount", point)

    def _player(self, promises):
        return Player(*self._points, promises, has_screenshots_on_second=self._is_apart)

    def play(self):
        for base in self._bases:
            disks.make_image(self._kind, base)
        self._mount(self._bases)
        self._player(os.path.join(disks.scratch(), "promises")).set_up()
        self._unmount()
        for base, image in zip(self._bases, self._images):
            disks.copy_sparsely(base, image)
        recorded = RecordedDisks(self._images, self._record_file, self._fuse)
        try:
            self._mount([recorded.image(disk) for disk in range(2)])
            burst = self._player(recorded.promises).begin_burst(self.seed, STEPS)
            expect("the burst ends well", burst.wait(120) == 0)
            self._unmount()
        finally:
            recorded.close()
        self.record = Record(self._record_file)

    def check_cut(self):
        """At any moment of the burst; more often right after a promise or a flush, when it is easiest to break."""
        entries = self.record.entries
        kind = self._dice.choice([PROMISE, PROMISE, FLUSH, None])
        moments = [number + 1 for number, entry in enumerate(entries) if kind in (None, entry[0])]
        cut = self._dice.choice(moments)
        for disk, (base, image) in enumerate(zip(self._bases, self._images)):
            disks.copy_sparsely(base, image)
            with open(image, "r+b") as file:
                for block, data in self.record.blocks(disk, cut, self._dice).items():
                    file.seek(block * BLOCK)
                    file.write(data)
        self._mount(self._images)
        try:
            player = self._player("unused")
            player.world.take(self.record.promises(cut))
            player.start()
            player.world.check()
            return len(player.world.shots)
        except Lost as lost:
            raise Lost(f"burst {self.seed}, cut before {cut} of {len(entries)}: {lost}") from lost
        finally:
            self._unmount()


def play(kind, is_apart, count, dice):
    began, cuts, shots = time.time(), 0, 0
    while cuts < count:
        session = Session(kind, is_apart, dice)
        session.play()
        for _ in range(min(CUTS_PER_BURST, count - cuts)):
            shots += session.check_cut()
            cuts += 1
    where = "the list on another disk" if is_apart else "one disk"
    print(f"{kind}, {where}: {cuts} cuts with {shots} captures, {time.time() - began:.0f} s", flush=True)
    expect("there was something to lose", shots > cuts)


def main():
    if not disks.can_mount:
        print("only root can mount disks")
        sys.exit(CANNOT)
    print(f"seed {SEED}", flush=True)
    dice = random.Random(SEED)
    with disks.private_mounts():
        for kind, is_apart in KINDS:
            play(kind, is_apart, -(-COUNT // len(KINDS)), dice)


if __name__ == "__main__":
    try:
        main()
    except Lost as lost:
        sys.exit(f"{lost}\nseed {SEED}")
