#!/usr/bin/python3
"""Someone types at ten keys a second while popups come and are decided with the pointer: no letter is lost."""

import os

import captures
from harness import expect, run_journey, wait_until

LINES = 5
TEXT = "the quick brown fox jumps over the lazy dog"
BUTTONS = ("Keep", "Temporary", "Dismiss Screenshot Popup", "Move to Trash")


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    typed = os.path.join(desktop.scratch, "typed.txt")
    desktop.start(["xterm", "-fa", "monospace", "-geometry", "80x20+20+20", "-T", "Typing", "-e", f"cat > {typed}"])
    wait_until("the terminal has the keyboard", lambda: desktop.active_title() == "Typing")
    wait_until("it reads", lambda: os.path.exists(typed))

    expected = "".join(f"{line} {TEXT}\n" for line in range(LINES))
    typing = desktop.start(["xdotool", "type", "--delay", "100", expected])
    decided = 0
    while typing.poll() is None:
        shot = captures.save(desktop.folder)
        desktop.popup.wait_for(shot)
        desktop.popup.press(BUTTONS[decided % len(BUTTONS)])
        desktop.popup.wait_gone()
        expect("the terminal keeps the keyboard", desktop.active_title() == "Typing")
        decided += 1
    desktop.key("ctrl+d")
    wait_until("the terminal ends", lambda: not desktop.window_ids("Typing"))
    with open(typed, encoding="utf-8") as file:
        arrived = file.read()
    expect(f"every letter arrived:\n{arrived}", arrived == expected)
    expect(f"popups came while someone typed, {decided} of them", decided >= 8)


run_journey("focus-stays", journey)
