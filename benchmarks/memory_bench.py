#!/usr/bin/python3
"""The memory of the program at rest without a window: what is resident, and its share of what others use too. With an
empty list, and with one of many records; before its readers of pictures have been needed."""

import argparse
import os
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "journeys"))
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from harness import Desktop, wait_until  # noqa: E402
from login_bench import end, fill, precise_seconds  # noqa: E402

LIMITS = {0: 36, 10000: 60}  # megabytes resident


def memory(pid):
    """Resident and proportional, in megabytes."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        sizes = {line.split(":")[0]: int(line.split()[1]) for line in list(file)[1:]}
    return sizes["Rss"] / 1024, sizes["Pss"] / 1024


def is_resting(pid):
    """It has not computed for as long as it keeps what it may need again."""
    before = precise_seconds(pid)
    time.sleep(12)
    return precise_seconds(pid) - before < 0.02


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--records", type=int, nargs="*", default=list(LIMITS))
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "quillmere"))
    options = parser.parse_args()
    os.environ["QUILLMERE_PROGRAM"] = options.program
    is_large = False
    for count in options.records:
        with Desktop(f"memory-bench-{count}") as desktop:
            desktop.choose_folder()
            if count:
                fill(desktop, count)
            desktop.launch("--autostart")
            wait_until("it rests", lambda: is_resting(desktop.program.pid), 300)
            resident, share = memory(desktop.program.pid)
            end(desktop)
        print(f"{count:5d} records: {resident:5.1f} MB resident, {share:5.1f} MB its share", flush=True)
        is_large = is_large or resident > LIMITS.get(count, float("inf"))
    if is_large:
        print("more than the limit of", LIMITS)
    return int(is_large)


if __name__ == "__main__":
    sys.exit(main())
