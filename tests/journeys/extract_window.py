#!/usr/bin/python3
"""Of two windows that overlap the popup shows the front one alone, and Keep saves it in the screenshot's place; the
whole screenshot can be had back from the Trash. A picture without a window says so."""

import os
import subprocess

import captures
from harness import expect, run_journey, wait_until
from pictures import png_size
from steps import TrashEntry, popup_shows_picture
from windows import Windows, open_terminal


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    desktop.run("xsetroot", "-solid", "#3a6ea5", check=True)
    open_terminal(desktop, "Behind", "70x24", (60, 60))
    open_terminal(desktop, "Front", "80x22", (300, 220))
    windows = Windows(desktop)
    wait_until("both are drawn", lambda: are_drawn(windows))
    the_window_takes_the_place(desktop, windows)
    a_picture_of_one(desktop)
    windows.close("Front")
    windows.close("Behind")
    a_picture_without_one(desktop)


def are_drawn(windows):
    """The front one whole, the other where it is not covered."""
    left, top, right, bottom = windows.frame("Front")
    behind = windows.frame("Behind")
    places = [(left + 40, bottom - 40), (right - 40, top + 40), (behind[0] + 40, behind[3] - 40)]
    return all(min(windows.pixel(place)) > 240 for place in places)


def the_window_takes_the_place(desktop, windows):
    shot = captures.scrot_named(desktop)
    with open(shot, "rb") as file:
        whole = file.read()
    frame = windows.outer_frame("Front")
    desktop.popup.wait_for(shot)
    record = wait_until("it is known what it shows", lambda: known(desktop, shot))
    expect(f"the window in front, to the pixel: {record}", f"^{geometry(frame)}" in record["knownWindows"])
    expect("of the screen", record["captureKind"] == "display")
    popup_shows_picture(desktop, "Screenshot preview")
    desktop.popup.press("Extract Window", role="check box")
    popup_shows_picture(desktop, "Extracted window preview")
    expect("the toggle is on", desktop.popup.find("Extract Window").is_checked)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent")
    expect(f"the file holds the window of {frame}", png_size(shot) == frame[2:])
    trashed = wait_until("the whole screenshot is in the Trash", lambda: whole_in_trash(desktop, shot))
    expect("with its bytes", bytes_of(trashed.file) == whole)

    # A file of that name stands there; it is put aside, as a person would who wants both.
    kept = os.path.join(desktop.folder, "The window.png")
    os.rename(shot, kept)
    wait_until("the record follows", lambda: desktop.state_of(kept) == "permanent")
    restore(desktop, shot)
    expect("what came back is the screenshot", bytes_of(shot) == whole)
    expect("the window stays", png_size(kept) == frame[2:])
    desktop.popup.wait_for(shot)
    desktop.popup.press("Dismiss Screenshot Popup")
    desktop.popup.wait_gone()


def a_picture_without_one(desktop):
    region = os.path.join(desktop.folder, captures.capture_name())
    desktop.run("scrot", "-a", "100,100,300,200", region, check=True)
    before = bytes_of(region)
    desktop.popup.wait_for(region)
    popup_shows_picture(desktop, "Screenshot preview")
    desktop.popup.press("Extract Window", role="check box")
    wait_until("it says so", lambda: desktop.popup.find("No window found"))
    wait_until("the toggle is off again", lambda: not desktop.popup.find("Extract Window").is_checked)
    popup_shows_picture(desktop, "Screenshot preview")
    wait_until("the notice goes", lambda: not desktop.popup.find("No window found"))
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("it is kept", lambda: desktop.state_of(region) == "permanent")
    expect("as it was", bytes_of(region) == before)


def a_picture_of_one(desktop):
    """Nobody marked it as one: its size is the window's."""
    alone = os.path.join(desktop.folder, captures.capture_name())
    desktop.run("scrot", "-u", "-b", alone, check=True)
    desktop.popup.wait_for(alone)
    wait_until("it is known for a window", lambda: (known(desktop, alone) or {}).get("captureKind") == "window")
    popup_shows_picture(desktop, "Screenshot preview")
    desktop.popup.press("Extract Window", role="check box")
    wait_until("it says so", lambda: desktop.popup.find("This is already a window"))
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def known(desktop, path):
    """Its record, once the windows in it are known."""
    record = desktop.record_of(path)
    return record if record and "knownWindows" in record else None


def geometry(frame):
    return "{2}x{3}+{0}+{1}".format(*frame)


def whole_in_trash(desktop, shot):
    entry = TrashEntry(desktop, shot)
    return entry if entry.is_whole else None


def restore(desktop, path):
    """By the command-line Trash that people use; it asks which, and there is one."""
    subprocess.run(["trash-restore", path], input="0\n", env=desktop.environment, capture_output=True, text=True,
                   timeout=60, check=True)
    expect("it is back in its place", os.path.exists(path))
    expect("the Trash knows it no longer", TrashEntry(desktop, path).info is None)


def bytes_of(path):
    with open(path, "rb") as file:
        return file.read()


run_journey("extract-window", journey, window_manager="openbox+picom")
