#!/usr/bin/python3
"""Without a model server a screenshot has its text; that there is no description, and why, the settings tell, and no
card."""

import re

import captures
from harness import POPUP_TITLE, expect, run_journey, wait_until
from steps import open_settings

TEXT = "Nothing leaves this machine"
WHY = "No model server was found on this computer, so screenshots aren’t described. Text extraction still works."


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = captures.text(desktop, TEXT)
    wait_until("the popup", lambda: desktop.popup.is_shown)
    wait_until("its text is saved", lambda: TEXT in (desktop.record_of(shot) or {}).get("recognizedText", ""), 30)
    expect("without a failure", "analysisFailure" not in desktop.record_of(shot))
    wait_until("the card says nothing of it",
               lambda: not desktop.find(re.compile("model|description"), "label", POPUP_TITLE))
    open_settings(desktop, "Intelligence")
    desktop.wait_for(WHY, "label", "Settings", timeout=30)


if __name__ == "__main__":
    run_journey("no_model", journey)
