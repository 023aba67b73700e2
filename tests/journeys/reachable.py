#!/usr/bin/python3
"""The program is found by a second start, also after the session bus was restarted; where another process holds its
marker, it says so instead of ending without a word."""

import fcntl
import os

from harness import expect, run_journey, wait_until

TAKEN = "Quillmere Is Already Open"


def start_again(desktop):
    second = desktop.start([desktop.binary], stdout=desktop.errors, stderr=desktop.errors)
    return second, lambda: wait_until("the second start ends", lambda: second.poll() is not None, 20)


def journey(desktop):
    desktop.choose_folder()
    first = desktop.launch("--autostart")
    # The daemon has no service manager's socket: it leaves its own behind.
    os.remove(desktop.environment["DBUS_SESSION_BUS_ADDRESS"].removeprefix("unix:path="))
    desktop.restart_bus()
    wait_until("it took its name on the new bus", desktop.has_bus_name, 30)
    second, ended = start_again(desktop)
    ended()
    expect("the second start ends with 0", second.returncode == 0)
    wait_until("the first one's Inbox is open", lambda: desktop.window_ids("Quillmere"))
    desktop.action("quit")
    expect("it ends with 0", first.wait() == 0)

    marker = os.path.join(desktop.data_home, "Quillmere", "running")
    with open(marker, "w", encoding="utf-8") as file:
        fcntl.flock(file, fcntl.LOCK_EX)
        third, ended = start_again(desktop)
        wait_until("it says that it is taken", lambda: desktop.window_ids(TAKEN))
        desktop.picture(os.path.join(desktop.pictures, "taken.png"))
        wait_until("the words have the keyboard", lambda: desktop.active_title() == TAKEN)
        desktop.key("Return")
        ended()
        expect("it ends with 0", third.returncode == 0)
        expect("the other's marker stays", os.path.exists(marker))
    desktop.errors.seek(0)
    expect("the terminal is told as well", TAKEN in desktop.errors.read())
    desktop.launch("--autostart")


run_journey("reachable", journey)
