#!/usr/bin/python3
"""Several screenshots of different states are selected and decided together: each command acts on those that it can,
and nothing is thrown away without an answer to the question."""

import contextlib
import os
import subprocess
import time

import captures
from harness import JourneyFailed, expect, hold_for, run_journey, wait_until
from inbox import (TITLE, TRASH_ONE, TRASH_SEVERAL, expect_untouched, file_names, open_inbox, pending, saved,
                   wait_for_selection)
from steps import TrashEntry, make_temporary, row_of, wait_for_row

# More than the server's delay before it repeats, and long enough for many repeats.
HELD = 1.5

# Two clicks at one place are two only after this time.
DOUBLE_CLICK = 0.5


@contextlib.contextmanager
def held(desktop, key):
    desktop.run("xdotool", "keydown", key, check=True)
    try:
        yield
    finally:
        desktop.run("xdotool", "keyup", key, check=True)


def click(desktop, shot, key=None):
    row = row_of(desktop, shot)
    if key:
        with held(desktop, key):
            desktop.click(row)
    else:
        desktop.click(row)


def select_by_pointer(desktop, top, middle, bottom):
    names = file_names([top, middle, bottom])
    click(desktop, top)
    wait_for_selection(desktop, names[:1], "a click chooses one")
    click(desktop, bottom, "shift")
    wait_for_selection(desktop, names, "Shift chooses all up to there")
    click(desktop, middle, "ctrl")
    wait_for_selection(desktop, [names[0], names[2]], "Control takes one out")
    time.sleep(DOUBLE_CLICK)
    click(desktop, middle, "ctrl")
    wait_for_selection(desktop, names, "and puts it back")
    desktop.wait_for("3 Screenshots Selected", "heading", TITLE)
    for line in ("1 waiting for a decision", "1 Temporary", "1 Saved"):
        desktop.wait_for(line, "label", TITLE)


def go_on(desktop, key, is_there):
    """A key that comes while a menu is still opening or closing is lost to it."""
    for _ in range(3):
        desktop.key(key)
        with contextlib.suppress(JourneyFailed):
            return wait_until(f"{key} goes on", is_there, 3)
    raise JourneyFailed(f"{key} does not go on")


def choose(desktop, focus, *names):
    """Items of the menu bar by their names, with the keyboard alone."""
    go_on(desktop, "Alt_L", lambda: focus.name == "File")
    for menu in ("Edit", "Screenshot"):
        go_on(desktop, "Right", lambda menu=menu: focus.name == menu)
    desktop.key("Down")
    for depth, name in enumerate(names):
        if depth:
            desktop.key("Right")
        for _ in range(30):
            if wait_until("an item has the keyboard", lambda: focus.name) == name:
                break
            before = focus.name
            go_on(desktop, "Down", lambda before=before: focus.name != before)
        expect(f"Down comes to {name}", focus.name == name)
    desktop.key("Return")


def ask(desktop, title):
    desktop.key("Delete")
    wait_until(f"it asks “{title}”", lambda: desktop.active_title() == title)


def answered(desktop, title):
    wait_until("the question is gone", lambda: not desktop.window_ids(title))
    wait_until("the Inbox has the keyboard", lambda: desktop.active_title() == TITLE)


def asks_before_it_throws_away(desktop, shots):
    states = {shot: desktop.state_of(shot) for shot in shots}
    ask(desktop, TRASH_SEVERAL)
    desktop.wait_for("3 screenshots will be removed from their folders and from Quillmere. You can recover them from "
                     "Trash.", "label", TRASH_SEVERAL)
    desktop.key("Return")
    answered(desktop, TRASH_SEVERAL)
    expect_untouched(desktop, states)

    # Typed on the question, and held down over it, Delete answers nothing.
    with held(desktop, "Delete"):
        wait_until("Delete held down asks", lambda: desktop.active_title() == TRASH_SEVERAL)
        hold_for("and answers nothing", lambda: desktop.active_title() == TRASH_SEVERAL, HELD)
    desktop.key("Delete")
    desktop.key("ctrl+BackSpace")
    hold_for("there is one question", lambda: len(desktop.window_ids(TRASH_SEVERAL)) == 1, 1)
    desktop.key("Escape")
    answered(desktop, TRASH_SEVERAL)
    hold_for("no other question follows", lambda: not desktop.window_ids(TRASH_SEVERAL), 1)
    expect_untouched(desktop, states)

    ask(desktop, TRASH_SEVERAL)
    button = desktop.wait_for("Move to Trash", "push button", TRASH_SEVERAL)
    desktop.key("Tab")
    wait_until("Tab goes to the other button", lambda: button.is_focused)
    desktop.key("space")
    for shot in shots:
        wait_until(f"{shot} is in the Trash", lambda shot=shot: TrashEntry(desktop, shot).is_whole)
        wait_until("its record is gone", lambda shot=shot: desktop.record_of(shot) is None)
        expect("the file is gone from its folder", not os.path.exists(shot))


def restore(desktop, shots):
    """With a tool that knows nothing of this program."""
    for _ in shots:
        subprocess.run(["trash-restore"], cwd=desktop.folder, env=desktop.environment, input="0\n", text=True,
                       capture_output=True, timeout=30)
    for shot in shots:
        with open(shot, "rb") as file:
            expect("its bytes are the same", file.read() == captures.png())


def delete_in_a_name(desktop, focus, shot):
    click(desktop, shot)
    wait_for_selection(desktop, file_names([shot]))
    desktop.key("F2")
    wait_until("the name is edited", lambda: focus.name == "Name")
    field = focus.last
    expect("the whole name without its extension is edited", os.path.basename(shot) == field.text + ".png")
    with held(desktop, "Delete"):
        wait_until("Delete takes away text", lambda: field.text == "")
        hold_for("and nothing else", lambda: not desktop.window_ids(TRASH_ONE), HELD)
    desktop.key("ctrl+BackSpace")
    hold_for("nothing is asked", lambda: not desktop.window_ids(TRASH_ONE), 1)
    expect_untouched(desktop, {shot: "permanent"})
    desktop.key("Escape")
    wait_until("the list has the keyboard again", lambda: row_of(desktop, shot).is_focused)
    expect_untouched(desktop, {shot: "permanent"})


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    kept = saved(desktop, "Saved.png")
    waiting = pending(desktop)
    temporary = captures.save(desktop.folder)
    make_temporary(desktop, temporary)
    open_inbox(desktop)
    select_by_pointer(desktop, temporary, waiting, kept)
    focus = desktop.program.tree.focus()
    choose(desktop, focus, "Mark Temporary", "15 Minutes")
    wait_until("the pending one is temporary", lambda: desktop.state_of(waiting) == "temporary")
    expect("the saved one is still saved", desktop.state_of(kept) == "permanent")
    wait_for_row(desktop, waiting, "Temporary")
    expect("each has its own time", desktop.record_of(waiting)["expiresAt"] > desktop.record_of(temporary)["expiresAt"])

    newest = pending(desktop)
    open_inbox(desktop)
    click(desktop, newest)
    click(desktop, kept, "shift")
    wait_for_selection(desktop, file_names([newest, temporary, waiting, kept]))
    choose(desktop, focus, "Keep")
    for shot in (newest, temporary, waiting, kept):
        wait_until(f"{shot} is kept", lambda shot=shot: desktop.state_of(shot) == "permanent")
        expect("without a time", "expiresAt" not in desktop.record_of(shot))

    click(desktop, newest, "ctrl")
    wait_for_selection(desktop, file_names([temporary, waiting, kept]))
    asks_before_it_throws_away(desktop, (temporary, waiting, kept))
    expect_untouched(desktop, {newest: "permanent"})
    delete_in_a_name(desktop, focus, newest)
    restore(desktop, (temporary, waiting, kept))


if __name__ == "__main__":
    run_journey("inbox-selection", journey)
