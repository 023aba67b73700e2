#!/usr/bin/python3
"""Pictures are read by a process that can do nothing else: it comes with the first one, is locked in, and when it is
killed the next screenshot is asked about all the same; its end is the program's."""

import os
import signal

import captures
from harness import expect, run_journey, wait_until


def readers(desktop):
    """The processes that read for the program, by their numbers."""
    found = []
    for process in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{process}/stat", encoding="utf-8", errors="replace") as file:
                name, _, rest = file.read().partition("(")[2].rpartition(")")
        except OSError:
            continue
        if name == "reader" and int(rest.split()[1]) == desktop.program.pid and rest.split()[0] != "Z":
            found.append(int(process))
    return found


def status(process):
    with open(f"/proc/{process}/status", encoding="utf-8") as file:
        return dict(line.rstrip("\n").split(":\t", 1) for line in file if ":\t" in line)


def ask_about(desktop):
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    return shot


def keep(desktop):
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def journey(desktop):
    desktop.choose_folder()
    desktop.launch()
    ask_about(desktop)
    running = readers(desktop)
    expect("a reader has come", running)
    for process in running:
        # One that still starts has no picture yet.
        wait_until("it has a filter of system calls", lambda: status(process)["Seccomp"].strip() == "2")
        told = status(process)
        expect("it can have no more rights", told["NoNewPrivs"].strip() == "1")
        expect("it has no rights over anything", int(told["CapEff"], 16) == 0)
    keep(desktop)

    for process in readers(desktop):
        os.kill(process, signal.SIGKILL)
    shot = ask_about(desktop)
    expect("another has come", set(readers(desktop)) - set(running))
    keep(desktop)
    expect("the screenshot is kept", desktop.state_of(shot) == "permanent")

    desktop.action("quit")
    desktop.program.wait()
    wait_until("no reader outlives the program", lambda: not any(os.path.exists(f"/proc/{process}")
                                                                 for process in running))


run_journey("reader", journey)
