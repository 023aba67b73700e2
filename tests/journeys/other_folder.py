#!/usr/bin/python3
"""Another folder is chosen in the settings: from then on it is the watched one."""

import os

import captures
from harness import expect, hold_for, run_journey, wait_until
from steps import FOLDER_DIALOG, answer_file_dialog, open_settings, wait_for_row

HOME_QUESTION = "Watch Your Whole Home Folder?"


def journey(desktop):
    desktop.choose_folder()
    desktop.launch()
    first = captures.save(desktop.folder)
    desktop.popup.wait_for(first)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()

    other = os.path.join(desktop.home, "Captures")
    os.mkdir(other)
    open_settings(desktop, "Screenshots")
    desktop.click(desktop.wait_for("Choose Screenshot Folder", "push button", "Settings"))
    answer_file_dialog(desktop, FOLDER_DIALOG, other)
    desktop.wait_for("Captures", "label", "Settings")

    captures.save(desktop.folder)
    hold_for("the old folder is no longer watched", lambda: not desktop.popup.is_shown, 2)
    second = captures.save(other)
    desktop.popup.wait_for(second)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("both are kept", lambda: desktop.state_of(first) == desktop.state_of(second) == "permanent")
    expect("nothing else is listed", len(desktop.records()) == 2)
    for shot in (first, second):
        wait_for_row(desktop, shot, "Saved")

    open_settings(desktop, "Screenshots")
    desktop.click(desktop.wait_for("Choose Screenshot Folder", "push button", "Settings"))
    answer_file_dialog(desktop, FOLDER_DIALOG, desktop.home)
    wait_until("the home folder is asked about", lambda: desktop.active_title() == HOME_QUESTION)
    expect("as an alert", desktop.find(HOME_QUESTION, "alert message"))
    desktop.key("Return")
    wait_until("Return cancels", lambda: not desktop.window_ids(HOME_QUESTION))
    expect("the folder is the same", desktop.find("Captures", "label", "Settings"))


run_journey("other-folder", journey)
