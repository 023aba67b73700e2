#!/usr/bin/python3
"""What a login pays for the program: `quillmere --autostart` with a folder chosen, with an empty list and with one of a
thousand records. Processor time until it watches, and until it has come to rest; time until it watches.

A login starts everything at once, so processor time counts; the clock depends on what else runs."""

import argparse
import datetime
import json
import os
import statistics
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "journeys"))

import captures  # noqa: E402
from harness import Desktop, wait_until  # noqa: E402

LIMIT = 0.150
REST = 2.0  # what is put off at the start is done by then


def processor_seconds(pid):
    with open(f"/proc/{pid}/stat", encoding="ascii") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def precise_seconds(pid):
    """The same by the scheduler's own account, which counts nanoseconds, of all threads that still run."""
    total = 0
    for task in os.listdir(f"/proc/{pid}/task"):
        with open(f"/proc/{pid}/task/{task}/schedstat", encoding="ascii") as file:
            total += int(file.read().split()[0])
    return max(total / 1e9, processor_seconds(pid))


def is_resting(pid):
    before = precise_seconds(pid)
    time.sleep(REST)
    return precise_seconds(pid) - before < 0.01


def end(desktop):
    desktop.action("quit")
    desktop.program.wait()


def fill(desktop, count):
    """Pictures of last year are taken into the list without a question."""
    desktop.launch("--autostart")
    moment = datetime.datetime.now() - datetime.timedelta(days=365)
    for _ in range(count):
        moment += datetime.timedelta(seconds=61)
        captures.save(desktop.folder, moment.strftime("Screenshot from %Y-%m-%d %H-%M-%S.png"))
    wait_until("all are listed", lambda: len(desktop.records()) == count, 120)
    wait_until("they are looked through", lambda: is_resting(desktop.program.pid), 600)
    end(desktop)
    # These pictures say nothing, and would be read again for that at each start; screenshots say something.
    with open(desktop.list_file, encoding="utf-8") as file:
        stored = json.load(file)
    for item in stored["items"]:
        item["recognizedText"] = "The quick brown fox jumps over the lazy dog.\n" * 20
    with open(desktop.list_file, "w", encoding="utf-8") as file:
        json.dump(stored, file)


def measure(desktop):
    began = time.monotonic()
    desktop.launch("--autostart")
    watching = time.monotonic() - began
    used = precise_seconds(desktop.program.pid)
    time.sleep(REST)
    at_rest = precise_seconds(desktop.program.pid)
    end(desktop)
    return watching, used, at_rest


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--starts", type=int, default=11)
    parser.add_argument("--records", type=int, nargs="*", default=[0, 1000])
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "quillmere"))
    options = parser.parse_args()
    os.environ["QUILLMERE_PROGRAM"] = options.program
    is_slow = False
    for count in options.records:
        with Desktop(f"login-bench-{count}") as desktop:
            desktop.choose_folder()
            if count:
                fill(desktop, count)
            measure(desktop)  # everything is in the caches of the disk from now on
            starts = [measure(desktop) for _ in range(options.starts)]
        watching, used, at_rest = (statistics.median(column) for column in zip(*starts))
        print(f"{count:5d} records: watching after {watching * 1000:4.0f} ms; "
              f"processor {used * 1000:4.0f} ms until then, {at_rest * 1000:4.0f} ms until it rests", flush=True)
        is_slow = is_slow or used > LIMIT
    if is_slow:
        print(f"more than {LIMIT * 1000:.0f} ms of processor time until it watches")
    return int(is_slow)


if __name__ == "__main__":
    sys.exit(main())
