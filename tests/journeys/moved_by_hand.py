#!/usr/bin/python3
"""Screenshots that a file manager moves, deletes or throws away: what was moved was wanted and is followed to any folder
of the disk; what was deleted or thrown away is forgotten."""

import os

import captures
from harness import expect, run_journey, wait_until
from steps import make_temporary, quit_program, wait_for_row


def is_forgotten(desktop, path):
    wait_until(f"{path} is forgotten", lambda: desktop.record_of(path) is None)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch()
    folder = os.path.join(desktop.home, "Documents", "Invoices")
    os.makedirs(folder)

    moved = captures.save(desktop.folder)
    make_temporary(desktop, moved)
    place = os.path.join(folder, "2026 <b>paid.png")
    desktop.run("mv", moved, place, check=True)
    wait_until("it is kept in its new place", lambda: desktop.state_of(place) == "permanent")
    expect("without a time", "expiresAt" not in desktop.record_of(place))
    wait_for_row(desktop, place, "Saved")

    pending = captures.save(desktop.folder)
    desktop.popup.wait_for(pending)
    other = os.path.join(folder, "pending.png")
    desktop.run("mv", pending, other, check=True)
    desktop.popup.wait_gone()
    wait_until("it is decided", lambda: desktop.state_of(other) == "permanent")

    for throw_away in (("rm",), ("gio", "trash")):
        shot = captures.save(desktop.folder)
        make_temporary(desktop, shot)
        desktop.run(*throw_away, shot, check=True)
        is_forgotten(desktop, shot)

    # To another disk it is copied and deleted: nothing tells that from a deletion.
    # Of a folder that is not watched nothing is told; the next start finds out.
    desktop.run("gio", "trash", place, check=True)
    desktop.run("mv", other, os.path.join(folder, "moved again.png"), check=True)
    quit_program(desktop)
    desktop.launch()
    is_forgotten(desktop, place)
    wait_until("the other is followed once more",
               lambda: desktop.state_of(os.path.join(folder, "moved again.png")) == "permanent")
    expect("there is no other record", len(desktop.records()) == 1)


run_journey("moved-by-hand", journey)
