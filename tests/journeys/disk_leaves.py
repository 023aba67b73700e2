#!/usr/bin/python3
"""The disk with the watched folder is pulled out under a popup, and comes back: nothing is lost or forgotten."""

import os

import captures
from disks import Disk, can_mount
from harness import expect, run_journey, wait_until
from steps import choose_folder_in_dialog, select_row, settled_record, wait_for_row

AWAY = ("The screenshot folder is on a disk that isn’t connected. Connect the disk and Quillmere starts watching it "
        "again.")
UNAVAILABLE = "Unavailable. The file can’t be found or its folder isn’t accessible."


def journey(desktop):
    if not can_mount:
        print("Only root can mount a disk; left out.")
        return
    disk = Disk(desktop)
    disk.connect()
    folder = os.path.join(disk.point, "Screenshots")
    os.mkdir(folder)
    desktop.launch()
    choose_folder_in_dialog(desktop, folder)
    shot = captures.save(folder)
    desktop.popup.wait_for(shot)
    wait_until("it is pending", lambda: desktop.state_of(shot) == "pending")
    before = settled_record(desktop, shot)

    disk.pull_out()
    desktop.popup.wait_gone()
    wait_for_row(desktop, shot, "Unavailable")
    desktop.wait_for(AWAY, "label", "Quillmere")
    select_row(desktop, shot)
    desktop.wait_for(UNAVAILABLE, "label", "Quillmere")
    expect("its record is as it was", desktop.record_of(shot) == before)

    disk.connect()
    wait_for_row(desktop, shot, "Pending")
    wait_until("nothing is said to be away", lambda: not desktop.find(AWAY) and not desktop.find(UNAVAILABLE))
    desktop.action("review")
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent")
    with open(shot, "rb") as file:
        expect("its bytes are the same", file.read() == captures.png())
    # The next one is found there too.
    desktop.popup.wait_for(captures.save(folder))


run_journey("disk-leaves", journey)
