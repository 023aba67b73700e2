#!/usr/bin/python3
"""Extract Text over many screenshots: what cannot be read is told at once, the count goes down, and with the window
closed in the middle nothing goes on reading."""

import os
import re
import time

import captures
from harness import expect, hold_for, path_of, run_journey, wait_until
from inbox_steps import TITLE, choose_in_context_menu, close_inbox, open_inbox
from speech import AccessibilityListener
from windows import Windows

COUNT = 300
TOLD = "Couldn’t Read Every Screenshot"
SKIPPED = ("1 screenshot has an image that is in the cloud rather than on this computer. 1 screenshot is on a disk or in a "
           "folder that isn’t available. Their text wasn’t read.")
READING = re.compile(r"^Reading text in (\d+) screenshots…$")


def journey(desktop):
    # Analysis would read by itself what comes.
    desktop.choose_folder(settings={"quillmere.analyze": False})
    desktop.launch()
    lost, evicted = (captures.save(desktop.folder) for _ in range(2))
    picture = picture_of_words(desktop)
    for _ in range(COUNT):
        with open(os.path.join(desktop.folder, captures.capture_name()), "xb") as file:
            file.write(picture)
    wait_until("all are listed", lambda: len(desktop.records()) == COUNT + 2, 60)
    lose(desktop, lost)
    evict(desktop, evicted)
    while_the_window_is_closed(desktop)
    to_the_end(desktop)


def picture_of_words(desktop):
    """A part of the screen: a whole one takes too long to read for hundreds of them."""
    path = os.path.join(desktop.scratch, "words.png")
    terminal = desktop.start(["xterm", "-T", "words", "-fa", "DejaVu Sans Mono", "-fs", "18", "-bg", "white", "-fg",
                              "black", "-geometry", "20x3+40+400", "-e", "sh", "-c", "echo Paid invoice; sleep 60"])
    left, top, right, bottom = Windows(desktop).frame("words")
    time.sleep(0.5)  # until the words are drawn
    desktop.run("scrot", "-a", f"{left},{top},{right - left},{bottom - top}", path, check=True)
    terminal.kill()
    with open(path, "rb") as file:
        return file.read()


def lose(desktop, shot):
    """With the folder that a person moved it to."""
    folder = os.path.join(desktop.home, "Elsewhere")
    os.mkdir(folder)
    moved = os.path.join(folder, os.path.basename(shot))
    os.rename(shot, moved)
    wait_until("it is followed", lambda: desktop.record_of(moved) or desktop.record_of(shot))
    os.rename(folder, os.path.join(desktop.scratch, "gone"))


def evict(desktop, shot):
    """As a sync client does that leaves one byte under a longer name."""
    os.remove(shot)
    with open(shot + ".nextcloud", "w", encoding="ascii") as file:
        file.write(" ")


def texts(desktop):
    return {record["url"]: record["recognizedText"] for record in desktop.records() if "recognizedText" in record}


def begin(desktop):
    """Over all of them. What is read of them already is left out, and what cannot be read is told first."""
    open_inbox(desktop)
    desktop.key("Home")
    desktop.key("ctrl+a")
    desktop.wait_for(f"{COUNT + 2} Screenshots Selected", "heading", TITLE)
    choose_in_context_menu(desktop, top_row(desktop), "Extract Text")
    wait_until("what cannot be read is told", lambda: desktop.active_title() == TOLD)
    expect("which and why", desktop.find(SKIPPED, "label", TOLD))
    desktop.key("Return")
    wait_until("the words are gone", lambda: desktop.active_title() == TITLE)


def top_row(desktop):
    return path_of(desktop.records()[0])


def left(desktop):
    """How many the line says are still to be read; 0 without one."""
    line = desktop.find(READING, "label", TITLE)
    return int(READING.match(line.name).group(1)) if line else 0


def processor_seconds(desktop):
    with open(f"/proc/{desktop.program.pid}/stat", encoding="ascii") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def while_the_window_is_closed(desktop):
    begin(desktop)
    first = wait_until("the line shows", lambda: left(desktop))
    second = wait_until("it counts down", lambda: left(desktop) < first and left(desktop))
    expect(f"there is much to read: {first}, {second}", COUNT >= second > COUNT // 4)
    close_inbox(desktop)
    # The one that is being read and the next look at the disk.
    time.sleep(3)
    read, used = texts(desktop), processor_seconds(desktop)
    expect(f"some are read, and not all: {len(read)}", 0 < len(read) < COUNT)
    hold_for("no more are read", lambda: len(texts(desktop)) == len(read), 4)
    expect("nothing works on", processor_seconds(desktop) - used < 0.4)
    open_inbox(desktop)
    desktop.wait_for(f"{COUNT + 2} Screenshots Selected", "heading", TITLE)
    hold_for("opening it goes on with nothing", lambda: not left(desktop) and len(texts(desktop)) == len(read), 1)


def to_the_end(desktop):
    reader = AccessibilityListener(desktop, ["object:announcement", "object:state-changed:showing"])
    rest = COUNT - len(texts(desktop))
    begin(desktop)
    seen = [rest]

    def is_over():
        if (now := left(desktop)) and now != seen[-1]:
            seen.append(now)
        return len(texts(desktop)) == COUNT

    wait_until("all that are here are read", is_over, 150)
    expect(f"it only went down: {seen}", seen == sorted(seen, reverse=True) and len(seen) > 2)
    wait_until("the line is gone", lambda: not left(desktop))
    wait_until("it is told", lambda: f"Read the text in {rest} screenshots." in [text for text, _ in reader.announced()])
    expect("with what stands in them", all("Paid invoice" in text for text in texts(desktop).values()))


run_journey("inbox-text", journey)
