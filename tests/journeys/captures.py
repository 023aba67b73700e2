"""Screenshots: taken by the tools that people use, or made here and saved under a capture tool's name."""

import datetime
import itertools
import os
import struct
import subprocess
import time
import zlib

from waiting import wait_until

_seconds = itertools.count()
_start = datetime.datetime.now()


def png(width=64, height=40, colour=(70, 130, 180)):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    rows = (b"\0" + bytes(colour) * width) * height
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b"")


def capture_name():
    """A name of the most common form; each call gives the next second. A name of another day would tell of a copy."""
    moment = _start + datetime.timedelta(seconds=next(_seconds))
    return moment.strftime("Screenshot from %Y-%m-%d %H-%M-%S.png")


def save(folder, name=None, **picture):
    path = os.path.join(folder, name or capture_name())
    with open(path, "xb") as file:
        file.write(png(**picture))
    return path


def take(desktop, folder, command, **options):
    """The file that the tool leaves in the folder, wherever it was told to save."""
    before = set(os.listdir(folder))
    environment = {**desktop.environment, "NO_AT_BRIDGE": "1"}
    done = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                          timeout=60, **options)
    new = sorted(set(os.listdir(folder)) - before)
    if len(new) != 1:
        raise RuntimeError(f"{command[0]} left {new}: {done.stdout}{done.stderr}")
    return os.path.join(folder, new[0])


def text(desktop, words):
    """The screen with a terminal that shows these words, captured into the watched folder."""
    terminal = desktop.start(["xterm", "-T", words, "-fa", "DejaVu Sans Mono", "-fs", "18", "-bg", "white", "-fg",
                              "black", "-geometry", "60x6+40+40", "-e", "sh", "-c", f"echo '{words}'; sleep 60"])
    wait_until("the terminal", lambda: desktop.window_ids(words))
    time.sleep(0.5)  # until the words are drawn
    path = scrot_named(desktop)
    terminal.kill()
    return path


def scrot(desktop, folder):
    return take(desktop, folder, ["scrot"], cwd=folder)


def scrot_named(desktop):
    """A capture under a name of its own, which a second one does not wait for."""
    path = os.path.join(desktop.folder, capture_name())
    desktop.run("scrot", path, check=True)
    return path


def gnome_screenshot(desktop, folder):
    desktop.save_setting("org/gnome/gnome-screenshot", "auto-save-directory", f"'file://{folder}'")
    return take(desktop, folder, ["gnome-screenshot"])


def xfce4_screenshooter(desktop, folder):
    name = datetime.datetime.now().strftime("Screenshot_%Y-%m-%d_%H-%M-%S.png")
    return take(desktop, folder, ["xfce4-screenshooter", "-f", "-s", os.path.join(folder, name)])
