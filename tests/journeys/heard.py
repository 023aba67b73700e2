#!/usr/bin/python3
"""The popup as Orca of Debian 12 says it: word for word, nothing left out and nothing twice."""

import captures
from fake_model_server import FakeModelServer
from harness import expect, run_journey, wait_until
from speech import Orca, SpeechDispatcher
from steps import popup_shows_picture
from trash_refused import set_refusing
from windows import open_terminal

TIMES = "Temporary duration combo box."
TIMES_HINT = "Choose how long to keep this screenshot."
NAME_HINT = "Return saves this screenshot as Temporary with this name. Escape puts back the name it started with."
NO_NAME = "notification No name typed, so the screenshot keeps its current filename."
BAD_NAME = "notification That name can’t be used, so the screenshot keeps its current filename."
EXTRACT_HINT = ("When on, Keep, Temporary, Copy, and the timeout save only the window found in the screenshot, and the "
                "original moves to Trash. Share sends only the window too.")


def journey(desktop):
    speech, server = SpeechDispatcher(desktop), FakeModelServer()
    server.may_answer.clear()
    desktop.choose_folder(
        settings={"quillmere.model-address": server.address, "quillmere.popup-naming": "suggested"})
    desktop.launch("--autostart")
    # After the program, which tells nobody anything until then.
    orca = Orca(desktop, speech)
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    orca.says("notification Screenshot ready for a decision. Press Ctrl+Shift+Super+B to review it.")
    desktop.popup.take_keyboard()
    orca.says("Screenshot Decision dialog.", "Temporary push button return.",
              "Moves this screenshot to Trash in 5 minutes.")
    what_the_analysis_brings(desktop, orca, server)
    the_menu_of_times(desktop, orca)
    the_way_out(desktop, orca)
    the_name(desktop, orca)
    an_error(desktop, orca, shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    orca.says("notification Screenshot kept.")
    in_another_window(desktop, orca)


def what_the_analysis_brings(desktop, orca, server):
    server.may_answer.set()
    orca.says("notification Description: A window with an invoice.", "notification Suggested filename: Paid invoice.")
    expect("it stands there", desktop.popup.stem == "Paid invoice")


def tab_to(desktop, orca, name, role):
    desktop.popup.tab_to(name, role)
    orca.is_silent()


def the_menu_of_times(desktop, orca):
    tab_to(desktop, orca, "Copy", "push button")
    desktop.key("Tab")
    orca.says(TIMES, "5 Minutes.", TIMES_HINT)
    for key, chosen in (("Down", "15 Minutes"), ("Down", "1 Hour"), ("Up", "15 Minutes")):
        desktop.key(key)
        orca.says(chosen)
    desktop.key("space")
    wait_until("the list is open", lambda: desktop.find("1 Hour", "list item"))
    orca.says("List with 7 items.")
    desktop.key("Down")
    orca.says("1 Hour.")
    desktop.key("Escape")
    orca.says(TIMES, "15 Minutes.", TIMES_HINT)


def the_way_out(desktop, orca):
    tab_to(desktop, orca, "Move to Trash", "push button")
    desktop.key("Tab")
    orca.says("Dismiss Screenshot Popup push button escape.", "Dismiss. The screenshot stays in the Inbox.")
    desktop.key("Tab")
    orca.says("Extract Window check box not checked.", EXTRACT_HINT)


def the_name(desktop, orca):
    desktop.popup.tab_to("Filename", "text")
    said = orca.is_silent()
    expect(f"the field is told with its hint: {said}", "Filename text." in said and NAME_HINT in said)
    desktop.key("ctrl+a")
    orca.is_silent()
    desktop.key("Delete")
    orca.says("Selection deleted.", NO_NAME)
    field = desktop.popup.find("Filename", "text")
    expect("it is the description of the field", "notification " + field.description == NO_NAME)
    orca.has_been_heard(NO_NAME)
    desktop.type("/")
    orca.says(BAD_NAME)
    expect("so is this", "notification " + field.description == BAD_NAME)
    desktop.type("b")
    orca.says("b")
    expect("the hint is back", field.description == NAME_HINT)
    desktop.key("Escape")
    wait_until("the name is back", lambda: desktop.popup.stem == "Paid invoice")
    orca.has_been_heard(BAD_NAME)


def an_error(desktop, orca, shot):
    tab_to(desktop, orca, "Move to Trash", "push button")
    name = shot.rpartition("/")[2]
    set_refusing(desktop.folder, True)
    try:
        desktop.key("space")
        desktop.wait_for("Couldn’t Move to Trash", "alert message", "Screenshot Decision")
        text = (f"“{name}” couldn’t be moved to Trash. It is still in Quillmere. Check that you can change files in its "
                "folder, then try again.")
        orca.says(f"notification Couldn’t Move to Trash {text}")
        orca.has_been_heard(text)
    finally:
        set_refusing(desktop.folder, False)


def in_another_window(desktop, orca):
    open_terminal(desktop, "Typing", "40x6", (40, 20))
    wait_until("the terminal has the keyboard", lambda: desktop.active_title() == "Typing")
    orca.is_silent()
    desktop.run("xsetroot", "-solid", "#3a6ea5", check=True)
    shot = captures.scrot_named(desktop)
    wait_until("the suggestion is there", lambda: desktop.popup.stem == "Paid invoice", 30)
    orca.says("notification Screenshot ready for a decision. Press Ctrl+Shift+Super+B to review it.")
    desktop.popup.take_keyboard()
    desktop.popup.tab_to("Extract Window")
    orca.is_silent()
    desktop.key("space")
    popup_shows_picture(desktop, "Extracted window preview")
    orca.says("checked", "notification Showing the extracted window. Keep, Temporary, Copy, and Share use the window "
              "instead of the whole screenshot.")


if __name__ == "__main__":
    run_journey("heard", journey)
