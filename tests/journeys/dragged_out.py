#!/usr/bin/python3
"""The preview dragged into other applications: the file itself under its own name, its bytes under a typed one, the
extracted window as a PNG. The screenshot's own file stays in its place whatever the receiver does."""

import os
import subprocess
import sys
import urllib.parse

import captures
from dragging import Drag
from drop_target import DropTarget
from harness import POPUP_TITLE, expect, hold_for, run_journey, wait_until
from pictures import png_size_of
from steps import popup_shows_picture, quit_program
from windows import Windows, open_terminal

TIMEOUT = 3  # seconds, the shortest that can be set
TYPED = "Invoice 50% it's; paid"


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    typed = os.path.join(desktop.scratch, "typed.txt")
    desktop.start(["xterm", "-T", "Typing", "-fa", "monospace", "-geometry", "40x6+40+20", "-e", f"cat > {typed}"])
    wait_until("the terminal has the keyboard", lambda: desktop.active_title() == "Typing")
    wait_until("it reads", lambda: os.path.exists(typed))
    target = DropTarget(desktop)

    the_file_itself(desktop, target)
    escape_cancels(desktop, target)
    while_the_popup_has_the_keyboard(desktop, target)
    under_another_name(desktop, target)
    the_window_alone(desktop, target)
    a_file_that_vanishes(desktop, target)
    into_file_managers(desktop)
    the_timeout_waits(desktop, target)

    desktop.key("x", "Return", "ctrl+d")
    wait_until("the terminal ends", lambda: not desktop.window_ids("Typing"))
    with open(typed, encoding="utf-8") as file:
        expect("nothing but what was typed came to the terminal", file.read() == "x\n")


def bytes_of(path):
    with open(path, "rb") as file:
        return file.read()


def paths_in(uri_list):
    lines = uri_list.decode("ascii").split("\r\n")
    return [urllib.parse.unquote_to_bytes(urllib.parse.urlsplit(line).path).decode(errors="surrogateescape")
            for line in lines if line]


def drop(desktop, target):
    """What the receiver got; the popup and the keyboard are where they were."""
    Drag(desktop).drop(target.centre, lambda: target.is_hovered)
    dropped = target.take()
    expect("the popup stays", desktop.popup.is_shown)
    expect("the terminal keeps the keyboard", desktop.active_title() == "Typing")
    return dropped


def the_file_itself(desktop, target):
    shot = captures.save(desktop.folder)
    before = bytes_of(shot)
    desktop.popup.wait_for(shot)
    popup_shows_picture(desktop, "Screenshot preview")
    dropped = drop(desktop, target)
    expect("its bytes", dropped["image/png"] == before)
    expect("its own file", paths_in(dropped["text/uri-list"]) == [shot])
    expect("its path as text", dropped["text/plain"].decode() == shot)
    expect("the file stays", bytes_of(shot) == before and desktop.state_of(shot) == "pending")


def escape_cancels(desktop, target):
    shot = desktop.records()[0]["url"]
    drag = Drag(desktop)
    drag.move_to(target.centre, lambda: target.is_hovered)
    desktop.key("Escape")
    wait_until("the receiver is left", lambda: not target.is_hovered)
    drag.release()
    expect("nothing arrived", not target.has_received)
    expect("the popup stays, with the same screenshot", desktop.popup.is_shown and desktop.records()[0]["url"] == shot)
    expect("the terminal keeps the keyboard", desktop.active_title() == "Typing")
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def while_the_popup_has_the_keyboard(desktop, target):
    """It keeps it, and gives it back as always."""
    desktop.popup.wait_for(captures.save(desktop.folder))
    popup_shows_picture(desktop, "Screenshot preview")
    desktop.popup.take_keyboard()
    Drag(desktop).drop(target.centre, lambda: target.is_hovered)
    target.take()
    expect("the popup keeps the keyboard", desktop.active_title() == POPUP_TITLE)
    desktop.popup.tab_to("Keep")
    desktop.key("space")
    desktop.popup.wait_gone()
    wait_until("the terminal has the keyboard again", lambda: desktop.active_title() == "Typing")


def type_name(desktop, name):
    field = desktop.popup.find("Filename", ("text", "entry"))
    desktop.click(field)
    wait_until("the popup has the keyboard", lambda: desktop.active_title() == POPUP_TITLE)
    desktop.key("ctrl+a")
    desktop.type(name)
    wait_until("the name is typed", lambda: desktop.popup.stem == name)
    Windows(desktop).activate("Typing")
    popup = desktop.window_ids(POPUP_TITLE)[0]
    wait_until("the popup knows that the keyboard is gone",
               lambda: "input focus: False" in desktop.run("xprop", "-id", popup, "WM_HINTS"))


def under_another_name(desktop, target):
    shot = captures.save(desktop.folder)
    before = bytes_of(shot)
    desktop.popup.wait_for(shot)
    popup_shows_picture(desktop, "Screenshot preview")
    type_name(desktop, TYPED)
    dropped = drop(desktop, target)
    (path,) = paths_in(dropped["text/uri-list"])
    expect(f"a file of that name: {path}", os.path.basename(path) == TYPED + ".png")
    expect("elsewhere", os.path.dirname(path) != desktop.folder)
    expect("with the bytes", bytes_of(path) == before and dropped["image/png"] == before)
    expect("the screenshot is as it was", bytes_of(shot) == before and os.listdir(desktop.folder).count(TYPED + ".png") == 0)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def the_window_alone(desktop, target):
    """Also of a JPEG it is a PNG."""
    desktop.run("xsetroot", "-solid", "#3a6ea5", check=True)
    open_terminal(desktop, "Behind", "60x22", (560, 60))
    open_terminal(desktop, "Front", "60x18", (640, 160))
    windows = Windows(desktop)
    # To its corner, and opaque: some window managers let it grow and fade in.
    right, bottom = windows.frame("Front")[2:]
    wait_until("it is drawn", lambda: min(windows.pixel((right - 3, bottom - 3))) == 255)
    shot = os.path.join(desktop.folder, captures.capture_name().replace(".png", ".jpg"))
    desktop.run("scrot", "-q", "95", shot, check=True)
    frame = windows.outer_frame("Front")
    windows.close("Front")
    windows.close("Behind")
    windows.activate("Typing")
    before = bytes_of(shot)
    desktop.popup.wait_for(shot)
    popup_shows_picture(desktop, "Screenshot preview")
    desktop.popup.press("Extract Window", role="check box")
    popup_shows_picture(desktop, "Extracted window preview")
    type_name(desktop, "Window")
    dropped = drop(desktop, target)
    (path,) = paths_in(dropped["text/uri-list"])
    expect(f"a PNG of that name: {path}", os.path.basename(path) == "Window.png")
    expect(f"of the window of {frame}", png_size_of(dropped["image/png"]) == frame[2:])
    expect("the same in the file", bytes_of(path) == dropped["image/png"])
    expect("the screenshot is as it was", bytes_of(shot) == before)
    desktop.popup.press("Extract Window", role="check box")
    popup_shows_picture(desktop, "Screenshot preview")
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def a_file_that_vanishes(desktop, target):
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    popup_shows_picture(desktop, "Screenshot preview")
    drag = Drag(desktop)
    drag.move_to(target.centre, lambda: target.is_hovered)
    os.rename(shot, os.path.join(desktop.scratch, "away.png"))
    drag.release()
    dropped = target.take()
    expect("no bytes of another file", dropped["image/png"] == b"")
    expect("the program runs on", desktop.program.is_running)
    desktop.popup.wait_gone()


def into_file_managers(desktop):
    for number, command in enumerate(("thunar", "pcmanfm")):
        folder = os.path.join(desktop.home, f"Into {command}")
        os.mkdir(folder)
        desktop.start([command, folder], environment={"NO_AT_BRIDGE": "1"}, stdout=subprocess.DEVNULL,
                      stderr=subprocess.DEVNULL)
        window = wait_until(f"{command} shows", lambda: window_showing(desktop, os.path.basename(folder)), 20)
        desktop.run("wmctrl", "-i", "-r", window, "-e", "0,40,200,600,400", check=True)
        Windows(desktop).activate("Typing")
        shot = captures.save(desktop.folder, colour=(10 + number, 20, 30))
        before = bytes_of(shot)
        desktop.popup.wait_for(shot)
        popup_shows_picture(desktop, "Screenshot preview")
        left, top = corner_of(desktop, window)
        Drag(desktop).drop((left + 450, top + 300))
        copied = os.path.join(folder, os.path.basename(shot))
        wait_until(f"{command} copies it", lambda: os.path.exists(copied) and bytes_of(copied) == before)
        expect("the file stays", bytes_of(shot) == before and desktop.state_of(shot) == "pending")
        desktop.popup.press("Keep")
        desktop.popup.wait_gone()
        desktop.run("wmctrl", "-i", "-c", window, check=True)


def the_timeout_waits(desktop, target):
    """Though the pointer is away from the popup all the time."""
    quit_program(desktop)
    desktop.choose_folder(settings={"quillmere.popup-autosave": True, "quillmere.popup-seconds": TIMEOUT})
    desktop.launch("--autostart")
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    drag = Drag(desktop)
    drag.move_to(target.centre, lambda: target.is_hovered)
    hold_for("the popup is there", lambda: desktop.popup.is_shown and desktop.state_of(shot) == "pending", 2 * TIMEOUT)
    drag.release()
    expect("it arrives", target.take()["image/png"] == bytes_of(shot))
    # From then on the time runs.
    desktop.popup.wait_gone(4 * TIMEOUT)
    expect("the file stays", os.path.exists(shot))


def window_showing(desktop, folder):
    """File managers add their own name to the folder's."""
    found = desktop.run("xdotool", "search", "--onlyvisible", "--name", f"^{folder}").split()
    return found[0] if found else None


def corner_of(desktop, window):
    shown = dict(line.split("=") for line in
                 desktop.run("xdotool", "getwindowgeometry", "--shell", window).splitlines())
    return int(shown["X"]), int(shown["Y"])


manager = sys.argv[1] if len(sys.argv) > 1 else "openbox"
run_journey(f"dragged-out-{manager}", journey, window_manager=manager)
