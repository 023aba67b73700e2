#!/usr/bin/python3
"""What Copy puts on the clipboard, as other programs paste it: while the program runs, and after it has ended."""

import os
import urllib.parse

import captures
from clipboard import Clipboard, start_manager
from harness import expect, run_journey, wait_until
from pictures import noise_png, png_size_of
from steps import popup_shows_picture, quit_program
from windows import Windows, open_terminal

ODD_NAME = "Screenshot from 50% “a” #1;\n.png"


def journey(desktop):
    start_manager(desktop)
    # For a name that no capture tool gives.
    desktop.choose_folder(settings={"quillmere.include-non-capture-images": True})
    desktop.launch("--autostart")
    clipboard = Clipboard(desktop)
    a_large_picture(desktop, clipboard)
    a_jpeg(desktop, clipboard)
    a_window(desktop, clipboard)
    the_text(desktop, clipboard)
    an_odd_name_outlives_the_program(desktop, clipboard)


def bytes_of(path):
    with open(path, "rb") as file:
        return file.read()


def file_in(uri_list):
    (uri,) = [line for line in uri_list.decode("ascii").split("\r\n") if line]
    return os.fsdecode(urllib.parse.unquote_to_bytes(urllib.parse.urlsplit(uri).path))


def copy(desktop, clipboard, form):
    """Until a program that pastes finds this form."""
    desktop.popup.press("Copy")
    wait_until(f"{form} is on the clipboard", lambda: form in clipboard.forms)


def close_popup(desktop):
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def expect_file(clipboard, path, form):
    everything = clipboard.everything()
    expect("the file's own bytes", everything[form] == bytes_of(path))
    expect("the file", file_in(everything["text/uri-list"]) == path)
    expect("as file managers paste it", everything["x-special/gnome-copied-files"].startswith(b"copy\nfile://"))
    expect("as a copy", everything["application/x-kde-cutselection"] == b"0")
    expect("its path where text is pasted", os.fsdecode(everything["text/plain"]) == path)


def a_large_picture(desktop, clipboard):
    """More than the display server takes at once."""
    shot = os.path.join(desktop.folder, captures.capture_name())
    with open(shot, "xb") as file:
        file.write(noise_png(1600, 1200))
    expect("it is large", os.path.getsize(shot) > 5_000_000)
    desktop.popup.wait_for(shot, 20)
    copy(desktop, clipboard, "image/png")
    expect_file(clipboard, shot, "image/png")
    close_popup(desktop)
    expect_file(clipboard, shot, "image/png")


def a_jpeg(desktop, clipboard):
    shot = os.path.join(desktop.folder, captures.capture_name().replace(".png", ".jpg"))
    desktop.run("scrot", shot, check=True)
    desktop.popup.wait_for(shot)
    copy(desktop, clipboard, "image/jpeg")
    expect_file(clipboard, shot, "image/jpeg")
    close_popup(desktop)


def a_window(desktop, clipboard):
    desktop.run("xsetroot", "-solid", "#3a6ea5", check=True)
    open_terminal(desktop, "Front", "70x20", (120, 120))
    windows = Windows(desktop)
    wait_until("it is drawn", lambda: min(windows.pixel(windows.frame("Front")[:2])) > 240)
    shot = captures.scrot_named(desktop)
    desktop.popup.wait_for(shot)
    popup_shows_picture(desktop, "Screenshot preview")
    desktop.popup.press("Extract Window", role="check box")
    popup_shows_picture(desktop, "Extracted window preview")
    desktop.popup.press("Copy")
    wait_until("the picture alone is on the clipboard", lambda: clipboard.forms == ["image/png"])
    left, top, right, bottom = windows.frame("Front")
    width, height = png_size_of(clipboard.bytes_as("image/png"))
    expect(f"it is the window: {width} × {height}",
           0 <= width - (right - left) < 20 and 0 <= height - (bottom - top) < 50)
    windows.close("Front")
    desktop.popup.press("Dismiss Screenshot Popup")
    desktop.popup.wait_gone()


def the_text(desktop, clipboard):
    captures.text(desktop, "Invoice 4711")
    popup_shows_picture(desktop, "Screenshot preview")
    desktop.popup.press("Copy Text")
    wait_until("it says so", lambda: desktop.popup.find("Text copied"), 30)
    expect(f"the text: {clipboard.text!r}", "Invoice 4711" in clipboard.text)
    close_popup(desktop)


def an_odd_name_outlives_the_program(desktop, clipboard):
    shot = captures.save(desktop.folder, ODD_NAME)
    wait_until("the popup", lambda: desktop.popup.is_shown)
    copy(desktop, clipboard, "image/png")
    close_popup(desktop)
    expect_file(clipboard, shot, "image/png")
    quit_program(desktop)
    expect_file(clipboard, shot, "image/png")


run_journey("copied", journey)
