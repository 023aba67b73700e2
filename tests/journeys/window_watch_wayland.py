#!/usr/bin/python3
"""What sway shows is known of each capture: Wayland's windows and X's, tiled, floating and in tabs, also one that was
resized, of which sway tells nobody."""

import json
import os
import time

import captures
from harness import expect, wait_until
from wayland import run_wayland_journey


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    desktop.run("swaymsg", "gaps inner all set 40", check=True)
    for title, floating in (("First", False), ("Second", True)):
        open_terminal(desktop, title, floating)

    in_front(desktop, "Second", ["First", "Second"])
    desktop.run("swaymsg", "[title=First] focus", check=True)
    # One that floats lies above all the same.
    in_front(desktop, "Second", ["First", "Second"])

    desktop.run("swaymsg", "[title=Second] focus, resize set 500 320", check=True)
    in_front(desktop, "Second", ["First", "Second"])

    desktop.run("swaymsg", "[title=Second] floating disable, layout tabbed", check=True)
    in_front(desktop, "Second", ["Second"])

    resized_unheard(desktop)


def open_terminal(desktop, title, floating):
    desktop.start(["xterm", "-T", title, "-bg", "white", "-fg", "black", "-e", "sleep", "300"])
    wait_until(f"{title} is there", lambda: title in shown(desktop))
    if floating:
        desktop.run("swaymsg", f"[title={title}] floating enable, resize set 620 400, move position 330 210",
                    check=True)


def shown(desktop):
    """Each window by its title, as sway tells: with its title bar or its row of tabs."""
    found = {}

    def visit(node, parent):
        for one in node["nodes"] + node["floating_nodes"]:
            visit(one, node)
        if not node["nodes"] and node.get("visible") and node["name"]:
            x, y, width, height = (node["rect"][side] for side in ("x", "y", "width", "height"))
            title = node["deco_rect"]["height"]
            if parent["layout"] in ("tabbed", "stacked"):
                x, y, width, height = (parent["rect"][side] for side in ("x", "y", "width", "height"))
                title = 0
            found[node["name"]] = (x, y - title, width, height + title)

    visit(json.loads(desktop.run("swaymsg", "-t", "get_tree", "-r", check=True)), None)
    return found


def capture(desktop):
    outside = os.path.join(desktop.home, "capture.png")
    wait_until("the screen has come to rest", lambda: look(desktop, outside) == look(desktop, outside))
    shot = os.path.join(desktop.folder, captures.capture_name())
    os.rename(outside, shot)
    return shot


def look(desktop, path):
    time.sleep(0.4)
    desktop.picture(path)
    with open(path, "rb") as file:
        return file.read()


def in_front(desktop, front, titles):
    check(desktop, capture(desktop), front, {title: shown(desktop)[title] for title in titles})


def check(desktop, shot, front, frames):
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


def resized_unheard(desktop):
    desktop.run("swaymsg", "[title=Second] floating enable, resize set 500 320, move position 300 200", check=True)
    time.sleep(0.4)
    desktop.run("swaymsg", "[title=Second] resize set 420 260", check=True)
    in_front(desktop, "Second", ["First", "Second"])


run_wayland_journey("window-watch-sway", journey, "sway")
