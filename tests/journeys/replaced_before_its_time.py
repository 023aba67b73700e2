#!/usr/bin/python3
"""A temporary screenshot is replaced by another image of its name: what was never judged is not thrown away."""

import os

import captures
from harness import expect, hold_for, run_side_by_side, wait_until
from steps import make_overdue, make_temporary, quit_program, trashed_files

MINUTE, SLACK = 60, 30
OTHER = captures.png(width=80, height=60, colour=(200, 60, 40))


def replace(desktop, shot):
    """As an editor saves: beside, and then in its place."""
    beside = shot + ".part"
    with open(beside, "xb") as file:
        file.write(OTHER)
    desktop.run("mv", beside, shot, check=True)


def check_new_file_stays(desktop, shot, timeout):
    wait_until("no record wants it gone any more", lambda: desktop.state_of(shot) != "temporary", timeout)
    hold_for("the new file stays", lambda: os.path.exists(shot) and not trashed_files(desktop), 2)
    with open(shot, "rb") as file:
        expect("it is the new one", file.read() == OTHER)
    expect("nothing else is in the folder", os.listdir(desktop.folder) == [os.path.basename(shot)])
    expect("no other record has a time", not any("expiresAt" in record for record in desktop.records()))


def while_stopped(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = captures.save(desktop.folder)
    make_temporary(desktop, shot)
    quit_program(desktop)
    replace(desktop, shot)
    make_overdue(desktop, shot)
    desktop.launch("--autostart")
    check_new_file_stays(desktop, shot, 10)


def while_running(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.choose_duration("1 Minute")
    make_temporary(desktop, shot)
    replace(desktop, shot)
    check_new_file_stays(desktop, shot, MINUTE + SLACK)


run_side_by_side("replaced", {"while-stopped": while_stopped, "while-running": while_running})
