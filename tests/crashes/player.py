"""The small program of the model, in a home of its own."""

import os
import subprocess

from oracle import World, expect

BURST = os.environ.get("QUILLMERE_CRASH_BURST", os.path.join(os.path.dirname(__file__), "../../build/crash_burst"))
STUCK = 60


class Player:
    """`first` has the home, and the screenshots unless they are on `second`, whose Trash they then have. Files that are
    moved to another disk go to the other one."""

    def __init__(self, first, second, promises, has_screenshots_on_second=False):
        self._promises = promises
        self.home = os.path.join(first, "home")
        disk, other = (second, first) if has_screenshots_on_second else (first, second)
        self._shots, elsewhere = os.path.join(disk, "pictures/shots"), os.path.join(disk, "elsewhere")
        self._folders = [self._shots, elsewhere, os.path.join(other, "other")]
        self.world = World(self.home, self._folders, [first, second])
        self._environment = {
            "PATH": os.environ["PATH"], "HOME": self.home, "LC_ALL": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen",
            "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nonexistent", "XDG_RUNTIME_DIR": os.path.join(self.home, "run"),
            **{f"XDG_{name.upper()}_HOME": os.path.join(self.home, name)
               for name in ("data", "config", "cache", "state")}}

    def set_up(self):
        for folder in self._folders + [self._environment["XDG_RUNTIME_DIR"], self._environment["XDG_DATA_HOME"]]:
            os.makedirs(folder)
        with open(self._promises, "w", encoding="utf-8"):
            pass
        self._run("setup", self._shots)

    def start(self):
        """After a crash; and it ends."""
        self._run("start", self._shots)

    def _run(self, *arguments):
        done = subprocess.run([BURST, arguments[0], self._promises, *arguments[1:]], env=self._environment, timeout=STUCK,
                              stdin=subprocess.DEVNULL)
        expect(f"“{arguments[0]}” ends well, not with {done.returncode}", done.returncode == 0)

    def begin_burst(self, seed, steps):
        return subprocess.Popen([BURST, "burst", self._promises, *self._folders, str(seed), str(steps)],
                                env=self._environment, stdin=subprocess.DEVNULL)
