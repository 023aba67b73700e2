#!/usr/bin/python3
"""A screenshot is renamed in the Inbox: with Return it has the typed name; whatever else ends the field leaves the file
as it is, also when something happens to it in the middle."""

import os

import captures
from disks import Disk, can_mount
from harness import expect, hold_for, run_journey, wait_until
from inbox_steps import RenameField, begin_in_list, choose_in_context_menu, choose_row, keep_new, open_inbox, stem_of
from speech import AccessibilityListener
from steps import choose_folder_in_dialog, row_of, wait_for_row
from windows import Windows, open_terminal

TYPED = "Paid invoice"


def journey(desktop):
    disk = Disk(desktop) if can_mount else None
    folder = desktop.folder
    if disk:
        disk.connect()
        folder = os.path.join(disk.point, "Screenshots")
        os.mkdir(folder)
    desktop.launch()
    choose_folder_in_dialog(desktop, folder)
    other, shot = (keep_new(desktop, folder) for _ in range(2))
    open_inbox(desktop)
    field = RenameField(desktop)

    shot = with_return(desktop, field, shot)
    with_escape(desktop, field, shot)
    a_click_elsewhere(desktop, field, shot, other)
    an_unusable_name(desktop, field, shot, other)
    shot = from_outside(desktop, field, shot)
    another_window(desktop, field, shot)
    shot = by_the_context_menu(desktop, field, shot)
    shot = in_the_header(desktop, field, shot)
    if disk:
        the_disk_leaves(desktop, field, shot, disk)
    else:
        print("Only root can mount a disk; that part is left out.")


def expect_file(desktop, shot):
    expect("its bytes are the same", open(shot, "rb").read() == captures.png())
    expect("its record is of it", desktop.state_of(shot) == "permanent")
    expect("there is no other", len(os.listdir(os.path.dirname(shot))) == 2 and len(desktop.records()) == 2)


def renamed_to(desktop, shot, stem):
    """The file has the name with the ending that it had, and its record too."""
    renamed = os.path.join(os.path.dirname(shot), stem + os.path.splitext(shot)[1])
    wait_until(f"the file is called {stem}", lambda: os.path.exists(renamed) and desktop.record_of(renamed))
    expect_file(desktop, renamed)
    row_of(desktop, renamed)
    return renamed


def with_return(desktop, field, shot):
    reader = AccessibilityListener(desktop, ["object:announcement", "object:state-changed:showing"])
    begin_in_list(desktop, field, shot)
    field.type(TYPED)
    desktop.key("Return")
    field.wait_gone()
    renamed = renamed_to(desktop, shot, TYPED)
    wait_until("it is told", lambda: [text for text, _ in reader.announced()] == [f"Renamed to {TYPED}."])
    reader.stop()
    return renamed


def with_escape(desktop, field, shot):
    begin_in_list(desktop, field, shot)
    field.type("Never")
    desktop.key("Escape")
    field.wait_gone()
    expect_file(desktop, shot)
    expect("the row stays chosen, with the keyboard", row_of(desktop, shot).is_focused)


def a_click_elsewhere(desktop, field, shot, other):
    begin_in_list(desktop, field, shot)
    field.type("Never")
    desktop.click(row_of(desktop, other))
    field.wait_gone()
    wait_until("that row is chosen", lambda: row_of(desktop, other).is_focused)
    expect_file(desktop, shot)


def an_unusable_name(desktop, field, shot, other):
    """One that exists gets another number; of one that is a path only its letters are taken."""
    for typed in ("..", "   ", "/"):
        begin_in_list(desktop, field, shot)
        field.type(typed)
        desktop.key("Return")
        field.wait_gone()
        desktop.action("none", wait=True)
        # What cannot be used is told.
        if desktop.active_title() != "Quillmere":
            desktop.key("Return")
            wait_until("the words are gone", lambda: desktop.active_title() == "Quillmere")
        expect_file(desktop, shot)
    expect("the other is untouched", open(other, "rb").read() == captures.png())


def from_outside(desktop, field, shot):
    begin_in_list(desktop, field, shot)
    field.type("Never")
    renamed = os.path.join(os.path.dirname(shot), "From outside.png")
    os.rename(shot, renamed)
    field.wait_gone()
    row_of(desktop, renamed)
    # Nobody sees the field any more; what a person goes on typing must not name it.
    desktop.type("more")
    desktop.key("Return")
    wait_until("its record is of it", lambda: desktop.record_of(renamed))
    hold_for("it keeps that name", lambda: os.path.exists(renamed), 1)
    expect_file(desktop, renamed)
    # To the row Return means to show it.
    wait_until("it is shown", lambda: desktop.active_title() == "From outside.png")
    desktop.key("Escape")
    wait_until("the Inbox has the keyboard again", lambda: desktop.active_title() == "Quillmere")
    return renamed


def another_window(desktop, field, shot):
    open_terminal(desktop, "Other", "40x6", (40, 20))
    Windows(desktop).activate("Quillmere")
    begin_in_list(desktop, field, shot)
    field.type("Never")
    Windows(desktop).activate("Other")
    field.wait_gone()
    Windows(desktop).activate("Quillmere")
    hold_for("it does not come back", lambda: not field.is_open, 0.5)
    Windows(desktop).close("Other")
    expect_file(desktop, shot)


def by_the_context_menu(desktop, field, shot):
    choose_row(desktop, shot)
    field.begin(stem_of(shot), lambda: choose_in_context_menu(desktop, shot, "Rename"))
    field.type("By the menu")
    desktop.key("Return")
    field.wait_gone()
    return renamed_to(desktop, shot, "By the menu")


def in_the_header(desktop, field, shot):
    """A double click on the large name; the row's stays a row."""
    choose_row(desktop, shot)
    name = desktop.wait_for(os.path.basename(shot), "label", "Quillmere")
    place = desktop.settled_place_of(name)
    twice = ["click", "--repeat", "2", "--delay", "60", "1"]
    field.begin(stem_of(shot), lambda: desktop.run("xdotool", "mousemove", *map(str, place), *twice, check=True))
    expect("where it was clicked", desktop.find("Name", "text", "Quillmere"))
    field.type("In the header")
    desktop.key("Return")
    field.wait_gone()
    return renamed_to(desktop, shot, "In the header")


def the_disk_leaves(desktop, field, shot, disk):
    before = desktop.record_of(shot)
    begin_in_list(desktop, field, shot)
    field.type("Never")
    disk.pull_out()
    field.wait_gone()
    wait_for_row(desktop, shot, "Unavailable")
    expect("its record is as it was", desktop.record_of(shot) == before)
    desktop.key("F2")
    hold_for("no field comes for what is away", lambda: not field.is_open, 0.5)
    disk.connect()
    wait_for_row(desktop, shot, "Saved")
    expect_file(desktop, shot)


run_journey("inbox-rename", journey)
