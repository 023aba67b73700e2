#!/usr/bin/python3
"""The watched folder is deleted, renamed, replaced by a link, or its disk goes away: what is captured afterwards is
found once, and no record is lost meanwhile."""

import collections
import os
import shutil

import captures
from disks import Disk, can_mount
from harness import expect, hold_for, path_of, run_side_by_side, wait_until
from steps import choose_folder_in_dialog

# The folder is looked for again every minute.
FOUND_AGAIN = 75


def names(desktop):
    return [os.path.basename(path_of(record)) for record in desktop.records()]


def check_listed_once(desktop, shots):
    wanted = collections.Counter(os.path.basename(shot) for shot in shots)
    wait_until(f"these are listed: {sorted(wanted)}; there are {sorted(names(desktop))}",
               lambda: collections.Counter(names(desktop)) == wanted, FOUND_AGAIN)


def start(desktop, folder):
    """With the folder chosen by hand, so that its bookmark knows which folder it is; and two records in it."""
    desktop.launch()
    choose_folder_in_dialog(desktop, folder)
    shots = [captures.save(folder), captures.save(folder)]
    desktop.popup.wait_for(shots[0])
    check_listed_once(desktop, shots)
    desktop.popup.press("Keep")
    desktop.popup.wait_for(shots[1])
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    return shots


def check_found_afterwards(desktop, folder, shots, first=None):
    """What is saved now, and what was saved before the folder was found again, comes as popups and is kept."""
    shots = shots + ([first] if first else [])
    second = captures.save(folder)
    for shot in ([first] if first else []) + [second]:
        desktop.popup.wait_for(shot, FOUND_AGAIN)
        desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    check_listed_once(desktop, shots + [second])
    wait_until("all are kept", lambda: all(record["state"] == "permanent" for record in desktop.records()))
    hold_for("no popup comes twice", lambda: not desktop.popup.is_shown, 2)


def wait_for_status(desktop, text):
    """Told in the Inbox by a banner."""
    wait_until(f"the Inbox says “{text}”", lambda: desktop.find(text, window="Quillmere"), 30)


def deleted(desktop):
    shots = start(desktop, desktop.folder)
    shutil.rmtree(desktop.folder)
    wait_for_status(desktop, "Quillmere can’t access the screenshot folder. Choose it again to keep finding new "
                             "screenshots.")
    check_listed_once(desktop, shots)
    os.mkdir(desktop.folder)
    # With the folder back it is certain that the old files are gone, and so are their records.
    check_found_afterwards(desktop, desktop.folder, [], captures.save(desktop.folder))


def renamed(desktop):
    shots = start(desktop, desktop.folder)
    elsewhere = desktop.folder + " of old"
    os.rename(desktop.folder, elsewhere)
    wait_until("the records follow the folder",
               lambda: all(os.path.dirname(path_of(record)) == elsewhere for record in desktop.records()))
    check_found_afterwards(desktop, elsewhere, shots)


def linked(desktop):
    shots = start(desktop, desktop.folder)
    elsewhere = os.path.join(desktop.home, "Elsewhere")
    shutil.copytree(desktop.folder, elsewhere)
    shutil.rmtree(desktop.folder)
    os.symlink(elsewhere, desktop.folder)
    check_found_afterwards(desktop, desktop.folder, shots, captures.save(desktop.folder))


def unmounted(desktop):
    if not can_mount:
        print("Only root can mount a disk; left out.")
        return
    disk = Disk(desktop)
    disk.connect()
    folder = os.path.join(disk.point, "Screenshots")
    os.mkdir(folder)
    shots = start(desktop, folder)
    disk.disconnect()
    wait_for_status(desktop, "The screenshot folder is on a disk that isn’t connected. Connect the disk and Quillmere "
                             "starts watching it again.")
    check_listed_once(desktop, shots)
    disk.connect()
    check_found_afterwards(desktop, folder, shots, captures.save(folder))
    for record in desktop.records():
        expect(f"{path_of(record)} is there", os.path.exists(path_of(record)))


run_side_by_side("folder", {"deleted": deleted, "renamed": renamed, "linked": linked, "unmounted": unmounted})
