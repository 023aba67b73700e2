#!/usr/bin/python3
"""The capture tool saves elsewhere: the Inbox says so, the settings change it, and their undo changes it back."""

import os

import captures
from harness import expect, hold_for, run_journey
from steps import open_settings

MISMATCH = ("No screenshots have arrived yet. Your desktop saves screenshots to Elsewhere, not the folder Quillmere "
            "watches.")
QUESTION = "Save Screenshots to “Screenshots”?"
DIFFERS = "Your desktop saves screenshots to Elsewhere\nQuillmere watches Screenshots"


def take(desktop, folder):
    return captures.take(desktop, folder, ["gnome-screenshot"])


def journey(desktop):
    elsewhere = os.path.join(desktop.home, "Elsewhere")
    os.mkdir(elsewhere)
    # Of the installed tools it is then the one that someone has set up.
    desktop.save_setting("org/gnome/gnome-screenshot", "auto-save-directory", f"'file://{elsewhere}'")
    desktop.choose_folder()
    desktop.launch()
    desktop.wait_for(MISMATCH, "label", "Quillmere")

    open_settings(desktop, "Screenshots")
    desktop.wait_for(DIFFERS, "label", "Settings")
    desktop.click(desktop.wait_for("Save Screenshots to Screenshots", "push button", "Settings"))
    desktop.click(desktop.wait_for("Save Screenshots Here", "push button", QUESTION))
    desktop.wait_for("Your desktop now saves screenshots to Screenshots", "label", "Settings")
    expect("the Inbox no longer warns", not desktop.find(MISMATCH, "label", "Quillmere"))
    shot = take(desktop, desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()

    desktop.click(desktop.wait_for("Undo", "push button", "Settings"))
    desktop.wait_for(DIFFERS, "label", "Settings")
    take(desktop, elsewhere)
    hold_for("no popup comes", lambda: not desktop.popup.is_shown, 2)
    expect("the watched folder has the first one alone", os.listdir(desktop.folder) == [os.path.basename(shot)])
    expect("so has the list", len(desktop.records()) == 1)


run_journey("desktop-folder", journey)
