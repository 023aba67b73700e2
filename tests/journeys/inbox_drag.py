#!/usr/bin/python3
"""Rows of the Inbox dragged into other applications: their files as copies, in the order of the list. The screenshots
stay where they are, with their records, whatever the receiver does."""

import os
import subprocess
import urllib.parse

from dragging import Drag
from drop_target import PLACE, DropTarget
from harness import expect, run_journey, wait_until
from inbox_steps import TITLE, choose_row, keep_new, open_inbox
from steps import choose_folder_in_dialog, row_of, wait_for_row


def journey(desktop):
    desktop.launch()
    choose_folder_in_dialog(desktop, desktop.folder)
    # Newest first, as they are listed.
    shots = [keep_new(desktop, colour=(60 * number, 90, 120)) for number in range(4)][::-1]
    open_inbox(desktop)
    # Beside the places of the receivers.
    desktop.run("wmctrl", "-r", TITLE, "-e", "0,380,20,860,640", check=True)
    target = DropTarget(desktop)

    one_row(desktop, target, shots[2])
    several_rows(desktop, target, shots)
    escape_cancels(desktop, target, shots)
    into_a_file_manager(desktop, shots)
    one_is_gone(desktop, target, shots)


def bytes_of(path):
    with open(path, "rb") as file:
        return file.read()


def paths_in(uris):
    return [os.fsdecode(urllib.parse.unquote_to_bytes(urllib.parse.urlsplit(uri).path)) for uri in uris if uri]


def expect_files(dropped, paths):
    """In each form, in this order."""
    listed = paths_in(dropped["text/uri-list"].decode("ascii").split("\r\n"))
    expect(f"the files in the order of the list: {listed}", listed == paths)
    first, *uris = dropped["x-special/gnome-copied-files"].decode("ascii").split("\n")
    expect("to be copied", first == "copy" and dropped["application/x-kde-cutselection"] == b"0")
    expect("the same for file managers", paths_in(uris) == paths)


def expect_unchanged(desktop, shots, before):
    expect("the files stay", [bytes_of(shot) for shot in shots] == before)
    expect("with their records", all(desktop.state_of(shot) == "permanent" for shot in shots))


def drag_row(desktop, shot):
    return Drag(desktop, row_of(desktop, shot))


def choose_all(desktop, shots):
    choose_row(desktop, shots[0])
    desktop.key("ctrl+a")
    desktop.wait_for(f"{len(shots)} Screenshots Selected", "heading", TITLE)


def one_row(desktop, target, shot):
    """It need not be chosen before."""
    before = bytes_of(shot)
    drag_row(desktop, shot).drop(target.centre, lambda: target.is_hovered)
    dropped = target.take()
    expect_files(dropped, [shot])
    expect("and its bytes", dropped["image/png"] == before)
    expect_unchanged(desktop, [shot], [before])


def several_rows(desktop, target, shots):
    """Taken by any of them; chosen from below, so that the order is not that of choosing."""
    before = [bytes_of(shot) for shot in shots]
    choose_row(desktop, shots[3])
    desktop.run("xdotool", "keydown", "ctrl")
    for shot in (shots[0], shots[2]):
        desktop.click(row_of(desktop, shot))
    desktop.run("xdotool", "keyup", "ctrl")
    desktop.wait_for("3 Screenshots Selected", "heading", TITLE)
    drag_row(desktop, shots[2]).drop(target.centre, lambda: target.is_hovered)
    dropped = target.take()
    expect_files(dropped, [shots[0], shots[2], shots[3]])
    expect("several are no one picture", "image/png" not in dropped)
    expect_unchanged(desktop, shots, before)


def escape_cancels(desktop, target, shots):
    before = [bytes_of(shot) for shot in shots]
    choose_all(desktop, shots)
    drag = drag_row(desktop, shots[0])
    drag.move_to(target.centre, lambda: target.is_hovered)
    desktop.key("Escape")
    wait_until("the receiver is left", lambda: not target.is_hovered)
    drag.release()
    expect("nothing arrived", not target.has_received)
    desktop.action("none", wait=True)
    desktop.wait_for("4 Screenshots Selected", "heading", TITLE)
    expect_unchanged(desktop, shots, before)


def into_a_file_manager(desktop, shots):
    before = [bytes_of(shot) for shot in shots]
    folder = os.path.join(desktop.home, "Into thunar")
    os.mkdir(folder)
    desktop.start(["thunar", folder], environment={"NO_AT_BRIDGE": "1"}, stdout=subprocess.DEVNULL,
                  stderr=subprocess.DEVNULL)
    window = wait_until("it shows", lambda: desktop.run("xdotool", "search", "--onlyvisible", "--name",
                                                         "^Into thunar").split(), 20)[0]
    desktop.run("wmctrl", "-i", "-r", window, "-e", f"0,0,{PLACE[1] + PLACE[3] + 30},370,230", check=True)
    open_inbox(desktop)
    choose_all(desktop, shots)
    shown = dict(line.split("=") for line in
                 desktop.run("xdotool", "getwindowgeometry", "--shell", window).splitlines())
    drag_row(desktop, shots[1]).drop((int(shown["X"]) + 300, int(shown["Y"]) + 170))
    names = [os.path.basename(shot) for shot in shots]
    wait_until("all are copied", lambda: sorted(os.listdir(folder)) == sorted(names) and
               [bytes_of(os.path.join(folder, name)) for name in names] == before)
    expect_unchanged(desktop, shots, before)
    desktop.run("wmctrl", "-i", "-c", window, check=True)


def one_is_gone(desktop, target, shots):
    """It is lost where the program does not see it go."""
    os.rename(shots[1], os.path.join(desktop.scratch, "away.png"))
    wait_for_row(desktop, shots[1], "Unavailable")
    choose_all(desktop, shots)
    drag_row(desktop, shots[0]).drop(target.centre, lambda: target.is_hovered)
    expect_files(target.take(), [shots[0], shots[2], shots[3]])
    # By itself there is nothing to drag.
    place = desktop.settled_place_of(row_of(desktop, shots[1]))
    desktop.run("xdotool", "mousemove", *map(str, place), "click", "1", "mousedown", "1", check=True)
    for step in range(1, 6):
        desktop.move_pointer((place[0] - 8 * step, place[1]))
    desktop.move_pointer(target.centre)
    desktop.run("xdotool", "mouseup", "1", check=True)
    desktop.action("none", wait=True)
    expect("nothing arrives", not target.is_hovered and not target.has_received)
    os.rename(os.path.join(desktop.scratch, "away.png"), shots[1])
    wait_for_row(desktop, shots[1], "Saved")


run_journey("inbox-drag", journey)
