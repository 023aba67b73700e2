#!/usr/bin/python3
"""Killed ten times in the middle of captures and decisions: no file, no record and no decision is lost.

The argument, else the clock, seeds what happens when.
"""

import os
import random
import sys
import threading
import time

from gi.repository import GLib

import captures
from harness import CLICK_GATE, JourneyFailed, expect, run_journey, wait_until
from steps import TrashEntry

ROUNDS = 10
LONGEST_BURST = 3.0
DECISIONS = {"Keep": "permanent", "Temporary": "temporary", "Move to Trash": None}
seed = int(sys.argv[1]) if len(sys.argv) > 1 else int(time.time())


class Burst:
    """Captures and decisions until the program is killed at a random moment."""

    def __init__(self, desktop, dice, shots, decided):
        self._desktop, self._dice, self._shots, self._decided = desktop, dice, shots, decided
        self._is_ending = threading.Event()
        self.attempted = None

    def run(self):
        timer = threading.Timer(self._dice.uniform(0.3, LONGEST_BURST), self._end)
        timer.start()
        while not self._is_ending.is_set():
            if self._dice.random() < 0.5:
                for _ in range(self._dice.randint(1, 3)):
                    self._shots.append(captures.save(self._desktop.folder))
                    time.sleep(self._dice.uniform(0, 0.15))
            else:
                try:
                    self._decide()
                except (GLib.Error, JourneyFailed):
                    expect("only a killed program stops answering", self._is_ending.is_set())
        timer.join()

    def _end(self):
        self._is_ending.set()
        self._desktop.program.kill()

    def _front(self):
        stem = self._desktop.popup.stem
        return next((shot for shot in self._shots if os.path.basename(shot) == f"{stem}.png"), None)

    def _decide(self):
        shot = self._front()
        if shot is None:
            return
        name = self._dice.choice(list(DECISIONS))
        time.sleep(CLICK_GATE)
        button = self._desktop.popup.find(name, "push button")
        if button is None or self._front() != shot:
            return
        self.attempted = shot
        self._desktop.click(button)
        wait_until("the popup moves on", lambda: self._is_ending.is_set() or self._front() != shot, 3)
        # What is seen after the kill began is the kill's work.
        if not self._is_ending.is_set():
            self._decided[shot] = DECISIONS[name]
            self.attempted = None


def check(desktop, shots, decided, attempted):
    for shot in shots:
        if shot in decided and decided[shot] is None:
            expect(f"{shot} stays in the Trash", TrashEntry(desktop, shot).is_whole and not os.path.exists(shot))
            wait_until(f"{shot} has no record", lambda: desktop.record_of(shot) is None)
        elif os.path.exists(shot):
            wait_until(f"{shot} has its record", lambda: desktop.record_of(shot))
            if shot in decided:
                state = desktop.state_of(shot)
                expect(f"{shot} stays {decided[shot]}, it is {state}", state == decided[shot])
            elif shot != attempted:
                expect(f"{shot} is still pending", desktop.state_of(shot) == "pending")
        else:
            expect(f"{shot} is gone only where that was asked for", shot == attempted)
            expect(f"{shot} is in the Trash", TrashEntry(desktop, shot).is_whole)


def check_popup(desktop, shots):
    pending = [shot for shot in shots if os.path.exists(shot) and desktop.state_of(shot) == "pending"]
    if pending:
        desktop.popup.wait_for(pending[0])
        wait_until(f"{len(pending) - 1} more wait", lambda: desktop.popup.waiting_count == len(pending) - 1)


def journey(desktop):
    print(f"seed {seed}", flush=True)
    dice = random.Random(seed)
    shots, decided = [], {}
    desktop.choose_folder()
    desktop.launch("--autostart")
    for _ in range(ROUNDS):
        burst = Burst(desktop, dice, shots, decided)
        burst.run()
        desktop.launch("--autostart")
        check(desktop, shots, decided, burst.attempted)
        check_popup(desktop, shots)
        # Settled by the list from here on, whichever way it went.
        if burst.attempted and os.path.exists(burst.attempted):
            state = desktop.state_of(burst.attempted)
            if state != "pending":
                decided[burst.attempted] = state
        elif burst.attempted:
            decided[burst.attempted] = None
    print(f"{len(shots)} captures, {len(decided)} decisions", flush=True)
    expect("there was something to lose", len(shots) > ROUNDS and len(decided) > ROUNDS // 2)


run_journey("killed-in-a-burst", journey)
