#!/usr/bin/python3
"""Moving a screenshot to another place from the Inbox; nothing is replaced, and cancelling changes nothing."""

import os

import captures
from harness import expect, run_journey, wait_until
from steps import answer_file_dialog, row_of, select_row, settled_record, wait_for_row

DIALOG = "Move and Rename Screenshot"
ALERT = "Couldn’t Move Screenshot"


def open_dialog(desktop, shot):
    select_row(desktop, shot)
    desktop.click(desktop.wait_for("Move and Rename…", "push button", "Quillmere"))
    wait_until("the dialog has the keyboard", lambda: desktop.active_title() == DIALOG)


def check_untouched(desktop, shot, before):
    expect("the file is where it was", os.path.exists(shot))
    now = desktop.record_of(shot)
    expect(f"the record is as it was: {now}, {before}", now == before)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch()
    first, second = captures.save(desktop.folder), captures.save(desktop.folder, colour=(90, 160, 70))
    for shot in (first, second):
        desktop.popup.wait_for(shot)
        desktop.popup.press("Dismiss Screenshot Popup")
    desktop.popup.wait_gone()
    wait_until("both are pending", lambda: desktop.state_of(first) == desktop.state_of(second) == "pending")
    receipts = os.path.join(desktop.home, "Receipts")
    os.mkdir(receipts)
    moved = os.path.join(receipts, "Train.png")

    before = desktop.record_of(first)
    open_dialog(desktop, first)
    desktop.key("Escape")
    wait_until("the dialog is gone", lambda: not desktop.window_ids(DIALOG))
    check_untouched(desktop, first, before)
    row_of(desktop, first)

    open_dialog(desktop, first)
    answer_file_dialog(desktop, DIALOG, moved.removesuffix(".png"))  # the extension comes by itself
    wait_until("it is kept at its new place", lambda: desktop.state_of(moved) == "permanent")
    wait_for_row(desktop, moved, "Saved")
    expect("the old place is empty", not os.path.exists(first) and desktop.record_of(first) is None)
    with open(moved, "rb") as file:
        contents = file.read()
    expect("its bytes are the same", contents == captures.png())

    before = desktop.record_of(second)
    open_dialog(desktop, second)
    answer_file_dialog(desktop, DIALOG, moved)
    wait_until("an alert tells", lambda: desktop.active_title() == ALERT)
    desktop.wait_for("A file already exists with that name. Choose a different name to avoid replacing it.", "label",
                     ALERT)
    desktop.key("Return")
    wait_until("the alert is gone", lambda: not desktop.window_ids(ALERT))
    check_untouched(desktop, second, before)
    with open(moved, "rb") as file:
        expect("nothing was replaced", file.read() == contents)
    expect("there is nothing else", os.listdir(receipts) == ["Train.png"])


run_journey("move-and-rename", journey)
