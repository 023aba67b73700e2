#!/usr/bin/python3
"""Without a model server a screenshot has its text, and the popup says why it has no description."""

import captures
from harness import expect, run_journey, wait_until

TEXT = "Nothing leaves this machine"
WHY = "No model is available on this computer, so there’s no description. Extract Text still works."


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = captures.text(desktop, TEXT)
    wait_until("the popup", lambda: desktop.popup.is_shown)
    desktop.wait_for(WHY, "label", "Screenshot Decision", timeout=30)
    wait_until("its text is saved", lambda: TEXT in (desktop.record_of(shot) or {}).get("recognizedText", ""), 30)
    expect("without a failure", "analysisFailure" not in desktop.record_of(shot))


if __name__ == "__main__":
    run_journey("no_model", journey)
