#!/usr/bin/python3
"""A disk that takes 1.5 s to flush, and one that is frozen: the popup answers all the same, and nothing that was seen to be
saved is lost."""

import os
import time

import captures
from harness import CLICK_GATE, expect, hold_for, run_journey, wait_until

SLOW = 1.5
FROZEN = 3600
WAITING = "Waiting for the disk…"
# Of our own: 0.25 s, and what a busy machine needs for a frame.
LONGEST_LEAVING = 1.0


class Disk:
    def __init__(self, desktop):
        self._file = os.path.join(desktop.scratch, "flush-seconds")
        self.flushes_in(0)
        desktop.environment["LD_PRELOAD"] = os.environ["QUILLMERE_SLOW_FLUSH"]
        desktop.environment["QUILLMERE_FLUSH_SECONDS"] = self._file

    def flushes_in(self, seconds):
        with open(self._file + ".new", "w", encoding="utf-8") as file:
            file.write(str(seconds))
        os.rename(self._file + ".new", self._file)


def keep(desktop, following):
    """How long the popup needs to go on to the next screenshot, or to go."""
    time.sleep(CLICK_GATE)
    desktop.popup.take_keyboard()
    button = desktop.popup.find("Keep", "push button")
    place = desktop.place_of(button)
    desktop.move_pointer(place)
    start = time.monotonic()
    desktop.run("xdotool", "click", "1", check=True)
    if following:
        desktop.popup.wait_for(following, LONGEST_LEAVING)
    else:
        desktop.popup.wait_gone(LONGEST_LEAVING)
    return time.monotonic() - start


def journey(desktop):
    desktop.choose_folder()
    disk = Disk(desktop)
    program = desktop.launch("--autostart")

    # Slow: each screenshot comes up and goes before the last one's save is over.
    shots = [captures.save(desktop.folder) for _ in range(3)]
    desktop.popup.wait_for(shots[0])
    wait_until("all three are known", lambda: desktop.popup.waiting_count == 2)
    disk.flushes_in(SLOW)
    for shot, following in zip(shots, shots[1:] + [None]):
        keep(desktop, following)
    for shot in shots:
        wait_until("it is saved in the end", lambda: desktop.state_of(shot) == "permanent", 20)

    # Frozen: they are decided, it is said that the disk is waited for, and nothing is on it.
    disk.flushes_in(0)
    shots = [captures.save(desktop.folder) for _ in range(3)]
    desktop.popup.wait_for(shots[0])
    wait_until("they are saved as pending", lambda: all(desktop.state_of(shot) == "pending" for shot in shots))
    disk.flushes_in(FROZEN)
    keep(desktop, shots[1])
    wait_until("it is told that the disk is waited for", lambda: desktop.popup.find(WAITING))
    keep(desktop, shots[2])
    hold_for("nothing is on the disk", lambda: desktop.state_of(shots[0]) == "pending", 0.5)
    late = captures.save(desktop.folder)
    wait_until("a new one is taken in", lambda: desktop.popup.find(WAITING) and desktop.popup.stem)
    desktop.action("none", wait=True)

    # Killed there, what was not saved is asked about again, and so is what came meanwhile.
    program.kill()
    disk.flushes_in(0)
    desktop.launch("--autostart")
    for shot, following in zip(shots + [late], shots[1:] + [late, None]):
        desktop.popup.wait_for(shot)
        keep(desktop, following)
    for shot in shots + [late]:
        wait_until("it is saved", lambda: desktop.state_of(shot) == "permanent")

    # A disk that answers again has everything, and quitting waits for it.
    disk.flushes_in(FROZEN)
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    keep(desktop, None)
    desktop.action("quit")
    time.sleep(0.5)
    expect("it has not ended", desktop.program.is_running)
    disk.flushes_in(0)
    expect("it ends with 0", desktop.program.wait() == 0)
    expect("the last decision is saved", desktop.state_of(shot) == "permanent")


run_journey("slow-disk", journey)
