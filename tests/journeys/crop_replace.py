#!/usr/bin/python3
"""With the keyboard alone a crop takes the place of its original, which can be had back from the Trash under another
name; whatever happens to the file in the middle, nothing is lost."""

import os
import subprocess

import captures
from crop_sheet import HELP, NOT_REPLACEABLE, REPLACE, CropSheet, bytes_of
from harness import expect, run_journey, wait_until
from inbox_steps import keep_new, open_inbox
from pictures import png_size
from steps import TrashEntry, row_of, trashed_files

QUESTION = "Replace the Original Screenshot?"


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = keep_new(desktop, width=400, height=300)
    open_inbox(desktop)
    sheet = CropSheet(desktop)
    by_keys(desktop, sheet, shot)
    back_from_trash(desktop, shot)
    rewritten_while_it_asks(desktop, sheet)


def by_keys(desktop, sheet, shot):
    whole = bytes_of(shot)
    before = desktop.record_of(shot)
    sheet.choose(shot)
    wait_until("the row has the keyboard", lambda: row_of(desktop, shot).is_focused)
    desktop.key("ctrl+k")
    sheet.wait_open()
    focus = desktop.program.tree.focus()
    walk_to(desktop, focus, "Select Whole Image")
    desktop.key("space")
    wait_until("all is selected", lambda: sheet.bounds == (0, 0, 400, 300))
    walk_to(desktop, focus, "Screenshot preview", "shift+Tab")
    # Alt and Shift with an arrow, which take ten, are the window manager's here.
    desktop.key(*["alt+Left"] * 12, *["alt+Up"] * 10, "shift+Right", "Right", "Down")
    wait_until(f"the keys have changed it: {sheet.bounds}", lambda: sheet.bounds == (11, 1, 388, 290))
    desktop.key("ctrl+z")
    wait_until("undo takes back one", lambda: sheet.bounds == (11, 0, 388, 290))
    desktop.key("ctrl+shift+z")
    wait_until("redo does it again", lambda: sheet.bounds == (11, 1, 388, 290))
    walk_to(desktop, focus, REPLACE)
    desktop.key("space")
    desktop.wait_for(QUESTION, "label")
    desktop.key("Return")
    wait_until("Return is the safe answer", lambda: not desktop.find(QUESTION, "label"))
    expect("the file is as it was", bytes_of(shot) == whole and not trashed_files(desktop))
    wait_until("the sheet has the keyboard again", lambda: desktop.active_title() == sheet.title)
    walk_to(desktop, focus, REPLACE)
    desktop.key("space")
    desktop.wait_for(QUESTION, "label")
    walk_to(desktop, focus, "Replace Original")
    desktop.key("space")
    sheet.wait_gone()
    expect("the crop stands in its place", png_size(shot) == (388, 290))
    wait_until("the original is in the Trash", lambda: TrashEntry(desktop, shot).is_whole)
    expect("with its bytes", bytes_of(TrashEntry(desktop, shot).file) == whole)
    after = desktop.record_of(shot)
    expect("the record is the same", (after["id"], after["state"]) == (before["id"], before["state"]))
    expect("nothing is left beside it", os.listdir(desktop.folder) == [os.path.basename(shot)])


def walk_to(desktop, focus, name, key="Tab"):
    """As a person does who has no pointer: from control to control."""
    def is_reached():
        if focus.name == name:
            return True
        desktop.key(key)
        return False

    for _ in range(40):
        if is_reached():
            return
        try:
            wait_until("the next control", lambda: focus.name == name, 0.3)
            return
        except Exception:
            continue
    expect(f"“{name}” is reached", False)


def back_from_trash(desktop, shot):
    """The command-line Trash puts it where it was, so its place is cleared first, as a person would who wants both."""
    crop = bytes_of(shot)
    whole = captures.png(width=400, height=300)
    kept = os.path.join(desktop.folder, "The crop.png")
    os.rename(shot, kept)
    wait_until("the record follows", lambda: desktop.state_of(kept) == "permanent")
    subprocess.run(["trash-restore", shot], input="0\n", env=desktop.environment, capture_output=True, text=True,
                   timeout=60, check=True)
    expect("what came back is the original", bytes_of(shot) == whole)
    expect("the crop is untouched", bytes_of(kept) == crop)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def rewritten_while_it_asks(desktop, sheet):
    shot = keep_new(desktop, width=300, height=200)
    open_inbox(desktop)
    sheet.open(shot, "Crop…", HELP)
    sheet.press("Select Whole Image")
    sheet.press(REPLACE)
    desktop.wait_for(QUESTION, "label")
    another = captures.png(width=310, height=210)
    with open(shot, "wb") as file:
        file.write(another)
    sheet.wait_for_text(NOT_REPLACEABLE)
    expect("nobody is asked any more", not desktop.find(QUESTION, "label"))
    expect("what was written stays", bytes_of(shot) == another)
    expect("nothing is thrown away", not TrashEntry(desktop, shot).info)
    desktop.key("Escape")
    sheet.wait_gone()


run_journey("crop-replace", journey)
