#!/usr/bin/python3
"""Fifty thousand screenshots arrive at once: how long until all are in the list on the disk, beside what nobody can do
without (burst_floor reads each header and saves once a second), and how long the main thread was held meanwhile.

Text recognition is off: it would be busy for hours."""

import argparse
import datetime
import os
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "journeys"))

from harness import Desktop, wait_until  # noqa: E402
from many import count_in, write_files  # noqa: E402
from stalls import LONGEST, SAVING, Watchdog  # noqa: E402

LIMIT = 1.5


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--files", type=int, default=50_000)
    parser.add_argument("--program", default=os.path.join(ROOT, "build", "quillmere"))
    options = parser.parse_args()
    os.environ["QUILLMERE_PROGRAM"] = options.program
    with Desktop("burst-bench") as desktop:
        desktop.choose_folder(settings={"quillmere.analyze": False})
        aside = desktop.folder + ".new"
        # A name of another day would tell of a copy.
        write_files(aside, options.files, datetime.datetime.now(), 1)
        watchdog = Watchdog(desktop)
        desktop.program_environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "0"
        watchdog.begin("start")
        desktop.launch("--autostart")
        time.sleep(2)
        watchdog.begin("arrivals")
        begin = time.monotonic()
        for name in os.listdir(aside):
            os.rename(os.path.join(aside, name), os.path.join(desktop.folder, name))
        moved = time.monotonic() - begin
        last = 0.0

        def all_are_listed():
            nonlocal last
            last = time.monotonic()
            return count_in(desktop.list_file) == options.files

        wait_until("all are listed", all_are_listed, 1200)
        taken = last - begin
        watchdog.begin("end")
        desktop.program.terminate()
        watchdog.read()
        floor = float(subprocess.run([os.path.join(os.path.dirname(options.program), "burst_floor"), desktop.folder,
                                      os.path.join(desktop.scratch, "floor.json")],
                                     capture_output=True, text=True, check=True).stdout)
    print(f"{options.files} files: moved in {moved:.1f} s, listed after {taken:.1f} s, {taken / floor:.2f} times the "
          f"floor of {floor:.1f} s (limit {LIMIT})")
    watchdog.tell(without=SAVING)
    longest = watchdog.longest("arrivals", without=SAVING)
    return int(taken > LIMIT * floor or longest > LONGEST)


if __name__ == "__main__":
    sys.exit(main())
