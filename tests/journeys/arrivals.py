#!/usr/bin/python3
"""What comes into the folder without being captured now: copies and what a sync brings are listed and asked about by
nobody, an invoice with a date in its name is no screenshot, and captures of real tools still raise the popup."""

import datetime
import os

import captures
from harness import expect, run_journey, wait_until
from steps import wait_for_row

A_WEEK = datetime.timedelta(days=7)


def old_capture(desktop, folder):
    """A capture of last week, as it lies in another folder."""
    moment = datetime.datetime.now() - A_WEEK
    path = captures.save(folder, moment.strftime("Screenshot from %Y-%m-%d %H-%M-%S.png"))
    desktop.run("touch", "-d", moment.isoformat(), path, check=True)
    return path


def arrives(desktop, path):
    wait_until(f"{path} is recorded", lambda: desktop.record_of(path))
    expect(f"{path} is kept", desktop.state_of(path) == "permanent")
    expect(f"nobody is asked about {path}", not desktop.popup.is_shown)
    wait_for_row(desktop, path, "Saved")


def captured(desktop, path):
    desktop.popup.wait_for(path)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def journey(desktop):
    elsewhere = os.path.join(desktop.home, "Phone")
    os.makedirs(elsewhere)
    old = old_capture(desktop, elsewhere)
    fresh = captures.save(elsewhere)
    desktop.choose_folder()
    desktop.launch()

    kept_date = os.path.join(desktop.folder, captures.capture_name())
    desktop.run("cp", "-p", old, kept_date, check=True)
    arrives(desktop, kept_date)

    desktop.run("cp", old, desktop.folder, check=True)
    arrives(desktop, os.path.join(desktop.folder, os.path.basename(old)))

    desktop.run("rsync", fresh, desktop.folder, check=True)
    arrives(desktop, os.path.join(desktop.folder, os.path.basename(fresh)))

    invoice = captures.save(desktop.folder, datetime.datetime.now().strftime("Invoice %Y-%m-%d %H-%M-%S.png"))

    captured(desktop, captures.scrot(desktop, desktop.folder))
    captured(desktop, captures.gnome_screenshot(desktop, desktop.folder))
    captured(desktop, captures.xfce4_screenshooter(desktop, desktop.folder))
    german = datetime.datetime.now().strftime("Bildschirmfoto vom %Y-%m-%d %H-%M-%S.png")
    captured(desktop, captures.save(desktop.folder, german))
    expect("the invoice is no screenshot", desktop.record_of(invoice) is None)


run_journey("arrivals", journey)
