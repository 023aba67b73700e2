#!/usr/bin/python3
"""Where no feed is configured the program loads nothing for updates and talks to no other machine, also with the library
beside it."""

import os
import shutil

from harness import Desktop, copy_program, expect, hold_for

LIBRARY = os.environ["QUILLMERE_UPDATE_LIBRARY"]
LOOPBACK = {"0100007F", "00000000000000000000000001000000", "0000000000000000FFFF00000100007F"}
NOBODY = {"00000000", "0" * 32}


def loaded(pid):
    with open(f"/proc/{pid}/maps", encoding="utf-8", errors="replace") as file:
        return {os.path.basename(line.split()[-1]) for line in file if "/" in line}


def sockets_to_others(pid):
    """Of the process's own, those to or for another machine; servers of models are asked on this one."""
    own = set()
    for name in os.listdir(f"/proc/{pid}/fd"):
        try:
            own.add(os.readlink(f"/proc/{pid}/fd/{name}"))
        except FileNotFoundError:
            continue
    found = []
    for kind in "tcp", "tcp6", "udp", "udp6":
        with open(f"/proc/{pid}/net/{kind}", encoding="ascii") as file:
            for line in list(file)[1:]:
                words = line.split()
                remote = words[2].split(":")[0]
                if f"socket:[{words[9]}]" in own and remote not in LOOPBACK | NOBODY:
                    found.append(line.strip())
    return found


with Desktop("update_absent") as desktop:
    installed = os.path.join(desktop.scratch, "installed")
    os.makedirs(os.path.join(installed, "lib", "quillmere"))
    shutil.copy(LIBRARY, os.path.join(installed, "lib", "quillmere", "libquillmere-update.so"))
    desktop.binary = copy_program(desktop.binary, os.path.join(installed, "bin"))
    desktop.environment["QUILLMERE_UPDATE_FEED"] = "https://localhost/feed"
    desktop.choose_folder()
    program = desktop.launch("--show", "inbox")

    def is_quiet():
        names = loaded(program.pid)
        return (not any("quillmere-update" in name or "opensslbackend" in name for name in names)
                and not sockets_to_others(program.pid))

    expect("the program was looked at", any(name.startswith("libQt6Core") for name in loaded(program.pid)))
    hold_for("nothing is loaded and nobody is asked", is_quiet, 3)
    expect("the program runs on", program.is_running)
