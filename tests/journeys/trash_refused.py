#!/usr/bin/python3
"""A folder that refuses the move: the popup says so, nothing is lost, and trying again works."""

import os
import subprocess

import captures
from harness import expect, run_journey, wait_until
from steps import TrashEntry, settled_record


def set_refusing(folder, refuses):
    if os.geteuid():
        os.chmod(folder, 0o500 if refuses else 0o700)
    else:  # permissions do not hold root back
        subprocess.run(["chattr", "+i" if refuses else "-i", folder], check=True)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = captures.scrot(desktop, desktop.folder)
    desktop.popup.wait_for(shot)
    wait_until("it is listed", lambda: desktop.state_of(shot) == "pending")
    before = settled_record(desktop, shot)
    set_refusing(desktop.folder, True)
    try:
        desktop.popup.press("Move to Trash")
        desktop.wait_for("Couldn’t Move to Trash", "label", "Screenshot Decision")
        desktop.wait_for("Couldn’t Move to Trash", "alert message", "Screenshot Decision")
        name = os.path.basename(shot)
        desktop.wait_for(f"“{name}” couldn’t be moved to Trash. It is still in Quillmere. Check that you can change "
                         "files in its folder, then try again.", "label", "Screenshot Decision")
        expect("the popup stays", desktop.popup.is_shown)
        expect("the file is untouched", os.path.exists(shot))
        expect("the record is untouched", desktop.record_of(shot) == before)
        expect("the Trash has no trace of it", TrashEntry(desktop, shot).info is None)
    finally:
        set_refusing(desktop.folder, False)

    desktop.popup.press("Move to Trash")
    desktop.popup.wait_gone()
    wait_until("it is in the Trash", lambda: TrashEntry(desktop, shot).is_whole)
    wait_until("its record is gone", lambda: desktop.record_of(shot) is None)
    expect("the file is gone from its folder", not os.path.exists(shot))


if __name__ == "__main__":
    run_journey("trash-refused", journey)
