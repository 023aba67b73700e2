#!/usr/bin/python3
"""The whole road of a screenshot where the folder stands: on other file systems, behind a link, with a name of any
bytes, and on a disk that freezes for a while. The argument says which."""

import os
import subprocess
import sys

import captures
from disks import Disk, can_mount
from harness import expect, hold_for, run_journey, wait_until
from steps import make_overdue, make_temporary, quit_program

FILE_SYSTEMS = {
    "frozen": ["mkfs.ext4", "-q"],
    "small_inodes": ["mkfs.ext4", "-q", "-I", "128"],
    "btrfs": ["mkfs.btrfs", "-q"],
    "xfs": ["mkfs.xfs", "-q"],
}
place = sys.argv[1]


def prepare(desktop):
    """The folder, and how it is told to the program."""
    if place in FILE_SYSTEMS:
        disk = Disk(desktop, FILE_SYSTEMS[place], megabytes=320)
        disk.connect()
        folder = os.path.join(disk.point, "Screenshots")
        os.mkdir(folder)
        return folder, disk
    if place == "link":
        os.symlink(desktop.folder, os.path.join(desktop.home, "Link"))
        return os.path.join(desktop.home, "Link"), None
    folder = os.path.join(desktop.home, "Bild <b>schirm\n“fotos” %20 ‮")
    os.mkdir(folder)
    return folder, None


def freeze_under_popup(desktop, disk, folder):
    """As a disk does that has gone to sleep, or a network that hangs: whoever writes waits."""
    shot = captures.save(folder)
    subprocess.run(["fsfreeze", "--freeze", disk.point], check=True)
    try:
        desktop.popup.wait_for(shot)
        hold_for("the popup is there", lambda: desktop.popup.stem, 2)
    finally:
        subprocess.run(["fsfreeze", "--unfreeze", disk.point], check=True)
    desktop.popup.press("Keep")
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent")
    desktop.popup.wait_gone()


def journey(desktop):
    if place in FILE_SYSTEMS and not can_mount:
        print("Only root can mount a disk; left out.")
        return
    folder, disk = prepare(desktop)
    desktop.choose_folder(folder)
    desktop.launch()

    kept = captures.save(folder)
    desktop.popup.wait_for(kept)
    desktop.popup.press("Keep")
    wait_until("it is kept", lambda: desktop.state_of(kept) == "permanent")
    desktop.popup.wait_gone()

    thrown = captures.save(folder)
    desktop.popup.wait_for(thrown)
    desktop.popup.press("Move to Trash")
    wait_until("it is in the Trash", lambda: not os.path.exists(thrown))
    wait_until("its record is gone", lambda: desktop.record_of(thrown) is None)

    if place == "frozen":
        freeze_under_popup(desktop, disk, folder)

    temporary = captures.save(folder)
    make_temporary(desktop, temporary)
    quit_program(desktop)
    make_overdue(desktop, temporary)
    desktop.launch()
    wait_until("it was thrown away", lambda: not os.path.exists(temporary))
    wait_until("its record is gone", lambda: desktop.record_of(temporary) is None)
    expect("the kept one stays", os.path.exists(kept) and desktop.state_of(kept) == "permanent")


run_journey(f"places-{place}", journey)
