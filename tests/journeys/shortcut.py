#!/usr/bin/python3
"""The standard review shortcut brings the review into a full-screen terminal and gives the keyboard back; while another
program has the keys everything else works, and it works again once they are free and the program is used."""

import os

import Xlib.display
import Xlib.error
import Xlib.X
import Xlib.XK

import captures
from harness import CLICK_GATE, POPUP_TITLE, expect, hold_for, run_journey, wait_until

SHORTCUT = "ctrl+shift+super+b"
LOCKS = ["Caps_Lock", "Num_Lock"]


class OtherProgram:
    """Takes the shortcut's keys for itself."""

    def __init__(self, desktop):
        self._display = Xlib.display.Display(desktop.environment["DISPLAY"])
        root = self._display.screen().root
        key = self._display.keysym_to_keycode(Xlib.XK.string_to_keysym("b"))
        refused = Xlib.error.CatchError(Xlib.error.BadAccess)
        root.grab_key(key, Xlib.X.ControlMask | Xlib.X.ShiftMask | Xlib.X.Mod4Mask, True, Xlib.X.GrabModeAsync,
                      Xlib.X.GrabModeAsync, onerror=refused)
        self._display.sync()
        self.has_keys = refused.get_error() is None

    def leave(self):
        self._display.close()


def open_terminal(desktop):
    typed = os.path.join(desktop.scratch, "typed.txt")
    desktop.start(["xterm", "-fullscreen", "-fa", "monospace", "-T", "Typing", "-e", f"cat > {typed}"])
    wait_until("the terminal has the keyboard", lambda: desktop.active_title() == "Typing")
    wait_until("it reads", lambda: os.path.exists(typed))
    return typed


def review(desktop, shot, begin):
    """From the terminal to a decision, and back."""
    desktop.popup.wait_for(shot)
    expect("the terminal has the keyboard", desktop.active_title() == "Typing")
    begin()
    wait_until("the popup has the keyboard", lambda: desktop.active_title() == POPUP_TITLE)
    wait_until("it is on the main button", lambda: desktop.popup.find("Temporary", "push button").is_focused)
    hold_for("the popup keeps the keyboard", lambda: desktop.active_title() == POPUP_TITLE, CLICK_GATE)
    desktop.key("Return")
    wait_until("Return decided", lambda: desktop.state_of(shot) == "temporary")
    desktop.popup.wait_gone()
    wait_until("the terminal has the keyboard again", lambda: desktop.active_title() == "Typing")


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    typed = open_terminal(desktop)
    desktop.type("before")
    desktop.key("Return")

    expect("nobody else gets the keys any more", not OtherProgram(desktop).has_keys)
    review(desktop, captures.save(desktop.folder), lambda: desktop.key(SHORTCUT))
    for lock in LOCKS:
        desktop.key(lock)
        review(desktop, captures.save(desktop.folder), lambda: desktop.key(SHORTCUT))
        desktop.key(lock)
    desktop.run("setxkbmap", "fr", check=True)
    review(desktop, captures.save(desktop.folder), lambda: desktop.key(SHORTCUT))
    desktop.run("setxkbmap", "us", check=True)
    desktop.type("after")
    desktop.key("Return")
    desktop.key("ctrl+d")
    wait_until("the terminal ends", lambda: not desktop.window_ids("Typing"))
    with open(typed, encoding="utf-8") as file:
        arrived = file.read()
    expect(f"what was typed before and after arrived, and nothing else: {arrived!r}", arrived == "before\nafter\n")
    desktop.program.kill()

    # A start while somebody else has the keys.
    other = OtherProgram(desktop)
    expect("the keys are free after the program's end", other.has_keys)
    desktop.launch("--autostart")
    open_terminal(desktop)
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.key(SHORTCUT)
    hold_for("the keys are the other program's", lambda: desktop.active_title() == "Typing", 1)
    # A review makes a window of the program the active one, and with that the keys are tried again, in vain.
    review(desktop, shot, lambda: desktop.action("review"))
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.key(SHORTCUT)
    hold_for("they still are", lambda: desktop.active_title() == "Typing", 1)
    other.leave()
    review(desktop, shot, lambda: desktop.action("review"))
    review(desktop, captures.save(desktop.folder), lambda: desktop.key(SHORTCUT))
    expect("the program runs", desktop.program.is_running)


run_journey("shortcut", journey)
