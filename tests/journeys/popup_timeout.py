#!/usr/bin/python3
"""The popup’s timeout, switched on in the settings, keeps what nobody answers; it waits for who is busy with it."""

import os
import time

import captures
from harness import POPUP_TITLE, expect, hold_for, run_journey, wait_until
from steps import open_settings

SECONDS, LONGER = 3, 6
ELSEWHERE = (5, 5)


def switch_on(desktop):
    open_settings(desktop, "Popup")
    field = desktop.wait_for("Popup timeout in seconds", "spin box", "Settings")
    expect("the seconds do not count yet", not field.is_enabled)
    desktop.click(desktop.wait_for("Automatically dismiss the popup", "check box", "Settings"))
    wait_until("the seconds count", lambda: field.is_enabled)
    desktop.click(field)
    desktop.key("ctrl+a")
    desktop.type(str(SECONDS))
    desktop.key("Tab")
    desktop.wait_for(f"Dismiss after {SECONDS} seconds", "label", "Settings")


def capture(desktop, pointer):
    """With the pointer where the popup will appear, nothing counts until it leaves."""
    desktop.move_pointer(pointer)
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    wait_until("it is listed", lambda: desktop.state_of(shot) == "pending")
    return shot


def check_kept(desktop, shot):
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent", SECONDS + 10)
    desktop.popup.wait_gone()
    expect("without a time", "expiresAt" not in desktop.record_of(shot))


def check_waits(desktop, shot):
    hold_for("the popup waits", lambda: desktop.popup.is_shown and desktop.state_of(shot) == "pending", LONGER)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    first = capture(desktop, ELSEWHERE)
    on_popup = desktop.place_of(desktop.wait_for("Screenshot Captured", "heading", "Screenshot Decision"))
    on_name = desktop.place_of(desktop.popup.find("Filename"))
    switch_on(desktop)
    desktop.move_pointer(ELSEWHERE)
    check_kept(desktop, first)

    saved = time.monotonic()
    unanswered = captures.save(desktop.folder)
    wait_until("the popup", lambda: desktop.popup.is_shown)
    check_kept(desktop, unanswered)
    expect("not before its time", time.monotonic() > saved + SECONDS - 0.25)

    pointed_at = capture(desktop, on_popup)
    check_waits(desktop, pointed_at)
    desktop.move_pointer(ELSEWHERE)
    check_kept(desktop, pointed_at)

    # A name that was typed and not confirmed is no name yet, wherever the keyboard and the pointer then are.
    named = capture(desktop, on_name)
    desktop.click(desktop.popup.find("Filename", "text"))
    wait_until("the popup has the keyboard", lambda: desktop.active_title() == POPUP_TITLE)
    desktop.key("ctrl+a")
    desktop.type("Typed")
    wait_until("the name is typed", lambda: desktop.popup.stem == "Typed")
    desktop.run("wmctrl", "-a", "Settings", check=True)
    wait_until("the keyboard is elsewhere", lambda: desktop.active_title() == "Settings")
    desktop.move_pointer(ELSEWHERE)
    check_waits(desktop, named)
    expect("the name still stands in the field", desktop.popup.stem == "Typed")
    desktop.popup.press("Keep")
    typed = os.path.join(desktop.folder, "Typed.png")
    check_kept(desktop, typed)
    expect("under this name alone", os.path.exists(typed) and not os.path.exists(named))


run_journey("popup-timeout", journey)
