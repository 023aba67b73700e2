#!/usr/bin/python3
"""The Inbox's thumbnails are shared with other programs for screenshots that were kept, and for no others; they go with
the file."""

import os
import re

import captures
from harness import expect, hold_for, run_journey, wait_until
from steps import quit_program, row_of, select_row, settled_record

SIZE = {"width": 640, "height": 400}


def cached_files(desktop):
    top = os.path.join(desktop.environment["XDG_CACHE_HOME"], "thumbnails")
    return sorted(os.path.join(folder, name) for folder, _, names in os.walk(top) for name in names)


def thumbnail_in_gio(desktop, shot):
    """Where the file managers' own library finds a thumbnail of the file as it is now; None where it finds none."""
    info = desktop.run("gio", "info", "-a", "thumbnail::*", shot)
    if "thumbnail::is-valid: TRUE" not in info:
        return None
    return re.search(r"thumbnail::path: (.*)", info).group(1)


def decide(desktop, shot, button, state):
    desktop.popup.wait_for(shot)
    desktop.popup.press(button)
    wait_until(f"it is {state}", lambda: desktop.state_of(shot) == state)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    kept, temporary, pending = (captures.save(desktop.folder, **SIZE) for _ in range(3))
    decide(desktop, kept, "Keep", "permanent")
    decide(desktop, temporary, "Temporary", "temporary")
    decide(desktop, pending, "Dismiss Screenshot Popup", "pending")
    desktop.popup.wait_gone()
    for shot in (kept, temporary, pending):
        settled_record(desktop, shot)
    expect("the popup has left nothing in the cache", cached_files(desktop) == [])
    quit_program(desktop)

    desktop.launch()
    for shot in (kept, temporary, pending):
        row_of(desktop, shot)
    thumbnail = wait_until("others find the thumbnail of what was kept", lambda: thumbnail_in_gio(desktop, kept))
    hold_for("there is no other", lambda: cached_files(desktop) == [thumbnail], 2)
    expect("it is the person's alone", os.stat(thumbnail).st_mode & 0o777 == 0o600)

    select_row(desktop, kept)
    desktop.click(desktop.wait_for("Move to Trash", "push button", "Quillmere"))
    desktop.click(desktop.wait_for("Move to Trash", "push button", "Move Screenshot to Trash?"))
    wait_until("the file is in the Trash", lambda: not os.path.exists(kept))
    wait_until("its thumbnail has gone with it", lambda: cached_files(desktop) == [])


run_journey("thumbnails", journey)
