#!/usr/bin/python3
"""Share: the applications for pictures and Mail, chosen by pointer and by keyboard, get the file under its name."""

import json
import os
import stat

import captures
from fake_mail_portal import FakeMailPortal
from harness import expect, run_journey, wait_until
from steps import popup_shows_picture
from windows import open_terminal

VIEWER = "Test Viewer"
MARKUP = "<b>Bold</b> & Sons"
UNSUITABLE = {
    "Without Icon": "Exec=true 1 %f", "Not Shown": "Icon=x\nNoDisplay=true\nExec=true 2 %f",
    "In A Terminal": "Icon=x\nTerminal=true\nExec=true 3 %f", "Broken": "Icon=x\nExec=/no/such/program %f",
    "Unclosed": "Icon=x\nExec=true \"%f", "Tool (depth=16)": "Icon=x\nExec=true 4 %f",
}
TYPED = "Receipt 50% it's"


def journey(desktop):
    install_viewer(desktop)
    without_mail_command(desktop)
    portal = FakeMailPortal(desktop)
    desktop.choose_folder()
    desktop.launch("--autostart")
    open_terminal(desktop, "Typing", "40x6", (40, 20))
    wait_until("the terminal has the keyboard", lambda: desktop.active_title() == "Typing")

    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    popup_shows_picture(desktop, "Screenshot preview")
    by_pointer(desktop, shot)
    mail_by_keyboard(desktop, portal, shot)
    a_portal_that_never_answers(desktop, portal, shot)
    an_app_that_is_gone(desktop)


def install_viewer(desktop):
    """It writes down what it is opened with."""
    applications = os.path.join(desktop.data_home, "applications")
    os.makedirs(applications)
    script = os.path.join(desktop.scratch, "viewer")
    with open(script, "w", encoding="utf-8") as file:
        file.write(f"#!/bin/sh\nprintf '%s' \"$1\" > '{desktop.scratch}/opening'\n"
                   f"mv '{desktop.scratch}/opening' '{desktop.scratch}/opened'\n")
    os.chmod(script, stat.S_IRWXU)
    with open(os.path.join(applications, "viewer.desktop"), "w", encoding="utf-8") as file:
        file.write(f"[Desktop Entry]\nType=Application\nName={VIEWER}\nIcon=image-viewer\nMimeType=image/png;\n"
                   f"Exec={script} %f\n")
    for name, rest in UNSUITABLE.items():
        with open(os.path.join(applications, name + ".desktop"), "w", encoding="utf-8") as file:
            file.write(f"[Desktop Entry]\nType=Application\nName={name}\nMimeType=image/png;\n{rest}\n")
    with open(os.path.join(applications, "markup.desktop"), "w", encoding="utf-8") as file:
        file.write(f"[Desktop Entry]\nType=Application\nName={MARKUP}\nIcon=/no/such.png\nMimeType=image/png;\n"
                   f"Exec={script} %f markup\n")
    desktop.run("update-desktop-database", applications, check=True)


def without_mail_command(desktop):
    """Commands as they are, but that one: what is found is the portal."""
    commands = os.path.join(desktop.scratch, "commands")
    os.mkdir(commands)
    for folder in ("/bin", "/usr/bin"):
        for name in os.listdir(folder):
            if name != "xdg-email" and not os.path.lexists(os.path.join(commands, name)):
                os.symlink(os.path.join(folder, name), os.path.join(commands, name))
    desktop.environment["PATH"] = commands


def opened(desktop):
    path = os.path.join(desktop.scratch, "opened")
    wait_until("the viewer was opened", lambda: os.path.exists(path))
    with open(path, encoding="utf-8") as file:
        name = file.read()
    os.remove(path)
    return name


class Menu:
    """The one that Share opens, by the pointer: what lies below that is told to screen readers."""

    def __init__(self, desktop, timeout=10.0):
        self._desktop, self._focus = desktop, desktop.program.tree.focus()
        x, y = desktop.place_of(desktop.popup.find("Share"))
        desktop.popup.press("Share")
        wait_until("the menu", lambda: has_menu(desktop), timeout)
        self.choices, self._places = [], {}
        for step in range(3, 20):
            desktop.move_pointer((x, y + 8 * step))
            self._note((x, y + 8 * step))

    def _note(self, place):
        # Answered after what the movement brought about.
        self._desktop.action("none", wait=True)
        item = self._focus.last
        if item and item.role == "menu item" and item.name not in self.choices:
            self.choices.append(item.name)
            self._places[item.name] = place

    def choose(self, name):
        self._desktop.move_pointer(self._places[name])
        self._desktop.run("xdotool", "click", "1", check=True)
        wait_until("the menu is gone", lambda: not has_menu(self._desktop))


def has_menu(desktop):
    """A second window of the program beside the popup."""
    return len(desktop.run("xdotool", "search", "--onlyvisible", "--class", "quillmere").split()) > 1


def by_pointer(desktop, shot):
    menu = Menu(desktop)
    expect(f"mail comes first: {menu.choices}", menu.choices[0] == "Mail")
    expect(f"programs by their names: {menu.choices}", {VIEWER, MARKUP} <= set(menu.choices))
    expect(f"nothing else of ours: {menu.choices}", not set(UNSUITABLE) & set(menu.choices))
    menu.choose(VIEWER)
    expect("the viewer has the file itself", opened(desktop) == shot)
    expect("the popup stays", desktop.popup.is_shown)
    expect("the terminal keeps the keyboard", desktop.active_title() == "Typing")
    for used, name in ((VIEWER, MARKUP), (MARKUP, VIEWER), (VIEWER, MARKUP)):
        menu = Menu(desktop)
        expect(f"{used} was used last and is the first program: {menu.choices}", menu.choices[:2] == ["Mail", used])
        menu.choose(name)
        expect(f"{name} has it too", opened(desktop) == shot)
    expect(f"both are remembered: {remembered(desktop)}", remembered(desktop) == ["markup.desktop", "viewer.desktop"])


def remembered(desktop):
    with open(os.path.join(desktop.config_home, "Quillmere", "settings.json"), encoding="utf-8") as file:
        return json.load(file)["quillmere.share-recent"].split("\n")


def mail_by_keyboard(desktop, portal, shot):
    desktop.popup.take_keyboard()
    desktop.popup.tab_to("Filename", "text")
    desktop.key("ctrl+a")
    desktop.type(TYPED)
    desktop.popup.tab_to("Share")
    focus = desktop.program.tree.focus()
    desktop.key("space")
    wait_until("the menu", lambda: has_menu(desktop))
    desktop.key("Down")
    wait_until("Mail is chosen", lambda: focus.name == "Mail")
    desktop.key("Return")
    name, data = portal.taken()
    expect(f"under the typed name: {name}", os.path.basename(name) == TYPED + ".png")
    with open(shot, "rb") as file:
        expect("with the bytes", data == file.read())


def a_portal_that_never_answers(desktop, portal, shot):
    portal.stop_answering()
    menu = Menu(desktop, timeout=3)
    expect(f"without what is not there, the last used first: {menu.choices}", menu.choices[0] == MARKUP)
    menu.choose(VIEWER)
    name = opened(desktop)
    expect(f"the viewer has a file of the typed name: {name}", os.path.basename(name) == TYPED + ".png")
    with open(name, "rb") as copy, open(shot, "rb") as file:
        expect("with the bytes", copy.read() == file.read())


def an_app_that_is_gone(desktop):
    menu = Menu(desktop)
    os.remove(os.path.join(desktop.data_home, "applications", "viewer.desktop"))
    menu.choose(VIEWER)
    wait_until("the popup says so", lambda: desktop.popup.find("Couldn’t Share Screenshot"))
    desktop.popup.press("Dismiss")
    wait_until("the banner goes", lambda: not desktop.popup.find("Couldn’t Share Screenshot"))
    menu = Menu(desktop)
    expect(f"it is not offered any more: {menu.choices}", VIEWER not in menu.choices)
    expect(f"and forgotten: {remembered(desktop)}", remembered(desktop) == ["markup.desktop"])


run_journey("shared", journey)
