#!/usr/bin/python3
"""A model server on this machine describes a screenshot and suggests its name; all of it is there after a restart."""

import captures
from fake_model_server import FakeModelServer
from harness import POPUP_TITLE, expect, run_journey, wait_until
from steps import quit_program

TEXT = "Invoice 4711 paid by card"


def texts_of(desktop, shot):
    record = desktop.record_of(shot) or {}
    return [record.get(key) for key in ("recognizedText", "imageDescription", "suggestedName")]


def journey(desktop):
    server = FakeModelServer()
    desktop.choose_folder(
        settings={"quillmere.model-address": server.address, "quillmere.popup-naming": "suggested"})
    desktop.launch("--autostart")

    untouched = captures.text(desktop, TEXT)
    wait_until("the popup", lambda: desktop.popup.is_shown)
    wait_until("the name field takes the suggestion", lambda: desktop.popup.stem == "Paid invoice", 30)
    wait_until("its text is saved", lambda: texts_of(desktop, untouched)[2] == "Paid invoice")
    text, description, _ = texts_of(desktop, untouched)
    expect(f"the text is recognised: {text!r}", TEXT in text)
    expect("the description is there", description == server.description)
    expect("the picture went along", server.asked[-1]["messages"][-1]["images"][0])
    desktop.wait_for(server.description, "label", "Screenshot Decision")
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("it is kept under that name", lambda: desktop.state_of(desktop.folder + "/Paid invoice.png") == "permanent")

    server.filename = "another invoice"
    typed = captures.text(desktop, TEXT)
    wait_until("the popup", lambda: desktop.popup.is_shown)
    desktop.click(desktop.popup.find("Filename", ("text", "entry")))
    wait_until("the popup has the keyboard", lambda: desktop.active_title() == POPUP_TITLE)
    desktop.key("ctrl+a")
    desktop.type("Mine")
    wait_until("the suggestion is there", lambda: texts_of(desktop, typed)[2] == "Another invoice", 30)
    expect("what was typed stays", desktop.popup.stem == "Mine")
    desktop.key("Return")
    desktop.popup.wait_gone()
    wait_until("it has the typed name", lambda: desktop.state_of(desktop.folder + "/Mine.png") == "temporary")

    quit_program(desktop)
    server.stop()
    desktop.launch("--autostart")
    kept = texts_of(desktop, desktop.folder + "/Paid invoice.png")
    expect(f"all three texts are there: {kept}", kept == [text, description, "Paid invoice"])


if __name__ == "__main__":
    run_journey("described", journey)
