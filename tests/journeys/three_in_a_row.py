#!/usr/bin/python3
"""Three captures by three tools: one popup at a time, oldest first, with the right count."""

import os

import captures
from harness import POPUP_TITLE, expect, run_journey, wait_until
from steps import TrashEntry


def check_front(desktop, shot, more):
    desktop.popup.wait_for(shot)
    wait_until(f"{more} more are announced, not {desktop.popup.waiting_count}",
               lambda: desktop.popup.waiting_count == more)
    expect("there is one popup", len(desktop.window_ids(POPUP_TITLE)) == 1)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    expect("an autostart opens no window", not desktop.window_ids("Quillmere"))
    first = captures.scrot(desktop, desktop.folder)
    check_front(desktop, first, 0)
    second = captures.gnome_screenshot(desktop, desktop.folder)
    check_front(desktop, first, 1)
    third = captures.xfce4_screenshooter(desktop, desktop.folder)
    check_front(desktop, first, 2)

    desktop.popup.take_keyboard()
    desktop.key("Return")
    check_front(desktop, second, 1)
    desktop.popup.press("Move to Trash")
    check_front(desktop, third, 0)
    desktop.popup.take_keyboard()
    desktop.key("Escape")
    desktop.popup.wait_gone()

    wait_until("Return made the first temporary", lambda: desktop.state_of(first) == "temporary")
    wait_until("the click moved the second to Trash", lambda: TrashEntry(desktop, second).is_whole)
    expect("the second is no longer listed", desktop.record_of(second) is None)
    expect("Escape left the third pending", desktop.state_of(third) == "pending")
    expect("only the second file is gone", sorted(os.listdir(desktop.folder)) ==
           sorted(os.path.basename(shot) for shot in (first, third)))


run_journey("three-in-a-row", journey)
