#!/usr/bin/python3
"""The session ends while the program still looks for the files of ten thousand records: it ends too, as it should, and
the list is as it was."""

import os
import time

from harness import expect, run_journey
from many import list_of, save_list, write_files

RECORDS = 10_000
MOMENTS = (0, 0.2, 0.5, 1)  # seconds after it is up


def journey(desktop):
    desktop.choose_folder()
    write_files(desktop.folder, RECORDS)
    save_list(desktop, list_of(desktop.folder))
    size = os.path.getsize(desktop.list_file)
    for moment in MOMENTS:
        desktop.launch("--autostart", timeout=60)
        time.sleep(moment)
        desktop.program.terminate()
        expect("the list is as it was", os.path.getsize(desktop.list_file) == size)


run_journey("quit_early", journey)
