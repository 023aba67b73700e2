#!/usr/bin/python3
"""Where the popup stands on one screen and on several, beside docks, and when screens come and go."""

import os
import plistlib
import subprocess
import time

import captures
from harness import POPUP_TITLE, CLICK_GATE, expect, hold_for, run_side_by_side, wait_until
from windows import Dock, Windows

IN = 24
CARD_WIDTH = 440
LEFT, RIGHT = "1280x800+0+0", "1024x768+1280+0"


class Stage:
    """The program with its popup."""

    def __init__(self, desktop):
        self.desktop, self.windows = desktop, Windows(desktop)
        desktop.choose_folder()
        desktop.launch("--autostart")

    def show(self, at=None, rectangle=None, **picture):
        """A new screenshot, while the pointer is at a place, taken of a rectangle of the screens."""
        if at:
            self.desktop.move_pointer(at)
        # It is marked before it stands in the folder.
        waiting = captures.save(self.desktop.scratch, **picture)
        if rectangle:
            os.setxattr(waiting, "user.com.apple.metadata:kMDItemScreenCaptureGlobalRect",
                        plistlib.dumps(list(rectangle), fmt=plistlib.FMT_BINARY))
        shot = os.path.join(self.desktop.folder, os.path.basename(waiting))
        subprocess.run(["cp", "--preserve=xattr", waiting, shot], check=True)
        self.desktop.popup.wait_for(shot)

    def dismiss(self):
        self.desktop.popup.press("Dismiss Screenshot Popup")
        self.desktop.popup.wait_gone()

    def corner(self):
        """Of the card, with the first pixel to the right of it and below it."""
        _, _, right, bottom = self.windows.card()
        return right + 1, bottom + 1

    def expect_corner(self, what, x, y):
        """The card stands in from there by its margin."""
        margin = round(IN * self.desktop.scale)
        # Where a point is no whole number of pixels, place and height are each rounded.
        off = 0 if self.desktop.scale == int(self.desktop.scale) else 1
        wait_until(f"{what}: in from {x}, {y}",
                   lambda: all(abs(seen - edge + margin) <= off for seen, edge in zip(self.corner(), (x, y))))


def two_screens(desktop):
    stage = Stage(desktop)
    stage.show(at=(1900, 300))
    stage.expect_corner("the popup opens where the pointer is", 2304, 768)
    stage.dismiss()
    stage.show(at=(100, 100))
    stage.expect_corner("and on the other screen", 1280, 800)
    desktop.move_pointer((1900, 300))
    captures.save(desktop.folder)
    wait_until("another one waits", lambda: desktop.popup.waiting_count == 1)
    desktop.popup.press("Keep")
    wait_until("it is shown", lambda: desktop.popup.waiting_count == 0)
    stage.expect_corner("a popup that goes on stays where it is", 1280, 800)
    stage.dismiss()
    stage.show(at=(100, 100), rectangle=(1200.0, 0.0, 300.0, 200.0))
    stage.expect_corner("where most of the capture was taken counts more than the pointer", 2304, 768)


def a_screen_goes(desktop):
    stage = Stage(desktop)
    stage.show(at=(1900, 300))
    stage.expect_corner("the popup opens where the pointer is", 2304, 768)
    desktop.remove_monitor("right")
    stage.expect_corner("it moves to the screen that is left", 1280, 800)
    desktop.set_monitor("right", RIGHT)
    hold_for("a new screen doesn't draw it there", lambda: stage.corner() == (1280 - IN, 800 - IN), 0.5)


def the_first_screen_stands_right(desktop):
    """Places are counted from the corner of the first screen, which is not the display's."""
    stage = Stage(desktop)
    stage.show(at=(100, 100))
    stage.expect_corner("on the left screen", 1024, 768)
    stage.dismiss()
    stage.show(at=(1500, 300))
    stage.expect_corner("on the first screen", 2304, 900)
    stage.dismiss()
    stage.show(at=(100, 100), rectangle=(10, 10, 300, 200))
    stage.expect_corner("a capture of the first screen's corner", 2304, 900)


def docks(desktop):
    stage = Stage(desktop)
    with Dock(desktop, 0, 760, 1280, 40, bottom=40):
        stage.show()
        stage.expect_corner("above the dock", 1280, 760)
        with Dock(desktop, 1220, 0, 60, 800, right=60):
            stage.expect_corner("beside another that comes", 1220, 760)
        stage.expect_corner("it moves back when that ends", 1280, 760)
    stage.expect_corner("and down", 1280, 800)


def docks_on_two_screens(desktop):
    stage = Stage(desktop)
    # Below the right screen, which ends 32 pixels before the display does.
    with Dock(desktop, 1280, 718, 1024, 50, bottom=82):
        stage.show(at=(1900, 300))
        stage.expect_corner("above the dock of its screen", 2304, 718)
        stage.dismiss()
        stage.show(at=(100, 100))
        stage.expect_corner("the other screen has none", 1280, 800)
        with Dock(desktop, 0, 770, 1280, 30, bottom=30):
            stage.expect_corner("until it has one", 1280, 770)
        stage.expect_corner("which ends", 1280, 800)


def scaled_screens(desktop):
    stage = Stage(desktop)
    with Dock(desktop, 1920, 1140, 1920, 60, bottom=60):
        stage.show(at=(3000, 300))
        stage.expect_corner("above the dock of its screen", 3840, 1140)
    stage.expect_corner("which ends", 3840, 1200)


def a_low_screen(desktop):
    stage = Stage(desktop)
    with Dock(desktop, 0, 473, 853, 60, bottom=60):
        stage.show(width=400, height=230)
        left, top, right, bottom = stage.windows.card()
        expect(f"the card takes what height there is: {top}, {bottom}", (top, bottom) == (IN, 473 - IN - 1))
        expect("its picture gave way, and nothing scrolls", not desktop.find(role="scroll bar", window=POPUP_TITLE))
        desktop.popup.press("Move to Trash")
        desktop.popup.wait_gone()


def a_small_screen(desktop):
    stage = Stage(desktop)
    stage.show(width=400, height=230)
    left, top, right, bottom = stage.windows.card()
    expect(f"the card keeps to the left edge: {left}, {right}", (left, right) == (0, CARD_WIDTH - 1))
    expect(f"and takes what height there is: {top}, {bottom}", (top, bottom) == (IN, 300 - IN - 1))
    expect("a bar shows that there is more", desktop.find(role="scroll bar", window=POPUP_TITLE))
    # Keep stands below the edge; the wheel brings it up.
    desktop.run("xdotool", "mousemove", "200", "150", *["click", "5"] * 20, check=True)
    time.sleep(CLICK_GATE)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


run_side_by_side("popup-on-screens", {
    "two": (two_screens, {"size": "2304x800", "monitors": {"left": LEFT, "right": RIGHT}}),
    "one-goes": (a_screen_goes, {"size": "2304x800", "monitors": {"left": LEFT, "right": RIGHT}}),
    "first-is-right": (the_first_screen_stands_right,
                       {"size": "2304x900", "monitors": {"right": "1280x800+1024+100", "left": "1024x768+0+0"}}),
    "docks": (docks, {}),
    "docks-on-two": (docks_on_two_screens, {"size": "2304x800", "monitors": {"left": LEFT, "right": RIGHT}}),
    "scaled": (scaled_screens,
               {"size": "3840x1200", "scale": 1.5,
                "monitors": {"left": "1920x1200+0+0", "right": "1920x1200+1920+0"}}),
    "low": (a_low_screen, {"size": "853x533"}),
    "small": (a_small_screen, {"size": "400x300"}),
})
