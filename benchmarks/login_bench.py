#!/usr/bin/python3
"""What a login pays for the program: `quillmere --autostart` with a folder chosen, with an empty list, one of a thousand
records and one of a hundred thousand. Processor time until it watches, and until it has come to rest; time until it
watches, which with a long list is that of reading it (list_floor, in the same run) and a little more.

A login starts everything at once, so processor time counts; the clock depends on what else runs."""

import argparse
import os
import statistics
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "journeys"))

from harness import Desktop  # noqa: E402
from many import list_of, save_list, write_files  # noqa: E402

LIMIT = 0.150
LONG_LIST, BESIDE_READING = 100_000, 0.300
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


def floor_of(desktop, program):
    """Seconds that reading the list takes alone."""
    done = subprocess.run([os.path.join(os.path.dirname(program), "list_floor"), desktop.list_file], capture_output=True,
                          text=True, check=True)
    return float(done.stdout)


def end(desktop):
    desktop.action("quit")
    desktop.program.wait()


def fill(desktop, count):
    """Screenshots of last year, each with its file, that say something."""
    write_files(desktop.folder, count)
    save_list(desktop, list_of(desktop.folder))


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
    parser.add_argument("--records", type=int, nargs="*", default=[0, 1000, LONG_LIST])
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
            floor = floor_of(desktop, options.program) if count else 0
        watching, used, at_rest = (statistics.median(column) for column in zip(*starts))
        print(f"{count:5d} records: watching after {watching * 1000:4.0f} ms; "
              f"processor {used * 1000:4.0f} ms until then, {at_rest * 1000:4.0f} ms until it rests; "
              f"the list alone {floor * 1000:4.0f} ms", flush=True)
        is_slow = is_slow or (watching > floor + BESIDE_READING if count >= LONG_LIST else used > LIMIT)
    if is_slow:
        print(f"more than {LIMIT * 1000:.0f} ms of processor time until it watches, or with {LONG_LIST} records more "
              f"than {BESIDE_READING * 1000:.0f} ms beside reading them")
    return int(is_slow)


if __name__ == "__main__":
    sys.exit(main())
