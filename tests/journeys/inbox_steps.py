"""The Inbox window as a person uses it."""

import os

from gi.repository import GLib

import captures
from harness import JourneyFailed, expect, wait_until
from steps import row_of

TITLE = "Quillmere"


def open_inbox(desktop):
    desktop.action("inbox", wait=True)
    wait_until("the Inbox has the keyboard", lambda: desktop.active_title() == TITLE)


def close_inbox(desktop):
    """As the window manager does it, whatever is open over it."""
    (window,) = desktop.window_ids(TITLE)
    desktop.run("wmctrl", "-i", "-c", window, check=True)
    wait_until("the Inbox is closed", lambda: not desktop.window_ids(TITLE))
    desktop.action("none", wait=True)


def keep_new(desktop, folder=None, **picture):
    """A screenshot that has been decided on, so that no popup is in the way."""
    shot = captures.save(folder or desktop.folder, **picture)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent")
    return shot


def choose_in_context_menu(desktop, shot, name):
    """Of its row, by the keys: a menu is in no window's tree, but each item that is reached is told."""
    focus = desktop.program.tree.focus()
    place = desktop.settled_place_of(row_of(desktop, shot))
    desktop.run("xdotool", "mousemove", str(place[0]), str(place[1]), "click", "3", check=True)

    def is_reached():
        if focus.name == name:
            return True
        before = focus.name
        desktop.key("Down")
        try:
            wait_until("the next item", lambda: focus.name != before, 1)
        except JourneyFailed:
            pass  # the menu was not open yet
        return focus.name == name

    wait_until(f"the item “{name}” is reached", is_reached)
    desktop.key("Return")


class RenameField:
    """The field for the name; a list tells a screen reader of its rows alone, and the field by the keyboard in it."""

    def __init__(self, desktop):
        self._desktop = desktop
        self._focus = desktop.program.tree.focus()

    @property
    def is_open(self):
        control = self._focus.last
        try:
            return bool(control and control.name == "Name" and control.role == "text" and control.is_focused)
        except GLib.Error:
            return False  # gone meanwhile

    @property
    def text(self):
        return self._focus.last.text

    def begin(self, stem, begin):
        begin()
        wait_until("the field is open", lambda: self.is_open)
        expect(f"it holds the name without its ending: {self.text}", self.text == stem)

    def type(self, text):
        self._desktop.type(text)
        wait_until("the field holds what is typed", lambda: self.is_open and self.text == text)

    def wait_gone(self):
        wait_until("the field is gone", lambda: not self.is_open)


def stem_of(shot):
    return os.path.splitext(os.path.basename(shot))[0]


def choose_row(desktop, shot):
    """By one click: two are an order to open it."""
    if not row_of(desktop, shot).is_focused:
        desktop.click(row_of(desktop, shot))
    wait_until("the row is chosen", lambda: row_of(desktop, shot).is_focused)


def begin_in_list(desktop, field, shot):
    choose_row(desktop, shot)
    field.begin(stem_of(shot), lambda: desktop.key("F2"))
