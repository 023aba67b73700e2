#!/usr/bin/python3
"""On a Wayland session the popup comes up in its corner and leaves the keyboard where it is: a Wayland terminal gets
every letter while twenty come. The review takes the keyboard and gives it back."""

import re
import sys
import time

import captures
from harness import CLICK_GATE, POPUP_TITLE, expect, wait_until
from wayland import run_wayland_journey

POPUPS = 20
BUTTONS = ("Keep", "Temporary", "Dismiss Screenshot Popup", "Move to Trash")


def letters_arrive(desktop, terminal):
    expected = []
    for number in range(POPUPS):
        shot = captures.save(desktop.folder)
        line = f"line {number} before the popup"
        desktop.type(line)
        desktop.popup.wait_for(shot)
        desktop.type(" and while it is there")
        desktop.popup.press(BUTTONS[number % len(BUTTONS)])
        desktop.popup.wait_gone()
        desktop.type(" and after\n")
        expected.append(line + " and while it is there and after")
    wait_until(f"every letter arrived, not {terminal.lines}", lambda: terminal.lines == expected)
    return expected


def review(desktop, terminal, before):
    shots = [captures.save(desktop.folder) for _ in range(3)]
    desktop.popup.wait_for(shots[0])
    desktop.action("review")
    for shot in shots:
        desktop.popup.wait_for(shot)
        wait_until("the popup has the keyboard", lambda: desktop.popup.find("Temporary", "push button").is_focused)
        time.sleep(CLICK_GATE)
        desktop.key("Return")
        wait_until("Return decided", lambda shot=shot: desktop.state_of(shot) == "temporary")
    desktop.popup.wait_gone()
    terminal.wait_for_keyboard()
    desktop.type("after\n")
    wait_until(f"the terminal has it all: {terminal.lines}", lambda: terminal.lines == before + ["after"])


def name_field(desktop, terminal, before):
    """A click into it takes the keyboard; a menu and another click there leave it with the card."""
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Filename", ("text", "entry"))
    wait_until("the name field has the keyboard", lambda: desktop.popup.find("Filename", ("text", "entry")).is_focused)
    desktop.key("ctrl+a")
    desktop.type("a name of my own")
    wait_until("it is typed there", lambda: desktop.popup.stem == "a name of my own")
    desktop.popup.choose_duration("15 Minutes")
    desktop.popup.press("Filename", ("text", "entry"))
    desktop.type("s")
    wait_until("it is typed there again", lambda: "s" in desktop.popup.stem.replace("a name of my own", "", 1))
    desktop.key("Escape")
    desktop.key("Escape")
    desktop.popup.wait_gone()
    terminal.wait_for_keyboard()
    expect(f"nothing of it came to the terminal: {terminal.lines}", terminal.lines == before)


def person_goes_on(desktop, terminal, before):
    """Whoever clicks another window while the card has the keyboard writes there, and the card stays."""
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.action("review")
    wait_until("the popup has the keyboard", lambda: desktop.popup.find("Temporary", "push button").is_focused)
    desktop.input.click((200, 300))
    terminal.wait_for_keyboard()
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    desktop.type("after a click\n")
    wait_until(f"the terminal has it: {terminal.lines}", lambda: terminal.lines == before + ["after a click"])


def over_full_screen(desktop, terminal):
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")  # which only reaches it where nothing covers it
    desktop.popup.wait_gone()
    terminal.wait_for_keyboard()


def stands_in_its_corner(desktop):
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    number = desktop.window_ids(POPUP_TITLE)[0]
    described = desktop.run("xwininfo", "-id", number)
    left, top, width, height = (int(re.search(rf"{word}: +(-?\d+)", described).group(1)) for word in
                                ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
    expect(f"it stands in its corner: {left}, {top}, {width}, {height}",
           (left + width, top + height) == (desktop.size[0], desktop.size[1] - desktop.bar_height))
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def journey(desktop):
    desktop.choose_folder()
    terminal = desktop.open_terminal()
    desktop.launch("--autostart")
    typed = letters_arrive(desktop, terminal)
    stands_in_its_corner(desktop)
    review(desktop, terminal, typed)
    typed.append("after")
    name_field(desktop, terminal, typed)
    if desktop.compositor == "sway":  # which gives windows the whole screen by itself, and full screen no others beside
        person_goes_on(desktop, terminal, typed)
    desktop.key("F11")
    time.sleep(1)  # until the terminal fills the screen
    over_full_screen(desktop, terminal)
    if desktop.compositor != "sway":
        person_goes_on(desktop, terminal, typed)


run_wayland_journey(f"wayland-{sys.argv[1]}", journey, sys.argv[1])
