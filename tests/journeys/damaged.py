#!/usr/bin/python3
"""Damaged pictures in bulk while a popup is open: it answers, the next screenshot is asked about, and every file that is
no picture any more is left where it is."""

import os
import random
import struct
import zlib

import captures
from harness import ROOT, expect, path_of, run_journey, wait_until

COUNT = 240
WHOLE = ("plain.jpg", "orientation-6.jpg", "alpha.heic", "opaque.heic", "gray.png", "rgba-srgb.png")


def damaged(picture, chance):
    """With some of its bits turned over, or without its end; the same each time."""
    changed = bytearray(picture)
    for _ in range(chance.choice((1, 1, 2, 8, 64))):
        changed[chance.randrange(len(changed))] ^= 1 << chance.randrange(8)
    return bytes(changed[:chance.randrange(1, len(changed))] if chance.random() < 0.2 else changed)


def leave(desktop, number, chance):
    name = WHOLE[number % len(WHOLE)]
    with open(os.path.join(ROOT, "fuzz", "corpus", "load_image", name), "rb") as file:
        picture = file.read()
    place = os.path.join(desktop.folder, captures.capture_name().replace(".png", os.path.splitext(name)[1]))
    with open(place, "xb") as file:
        file.write(damaged(picture, chance))
    return place


def too_wide():
    """A picture that is wider than any capture."""
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    head = struct.pack(">IIBBBBB", 1000001, 1, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(bytes(3000004))) + chunk(b"IEND", b"")


def journey(desktop):
    chance = random.Random(20260102)
    desktop.choose_folder()
    program = desktop.launch("--autostart")
    first = captures.save(desktop.folder)
    desktop.popup.wait_for(first)
    files = [leave(desktop, number, chance) for number in range(COUNT)]
    last = captures.save(desktop.folder)
    desktop.popup.press("Keep")
    wait_until("the first is kept", lambda: desktop.state_of(first) == "permanent")
    wait_until("the last is asked about", lambda: desktop.state_of(last) == "pending", 60)
    expect("some are pictures all the same", {path_of(record) for record in desktop.records()} & set(files))
    costly = os.path.join(desktop.folder, captures.capture_name())
    with open(costly, "xb") as file:
        file.write(too_wide())
    wait_until("one that is too costly is asked about without its picture",
               lambda: desktop.state_of(costly) == "pending")
    expect("none is gone", all(os.path.exists(place) for place in files))
    program.terminate()


run_journey("damaged", journey)
