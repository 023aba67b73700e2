#!/usr/bin/python3
"""Two captures of a large screen full of text are read at once, and the popup answers all the while.

Prints how long the program takes to answer a question to its main thread, idle and during the two recognitions.
"""

import statistics
import sys
import time

import captures
from harness import Desktop, JourneyFailed, expect, wait_until

SIZE = "5120x2880"
QUESTIONS = 200


def fill_screen(desktop):
    """Terminals with long listings, as a large desktop has them."""
    for index in range(6):
        x, y = 1700 * (index % 3), 1440 * (index // 3)
        desktop.start(["xterm", "-T", f"list {index}", "-fa", "DejaVu Sans Mono", "-fs", "14", "-geometry",
                       f"150x58+{x}+{y}", "-bg", "white" if index % 2 else "black", "-fg",
                       "black" if index % 2 else "white", "-e", "sh", "-c", "ls -la /usr/lib /usr/bin | head -55; sleep 300"])
    for index in range(6):
        wait_until("a terminal", lambda: desktop.window_ids(f"list {index}"))
    time.sleep(1)  # until the lists are drawn


def answer_times(field, count, until=lambda: False):
    times = []
    while len(times) < count and not until():
        begin = time.monotonic()
        field.text
        times.append(1000 * (time.monotonic() - begin))
        time.sleep(0.005)
    return times


def report(what, times):
    times = sorted(times)
    print(f"{what}: {len(times)} answers, median {statistics.median(times):.1f} ms, "
          f"99 in 100 within {times[int(0.99 * (len(times) - 1))]:.1f} ms, longest {times[-1]:.1f} ms")


def text_of(desktop, shot):
    return (desktop.record_of(shot) or {}).get("recognizedText")


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    first = captures.save(desktop.folder)
    desktop.popup.wait_for(first)
    wait_until("the first is read", lambda: text_of(desktop, first) is not None, 30)
    report("idle", answer_times(desktop.popup.find("Filename", ("text", "entry")), QUESTIONS))

    fill_screen(desktop)
    shots = [captures.scrot_named(desktop) for _ in range(2)]
    wait_until("both are listed", lambda: all(desktop.record_of(shot) for shot in shots))
    both_read = lambda: all(text_of(desktop, shot) is not None for shot in shots)  # noqa: E731
    expect("they are still being read", not both_read())
    times = answer_times(desktop.popup.find("Filename", ("text", "entry")), QUESTIONS, both_read)
    report("two recognitions", times)
    desktop.popup.press("Keep")
    wait_until("a decision is taken meanwhile", lambda: desktop.state_of(first) == "permanent")
    wait_until("both are read", both_read, 240)
    expect("with their text", all("root" in text_of(desktop, shot) for shot in shots))


if __name__ == "__main__":
    try:
        with Desktop("analysis_in_background", SIZE) as desktop:
            journey(desktop)
    except JourneyFailed as failure:
        print(f"analysis_in_background: {failure}", flush=True)
        sys.exit(1)
    print("analysis_in_background: all as it should be")
