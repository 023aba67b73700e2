#!/usr/bin/python3
"""Every setting is changed in the Settings, with the pointer or by the keyboard alone; it is still set after a restart,
and has its effect."""

import json
import os
import re
import subprocess

import captures
from fake_model_server import FakeModelServer
from harness import expect, hold_for, run_journey, wait_until
from inbox import TITLE
from inbox_steps import choose_in_context_menu
from steps import make_overdue, make_temporary, open_settings, quit_program, settled_record, trashed_files

WATCHER = "org.kde.StatusNotifierWatcher"
PANES = ("General", "Screenshots", "Popup", "Keyboard", "Intelligence")
# By pane, with what stands in the settings file.
FIRST = {
    "General": {"Show Quillmere in the system tray": "quillmere.menu-bar-enabled"},
    "Screenshots": {"Also detect images from other apps": "quillmere.include-non-capture-images",
                    "Show Delete Immediately in menus": "quillmere.delete-immediately-command",
                    "Move to Trash deletes instead": "quillmere.delete-immediately-chosen",
                    "Delete Temporary screenshots when their time is up": "quillmere.delete-immediately-expired"},
    "Popup": {"Show image thumbnail in popup": "quillmere.popup-thumbnail"},
}
SECOND = {
    "Popup": {"Show the popup when you stop capturing": "quillmere.popup-waits-for-pause",
              "Show several screenshots as a small note first": "quillmere.popup-gathers-series",
              "Automatically dismiss the popup": "quillmere.popup-autosave"},
    "Intelligence": {"Analyze screenshots": "quillmere.analyze"},
}
STANDARD_ON = ("quillmere.menu-bar-enabled", "quillmere.popup-thumbnail", "quillmere.analyze")


def stored(desktop, key):
    with open(os.path.join(desktop.config_home, "Quillmere", "settings.json"), encoding="utf-8") as file:
        return json.load(file).get(key)


def toggle(desktop, name):
    return desktop.wait_for(name, "check box", "Settings")


def shown_pane(desktop):
    """The tabs together are called as the one in front."""
    return desktop.wait_for(role="page tab list", window="Settings").name


def show_pane(desktop, pane):
    """By the keyboard: Ctrl+Tab goes round."""
    while (before := shown_pane(desktop)) != pane:
        desktop.key("ctrl+Tab")
        wait_until("Ctrl+Tab turns to another", lambda before=before: shown_pane(desktop) != before)


def focus(desktop, control):
    """By Tab, which scrolls to it where it is out of sight."""
    for _ in range(40):
        if control().is_focused:
            return
        before = focused(desktop)
        desktop.key("Tab")
        wait_until("Tab moves on", lambda before=before: focused(desktop) != before)
    expect(f"Tab reaches {control()}", control().is_focused)


def focused(desktop):
    found = [repr(control) for control in desktop.program.tree.find_all(window="Settings") if control.is_focused]
    return found[0] if found else None


def change(desktop, table, by_keyboard):
    for pane, toggles in table.items():
        if by_keyboard:
            show_pane(desktop, pane)
        else:
            desktop.click(desktop.wait_for(pane, "page tab", "Settings"))
        for name, key in toggles.items():
            was = toggle(desktop, name).is_checked
            expect(f"“{name}” is as nobody has changed it", was == (key in STANDARD_ON))
            if by_keyboard:
                focus(desktop, lambda name=name: toggle(desktop, name))
                desktop.key("space")
            else:
                desktop.click(toggle(desktop, name))
            wait_until(f"“{name}” turns", lambda name=name, was=was: toggle(desktop, name).is_checked != was)
            wait_until(f"{key} is written", lambda key=key, was=was: stored(desktop, key) == (not was))


def check_kept(desktop, table):
    for pane, toggles in table.items():
        desktop.click(desktop.wait_for(pane, "page tab", "Settings"))
        for name, key in toggles.items():
            expect(f"“{name}” is still changed", toggle(desktop, name).is_checked == (key not in STANDARD_ON))


def type_into(desktop, name, role, text):
    field = desktop.wait_for(name, role, "Settings")
    desktop.click(field)
    wait_until(f"“{name}” has the keyboard", lambda: desktop.wait_for(name, role, "Settings").is_focused)
    desktop.key("ctrl+a")
    desktop.type(text)
    desktop.key("Return")


def start_tray(desktop):
    """A desktop's tray, which tells the program that there is one."""
    name, path = WATCHER, "/StatusNotifierWatcher"
    desktop.start(["/usr/bin/python3", "-m", "dbusmock", "--session", name, path, name], stdout=subprocess.DEVNULL)
    call = ["gdbus", "call", "--session", "--dest", name, "--object-path", path, "--method"]
    wait_until("the tray runs", lambda: desktop.run("gdbus", "introspect", "--session", "--dest", name, "--object-path", path))
    desktop.run(*call, "org.freedesktop.DBus.Mock.AddProperty", name, "IsStatusNotifierHostRegistered", "<true>", check=True)
    desktop.run(*call, "org.freedesktop.DBus.Mock.AddMethod", name, "RegisterStatusNotifierItem", "s", "", "", check=True)


def has_tray_icon(desktop):
    """Each icon has a connection of its own to the bus, under which the tray is told of it."""
    told = desktop.run("gdbus", "call", "--session", "--dest", WATCHER, "--object-path", "/StatusNotifierWatcher",
                       "--method", "org.freedesktop.DBus.Mock.GetMethodCalls", "RegisterStatusNotifierItem")
    names = re.findall(r":1[.]\d+", told)
    return bool(names) and "true" in desktop.run(
        "gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path", "/", "--method",
        "org.freedesktop.DBus.NameHasOwner", names[-1])


def first_round(desktop, server):
    open_settings(desktop, "General")
    wait_until("the tray has its icon", lambda: has_tray_icon(desktop))
    expect("nothing updates this copy",
           not desktop.wait_for("Automatically check for updates", "check box", "Settings").is_enabled)
    change(desktop, FIRST, by_keyboard=False)
    wait_until("the icon is gone", lambda: not has_tray_icon(desktop))

    desktop.click(desktop.wait_for("General", "page tab", "Settings"))
    desktop.wait_for("When it’s hidden, open Quillmere from your desktop’s list of apps to see the Inbox and Settings.",
                     "label", "Settings")
    naming = lambda: desktop.wait_for(re.compile("filename$"), "combo box", "Settings")  # noqa: E731
    focus(desktop, naming)
    desktop.key("Down")
    wait_until("the naming is written", lambda: stored(desktop, "quillmere.popup-naming") == "suggested")

    desktop.click(desktop.wait_for("Intelligence", "page tab", "Settings"))
    type_into(desktop, "Model server address", "text", server.address)
    wait_until("the address is written", lambda: stored(desktop, "quillmere.model-address") == server.address)
    quit_program(desktop)

    desktop.launch("--autostart")
    open_settings(desktop, "General")
    check_kept(desktop, FIRST)
    expect("no icon comes", not has_tray_icon(desktop))
    desktop.key("Escape")
    wait_until("the Settings are closed", lambda: not desktop.window_ids("Settings"))


def effects_of_first(desktop, server):
    shot = captures.text(desktop, "Invoice 4711")
    wait_until("the popup", lambda: desktop.popup.is_shown)
    wait_until("its name is the suggested one", lambda: desktop.popup.stem == "Paid invoice", 30)
    expect("the server was asked", server.asked)
    expect("there is no picture in it", not desktop.popup.find("Screenshot preview", "graphic"))
    expect("what it throws away it deletes", desktop.popup.find("Delete", "push button"))
    expect("and no longer into the Trash", not desktop.popup.find("Move to Trash", "push button"))
    desktop.popup.press("Delete")
    question = "Delete Screenshot?"
    wait_until("it asks first", lambda: desktop.window_ids(question))
    desktop.click(desktop.wait_for("Delete", "push button", question))
    wait_until("the file is gone", lambda: not os.path.exists(shot))
    expect("for good", not trashed_files(desktop))
    server.stop()  # what comes now keeps its name

    other = captures.save(desktop.folder, "cat.png", colour=(200, 30, 90))
    wait_until("an image of another app is listed", lambda: desktop.state_of(other), 20)
    desktop.popup.wait_for(other)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    settled_record(desktop, other)
    desktop.action("inbox")
    wait_until("the Inbox is in front", lambda: desktop.active_title() == TITLE)
    choose_in_context_menu(desktop, other, "Delete Immediately…")
    wait_until("it asks", lambda: desktop.find("Delete Screenshot?"))
    desktop.key("Escape")
    wait_until("Escape cancels", lambda: not desktop.find("Delete Screenshot?"))
    expect("it stays", os.path.exists(other))

    passing = captures.save(desktop.folder)
    make_temporary(desktop, passing)
    quit_program(desktop)
    make_overdue(desktop, passing)
    desktop.launch("--autostart")
    wait_until("its time is up", lambda: not os.path.exists(passing), 20)
    expect("it is deleted", not trashed_files(desktop))


def second_round(desktop):
    open_settings(desktop, "General")
    change(desktop, SECOND, by_keyboard=True)
    desktop.click(desktop.wait_for("Popup", "page tab", "Settings"))
    type_into(desktop, "Popup timeout in seconds", "spin box", "1")
    desktop.wait_for("Dismiss after 3 seconds", "label", "Settings")
    type_into(desktop, "Seconds after the last screenshot", "spin box", "2")
    desktop.wait_for("Show it 2 seconds after the last screenshot", "label", "Settings")
    quit_program(desktop)

    desktop.launch("--autostart")
    desktop.action("settings")
    wait_until("the settings have the keyboard", lambda: desktop.active_title() == "Settings")
    expect("it opens at the last pane", shown_pane(desktop) == "Popup")
    check_kept(desktop, SECOND)
    expect("the timeout is kept", stored(desktop, "quillmere.popup-seconds") == 3)
    expect("the pause too", stored(desktop, "quillmere.popup-pause-seconds") == 2)
    desktop.key("ctrl+w")
    wait_until("the Settings are closed", lambda: not desktop.window_ids("Settings"))


def effects_of_second(desktop, server):
    desktop.move_pointer((5, 5))
    shot = captures.text(desktop, "Nobody asks about this")
    wait_until("it is listed", lambda: desktop.state_of(shot) == "pending")
    expect("the popup waits for the pause", not desktop.popup.is_shown)
    wait_until("it comes", lambda: desktop.popup.is_shown)
    wait_until("and keeps it by itself", lambda: desktop.state_of(shot) == "permanent", 20)
    desktop.popup.wait_gone()
    hold_for("no model is asked", lambda: not server.asked, 1)
    expect("nothing is described", "imageDescription" not in desktop.record_of(shot))

    several = [captures.save(desktop.folder) for _ in range(3)]
    wait_until("they are listed", lambda: all(desktop.state_of(path) for path in several))
    wait_until("they come as a note of their number",
               lambda: desktop.popup.find("3 screenshots", "push button"), 10)


def clears_records(desktop):
    files = sorted(os.listdir(desktop.folder))
    open_settings(desktop, "General")
    clear = "Clear Inbox Records…"
    question = "Clear Inbox Records?"
    desktop.click(desktop.wait_for(clear, "push button", "Settings"))
    wait_until("it asks first", lambda: desktop.active_title() == question)
    desktop.key("Return")
    wait_until("Return cancels", lambda: not desktop.window_ids(question))
    expect("nothing is forgotten", desktop.records())
    desktop.click(desktop.wait_for(clear, "push button", "Settings"))
    wait_until("it asks again", lambda: desktop.active_title() == question)
    desktop.click(desktop.wait_for("Clear Records", "push button", question))
    wait_until("every record is forgotten", lambda: not desktop.records())
    expect("every file stays", sorted(os.listdir(desktop.folder)) == files)


def journey(desktop):
    server = FakeModelServer()
    start_tray(desktop)
    desktop.choose_folder()
    desktop.launch("--autostart")
    first_round(desktop, server)
    effects_of_first(desktop, server)
    second_round(desktop)
    server = FakeModelServer(server.port)
    effects_of_second(desktop, server)
    clears_records(desktop)
    server.stop()


if __name__ == "__main__":
    run_journey("settings", journey)
