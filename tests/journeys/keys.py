#!/usr/bin/python3
"""The keys do what they say, whatever a desktop's theme makes of them, and a held one decides once."""

import contextlib
import os
import time

import captures
from harness import CLICK_GATE, POPUP_TITLE, expect, hold_for, run_journey, wait_until

# More than the server's delay before it repeats, and long enough for some thirty repeats.
HELD = 2.0


def take(desktop, count):
    shots = [captures.save(desktop.folder) for _ in range(count)]
    desktop.popup.wait_for(shots[0])
    wait_until("the others wait", lambda: desktop.popup.waiting_count == count - 1)
    desktop.popup.take_keyboard()
    return shots


def states(desktop, shots):
    return [desktop.state_of(shot) for shot in shots]


@contextlib.contextmanager
def held(desktop, key):
    desktop.run("xdotool", "keydown", key, check=True)
    try:
        yield
    finally:
        desktop.run("xdotool", "keyup", key, check=True)


def return_is_temporary(desktop):
    """On every control of the card, the one that throws away included."""
    for name in ("Move to Trash", "Keep", "Copy", "Copy Text", "Share", "Dismiss Screenshot Popup"):
        shot = take(desktop, 1)[0]
        desktop.popup.tab_to(name, "push button")
        desktop.key("Return")
        wait_until(f"Return on {name} made it temporary", lambda shot=shot: desktop.state_of(shot) == "temporary")
        expect("the file stands where it was", os.path.exists(shot))
        desktop.popup.wait_gone()


def held_key_decides_once(desktop, key, focus, decided):
    shots = take(desktop, 3)
    desktop.popup.tab_to(focus)
    with held(desktop, key):
        # A button that Space presses acts when that is let go.
        hold_for(f"a held {key} decides one", lambda: desktop.popup.waiting_count > 0, HELD)
    desktop.popup.wait_for(shots[1])
    expect(f"{key} decided the first, and no other: {states(desktop, shots)}",
           states(desktop, shots) == [decided, "pending", "pending"])
    desktop.popup.tab_to(focus)
    time.sleep(CLICK_GATE)
    desktop.key(key)
    desktop.popup.wait_for(shots[2])
    time.sleep(CLICK_GATE)
    desktop.key("Escape")
    desktop.popup.wait_gone()


def text_repeats(desktop):
    shot = take(desktop, 1)[0]
    desktop.popup.tab_to("Filename", ("text", "entry"))
    desktop.key("ctrl+a")
    with held(desktop, "space"):
        wait_until("a held Space goes on in the name", lambda: desktop.popup.find("Filename", ("text", "entry")).text.count(" ") > 5)
    desktop.key("Escape", "Escape")
    desktop.popup.wait_gone()
    expect("nothing was decided", desktop.state_of(shot) == "pending")


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    return_is_temporary(desktop)
    held_key_decides_once(desktop, "Return", "Temporary", "temporary")
    held_key_decides_once(desktop, "Escape", "Temporary", "pending")
    held_key_decides_once(desktop, "space", "Keep", "permanent")
    text_repeats(desktop)


run_journey("keys", journey)
