#!/usr/bin/python3
"""Folders and places are chosen in the desktop's own dialogs, where a portal shows them; the popup goes on meanwhile."""

import os
import urllib.parse

import captures
from fake_chooser_portal import FakeChooserPortal
from harness import expect, hold_for, run_journey, wait_until
from steps import FOLDER_DIALOG, answer_file_dialog, open_settings, select_row, settled_record


def uri(path):
    return "file://" + urllib.parse.quote(os.fsencode(path))


def ask_for_folder(desktop):
    desktop.click(desktop.wait_for("Choose Screenshot Folder", "push button", "Settings"))


def choose_folder(desktop, portal):
    other = os.path.join(desktop.home, os.fsdecode(b"Captures \xe9"))
    os.mkdir(other)
    open_settings(desktop, "Screenshots")
    ask_for_folder(desktop)
    asked = portal.asked()
    expect("a folder is asked for", asked["method"] == "OpenFile" and asked["options"]["directory"])
    expect("it begins at the watched one", asked["options"]["current_folder"] == desktop.folder + "\0")
    settings = int(desktop.window_ids("Settings")[0])
    expect(f"it belongs to the settings, not to {asked['parent']}", asked["parent"] == f"x11:{settings:x}")
    expect("the title explains", "watch" in asked["title"])

    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("it is kept meanwhile", lambda: desktop.state_of(shot) == "permanent")
    portal.answer(1)
    hold_for("nothing has changed", lambda: desktop.find("Screenshots", "label", "Settings"), 1)
    expect("no other dialog comes", not desktop.window_ids(FOLDER_DIALOG))

    ask_for_folder(desktop)
    portal.asked()
    portal.answer(0, uri(other))
    desktop.wait_for("Captures \ufffd", "label", "Settings")
    return other


def move(desktop, portal, folder):
    shot = captures.save(folder)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    settled_record(desktop, shot)
    desktop.action("inbox")
    wait_until("the Inbox is in front", lambda: desktop.active_title() == "Quillmere")
    select_row(desktop, shot)
    desktop.click(desktop.wait_for("Move and Rename…", "push button", "Quillmere"))
    asked = portal.asked()
    expect("a place is asked for", asked["method"] == "SaveFile")
    expect("with the present name", asked["options"]["current_name"] == os.path.basename(shot))
    moved = os.path.join(desktop.home, "Train.png")
    portal.answer(0, uri(moved.removesuffix(".png")))
    wait_until("it is there", lambda: desktop.state_of(moved) == "permanent")
    expect("and no longer here", os.path.exists(moved) and not os.path.exists(shot))


def lose_portal(desktop, portal):
    another = os.path.join(desktop.home, "Another")
    os.mkdir(another)
    open_settings(desktop, "Screenshots")
    ask_for_folder(desktop)
    portal.asked()
    portal.vanish()
    answer_file_dialog(desktop, FOLDER_DIALOG, another)
    desktop.wait_for("Another", "label", "Settings")


def journey(desktop):
    desktop.choose_folder()
    portal = FakeChooserPortal(desktop)
    desktop.launch()
    folder = choose_folder(desktop, portal)
    move(desktop, portal, folder)
    lose_portal(desktop, portal)


run_journey("chosen-by-portal", journey)
