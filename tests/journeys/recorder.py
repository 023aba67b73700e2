#!/usr/bin/python3
"""A shortcut is recorded in the Settings, also one that the window manager would take; the keyboard is given back
however the recording ends, and what is recorded is heard everywhere."""

import os
import subprocess
import sys
import time

import captures
from harness import POPUP_TITLE, expect, hold_for, run_journey, wait_until
from settings import focus, show_pane, stored
from steps import open_settings, quit_program

FIELD, CLEAR, RESTORE = "Review screenshot", "Clear Shortcut", "Restore Default"
STANDARD = "Ctrl+Shift+Super+B"
RECORDED = "Alt+Super+R"
OPENBOX = """<?xml version="1.0" encoding="UTF-8"?>
<openbox_config xmlns="http://openbox.org/3.4/rc"><keyboard>
  <keybind key="W-A-r"><action name="Execute"><command>touch {marker}</command></action></keybind>
</keyboard></openbox_config>
"""


def bind_in_window_manager(desktop):
    marker = os.path.join(desktop.scratch, "taken")
    folder = os.path.join(desktop.config_home, "openbox")
    os.makedirs(folder)
    with open(os.path.join(folder, "rc.xml"), "w", encoding="utf-8") as file:
        file.write(OPENBOX.format(marker=marker))

    def takes():
        # Asked anew each time: one that is still starting hears nothing.
        desktop.run("openbox", "--reconfigure")
        time.sleep(0.5)
        desktop.key("super+alt+r")
        time.sleep(0.5)
        return os.path.exists(marker)

    wait_until("the window manager takes the keys", takes, 30)
    os.remove(marker)
    return marker


def field(desktop):
    return desktop.wait_for(FIELD, "push button", "Settings")


def value(desktop):
    return field(desktop).description.partition(". ")[0]


def record(desktop):
    desktop.click(field(desktop))
    wait_until("it records", lambda: value(desktop) == "Recording")
    wait_until("it has the whole keyboard", lambda: not keyboard_is_free(desktop))


def keyboard_is_free(desktop):
    """Whether another program can have it. Asked by a process of its own, which gives it back at its end."""
    question = "import sys, Xlib.display, Xlib.X as X; d = Xlib.display.Display(); " \
               "sys.exit(d.screen().root.grab_keyboard(False, X.GrabModeAsync, X.GrabModeAsync, X.CurrentTime))"
    return subprocess.run([sys.executable, "-c", question], env=desktop.environment, check=False).returncode == 0


def expect_free(desktop, how):
    wait_until(f"{how} gives the keyboard back", lambda: keyboard_is_free(desktop))


def records_what_the_window_manager_takes(desktop, marker):
    record(desktop)
    desktop.key("super+alt+r")
    wait_until("it is recorded", lambda: value(desktop) == RECORDED)
    expect("the window manager did not see it", not os.path.exists(marker))
    expect("it is written", stored(desktop, "quillmere.review-shortcut"))
    expect_free(desktop, "a shortcut")


def ends_as_it_should(desktop):
    record(desktop)
    desktop.key("Escape")
    wait_until("Escape leaves it", lambda: value(desktop) == RECORDED)
    expect_free(desktop, "Escape")

    record(desktop)
    desktop.key("super+q")
    desktop.wait_for("Super+Q can’t be used. Your desktop or most apps already use this shortcut. Choose a different "
                     "shortcut.", "label", "Settings")
    expect("the recording goes on", value(desktop) == "Recording")
    desktop.picture(os.path.join(desktop.pictures, "recorder-issue.png"))
    desktop.key("Delete")
    wait_until("Delete clears it", lambda: value(desktop) == "None")
    expect("it is written that there is none", stored(desktop, "quillmere.review-shortcut") is not None)
    expect("nothing is left to clear", not desktop.find(CLEAR, "push button", "Settings"))
    expect_free(desktop, "Delete")

    desktop.click(desktop.wait_for(RESTORE, "push button", "Settings"))
    wait_until("the default is back", lambda: value(desktop) == STANDARD)
    expect("it need not be restored", not desktop.wait_for(RESTORE, "push button", "Settings").is_enabled)


def gives_the_keyboard_back(desktop):
    record(desktop)
    desktop.action("inbox")
    wait_until("another window has it", lambda: desktop.active_title() == "Quillmere")
    expect_free(desktop, "another window")
    open_settings(desktop, "Keyboard")
    expect("nothing was recorded", value(desktop) == STANDARD)

    record(desktop)
    desktop.click(desktop.wait_for("Popup", "page tab", "Settings"))
    expect_free(desktop, "another pane")
    desktop.click(desktop.wait_for("Keyboard", "page tab", "Settings"))

    record(desktop)
    desktop.run("wmctrl", "-c", "Settings", check=True)
    wait_until("it is closed", lambda: not desktop.window_ids("Settings"))
    expect_free(desktop, "closing the window")
    open_settings(desktop, "Keyboard")

    record(desktop)
    desktop.program.kill()
    expect_free(desktop, "a crash")
    desktop.launch("--autostart")


def by_keyboard_alone(desktop):
    open_settings(desktop, "General")
    show_pane(desktop, "Keyboard")
    focus(desktop, lambda: field(desktop))
    desktop.key("Return")
    wait_until("it records", lambda: value(desktop) == "Recording")
    desktop.key("Tab")
    hold_for("Tab ends nothing", lambda: value(desktop) == "Recording", 0.5)
    desktop.key("ctrl+alt+r")
    wait_until("it is recorded", lambda: value(desktop) == "Ctrl+Alt+R")
    desktop.wait_for("This shortcut includes Ctrl+Alt, which desktops and screen readers use for many shortcuts of their "
                     "own. If it isn’t heard, choose another.", "label", "Settings")


def is_heard(desktop):
    """Everywhere, also after a restart; a held key that is recorded anew reviews nothing."""
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    expect("the popup has not the keyboard", desktop.active_title() != POPUP_TITLE)
    record(desktop)
    desktop.run("xdotool", "keydown", "ctrl", "keydown", "alt", "keydown", "r", check=True)
    time.sleep(1)
    desktop.run("xdotool", "keyup", "r", "keyup", "alt", "keyup", "ctrl", check=True)
    hold_for("it is set anew, and the popup left alone",
             lambda: value(desktop) == "Ctrl+Alt+R" and desktop.active_title() != POPUP_TITLE, 1)
    desktop.program.kill()  # to quit it would ask, since the popup waits
    desktop.launch("--autostart")
    desktop.popup.wait_for(shot)
    desktop.key("ctrl+alt+r")
    wait_until("the shortcut reviews", lambda: desktop.active_title() == POPUP_TITLE)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def journey(desktop):
    marker = bind_in_window_manager(desktop)
    desktop.choose_folder()
    desktop.launch("--autostart")
    open_settings(desktop, "Keyboard")
    expect("the default is there at first", value(desktop) == STANDARD)
    records_what_the_window_manager_takes(desktop, marker)
    ends_as_it_should(desktop)
    gives_the_keyboard_back(desktop)
    by_keyboard_alone(desktop)
    is_heard(desktop)
    quit_program(desktop)


if __name__ == "__main__":
    run_journey("recorder", journey)
