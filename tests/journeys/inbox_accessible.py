#!/usr/bin/python3
"""The Inbox over the accessibility bus alone, without the pointer: everything in it is named, and listing, reading,
searching and deciding are done as a screen reader does them."""

import os

import captures
from harness import expect, run_journey, wait_until
from inbox import (TITLE, TRASH_ONE, expect_untouched, file_names, open_inbox, pending, rows, saved, selected,
                   wait_for_selection)
from steps import TrashEntry, make_temporary, settled_record, wait_for_row

# Name, role and hint of what can be read and done with one pending screenshot, in the order of a screen reader.
DETAIL = [
    ("Keep", "push button", "Keep this screenshot without a deletion timer"),
    ("Move and Rename…", "push button", "Choose a new name and location, and keep the screenshot"),
    ("Move to Trash", "push button", "Move this screenshot to Trash"),
    ("Screenshot preview", "graphic", "Drag this preview into another app to put the screenshot’s file there."),
    ("Extract Text", "push button", "Recognize and copy text from this screenshot"),
    ("Share", "push button", "Send this screenshot by email, or open it in another app"),
    ("More", "push button", "Everything that can be done with the selected screenshots"),
    ("Search", "text", "Search"),
    ("Filter", "push button", "All Screenshots"),
    ("Screenshots", "list", "Drag this screenshot into another app to put its file there. Ctrl+C copies it."),
]
# What a person does or is to be read; the rest groups them.
SPEAKING = ("push button", "button menu", "text", "entry", "check box", "list", "list item", "heading", "label",
            "graphic", "combo box", "menu item", "link")
KEYS = {
    "Settings": ["Ctrl+,"], "Close Window": ["Ctrl+W"], "Quit Quillmere": ["Ctrl+Q"], "Find": ["Ctrl+F"],
    "Rename": ["F2"], "Quick Look": ["Ctrl+Y"], "Copy Screenshot": ["Ctrl+C"], "Crop…": ["Ctrl+K"],
    "Move to Trash": ["Ctrl+Backspace"], "Select All": ["Ctrl+A"],
}


def showing(desktop, title=TITLE):
    return desktop.program.tree.find_all(window=title)


def everything_is_named(desktop, title=TITLE):
    for control in showing(desktop, title):
        expect(f"{control} in “{title}” has a role", control.role not in ("invalid role", "unknown", ""))
        expect(f"{control} in “{title}” has a name", control.role not in SPEAKING or control.name)


def toggle(desktop, shot):
    """Adds its row to the selection, or takes it out."""
    row = desktop.wait_for(os.path.basename(shot), "list item", TITLE)
    row.do("Toggle")


def select(desktop, shot):
    for row in desktop.program.tree.find_all(None, "list item", TITLE):
        if row.is_selected != (row.name == os.path.basename(shot)):
            row.do("Toggle")
    wait_for_selection(desktop, file_names([shot]))


def press(desktop, name, title=TITLE):
    desktop.wait_for(name, "push button", title).do("Press")


def rows_are_read(desktop, shots):
    expect(f"all are listed: {rows(desktop)}", rows(desktop) == file_names(shots))
    states = [row.description.partition(",")[0] for row in desktop.program.tree.find_all(None, "list item", TITLE)]
    expect(f"each with its state: {states}",
           states[0].startswith("Temporary until ") and states[1:] == ["Pending decision", "Saved"])
    for row in desktop.program.tree.find_all(None, "list item", TITLE):
        expect(f"{row} has its time: {row.description}", row.description.count(":") >= 1)


def detail_is_read(desktop, shot):
    select(desktop, shot)
    desktop.wait_for(os.path.basename(shot), "label", TITLE)
    desktop.wait_for("Pending decision", "label", TITLE)
    for name, role, hint in DETAIL:
        control = desktop.wait_for(name, role, TITLE)
        expect(f"the hint of {control}: {control.description}", control.description == hint)
    everything_is_named(desktop)


def search(desktop, shots, found):
    field = desktop.wait_for("Search", "text", TITLE)
    expect("it takes a text", field.write(os.path.basename(found)[:4].lower()))
    wait_until("the list narrows to it", lambda: rows(desktop) == file_names([found]))
    everything_is_named(desktop)
    press(desktop, "Clear Search")
    wait_until("the whole list is back", lambda: rows(desktop) == file_names(shots))


def menu_bar_is_read(desktop):
    tree = desktop.program.tree
    menus = [item.name for item in tree.find_all(None, "menu item", TITLE, showing=False)
             if item.name in ("File", "Edit", "Screenshot", "Help")]
    expect(f"the menus: {menus}", menus == ["File", "Edit", "Screenshot", "Help"])
    for name, keys in KEYS.items():
        item = tree.find(name, "menu item", TITLE, showing=False)
        expect(f"there is an item {name}", item)
        expect(f"the key of {name}: {item.keys}", item.keys == keys)


def decide(desktop, waiting, kept):
    select(desktop, waiting)
    press(desktop, "Keep")
    wait_until("it is kept", lambda: desktop.state_of(waiting) == "permanent")
    wait_for_row(desktop, waiting, "Saved")
    wait_until("there is nothing to keep", lambda: not desktop.find("Keep", "push button", TITLE))

    select(desktop, kept)
    for answer in ("Cancel", "Move to Trash"):
        press(desktop, "Move to Trash")
        sheet = wait_until("it asks", lambda: next(
            (top for top in desktop.program.tree.windows() if top.name == TRASH_ONE and top.is_showing), None))
        expect(f"an alert asks, not a {sheet.role}", sheet.role in ("alert", "alert message"))
        desktop.wait_for(f"“{os.path.basename(kept)}” will be removed from its folder and from Quillmere. You can "
                         "recover it from Trash.", "label", TRASH_ONE)
        everything_is_named(desktop, TRASH_ONE)
        press(desktop, answer, TRASH_ONE)
        wait_until("the question is gone", lambda: not desktop.find(window=TRASH_ONE))
        if answer == "Cancel":
            expect_untouched(desktop, {kept: "permanent"})
    wait_until("it is in the Trash", lambda: TrashEntry(desktop, kept).is_whole)
    wait_until("its row is gone", lambda: os.path.basename(kept) not in rows(desktop))
    expect_untouched(desktop, {waiting: "permanent"})


def windows_on_screen(desktop):
    """Those of the program, its menus among them."""
    return set(desktop.run("xdotool", "search", "--onlyvisible", "--pid", str(desktop.program.pid)).split())


def several(desktop, shots):
    for shot in shots:
        if os.path.basename(shot) not in selected(desktop):
            toggle(desktop, shot)
    desktop.wait_for(f"{len(shots)} Screenshots Selected", "heading", TITLE)
    everything_is_named(desktop)
    # Its answer comes at once, not when the menu is closed again.
    focus = desktop.program.tree.focus()
    button = desktop.wait_for("Mark Temporary", "button menu", TITLE)
    closed = windows_on_screen(desktop)
    button.do("ShowMenu")
    wait_until("the menu is open", lambda: windows_on_screen(desktop) > closed)
    desktop.key("Down")
    wait_until("the menu has the keyboard", lambda: focus.name == "1 Minute")
    desktop.key("Escape")
    # An item of a menu bar is pressed without opening its menu.
    desktop.program.tree.find("15 Minutes", "menu item", TITLE, showing=False).do("Press")
    wait_until("the pending one is temporary", lambda: desktop.state_of(shots[-1]) == "temporary")
    press(desktop, "Keep")
    for shot in shots:
        wait_until(f"{shot} is kept", lambda shot=shot: desktop.state_of(shot) == "permanent")


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    kept = saved(desktop, "Receipt.png")
    waiting = pending(desktop)
    temporary = captures.save(desktop.folder)
    make_temporary(desktop, temporary)
    shots = [temporary, waiting, kept]
    for shot in shots:
        settled_record(desktop, shot)
    open_inbox(desktop)
    rows_are_read(desktop, shots)
    everything_is_named(desktop)
    detail_is_read(desktop, waiting)
    menu_bar_is_read(desktop)
    search(desktop, shots, kept)
    decide(desktop, waiting, kept)
    several(desktop, [temporary, waiting, pending(desktop)])


if __name__ == "__main__":
    run_journey("inbox-accessible", journey)
