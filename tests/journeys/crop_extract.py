#!/usr/bin/python3
"""In the Inbox the main one of two windows is cut out into a screenshot of its own, which leads back to the one that it
came from; a file that is renamed in the middle can't be replaced but still be cropped; a screenshot that waits for its
decision is kept whole."""

import os

import captures
from crop_sheet import CANCEL, ESTIMATED, HELP, KEEP, NOT_REPLACEABLE, REPLACE, SAVE, WHOLE, CropSheet, bytes_of, crop_of
from harness import expect, run_journey, wait_until
from inbox_steps import keep_new, open_inbox
from pictures import png_size
from steps import row_of, trashed_files
from windows import Windows, open_terminal


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot, frame = capture_of_two_windows(desktop)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    open_inbox(desktop)
    sheet = CropSheet(desktop)
    the_main_window(desktop, sheet, shot, frame)
    renamed_from_outside(desktop, sheet)
    kept_whole(desktop, sheet)
    expect("nothing was thrown away", not trashed_files(desktop))


def capture_of_two_windows(desktop):
    desktop.run("xsetroot", "-solid", "#3a6ea5", check=True)
    open_terminal(desktop, "Behind", "70x24", (60, 60))
    open_terminal(desktop, "Front", "80x22", (300, 220))
    windows = Windows(desktop)

    def are_drawn():
        left, top, right, bottom = windows.frame("Front")
        behind = windows.frame("Behind")
        places = [(left + 40, bottom - 40), (right - 40, top + 40), (behind[0] + 40, behind[3] - 40)]
        return all(min(windows.pixel(place)) > 240 for place in places)

    wait_until("both are drawn", are_drawn)
    shot, frame = captures.scrot_named(desktop), windows.outer_frame("Front")
    windows.close("Front")
    windows.close("Behind")
    return shot, frame


def the_main_window(desktop, sheet, shot, frame):
    before = bytes_of(shot)
    sheet.open(shot, "Extract Window…", ESTIMATED)
    expect(f"the main window is selected: {sheet.bounds}, not {frame}", sheet.bounds == frame)
    sheet.press(SAVE)
    sheet.wait_gone()
    crop = crop_of(shot)
    wait_until("the new screenshot is listed", lambda: desktop.record_of(crop))
    expect("with its origin", desktop.record_of(crop)["sourceItemID"] == desktop.record_of(shot)["id"])
    expect("it is kept", desktop.state_of(crop) == "permanent")
    expect("it holds the window", png_size(crop) == frame[2:])
    expect("the original is as it was", bytes_of(shot) == before)
    wait_until("the new one is chosen", lambda: row_of(desktop, crop).is_selected)
    stem = os.path.splitext(os.path.basename(shot))[0]
    desktop.click(desktop.wait_for(f"Cropped from “{stem}”.", "push button", "Quillmere"))
    wait_until("its name leads back", lambda: row_of(desktop, shot).is_selected)


def renamed_from_outside(desktop, sheet):
    shot = keep_new(desktop, width=400, height=300)
    sheet.open(shot, "Crop…", HELP)
    expect("nothing is selected", not sheet.button(SAVE).is_enabled and not sheet.button(REPLACE).is_enabled)
    sheet.press(WHOLE)
    wait_until("it can be replaced", lambda: sheet.button(REPLACE).is_enabled)
    renamed = os.path.join(desktop.folder, "From outside.png")
    os.rename(shot, renamed)
    wait_until("it can be no longer", lambda: not sheet.button(REPLACE).is_enabled)
    sheet.wait_for_text(NOT_REPLACEABLE)
    sheet.type_bounds(10, 20, 30, 40)
    sheet.press(SAVE)
    sheet.wait_gone()
    crop = crop_of(renamed)
    wait_until("the crop is listed", lambda: desktop.record_of(crop))
    expect("of the size that was typed", png_size(crop) == (30, 40))
    expect("the file stays under its new name", bytes_of(renamed) == captures.png(width=400, height=300))


def kept_whole(desktop, sheet):
    shot = captures.save(desktop.folder, width=200, height=100)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Dismiss Screenshot Popup")
    desktop.popup.wait_gone()
    sheet.open(shot, "Crop…", HELP)
    sheet.press(CANCEL)
    sheet.wait_gone()
    expect("it still waits", desktop.state_of(shot) == "pending")
    sheet.open(shot, "Crop…", HELP)
    sheet.press(KEEP)
    sheet.wait_gone()
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent")
    expect("whole", bytes_of(shot) == captures.png(width=200, height=100))



run_journey("crop-extract", journey, window_manager="openbox+picom")
