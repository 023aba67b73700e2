#!/usr/bin/python3
"""On a full disk the crop editor says that nothing could be saved, keeps the selection, and neither loses nor leaves
anything; with room again the same sheet saves."""

import os

import captures
from crop_sheet import HELP, REPLACE, SAVE, CropSheet, bytes_of, crop_of
from disks import Disk, can_mount
from harness import expect, run_journey, wait_until
from inbox_steps import open_inbox
from pictures import noise_png, png_size
from steps import choose_folder_in_dialog

REASON = "No space left on device."
NOT_SAVED = (f"The new image couldn’t be saved. {REASON} Check that the screenshot folder is available, then try "
             "again.")
NOT_REPLACED = (f"The original couldn’t be replaced. {REASON} Nothing was changed. Check that the screenshot folder is "
                "available, then try again, or save the crop as a new screenshot.")


def journey(desktop):
    if not can_mount:
        print("Only root can mount a disk.")
        return
    disk = Disk(desktop)
    disk.connect()
    folder = os.path.join(disk.point, "Screenshots")
    os.mkdir(folder)
    desktop.launch()
    choose_folder_in_dialog(desktop, folder)
    shot = os.path.join(folder, captures.capture_name())
    whole = noise_png(600, 500)
    with open(shot, "wb") as file:
        file.write(whole)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    open_inbox(desktop)
    sheet = CropSheet(desktop)
    sheet.open(shot, "Crop…", HELP)
    sheet.type_bounds(1, 2, 590, 480)
    fill(disk)
    sheet.press(SAVE)
    sheet.wait_for_text(NOT_SAVED)
    expect_unchanged(sheet, shot, whole)
    sheet.press(REPLACE)
    desktop.click(desktop.wait_for("Replace Original", "push button"))
    sheet.wait_for_text(NOT_REPLACED)
    expect_unchanged(sheet, shot, whole)
    sheet.press("Copy Cropped Image")  # that takes no room
    sheet.wait_for_text("Cropped image copied.")

    os.remove(os.path.join(disk.point, "filler"))
    sheet.press(SAVE)
    sheet.wait_gone()
    wait_until("the crop is listed", lambda: desktop.record_of(crop_of(shot)))
    expect("it is whole", png_size(crop_of(shot)) == (590, 480))
    expect("the original is as it was", bytes_of(shot) == whole)


def fill(disk):
    with open(os.path.join(disk.point, "filler"), "wb", buffering=0) as file:
        for size in (1 << 20, 1 << 12, 1):
            try:
                while True:
                    file.write(b"x" * size)
            except OSError:
                continue


def expect_unchanged(sheet, shot, whole):
    expect("the selection stays", sheet.bounds == (1, 2, 590, 480))
    expect("the original is whole", bytes_of(shot) == whole)
    folder = os.path.dirname(shot)
    expect(f"nothing is left behind: {os.listdir(folder)}", os.listdir(folder) == [os.path.basename(shot)])
    expect("it has its record", not os.path.exists(crop_of(shot)))


run_journey("crop-full-disk", journey)
