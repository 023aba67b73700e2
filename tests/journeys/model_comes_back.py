#!/usr/bin/python3
"""A model server that is busy is asked once more; what one that went away missed is made up for when it is back."""

import captures
from fake_model_server import FakeModelServer
from harness import expect, run_journey, wait_until


def description_of(desktop, shot):
    return (desktop.record_of(shot) or {}).get("imageDescription")


def journey(desktop):
    server = FakeModelServer()
    port = server.port
    desktop.choose_folder(settings={"quillmere.model-address": server.address})
    desktop.launch("--autostart")
    server.busy = 1
    first = captures.text(desktop, "The first")
    wait_until("it is described after all", lambda: description_of(desktop, first) == server.description, 60)
    expect("at the second try", len(server.asked) == 2)

    server.stop()
    second = captures.text(desktop, "The second")
    wait_until("its text is saved", lambda: "second" in (desktop.record_of(second) or {}).get("recognizedText", ""), 30)
    desktop.popup.press("Keep")
    wait_until("the next popup", lambda: desktop.popup.is_shown)

    back = FakeModelServer(port)
    back.description = "Here again."
    # The program becomes active: a window of its own comes up and gets the keyboard.
    desktop.action("inbox")
    wait_until("what was missed is made up for", lambda: description_of(desktop, second) == "Here again.", 60)
    expect("without a failure", "analysisFailure" not in desktop.record_of(second))
    back.stop()


if __name__ == "__main__":
    run_journey("model_comes_back", journey)
