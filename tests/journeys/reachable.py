#!/usr/bin/python3
"""The program is found by a second start, also after the session bus was restarted, and opens what that one asks for;
where another process holds its marker, it says so instead of ending without a word."""

import fcntl
import os

import captures
from harness import POPUP_TITLE, expect, run_journey, wait_until
from inbox import TITLE, rows, wait_for_selection

TAKEN = "Quillmere Is Already Open"


def start_again(desktop, *arguments):
    second = desktop.start([desktop.binary, *arguments], stdout=desktop.errors, stderr=desktop.errors)
    return second, lambda: wait_until("the second start ends", lambda: second.poll() is not None, 20)


def asked_for(desktop):
    for arguments, title in ((["--show", "settings"], "Settings"), (["--review"], POPUP_TITLE)):
        if title == POPUP_TITLE:
            desktop.popup.wait_for(captures.save(desktop.folder))
            expect("the popup has not the keyboard", desktop.active_title() != title)
        other, ended = start_again(desktop, *arguments)
        ended()
        expect("it ends with 0", other.returncode == 0)
        wait_until(f"“{title}” has the keyboard", lambda title=title: desktop.active_title() == title)
    desktop.popup.press("Temporary")
    desktop.popup.wait_gone()


def opens_no_other_window_beside_one(desktop):
    """A second start brings the window that is open, and the Inbox only where none is."""
    start_again(desktop)[1]()
    wait_until("the settings have the keyboard again", lambda: desktop.active_title() == "Settings")
    expect("the Inbox stays closed", not desktop.window_ids(TITLE))
    closing, ended = start_again(desktop, "--close-window")
    ended()
    expect("it ends with 0", closing.returncode == 0)
    wait_until("the settings are closed", lambda: not desktop.window_ids("Settings"))


def close_inbox(desktop):
    desktop.key("ctrl+w")
    wait_until("the Inbox is closed", lambda: not desktop.window_ids(TITLE))


def has_keyboard_in_list(desktop):
    newest = rows(desktop)[0]
    wait_until("the list has the keyboard", lambda: desktop.find(newest, "list item", TITLE).is_focused)
    desktop.key("Escape")
    wait_for_selection(desktop, [], "Escape selects nothing")
    desktop.key("Down")
    wait_for_selection(desktop, [newest], "the first key selects the first row")


def opens_with_the_keyboard_in_the_list(desktop):
    """However it is opened while it was closed."""
    def second_start(*arguments):
        start_again(desktop, *arguments)[1]()

    for way in (lambda: second_start("--show", "inbox"), second_start, lambda: desktop.action("inbox")):
        way()
        wait_until("the Inbox has the keyboard", lambda: desktop.active_title() == TITLE)
        has_keyboard_in_list(desktop)
        close_inbox(desktop)


def journey(desktop):
    desktop.choose_folder()
    first = desktop.launch("--autostart")
    asked_for(desktop)
    opens_no_other_window_beside_one(desktop)
    opens_with_the_keyboard_in_the_list(desktop)
    # The daemon has no service manager's socket: it leaves its own behind.
    os.remove(desktop.environment["DBUS_SESSION_BUS_ADDRESS"].removeprefix("unix:path="))
    desktop.restart_bus()
    wait_until("it took its name on the new bus", desktop.has_bus_name, 30)
    second, ended = start_again(desktop)
    ended()
    expect("the second start ends with 0", second.returncode == 0)
    wait_until("the first one's Inbox is open", lambda: desktop.window_ids("Quillmere"))
    desktop.action("quit")
    expect("it ends with 0", first.wait() == 0)

    desktop.launch("--show", "settings")
    wait_until("a first start opens that window", lambda: desktop.window_ids("Settings"))
    expect("and no other", not desktop.window_ids("Quillmere"))
    desktop.action("quit")
    expect("it ends with 0", desktop.program.wait() == 0)

    marker = os.path.join(desktop.data_home, "Quillmere", "running")
    with open(marker, "w", encoding="utf-8") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        third, ended = start_again(desktop)
        wait_until("it says that it is taken", lambda: desktop.window_ids(TAKEN))
        desktop.picture(os.path.join(desktop.pictures, "taken.png"))
        wait_until("the words have the keyboard", lambda: desktop.active_title() == TAKEN)
        desktop.key("Return")
        ended()
        expect("it ends with 0", third.returncode == 0)
        expect("the other's marker stays", os.path.exists(marker))
    desktop.errors.seek(0)
    expect("the terminal is told as well", TAKEN in desktop.errors.read())
    desktop.launch("--autostart")


run_journey("reachable", journey)
