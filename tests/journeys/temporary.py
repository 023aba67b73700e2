#!/usr/bin/python3
"""Temporary for one minute ends in the Trash, also when the program was killed meanwhile; restoring works."""

import datetime
import os
import subprocess
import time

import captures
from harness import expect, hold_for, run_side_by_side, wait_until
from steps import TrashEntry

# Characters that a URL and a .trashinfo must code, in a name of a capture tool's shape.
NAME = datetime.datetime.now().strftime("%Y-%m-%d-030405_ä%%20 #;'&_scrot.png")
MINUTE, SLACK = 60, 30


def is_over(desktop, shot):
    entry = TrashEntry(desktop, shot)
    return entry.is_whole and not os.path.exists(shot)


def decide(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = captures.save(desktop.folder, NAME)
    desktop.popup.wait_for(shot)
    desktop.popup.choose_duration("1 Minute")
    desktop.popup.press("Temporary")
    decided = time.time()
    desktop.popup.wait_gone()
    wait_until("the screenshot is temporary", lambda: desktop.state_of(shot) == "temporary")
    return shot, decided


def check_end(desktop, shot, decided):
    hold_for("the file stays for its minute", lambda: os.path.exists(shot), decided + MINUTE - 2 - time.time())
    wait_until("the file is in the Trash", lambda: is_over(desktop, shot), decided + MINUTE + SLACK - time.time())
    expect("not before its time", time.time() > decided + MINUTE - 1)
    wait_until("its record is gone", lambda: desktop.record_of(shot) is None)
    age = datetime.datetime.utcnow() - TrashEntry(desktop, shot).deleted
    expect(f"the Trash has the time of deletion, {age} ago", abs(age.total_seconds()) < SLACK)

    # Restored by a tool that knows nothing of this program.
    done = subprocess.run(["trash-restore"], cwd=desktop.folder, env=desktop.environment, input="0\n", text=True,
                          capture_output=True, timeout=30)
    expect(f"the file is restored under its name: {done.stdout}{done.stderr}", os.path.exists(shot))
    expect("its bytes are the same", open(shot, "rb").read() == captures.png())


def left_running(desktop):
    check_end(desktop, *decide(desktop))


def killed(desktop):
    shot, decided = decide(desktop)
    desktop.program.kill()
    time.sleep(1)
    desktop.launch("--autostart")
    hold_for("no popup comes back", lambda: not desktop.popup.is_shown, 2)
    check_end(desktop, shot, decided)


def killed_past_its_time(desktop):
    shot, decided = decide(desktop)
    desktop.program.kill()
    time.sleep(decided + MINUTE + 2 - time.time())
    desktop.launch("--autostart")
    check_end(desktop, shot, decided)


run_side_by_side("temporary", {"left-running": left_running, "killed": killed, "late": killed_past_its_time})
