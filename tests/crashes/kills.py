#!/usr/bin/python3
"""The program is killed again and again, in bursts of captures and decisions: no file, no record and no decision is lost.

    kills.py [COUNT [SEED]]

COUNT kills, shared by the file systems; SEED, else the clock, seeds what happens when. Without the rights to mount there is
only the one of temporary files.
"""

import os
import random
import shutil
import sys
import time

import disks
from oracle import Lost, expect
from player import Player

COUNT = int(sys.argv[1]) if len(sys.argv) > 1 else 60
SEED = int(sys.argv[2]) if len(sys.argv) > 2 else int(time.time())
# A home gets full, and its list long.
KILLS_PER_HOME = 10
STEPS = 100000
LONGEST_BURST = 0.15
LONGEST_LAUNCH = 0.06
# How often the launch is what is killed.
LAUNCHES = 0.15


class Campaign:
    def __init__(self, first, second, dice):
        self._first, self._second, self._dice = first, second, dice
        self._promises = os.path.join(disks.scratch(), "promises")
        self.kills = self.shots = self.homes = 0

    def play(self, count):
        while self.kills < count:
            self._play_home(min(KILLS_PER_HOME, count - self.kills))

    def _play_home(self, kills):
        self.homes += 1
        first, second = (os.path.join(disk, f"home {self.homes}") for disk in (self._first, self._second))
        player = Player(first, second, self._promises)
        # The Trash of what was moved to the other disk is at its top.
        player.world.tops += [self._first, self._second]
        os.makedirs(first)
        os.makedirs(second)
        player.set_up()
        read = 0
        for kill in range(kills):
            seed = self._dice.randrange(1 << 31)
            try:
                read = self._kill(player, seed, read)
                # Now and then the start after it is killed too.
                if self._dice.random() < 0.8 or kill + 1 == kills:
                    player.start()
                    player.world.check()
            except Lost as failure:
                raise Lost(f"kill {self.kills} on {self._first}, burst {seed}: {failure}") from failure
        self.shots += len(player.world.shots)
        shutil.rmtree(first)
        shutil.rmtree(second)

    def _kill(self, player, seed, read):
        written = os.path.getsize(self._promises)
        burst = player.begin_burst(seed, STEPS)
        if self._dice.random() < LAUNCHES:
            time.sleep(self._dice.uniform(0, LONGEST_LAUNCH))
        else:
            while os.path.getsize(self._promises) == written and burst.poll() is None:
                time.sleep(0.001)
            time.sleep(self._dice.uniform(0, LONGEST_BURST))
        expect(f"it runs until it is killed, {burst.poll()}", burst.poll() is None)
        burst.kill()
        burst.wait()
        self.kills += 1
        with open(self._promises, "r+b") as file:
            whole = file.read().rpartition(b"\n")[0]
            # What was promised in part was not promised.
            file.truncate(len(whole) + 1 if whole else 0)
        lines = whole.decode().splitlines()
        player.world.take(lines[read:])
        return len(lines)


def main():
    print(f"seed {SEED}", flush=True)
    dice = random.Random(SEED)
    with disks.mounted() as places:
        for name, first, second in places:
            began = time.time()
            campaign = Campaign(first, second, dice)
            campaign.play(-(-COUNT // len(places)))
            print(f"{name}: {campaign.kills} kills, {campaign.shots} captures, {time.time() - began:.0f} s", flush=True)
            expect("there was something to lose", campaign.shots > campaign.kills)


if __name__ == "__main__":
    try:
        main()
    except Lost as lost:
        sys.exit(f"{lost}\nseed {SEED}")
