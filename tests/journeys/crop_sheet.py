"""The crop editor as a person uses it."""

import os

from harness import expect, wait_until
from inbox_steps import TITLE
from steps import row_of

SAVE, REPLACE, COPY = "Save as New Screenshot", "Replace Original…", "Copy Cropped Image"
KEEP, WHOLE, CANCEL = "Keep Full Screenshot", "Select Whole Image", "Cancel"
NOT_REPLACEABLE = ("Replace Original isn’t available: this screenshot’s file has moved, been renamed, or left the "
                   "Inbox. Save the crop as a new screenshot instead.")
HELP = ("Save the crop as a new screenshot, or replace the original. Drag on the image, use the arrow keys, or enter "
        "pixel bounds measured from the top-left corner.")
ESTIMATED = "These are estimated boundaries, not guaranteed windows. Check the preview and adjust the crop."


class CropSheet:
    def __init__(self, desktop):
        self._desktop = desktop

    def open(self, shot, command, note):
        """By the button of the detail."""
        self.choose(shot)
        self._desktop.click(self._desktop.wait_for(command, "push button", TITLE))
        self.wait_open(note)

    def choose(self, shot):
        if not row_of(self._desktop, shot).is_selected:
            self._desktop.click(row_of(self._desktop, shot))
        wait_until("the row is chosen", lambda: row_of(self._desktop, shot).is_selected)

    def wait_open(self, note=HELP):
        self._desktop.wait_for(SAVE, "push button")
        self._desktop.wait_for(note, "label")

    def wait_gone(self):
        wait_until("the sheet is gone", lambda: not self._desktop.find(SAVE, "push button"))
        wait_until("the Inbox has the keyboard", lambda: self._desktop.active_title() == TITLE)

    def button(self, name):
        return self._desktop.wait_for(name, "push button")

    def press(self, name):
        wait_until(f"“{name}” can be pressed", lambda: self.button(name).is_enabled)
        self._desktop.click(self.button(name))

    @property
    def canvas(self):
        return self._desktop.wait_for("Screenshot preview", "graphic", self.title)

    @property
    def title(self):
        return self.button(SAVE).window.name

    @property
    def bounds(self):
        """x, y, width and height, as the fields show them."""
        return tuple(int(self.field(name).text) for name in ("X", "Y", "Width", "Height"))

    def field(self, name):
        return self._desktop.wait_for(name, ("spin button", "text"), self.title)

    def type_bounds(self, *bounds):
        """With the keyboard, from the first field on."""
        self._desktop.click(self.field("X"))
        for number in bounds:
            self._desktop.key("ctrl+a")
            self._desktop.type(str(number))
            self._desktop.key("Tab")
        wait_until(f"the crop is {bounds}", lambda: self.bounds == bounds)

    def wait_for_text(self, text, role="label"):
        self._desktop.wait_for(text, role, self.title)


def crop_of(shot, number=0):
    """Where a new screenshot that was cropped from it stands."""
    stem = os.path.splitext(os.path.basename(shot))[0]
    return os.path.join(os.path.dirname(shot), f"{stem} Crop{f' ({number})' if number else ''}.png")


def bytes_of(path):
    with open(path, "rb") as file:
        return file.read()


def expect_same(what, path, content):
    expect(what, bytes_of(path) == content)
