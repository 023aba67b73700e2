#!/usr/bin/python3
"""Whether the program opens at login: an installed one by the entry that the session starts, which the Settings turn on
and off; one that was never installed not at all; one in a sandbox when the desktop's portal allows it."""

import configparser
import os
import shutil
import stat

from fake_background_portal import FakeBackgroundPortal
from harness import Desktop, copy_program, expect, hold_for, run_journey, wait_until
from steps import open_settings, quit_program

TEMPLATE = os.path.join(os.path.dirname(__file__), "..", "..", "packaging", "com.quillmere.app.desktop.in")
NAME = "com.quillmere.app.desktop"
LOGIN = "Open Quillmere at login"
NOT_INSTALLED = "Opening at login isn’t available for this copy of Quillmere. Install Quillmere, open the installed one, " \
                "and try again."
WAITING = "Your desktop hasn’t allowed this yet. Allow it in your desktop’s settings, or turn this off and on again to " \
          "be asked once more."
SETTINGS = "Open Login Settings"


def toggle(desktop):
    return desktop.wait_for(LOGIN, "check box", "Settings")


def says(desktop, text):
    return desktop.find(text, "label", "Settings")


def turn(desktop, by_keyboard=False):
    was = toggle(desktop).is_checked
    if by_keyboard:
        wait_until("the toggle has the keyboard", lambda: (desktop.key("Tab"), toggle(desktop).is_focused)[1])
        desktop.key("space")
    else:
        desktop.click(toggle(desktop))
    wait_until("it turns", lambda: toggle(desktop).is_checked != was)


def install(desktop):
    """As an installation below the home does."""
    prefix = os.path.join(desktop.home, ".local")
    program = copy_program(desktop.binary, os.path.join(prefix, "bin"))
    applications = os.path.join(desktop.data_home, "applications")
    os.makedirs(applications, exist_ok=True)
    with open(TEMPLATE, encoding="utf-8") as file:
        text = file.read().replace("@CMAKE_INSTALL_PREFIX@", prefix)
    with open(os.path.join(applications, NAME), "w", encoding="utf-8") as file:
        file.write(text)
    return program


def entry(desktop):
    parser = configparser.RawConfigParser()
    parser.optionxform = str
    parser.read(os.path.join(desktop.config_home, "autostart", NAME), encoding="utf-8")
    return dict(parser["Desktop Entry"]) if parser.has_section("Desktop Entry") else None


def of_a_build_folder(desktop):
    desktop.launch("--autostart")
    open_settings(desktop, "General")
    desktop.wait_for(NOT_INSTALLED, "label", "Settings")
    expect("it is off and cannot be turned on", not toggle(desktop).is_checked and not toggle(desktop).is_enabled)
    desktop.picture(os.path.join(desktop.pictures, "login-item-not-installed.png"))
    quit_program(desktop)


def installed(desktop):
    program = desktop.binary = install(desktop)
    desktop.launch("--autostart")
    open_settings(desktop, "General")
    expect("it is off at first", not toggle(desktop).is_checked and toggle(desktop).is_enabled)
    expect("nothing is said of that", not says(desktop, NOT_INSTALLED) and not says(desktop, WAITING))
    turn(desktop)
    written = entry(desktop)
    expect(f"the session would start {written['Exec']}", written["Exec"] == f'"{program}" --autostart')
    expect("as long as it is there", written["TryExec"] == program)
    expect("nothing is said of that either", not says(desktop, WAITING))
    quit_program(desktop)

    started_as_by_the_session(desktop, written)
    open_settings(desktop, "General")
    expect("it is on after a restart", toggle(desktop).is_checked)
    turn(desktop, by_keyboard=True)
    wait_until("no entry is left", lambda: entry(desktop) is None)

    switched_elsewhere(desktop, written)
    folder_that_cannot_be_written(desktop)
    quit_program(desktop)


def started_as_by_the_session(desktop, written):
    """The words of the entry start the program, and no window comes."""
    command = written["Exec"].replace('"', "").split()
    expect("the program is the installed one", command[0] == desktop.binary)
    desktop.launch(*command[1:])
    hold_for("no window comes", lambda: not desktop.window_ids("Quillmere"), 1)


def switched_elsewhere(desktop, written):
    """By the desktop's own tool, while the Settings are open behind it."""
    turn(desktop)
    path = os.path.join(desktop.config_home, "autostart", NAME)
    with open(path, "a", encoding="utf-8") as file:
        file.write("X-GNOME-Autostart-enabled=false\n")
    expect("the entry is the same otherwise", entry(desktop)["Exec"] == written["Exec"])
    desktop.action("inbox")
    wait_until("another window is in front", lambda: desktop.active_title() == "Quillmere")
    open_settings(desktop, "General")
    wait_until("it is off", lambda: not toggle(desktop).is_checked)


def folder_that_cannot_be_written(desktop):
    """Even root is refused by a file in the folder's place."""
    autostart = os.path.join(desktop.config_home, "autostart")
    shutil.rmtree(autostart)
    with open(autostart, "w", encoding="utf-8"):
        os.chmod(autostart, stat.S_IRUSR)
    desktop.click(toggle(desktop))
    title = "Couldn’t Turn On Launch at Login"
    wait_until("that is told", lambda: desktop.find(title, "label", title))
    desktop.key("Return")
    wait_until("and read", lambda: not desktop.window_ids(title))
    expect("it is off", not toggle(desktop).is_checked)
    os.remove(autostart)


def in_a_sandbox(desktop):
    desktop.environment["SNAP"] = "/snap/quillmere/1"
    tools = os.path.join(desktop.scratch, "tools")
    os.makedirs(tools)
    opened = os.path.join(desktop.scratch, "opened")
    with open(os.path.join(tools, "xfce4-session-settings"), "w", encoding="utf-8") as file:
        file.write(f"#!/bin/sh\ntouch {opened}\n")
    os.chmod(file.name, 0o755)
    desktop.environment["PATH"] = tools + ":" + desktop.environment["PATH"]
    desktop.environment["XDG_CURRENT_DESKTOP"] = "XFCE"
    portal = FakeBackgroundPortal(desktop)
    desktop.launch("--autostart")
    open_settings(desktop, "General")
    expect("nobody is asked unasked", not portal.was_asked())
    turn(desktop)
    asked = portal.asked()
    expect("the portal is asked to start it", asked["autostart"] and asked["commandline"] == ["quillmere", "--autostart"])
    desktop.wait_for(WAITING, "label", "Settings")
    expect("it is on while the answer is awaited", toggle(desktop).is_checked)
    desktop.picture(os.path.join(desktop.pictures, "login-item-waiting.png"))
    desktop.click(desktop.wait_for(SETTINGS, "push button", "Settings"))
    wait_until("the desktop's settings open", lambda: os.path.exists(opened))

    portal.answer(0, False)
    hold_for("a refusal waits too", lambda: says(desktop, WAITING) and toggle(desktop).is_checked, 1)
    quit_program(desktop)
    desktop.launch("--autostart")
    open_settings(desktop, "General")
    desktop.wait_for(WAITING, "label", "Settings")

    turn(desktop)
    expect("it is asked to forget it", not portal.asked()["autostart"])
    portal.answer(0, False)
    wait_until("nothing waits", lambda: not says(desktop, WAITING))
    turn(desktop)
    portal.asked()
    portal.answer(0, True)
    wait_until("it is allowed", lambda: not says(desktop, WAITING))
    expect("and on", toggle(desktop).is_checked)
    expect("no entry was written here", entry(desktop) is None)


def journey(desktop: Desktop):
    desktop.choose_folder()
    of_a_build_folder(desktop)
    installed(desktop)
    in_a_sandbox(desktop)


run_journey("login-item", journey)
