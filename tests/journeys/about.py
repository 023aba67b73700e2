#!/usr/bin/python3
"""About and the help, by keyboard: the version, the list of what the program is linked with, and pages that open in the
desktop's browser without a network."""

import os
import re
import urllib.parse

from harness import expect, run_journey, wait_until

ABOUT, ACKNOWLEDGMENTS, WELCOME = "About Quillmere", "Acknowledgments", "Welcome to Quillmere"
LINKS = ["Website", "Support", "Privacy Policy", "Acknowledgments"]
BROWSER = "journey-browser.desktop"


def install_browser(desktop, opened):
    """One that writes down what it is opened with."""
    program = os.path.join(desktop.scratch, "browser")
    with open(program, "w", encoding="utf-8") as file:
        file.write(f"#!/bin/sh\nprintf '%s' \"$1\" > '{opened}.part'\nmv '{opened}.part' '{opened}'\n")
    os.chmod(program, 0o755)
    applications = os.path.join(desktop.data_home, "applications")
    os.makedirs(applications)
    with open(os.path.join(applications, BROWSER), "w", encoding="utf-8") as file:
        file.write(f"[Desktop Entry]\nType=Application\nName=Browser\nMimeType=text/html;\nExec={program} %u\n")
    with open(os.path.join(desktop.config_home, "mimeapps.list"), "w", encoding="utf-8") as file:
        file.write(f"[Default Applications]\ntext/html={BROWSER};\n")


def names(desktop, window, *roles):
    return [control.name for control in desktop.program.tree.find_all(window=window) if control.role in roles]


def focused(desktop, window):
    found = [control.name for control in desktop.program.tree.find_all(window=window) if control.is_focused]
    return found[0] if found else None


def about_is_read(desktop):
    desktop.action("about")
    wait_until("About has the keyboard", lambda: desktop.active_title() == ABOUT)
    desktop.wait_for(LINKS[-1], "push button", ABOUT)
    version = re.search(r"[\d.]+", desktop.run(desktop.binary, "--version")).group()
    texts = names(desktop, ABOUT, "heading", "label", "text")
    for text in ("Quillmere", "Screenshot now, decide later.", f"Version {version}",
                 "Copyright © 2026 The Quillmere developers"):
        expect(f"it says “{text}”: {texts}", any(shown.startswith(text) for shown in texts))
    expect("the links are in order", names(desktop, ABOUT, "push button") == LINKS)
    for name in LINKS:
        wait_until(f"Tab comes to “{name}”", lambda name=name: focused(desktop, ABOUT) == name)
        if name != LINKS[-1]:
            desktop.key("Tab")


def acknowledgments_are_read(desktop):
    desktop.key("space")
    wait_until("the list has the keyboard", lambda: desktop.active_title() == ACKNOWLEDGMENTS)
    desktop.wait_for("RapidJSON", "label", ACKNOWLEDGMENTS)
    listed = names(desktop, ACKNOWLEDGMENTS, "label")
    needed = re.findall(r"\(NEEDED\).*\[(.+)\]", desktop.run("readelf", "-d", desktop.binary))
    expect("the program needs libraries", len(needed) > 10)
    for name in ("Qt", "GLib", "GNU C Library", "Tesseract", "OpenCV"):
        expect(f"“{name}” is listed: {listed}", name in listed)
    expect(f"each has a name for people: {listed}", not [name for name in listed if name in needed])
    desktop.key("Escape")
    wait_until("the list is gone, and About has the keyboard again", lambda: desktop.active_title() == ABOUT)
    desktop.key("Escape")
    wait_until("About is gone", lambda: not desktop.window_ids(ABOUT))


def help_opens(desktop, opened):
    desktop.action("welcome")
    wait_until("Welcome has the keyboard", lambda: desktop.active_title() == WELCOME)
    desktop.wait_for("Quillmere Help", "push button", WELCOME).do("Press")
    wait_until("the browser is opened", lambda: os.path.exists(opened))
    with open(opened, encoding="utf-8") as file:
        page = urllib.parse.unquote(urllib.parse.urlsplit(file.read()).path)
    expect(f"at the first page, which came with the program: {page}",
           page == os.path.join(os.path.dirname(desktop.binary), "help", "index.html") and os.path.isfile(page))


def journey(desktop):
    opened = os.path.join(desktop.scratch, "opened")
    install_browser(desktop, opened)
    desktop.choose_folder()
    desktop.launch("--autostart")
    about_is_read(desktop)
    acknowledgments_are_read(desktop)
    help_opens(desktop, opened)


run_journey("about", journey)
