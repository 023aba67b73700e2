#!/usr/bin/python3
"""Quitting asks only while screenshots wait; a second start brings the first one's Inbox."""

import captures
from harness import expect, hold_for, run_journey, wait_until

QUESTION = "Quit Quillmere?"


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    desktop.action("quit")
    expect("quitting with nothing waiting ends it with 0", desktop.program.wait() == 0)

    first = desktop.launch("--autostart")
    expect("no window is open", not desktop.window_ids("Quillmere"))
    second = desktop.start([desktop.binary], stdout=desktop.errors, stderr=desktop.errors)
    expect("the second start ends with 0", wait_until("the second start ends", lambda: second.poll() is not None)
           and second.returncode == 0)
    wait_until("the first one's Inbox is open", lambda: desktop.window_ids("Quillmere"))
    expect("the first one runs on", first.is_running)

    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.action("quit")
    wait_until("it asks", lambda: desktop.active_title() == QUESTION)
    desktop.key("Return")
    wait_until("Return cancels", lambda: not desktop.window_ids(QUESTION))
    hold_for("it runs on", lambda: first.is_running, 1)
    expect("the popup still waits", desktop.popup.stem)

    # With the Inbox open the question is its own; minimized, it is not asked where nobody sees it.
    desktop.run("xdotool", "windowminimize", desktop.window_ids("Quillmere")[0])
    wait_until("the Inbox is minimized", lambda: not desktop.window_ids("Quillmere"))
    desktop.action("quit")
    wait_until("it asks on its own", lambda: desktop.active_title() == QUESTION)
    desktop.key("Escape")
    wait_until("Escape cancels", lambda: not desktop.window_ids(QUESTION))

    desktop.action("quit")
    desktop.click(desktop.wait_for("Quit Quillmere", "push button", QUESTION))
    expect("it ends with 0", first.wait() == 0)
    expect("the screenshot is still pending", desktop.state_of(shot) == "pending")

    desktop.launch("--autostart")
    desktop.popup.wait_for(shot)


run_journey("quitting", journey)
