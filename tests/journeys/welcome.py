#!/usr/bin/python3
"""The very first start, to the first decision, by keyboard alone: Welcome is read and names its ways on, its folder panel
chooses the folder, and it never comes back by itself."""

import os

import captures
from harness import expect, run_journey, wait_until
from steps import FOLDER_DIALOG, answer_file_dialog, quit_program

TITLE = "Welcome to Quillmere"
INBOX = "Quillmere"
# Name and role of what is read, in the order of a screen reader. No tray runs on this desktop, and which capture tool is
# installed decides whether there is one more button.
OPTIONS = ("Open Screenshot Tool", "push button")
READ = [
    (TITLE, "heading"),
    ("Quillmere watches the folder where your desktop saves screenshots.", "label"),
    ("Every capture offers Temporary, Keep, or Move to Trash.", "label"),
    ("Descriptions and names are created on this computer.", "label"),
    ("Your screenshot tool may show a notification or a window of its own after each capture. If its options let you "
     "turn that off, only Quillmere’s popup appears. Quillmere doesn’t change those options for you.", "label"),
    OPTIONS,
    ("This desktop shows no tray icons. Quillmere goes on watching when its windows are closed. To come back to it, "
     "open it again from your launcher.", "label"),
    ("Not Now", "push button"),
    ("Quillmere Help", "push button"),
    ("Choose Screenshot Folder…", "push button"),
]


def with_options(desktop, entries):
    return [entry for entry in entries if entry[0] != OPTIONS[0] or desktop.find(*OPTIONS, TITLE)]


def read(desktop):
    wait_until("Welcome has the keyboard", lambda: desktop.active_title() == TITLE)
    desktop.wait_for(*READ[-1], TITLE)
    shown = [(control.name, control.role) for control in desktop.program.tree.find_all(window=TITLE)
             if control.role in ("label", "heading", "push button")]
    expected = with_options(desktop, READ)
    expect(f"it is read from top to bottom: {shown}", shown == expected)


def focused(desktop):
    names = [control.name for control in desktop.program.tree.find_all(None, "push button", TITLE)
             if control.is_focused]
    return names[0] if names else None


def walk(desktop):
    """Tab goes through the buttons in their order, and round."""
    buttons = [name for name, role in with_options(desktop, READ) if role == "push button"]
    wait_until("the folder's button has the focus", lambda: focused(desktop) == buttons[-1])
    for name in buttons:
        desktop.key("Tab")
        wait_until(f"Tab goes on to “{name}”", lambda name=name: focused(desktop) == name)
    desktop.key("shift+Tab")
    wait_until("and back", lambda: focused(desktop) == buttons[-2])


def not_now(desktop):
    desktop.key("Escape")
    wait_until("Welcome is gone", lambda: not desktop.window_ids(TITLE))
    wait_until("the Inbox asks for the folder",
               lambda: desktop.find("Choose Your Screenshot Folder", "label", INBOX))
    quit_program(desktop)
    desktop.launch()
    desktop.wait_for("Choose Your Screenshot Folder", "label", INBOX)
    expect("Welcome does not come back by itself", not desktop.window_ids(TITLE))


def choose(desktop):
    """From Welcome, which the person opens again."""
    desktop.action("welcome")
    wait_until("Welcome has the keyboard", lambda: desktop.active_title() == TITLE)
    wait_until("Return chooses", lambda: focused(desktop) == "Choose Screenshot Folder…")
    desktop.key("Return")
    wait_until("the folder panel is open", lambda: desktop.active_title() == FOLDER_DIALOG)
    desktop.key("Escape")
    wait_until("a panel that was cancelled leaves Welcome open", lambda: desktop.active_title() == TITLE)
    desktop.key("Return")
    answer_file_dialog(desktop, FOLDER_DIALOG, desktop.folder)
    wait_until("Welcome is gone once a folder is chosen", lambda: not desktop.window_ids(TITLE))
    desktop.wait_for("No Screenshots Yet", "label", INBOX)


def decide(desktop):
    shot = captures.scrot(desktop, desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.take_keyboard()
    desktop.popup.tab_to("Keep")
    desktop.key("space")
    desktop.popup.wait_gone()
    wait_until("the screenshot is kept", lambda: desktop.state_of(shot) == "permanent")
    expect("the file is still there", os.path.exists(shot))


def journey(desktop):
    # Nobody has started the program here yet.
    os.remove(os.path.join(desktop.config_home, "Quillmere", "settings.json"))
    desktop.launch()
    read(desktop)
    walk(desktop)
    not_now(desktop)
    choose(desktop)
    decide(desktop)


run_journey("welcome", journey)
