#!/usr/bin/python3
"""The review takes the keyboard from a terminal, decides three screenshots with Return, and gives it back."""

import os
import time

import captures
from harness import CLICK_GATE, POPUP_TITLE, expect, run_journey, wait_until


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    typed = os.path.join(desktop.scratch, "typed.txt")
    desktop.start(["xterm", "-fa", "monospace", "-geometry", "60x20+20+20", "-T", "Typing", "-e", f"cat > {typed}"])
    wait_until("the terminal has the keyboard", lambda: desktop.active_title() == "Typing")
    wait_until("it reads", lambda: os.path.exists(typed))
    desktop.type("before")
    desktop.key("Return")

    shots = []
    for number in range(3):
        shots.append(captures.save(desktop.folder))
        if number == 0:
            desktop.popup.wait_for(shots[0])
    wait_until("two more wait", lambda: desktop.popup.waiting_count == 2)
    expect("the terminal still has the keyboard", desktop.active_title() == "Typing")

    desktop.action("review")
    for shot in shots:
        desktop.popup.wait_for(shot)
        wait_until("the popup has the keyboard", lambda: desktop.active_title() == POPUP_TITLE)
        wait_until("it is on the main button", lambda: desktop.popup.find("Temporary", "push button").is_focused)
        time.sleep(CLICK_GATE)
        desktop.key("Return")
        wait_until("Return decided", lambda shot=shot: desktop.state_of(shot) == "temporary")
    desktop.popup.wait_gone()
    wait_until("the terminal has the keyboard again", lambda: desktop.active_title() == "Typing")
    desktop.type("after")
    desktop.key("Return")
    desktop.key("ctrl+d")
    wait_until("the terminal ends", lambda: not desktop.window_ids("Typing"))
    with open(typed, encoding="utf-8") as file:
        arrived = file.read()
    expect(f"what was typed before and after arrived, and nothing else: {arrived!r}", arrived == "before\nafter\n")


run_journey("review", journey)
