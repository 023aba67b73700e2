#!/usr/bin/python3
"""What the window system told is known of each capture: windows that were dragged, raised, put away, sent to another
desktop or moved after the capture stand where they stood in the picture."""

import os
import sys
import time

import captures
from harness import expect, run_journey, wait_until
from windows import Windows, open_terminal

PLACES = {"First": (70, 60), "Second": (360, 200)}


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    desktop.run("xsetroot", "-solid", "#3a6ea5", check=True)
    for title, place in PLACES.items():
        open_terminal(desktop, title, "60x20", place)
    windows = Windows(desktop)
    wait_until("they are drawn", lambda: all(is_drawn(windows, title) for title in PLACES))
    windows.activate("Second")
    in_front(desktop, windows, "Second", ["First", "Second"])

    windows.activate("First")
    in_front(desktop, windows, "First", ["First", "Second"])

    dragged(desktop, windows)
    in_front(desktop, windows, "First", ["First", "Second"])

    moved_after_the_capture(desktop, windows)

    first = str(windows.find("First"))
    desktop.run("xdotool", "windowminimize", first, check=True)
    wait_until("it is put away", lambda: "Iconic" in desktop.run("xprop", "-id", first, "WM_STATE"))
    in_front(desktop, windows, "Second", ["Second"])


def is_drawn(windows, title):
    left, top, right, bottom = windows.frame(title)
    return min(windows.pixel((left + 20, bottom - 20))) > 200 or min(windows.pixel((right - 20, top + 20))) > 200


def in_front(desktop, windows, front, shown):
    time.sleep(0.4)  # a window manager's animation
    shot = captures.scrot_named(desktop)
    check(desktop, shot, {title: windows.outer_frame(title) for title in shown}, front)


def check(desktop, shot, frames, front):
    desktop.popup.wait_for(shot)
    known = wait_until("it is known what it shows",
                       lambda: (desktop.record_of(shot) or {}).get("knownWindows"))
    for title, frame in frames.items():
        text = "{2}x{3}+{0}+{1}".format(*frame)
        expect(f"{title} stands at {text}: {known}", text in known)
        expect(f"{front} is in front: {known}", ("^" + text in known) == (title == front))
    expect(f"and no other: {known}", len(known.split()) == 3 + len(frames))
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def dragged(desktop, windows):
    """As by a person's hand, in many small steps."""
    window = str(windows.find("First"))
    for step in range(1, 25):
        desktop.run("xdotool", "windowmove", window, str(70 + 5 * step), str(60 + 3 * step), check=True)
        time.sleep(0.01)
    wait_until("it has come", lambda: windows.frame("First")[0] > 150)


def moved_after_the_capture(desktop, windows):
    outside = os.path.join(desktop.home, "capture.png")
    time.sleep(0.4)
    desktop.run("scrot", outside, check=True)
    frames = {title: windows.outer_frame(title) for title in PLACES}
    time.sleep(0.3)
    desktop.run("xdotool", "windowmove", str(windows.find("First")), "20", "300", check=True)
    shot = os.path.join(desktop.folder, captures.capture_name())
    os.rename(outside, shot)
    check(desktop, shot, frames, "First")


manager = sys.argv[1] if len(sys.argv) > 1 else "openbox"
run_journey(f"window-watch-{manager}", journey, window_manager=manager)
