#!/usr/bin/python3
"""An empty home: the Inbox asks for the folder, and the first capture is kept with the keyboard alone."""

import os

import captures
from harness import expect, run_journey, wait_until
from steps import choose_folder_in_dialog


def journey(desktop):
    desktop.launch()
    desktop.wait_for("Choose Your Screenshot Folder", "label", "Quillmere")
    choose_folder_in_dialog(desktop, desktop.folder)
    desktop.wait_for("No Screenshots Yet", "label", "Quillmere")

    shot = captures.scrot(desktop, desktop.folder)
    desktop.popup.wait_for(shot)
    wait_until("the new screenshot is pending", lambda: desktop.state_of(shot) == "pending")
    expect("the popup left the keyboard where it was", desktop.active_title() == "Quillmere")

    desktop.popup.take_keyboard()
    desktop.popup.tab_to("Keep")
    desktop.key("space")
    desktop.popup.wait_gone()
    wait_until("the screenshot is kept", lambda: desktop.state_of(shot) == "permanent")
    expect("the file is still there", os.path.exists(shot))
    wait_until("the keyboard went back to the Inbox", lambda: desktop.active_title() == "Quillmere")
    row = desktop.wait_for(os.path.basename(shot), "list item", "Quillmere")
    wait_until("its row says Saved", lambda: row.description.startswith("Saved"))


run_journey("first-start", journey)
