#!/usr/bin/python3
"""In the crop editor an area is drawn, moved and changed with the pointer, close up too, and by a screen reader's
actions; what is read out is what is there."""

import os

import captures
from crop_sheet import HELP, CropSheet
from harness import expect, run_journey, wait_until
from inbox_steps import keep_new, open_inbox

WIDTH, HEIGHT = 400, 300
HINT = ("Use the arrow keys to move the selection. Hold Shift to move 10 pixels at a time. Hold Alt to change its "
        "size.")


class Pointer:
    """Over a picture that is shown at real size in the middle of its canvas."""

    def __init__(self, desktop, sheet):
        self._desktop = desktop
        middle, size = desktop.settled_place_of(sheet.canvas), sheet.canvas.extents[2:]
        # A pixel that is left over stands at the right and below.
        self._corner = [middle[i] - size[i] // 2 + (size[i] - (WIDTH, HEIGHT)[i] + 1) // 2 for i in (0, 1)]

    def place(self, pixel):
        return self._corner[0] + pixel[0], self._corner[1] + pixel[1]

    def drag(self, start, end, held=None):
        """`held` is a key that goes down once the drag has begun: before, it would be the window manager's."""
        self._desktop.move_pointer(self.place(start))
        self._desktop.run("xdotool", "mousedown", "1")
        between = [(start[i] + 2 * end[i]) // 3 for i in (0, 1)]
        self._desktop.move_pointer(self.place(between))
        if held:
            self._desktop.run("xdotool", "keydown", held)
        self._desktop.move_pointer(self.place(end))
        self._desktop.run("xdotool", "mouseup", "1")
        if held:
            self._desktop.run("xdotool", "keyup", held)

    def click(self, pixel, button="1", times=1):
        self._desktop.move_pointer(self.place(pixel))
        self._desktop.run("xdotool", "click", "--repeat", str(times), "--delay", "40", button)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = keep_new(desktop, width=WIDTH, height=HEIGHT)
    open_inbox(desktop)
    sheet = CropSheet(desktop)
    sheet.open(shot, "Crop…", HELP)
    pointer = Pointer(desktop, sheet)
    drawn_and_changed(desktop, sheet, pointer)
    to_the_edge(desktop, sheet, pointer)
    close_up(desktop, sheet, pointer)
    by_a_screen_reader(desktop, sheet)
    desktop.key("Escape")
    sheet.wait_gone()
    expect("nothing was written", os.listdir(desktop.folder) == [os.path.basename(shot)])
    expect("nor is the file another", open(shot, "rb").read() == captures.png(width=WIDTH, height=HEIGHT))


def wait_for_bounds(sheet, what, bounds):
    wait_until(f"{what}: {bounds}, now {sheet.bounds}", lambda: sheet.bounds == bounds)


def drawn_and_changed(desktop, sheet, pointer):
    pointer.drag((50, 40), (150, 110))
    wait_for_bounds(sheet, "drawn", (50, 40, 100, 70))
    pointer.drag((100, 70), (130, 90))
    wait_for_bounds(sheet, "moved by its inside", (80, 60, 100, 70))
    pointer.drag((180, 130), (200, 160))
    wait_for_bounds(sheet, "made larger at a corner", (80, 60, 120, 100))
    pointer.drag((80, 110), (60, 20))
    wait_for_bounds(sheet, "at a side, along which nothing changes", (60, 60, 140, 100))
    pointer.drag((60, 60), (260, 220))
    wait_for_bounds(sheet, "pulled over the opposite corner", (200, 160, 60, 60))
    pointer.click((20, 20))
    wait_until("a click beside it selects nothing", lambda: not sheet.button("Copy Cropped Image").is_enabled)
    desktop.key("ctrl+z")
    wait_for_bounds(sheet, "undone", (200, 160, 60, 60))


def to_the_edge(desktop, sheet, pointer):
    pointer.drag((260, 220), (WIDTH - 4, HEIGHT - 5))
    wait_for_bounds(sheet, "near the edge it goes there", (200, 160, 200, 140))
    pointer.drag((400, 300), (300, 250))
    wait_for_bounds(sheet, "and away", (200, 160, 100, 90))
    pointer.drag((300, 250), (WIDTH - 4, HEIGHT - 5), held="Alt_L")
    wait_for_bounds(sheet, "with Alt it stays where the pointer is", (200, 160, 196, 135))


def close_up(desktop, sheet, pointer):
    """At nine times the picture's size the pointer moves by parts of pixels. What is in the middle stays there."""
    corner = (WIDTH // 2, HEIGHT // 2)
    pointer.drag(corner, (240, 180))
    wait_for_bounds(sheet, "drawn", (*corner, 40, 30))
    x, y = pointer.place(corner)
    desktop.move_pointer((x, y))
    for _ in range(10):
        desktop.run("xdotool", "keydown", "ctrl", "click", "4", "keyup", "ctrl")
    before = sheet.bounds
    desktop.run("xdotool", "mousedown", "1")
    desktop.run("xdotool", "mousemove", str(x - 20), str(y - 20))
    desktop.run("xdotool", "mousemove", str(x - 47), str(y - 47), "mouseup", "1")
    wait_until("the corner has moved", lambda: sheet.bounds != before)
    left, top, width, height = sheet.bounds
    expect(f"by a few pixels of the picture: {sheet.bounds}", 192 <= left < 200 and 142 <= top < 150)
    expect("the opposite corner stays", (left + width, top + height) == (240, 180))
    desktop.key("ctrl+0")


def by_a_screen_reader(desktop, sheet):
    left, top, width, height = sheet.bounds
    canvas = sheet.canvas
    expect(f"it is read out where it is: {canvas.text}",
           all(str(number) in canvas.text for number in (left, top, width, height)))
    expect(f"and how it is used: {canvas.description}", HINT in canvas.description)
    canvas.do("Move Selection Down")
    wait_for_bounds(sheet, "moved down", (left, top + 10, width, height))
    canvas.do("Move Selection Up")
    wait_for_bounds(sheet, "and up", (left, top, width, height))


run_journey("crop-by-pointer", journey)
