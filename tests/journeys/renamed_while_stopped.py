#!/usr/bin/python3
"""A temporary screenshot that was renamed while the program did not run was wanted: it is kept, also past its time."""

import os

import captures
from harness import expect, hold_for, run_journey, wait_until
from steps import make_overdue, make_temporary, quit_program, trashed_files, wait_for_row


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = captures.save(desktop.folder)
    make_temporary(desktop, shot)
    quit_program(desktop)
    renamed = os.path.join(desktop.folder, "Receipt.png")
    desktop.run("mv", shot, renamed, check=True)
    make_overdue(desktop, shot)

    desktop.launch()
    wait_until("it is kept under its new name", lambda: desktop.state_of(renamed) == "permanent")
    expect("without a time", "expiresAt" not in desktop.record_of(renamed))
    expect("it is the only record", len(desktop.records()) == 1)
    wait_for_row(desktop, renamed, "Saved")

    def stays():
        return os.path.exists(renamed) and not trashed_files(desktop) and not desktop.popup.is_shown

    hold_for("the file stays, without a popup", stays, 2)
    quit_program(desktop)
    desktop.launch("--autostart")
    hold_for("the file stays after one more start", stays, 2)
    expect("its bytes are the same", open(renamed, "rb").read() == captures.png())
    expect("it is still kept", desktop.state_of(renamed) == "permanent")


run_journey("renamed-while-stopped", journey)
