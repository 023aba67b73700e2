#!/usr/bin/python3
"""On a platform of Qt that is not X11, whether or not an X server is there, all that needs no X11 works: screenshots
are recorded, windows open, the session's end is heard."""

import os
import signal
import sys

import captures
from harness import expect, run_journey, wait_until


def live(desktop):
    desktop.launch()
    shot = captures.save(desktop.folder)
    wait_until("the screenshot is listed", lambda: desktop.state_of(shot) == "pending")
    for window in ("inbox", "settings", "review"):
        desktop.action(window, wait=True)
    desktop.action("none", wait=True)  # answered after what the windows did in later turns
    expect("it runs on", desktop.program.is_running)
    os.kill(desktop.program.pid, signal.SIGTERM)
    expect("it ends with 0", desktop.program.wait() == 0)


def journey(desktop):
    desktop.environment["QT_QPA_PLATFORM"] = sys.argv[1]
    desktop.choose_folder()
    live(desktop)
    del desktop.environment["DISPLAY"]
    live(desktop)


run_journey(f"without_x11-{sys.argv[1]}", journey)
