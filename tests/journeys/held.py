#!/usr/bin/python3
"""With ten thousand records nothing that a person does holds the main thread: a series of arrivals, decisions, the
Inbox, searching, choosing all, files that leave. The watchdog tells what held it.

No screen reader runs, and nothing is asked through one: that would be the program's work too."""

import os
import sys
import time

import captures
from harness import Desktop, wait_until
from inbox_steps import TITLE, close_inbox, open_inbox
from many import count_in, list_of, save_list, write_files
from stalls import LONG, LONGEST, SAVING, Watchdog

RECORDS, SERIES, DECISIONS, LEAVING = 10_000, 200, 20, 500
PHASES = ("a series arrives", "decisions", "the Inbox opens", "search", "everything is chosen", "files leave",
          "the Inbox closes")
# What moves, keeps and follows single files waits for the disk.
FILES = ("LiveFileOperations::", "UserDefaults::write", "LiveSecurityScopeAccess::")


def rest(seconds=1.5):
    """Until what was begun is over."""
    time.sleep(seconds)


def wait_for_count(desktop, count):
    wait_until(f"{count} are listed", lambda: count_in(desktop.list_file) == count, 300)


def arrive(desktop):
    """A series, moved in at once."""
    aside = desktop.folder + ".new"
    os.makedirs(aside)
    for _ in range(SERIES):
        captures.save(aside)
    for name in os.listdir(aside):
        os.rename(os.path.join(aside, name), os.path.join(desktop.folder, name))
    wait_for_count(desktop, RECORDS + SERIES)


def decide(desktop):
    desktop.action("review", wait=True)
    wait_until("the popup has the keyboard", lambda: desktop.active_title() == "Screenshot Decision")
    for _ in range(DECISIONS):
        time.sleep(0.35)  # a key counts from then on
        desktop.key("Return")


def search(desktop):
    desktop.key("ctrl+f")
    rest(0.5)
    desktop.type("lazy dog 7")
    rest()
    desktop.key("Escape", "Escape")


def leave(desktop, names):
    for name in names:
        os.unlink(os.path.join(desktop.folder, name))
    wait_for_count(desktop, RECORDS + SERIES - len(names))


def run(desktop, names):
    watchdog = Watchdog(desktop)
    desktop.program_environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "0"
    watchdog.begin("start")
    desktop.launch("--autostart", timeout=60)
    rest(3)
    acts = (arrive, decide, open_inbox, search, lambda _: desktop.key("ctrl+a"), lambda _: leave(desktop, names), close_inbox)
    for name, act in zip(PHASES, acts):
        watchdog.begin(name)
        act(desktop)
        rest()
    watchdog.begin("end")
    desktop.program.terminate()
    watchdog.read()
    watchdog.tell(without=SAVING + FILES)
    # Before the loop turns nothing is on the screen, and after it nothing is any more.
    return watchdog.judge(PHASES[0], "end", without=SAVING + FILES)


def main():
    with Desktop("held") as desktop:
        desktop.choose_folder(settings={"quillmere.analyze": False})
        names = write_files(desktop.folder, RECORDS)
        save_list(desktop, list_of(desktop.folder))
        late, longest = run(desktop, names[:LEAVING])
    print(f"one turn of a hundred holds the main thread {late * 1000:.1f} ms (limit {LONG * 1000:.0f}), the longest "
          f"{longest * 1000:.1f} ms (limit {LONGEST * 1000:.0f})")
    return int(late > LONG or longest > LONGEST)


if __name__ == "__main__":
    sys.exit(main())
