#!/usr/bin/python3
"""The popup as Orca of Debian 12 says it: word for word, nothing left out and nothing twice."""

import captures
from harness import run_journey, wait_until
from speech import Orca, SpeechDispatcher


def journey(desktop):
    speech = SpeechDispatcher(desktop)
    desktop.choose_folder()
    desktop.launch("--autostart")
    orca = Orca(desktop, speech)
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    orca.is_silent()
    desktop.popup.take_keyboard()
    orca.is_silent()
    the_menu_of_times(desktop, orca)


def the_menu_of_times(desktop, orca):
    for _ in range(3):
        desktop.key("Tab")
        orca.is_silent()
    desktop.key("shift+Tab")
    orca.is_silent()
    desktop.key("Tab")
    hint = "Choose how long to keep this screenshot."
    orca.says("Temporary duration combo box.", "5 Minutes.", hint)
    for key, chosen in (("Down", "15 Minutes"), ("Down", "1 Hour"), ("Up", "15 Minutes")):
        desktop.key(key)
        orca.says(chosen)
    desktop.key("space")
    wait_until("the list is open", lambda: desktop.find("1 Hour", "list item"))
    orca.says("List with 7 items.")
    desktop.key("Down")
    orca.says("1 Hour.")
    desktop.key("Escape")
    orca.says("Temporary duration combo box.", "15 Minutes.", hint)


if __name__ == "__main__":
    run_journey("heard", journey)
