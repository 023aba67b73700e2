#!/usr/bin/python3
"""While a dialog of the settings waits for an answer, the popup goes on: it asks, and the review reaches it."""

import os

import captures
from harness import expect, run_journey, wait_until
from steps import FOLDER_DIALOG, answer_file_dialog, open_settings


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    other = os.path.join(desktop.home, "Captures")
    os.mkdir(other)
    open_settings(desktop, "Screenshots")
    desktop.click(desktop.wait_for("Choose Screenshot Folder", "push button", "Settings"))
    wait_until("the dialog has the keyboard", lambda: desktop.active_title() == FOLDER_DIALOG)

    first, second = captures.save(desktop.folder), captures.save(desktop.folder)
    desktop.popup.wait_for(first)
    desktop.popup.press("Keep")
    desktop.popup.wait_for(second)
    desktop.popup.take_keyboard()
    desktop.key("Return")
    desktop.popup.wait_gone()
    wait_until("both were decided",
               lambda: [desktop.state_of(shot) for shot in (first, second)] == ["permanent", "temporary"])

    wait_until("the dialog has the keyboard again", lambda: desktop.active_title() == FOLDER_DIALOG)
    expect("it still waits", desktop.window_ids(FOLDER_DIALOG))
    answer_file_dialog(desktop, FOLDER_DIALOG, other)
    desktop.wait_for("Captures", "label", "Settings")


run_journey("dialogs", journey)
