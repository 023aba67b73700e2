#!/usr/bin/python3
"""Someone types at ten keys a second while twenty popups come and are decided with the pointer: no letter is lost."""

import os

import captures
from harness import expect, run_journey, wait_until

POPUPS = 20
TEXT = "the quick brown fox jumps over the lazy dog"
BUTTONS = ("Keep", "Temporary", "Dismiss Screenshot Popup", "Move to Trash")


class Typist:
    """Types line after line."""

    def __init__(self, desktop):
        self._desktop = desktop
        self._line = None
        self.typed = ""

    def go_on(self):
        if self._line is None or self._line.poll() is not None:
            line = f"{self.typed.count(chr(10))} {TEXT}\n"
            self._line = self._desktop.start(["xdotool", "type", "--delay", "100", line])
            self.typed += line

    def finish(self):
        wait_until("the line is typed", lambda: self._line.poll() is not None)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    typed = os.path.join(desktop.scratch, "typed.txt")
    desktop.start(["xterm", "-fa", "monospace", "-geometry", "80x20+20+20", "-T", "Typing", "-e", f"cat > {typed}"])
    wait_until("the terminal has the keyboard", lambda: desktop.active_title() == "Typing")
    wait_until("it reads", lambda: os.path.exists(typed))

    typist = Typist(desktop)
    for number in range(POPUPS):
        typist.go_on()
        shot = captures.save(desktop.folder)
        desktop.popup.wait_for(shot)
        typist.go_on()
        desktop.popup.press(BUTTONS[number % len(BUTTONS)])
        desktop.popup.wait_gone()
        expect("the terminal keeps the keyboard", desktop.active_title() == "Typing")
    typist.finish()
    desktop.key("ctrl+d")
    wait_until("the terminal ends", lambda: not desktop.window_ids("Typing"))
    with open(typed, encoding="utf-8") as file:
        arrived = file.read()
    expect(f"every letter arrived:\n{arrived}", arrived == typist.typed)


run_journey("focus-stays", journey)
