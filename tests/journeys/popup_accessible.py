#!/usr/bin/python3
"""The popup as a screen reader finds it and as the keyboard goes through it."""

import captures
from harness import POPUP_TITLE, expect, run_journey, wait_until
from steps import popup_shows_picture

# Name, role and hint of what a person can do or read, in the order in which a screen reader comes to it.
CONTROLS = [
    ("Screenshot Captured", "heading", ""),
    ("2 more screenshots waiting", "label", ""),
    ("Dismiss Screenshot Popup", "push button", "Dismiss. The screenshot stays in the Inbox."),
    ("Screenshot preview", "graphic", "Drag this preview into another app to put the screenshot’s file there."),
    ("Extract Window", "check box",
     "When on, Keep, Temporary, Copy, and the timeout save only the window found in the screenshot, and the original "
     "moves to Trash. Share sends only the window too."),
    ("Copy Text", "push button", "Recognizes the text in the preview and puts it on the clipboard."),
    ("Share", "push button",
     "Opens the share menu for the picture in the preview, under the name in the Filename field."),
    ("Filename", "label", ""),
    ("Filename", "text",
     "Return saves this screenshot as Temporary with this name. Escape puts back the name it started with."),
    ("Temporary", "push button", "Moves this screenshot to Trash in 5 minutes."),
    ("Keep", "push button", "Keep this screenshot without a deletion timer"),
    ("Copy", "push button", "Copy this screenshot so it can be pasted into another app or into your file manager"),
    ("Temporary duration", "combo box", "Choose how long to keep this screenshot"),
    ("Move to Trash", "push button",
     "Moves only this image to Trash, without asking. You can restore it from Trash in your file manager."),
]
# From the main button on, as Tab goes.
TAB_ORDER = ["Temporary", "Keep", "Copy", "Temporary duration", "Move to Trash", "Dismiss Screenshot Popup",
             "Extract Window", "Copy Text", "Share", "Filename"]


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shots = [captures.save(desktop.folder) for _ in range(3)]
    desktop.popup.wait_for(shots[0])
    wait_until("the others wait", lambda: desktop.popup.waiting_count == 2)
    popup_shows_picture(desktop, "Screenshot preview")
    everything_is_named(desktop)
    the_keyboard_reaches_everything(desktop)
    a_notice_is_named(desktop)
    keys_decide(desktop, shots)


def everything_is_named(desktop):
    window = next(top for top in desktop.program.tree.windows() if top.name == POPUP_TITLE)
    expect(f"the window is a dialog, not a {window.role}", window.role == "dialog")
    shown = [control for control in window.walk() if control.name and control.is_showing]
    found = [(control.name, control.role) for control in shown]
    wanted = [(name, role) for name, role, _ in CONTROLS]
    expect(f"{wanted} in this order: {found}", [one for one in found if one in wanted] == wanted)
    for name, role, hint in CONTROLS:
        control = desktop.popup.find(name, role)
        expect(f"the hint of {control}: {control.description}", control.description == hint)
    names = [control.name for control in shown]
    expect(f"the extension is hidden: {names}", not any(name.startswith(".") for name in names))
    picker = desktop.popup.find("Temporary duration", "combo box")
    expect(f"the menu of durations has its label: {picker.labels}", picker.labels == ["Temporary duration"])
    expect(f"its text is the chosen time: {picker.text}", picker.text == "5 Minutes")
    expect("closed it has no items", not desktop.program.tree.find(None, "list item", POPUP_TITLE, showing=False))
    keys = {name: desktop.popup.find(name, "push button").key for name in
            ("Temporary", "Keep", "Copy", "Move to Trash", "Dismiss Screenshot Popup")}
    expect(f"two buttons have keys: {keys}", {name: key for name, key in keys.items() if key} ==
           {"Temporary": "Return", "Dismiss Screenshot Popup": "Escape"})
    defaults = [control.name for control in shown if control.role == "push button" and control.is_default]
    expect(f"one button is the default: {defaults}", defaults == ["Temporary"])
    expect("nothing is extracted", not desktop.popup.find("Extract Window").is_checked)


def the_keyboard_reaches_everything(desktop):
    focus = desktop.program.tree.focus()
    desktop.popup.take_keyboard()
    wait_until("the main button has the keyboard", lambda: desktop.popup.find("Temporary").is_focused)
    for name in [*TAB_ORDER[1:], TAB_ORDER[0]]:
        desktop.key("Tab")
        wait_until(f"Tab goes on to {name}, and that is told", lambda: focus.name == name)
        expect(f"{name} has it", focus.last.is_focused)
    for name in reversed(TAB_ORDER):
        desktop.key("shift+Tab")
        wait_until(f"and back to {name}", lambda: focus.name == name)


def a_notice_is_named(desktop):
    desktop.popup.tab_to("Copy Text", "push button")
    desktop.key("space")
    wait_until("the notice has a name", lambda: desktop.popup.find("No text found", "label"), 30)


def to_name_field(desktop, text):
    desktop.popup.tab_to("Filename", "text")
    desktop.key("ctrl+a")
    desktop.type(text)
    wait_until("it is typed", lambda: desktop.popup.stem == text)


def keys_decide(desktop, shots):
    first, second, third = shots
    # The first Escape undoes typing, the next closes the popup.
    start = desktop.popup.stem
    to_name_field(desktop, "Typed")
    desktop.key("Escape")
    wait_until("the name is back", lambda: desktop.popup.stem == start)
    expect("the popup stays", desktop.popup.is_shown)
    desktop.popup.tab_to("Keep")
    desktop.key("space")
    desktop.popup.wait_for(second)
    wait_until("Space pressed the button", lambda: desktop.state_of(first) == "permanent")

    # Return is the main button wherever the keyboard is.
    desktop.popup.take_keyboard()
    desktop.popup.tab_to("Temporary duration", "combo box")
    desktop.key("Return")
    desktop.popup.wait_for(third)
    wait_until("Return marked it", lambda: desktop.state_of(second) == "temporary")

    desktop.popup.take_keyboard()
    to_name_field(desktop, "Named")
    desktop.key("Return")
    desktop.popup.wait_gone()
    wait_until("it is marked under its name", lambda: desktop.state_of(desktop.folder + "/Named.png") == "temporary")

    last = captures.save(desktop.folder)
    desktop.popup.wait_for(last)
    desktop.popup.take_keyboard()
    desktop.popup.tab_to("Share", "push button")
    desktop.key("Escape")
    desktop.popup.wait_gone()
    expect("it is still to be decided", desktop.state_of(last) == "pending")


if __name__ == "__main__":
    run_journey("popup-accessible", journey)
