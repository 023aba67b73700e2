#!/usr/bin/python3
"""The popup does not stand in the next screenshot: it leaves when a capture begins, by key or by tool, and comes back
with the file or after three seconds. With the setting for it, it waits until the last of a series has come."""

import os
import subprocess
import sys
import time

import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf  # noqa: E402

import captures
from harness import JourneyFailed, expect, hold_for, run_journey, wait_until
from windows import Windows

CARD = (252, 252, 253)
# How long the popup waits for a screenshot that was foretold, in seconds.
RECESS = 3.0


def card_in(path, place):
    """Whether the popup's ground stands at this place of a picture."""
    picture = GdkPixbuf.Pixbuf.new_from_file(path)
    at = place[1] * picture.get_rowstride() + place[0] * picture.get_n_channels()
    return tuple(picture.get_pixels()[at:at + 3]) == CARD


def place_on_card(desktop):
    left, top, right, _ = Windows(desktop).card()
    return (left + right) // 2, top + 4


def show(desktop):
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    return shot


def decide_all(desktop):
    while desktop.popup.is_shown:
        waiting = desktop.popup.waiting_count
        desktop.popup.press("Keep")
        if waiting == 0:
            desktop.popup.wait_gone()
        else:
            wait_until("the next one shows", lambda: desktop.popup.waiting_count == waiting - 1)


def leaves_by_key(desktop):
    show(desktop)
    for key in ("Print", "alt+Print", "shift+Print"):
        began = time.monotonic()
        desktop.key(key)
        wait_until("the popup leaves", lambda: not desktop.popup.is_shown)
        wait_until("and comes back when nothing comes", lambda: desktop.popup.is_shown)
        expect("not before its time", time.monotonic() - began >= RECESS)
    decide_all(desktop)


def two_in_a_row(desktop):
    """Of two presses of the key the first file does not bring the popup back into the second."""
    show(desktop)
    desktop.key("Print")
    wait_until("the popup leaves", lambda: not desktop.popup.is_shown)
    desktop.key("Print")
    captures.save(desktop.folder)
    hold_for("it keeps away from the second", lambda: not desktop.popup.is_shown, 1)
    captures.save(desktop.folder)
    wait_until("and is back with that", lambda: desktop.popup.waiting_count == 2 and desktop.popup.is_shown, RECESS)
    decide_all(desktop)


def leaves_the_keyboard(desktop):
    """A popup that had the keyboard comes back without: what is typed meanwhile must decide nothing."""
    desktop.start(["xterm", "-geometry", "40x10+20+20", "-T", "Typing", "-e", "cat"])
    wait_until("a terminal has the keyboard", lambda: desktop.active_title() == "Typing")
    first = show(desktop)
    desktop.popup.take_keyboard()
    desktop.popup.tab_to("Move to Trash", "push button")
    desktop.key("Print")
    wait_until("the popup leaves", lambda: not desktop.popup.is_shown)
    wait_until("the terminal has the keyboard", lambda: desktop.active_title() == "Typing")
    second = captures.save(desktop.folder)
    wait_until("the popup is back", lambda: desktop.popup.is_shown and desktop.popup.waiting_count == 1)
    desktop.type("words and spaces ")
    desktop.key("Return")
    expect("the terminal keeps the keyboard", desktop.active_title() == "Typing")
    expect("nothing was decided", [desktop.state_of(shot) for shot in (first, second)] == ["pending", "pending"])
    decide_all(desktop)


def countdown_stands_still(desktop):
    desktop.program.kill()
    desktop.choose_folder(settings={"quillmere.popup-autosave": True, "quillmere.popup-seconds": 3})
    desktop.launch("--autostart")
    shot = show(desktop)
    desktop.move_pointer((5, 5))
    desktop.key("Print")
    wait_until("the popup leaves", lambda: not desktop.popup.is_shown)
    hold_for("its time stands still", lambda: desktop.state_of(shot) == "pending", RECESS - 0.2)
    wait_until("it is back", lambda: desktop.popup.is_shown)
    wait_until("and its time runs out", lambda: desktop.state_of(shot) == "permanent")
    desktop.popup.wait_gone()


def asked_on_the_bus(desktop):
    """As a portal's client asks; no portal has to answer for the popup to leave."""
    show(desktop)
    hold_for("it shows", lambda: desktop.popup.is_shown, 1.2)  # until then a request would tell of the same capture
    desktop.start(["gdbus", "call", "--session", "--dest", "org.freedesktop.DBus", "--object-path", "/", "--method",
                   "org.freedesktop.portal.Screenshot.Screenshot", "", "{}"], stderr=subprocess.DEVNULL)
    wait_until("the popup leaves", lambda: not desktop.popup.is_shown)
    wait_until("and comes back", lambda: desktop.popup.is_shown)
    decide_all(desktop)


def waits_for_a_pause(desktop):
    desktop.program.kill()
    desktop.choose_folder(settings={"quillmere.popup-waits-for-pause": True, "quillmere.popup-pause-seconds": 2})
    desktop.launch("--autostart")
    for _ in range(3):
        last = captures.save(desktop.folder)
        wait_until("it is listed", lambda: desktop.state_of(last) == "pending")
        hold_for("the popup waits", lambda: not desktop.popup.is_shown, 1)
    wait_until("and shows with all three", lambda: desktop.popup.is_shown and desktop.popup.waiting_count == 2)
    desktop.action("review")
    decide_all(desktop)
    last = captures.save(desktop.folder)
    wait_until("it is listed", lambda: desktop.state_of(last) == "pending")
    desktop.action("review")
    wait_until("the review does not wait", lambda: desktop.popup.is_shown, 1)
    decide_all(desktop)


TOOLS = {
    "gnome-screenshot": lambda path: ["gnome-screenshot", "-f", path],
    "spectacle": lambda path: ["spectacle", "-b", "-n", "-f", "-o", path],
    "flameshot": lambda path: ["flameshot", "full", "-p", path],
    "xfce4-screenshooter": lambda path: ["xfce4-screenshooter", "-f", "-s", path],
    "ksnip": lambda path: ["ksnip", "-f", "-p", path],
    "scrot": lambda path: ["scrot", path],
}


def is_seen(desktop, name, command, has_key):
    """Whether the popup stands in the picture that the tool takes, started by the Print key or by hand."""
    show(desktop)
    # Its analysis may end, and take a row away; and a request would still tell of the capture that has come.
    hold_for("it shows", lambda: desktop.popup.is_shown, 1.2)
    place = place_on_card(desktop)
    outside = os.path.join(desktop.scratch, f"{name}{'-key' if has_key else ''}.png")
    if has_key:
        desktop.key("Print")
    subprocess.run(command(outside), env={**desktop.environment, "NO_AT_BRIDGE": "1"}, timeout=60,
                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    wait_until(f"{name} took a picture", lambda: os.path.exists(outside) and os.path.getsize(outside) > 0, 20)
    time.sleep(0.3)
    seen = card_in(outside, place)
    wait_until("the popup is back", lambda: desktop.popup.is_shown)
    expect("where it was", place_on_card(desktop) == place)
    decide_all(desktop)
    return seen


def tools(desktop):
    """Started by the Print key, as desktops do: none of them sees the popup."""
    for name, command in TOOLS.items():
        expect(f"{name} did not see the popup", not is_seen(desktop, name, command, has_key=True))


def table(desktop):
    """To know what holds where; run by hand, with a window manager as the argument."""
    desktop.choose_folder()
    desktop.launch("--autostart")
    for name, command in TOOLS.items():
        row = []
        for has_key in (True, False):
            try:
                row.append("seen" if is_seen(desktop, name, command, has_key) else "hidden")
            except JourneyFailed as failure:
                row.append(str(failure))
                decide_all(desktop)
        print(f"| {name} | {sys.argv[1]} | {row[0]} | {row[1]} |", flush=True)


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    leaves_by_key(desktop)
    two_in_a_row(desktop)
    leaves_the_keyboard(desktop)
    asked_on_the_bus(desktop)
    tools(desktop)
    countdown_stands_still(desktop)
    waits_for_a_pause(desktop)


if __name__ == "__main__":
    if len(sys.argv) > 1:
        run_journey("next-capture-table", table, window_manager=sys.argv[1])
    run_journey("next-capture", journey)
