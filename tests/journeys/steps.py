"""Steps that several journeys share."""

import configparser
import datetime
import json
import os
import urllib.parse

from harness import expect, path_of, wait_until

FOLDER_DIALOG = "Choose Screenshot Folder"


def answer_file_dialog(desktop, title, path):
    """Types the path and confirms."""
    wait_until(f"the dialog “{title}” has the keyboard", lambda: desktop.active_title() == title)
    # The field has the keyboard from the start; what stands in it is replaced.
    desktop.key("ctrl+a")
    desktop.type(path)
    desktop.key("Return")
    wait_until(f"the dialog “{title}” is gone", lambda: not desktop.window_ids(title))


def choose_folder_in_dialog(desktop, folder):
    """From the Inbox's set-up view, as on the first start."""
    desktop.click(desktop.wait_for("Choose Screenshot Folder…", "push button", "Quillmere"))
    answer_file_dialog(desktop, FOLDER_DIALOG, folder)
    wait_until("the chosen folder is watched",
               lambda: not desktop.find("Choose Your Screenshot Folder", "label", "Quillmere"))


def open_settings(desktop, pane):
    desktop.action("settings")
    wait_until("the settings have the keyboard", lambda: desktop.active_title() == "Settings")
    desktop.click(desktop.wait_for(pane, "page tab", "Settings"))


def settled_record(desktop, shot):
    """The record when its text has been read, after which nothing changes it by itself."""
    wait_until("its text is read", lambda: "recognizedText" in (desktop.record_of(shot) or {}), 30)
    return desktop.record_of(shot)


def row_of(desktop, shot):
    """Its row in the Inbox."""
    return desktop.wait_for(os.path.basename(shot), "list item", "Quillmere")


def wait_for_row(desktop, shot, status):
    """A row with another status is another object to a screen reader: asked for anew each time."""
    name = os.path.basename(shot)

    def shows():
        row = desktop.find(name, "list item", "Quillmere")
        return row and row.description.startswith(status)

    wait_until(f"the Inbox lists “{name}” as {status}", shows)


def select_row(desktop, shot):
    """Until it is chosen, since the window may still be moving to its place."""
    wait_until("the row is chosen", lambda: (desktop.click(row := row_of(desktop, shot)), row.is_focused)[1])


def make_temporary(desktop, shot):
    desktop.popup.wait_for(shot)
    desktop.popup.press("Temporary")
    desktop.popup.wait_gone()
    wait_until("the screenshot is temporary", lambda: desktop.state_of(shot) == "temporary")


def quit_program(desktop):
    desktop.action("quit")
    expect("it ends with 0", desktop.program.wait() == 0)


def make_overdue(desktop, shot):
    """Its time is moved into the past, in the list of the program that is not running."""
    with open(desktop.list_file, encoding="utf-8") as file:
        written = json.load(file)
    record = next(item for item in written["items"] if path_of(item) == shot)
    record["expiresAt"] -= datetime.timedelta(days=1).total_seconds()
    with open(desktop.list_file, "w", encoding="utf-8") as file:
        json.dump(written, file)


def popup_shows_picture(desktop, name):
    """The preview's name tells whether it is the whole screenshot or the window in it."""
    wait_until(f"the preview is the “{name}”", lambda: desktop.popup.find(name, "graphic"))


def trashed_files(desktop):
    directory = os.path.join(desktop.data_home, "Trash", "files")
    return os.listdir(directory) if os.path.isdir(directory) else []


class TrashEntry:
    """What the Trash of a home knows of a file that stood at `path`; `info` is None when it knows nothing."""

    def __init__(self, desktop, path):
        self.info = self.file = self.deleted = None
        trash = os.path.join(desktop.data_home, "Trash")
        directory = os.path.join(trash, "info")
        for name in os.listdir(directory) if os.path.isdir(directory) else []:
            parser = configparser.RawConfigParser()
            parser.optionxform = str
            parser.read(os.path.join(directory, name), encoding="utf-8")
            if not parser.has_section("Trash Info"):
                continue  # being written
            entry = parser["Trash Info"]
            if urllib.parse.unquote(entry["Path"]) == path:
                expect(f"{path} is in the Trash once", self.info is None)
                self.info = os.path.join(directory, name)
                self.file = os.path.join(trash, "files", name.removesuffix(".trashinfo"))
                self.deleted = datetime.datetime.fromisoformat(entry["DeletionDate"])

    @property
    def is_whole(self):
        return self.info is not None and os.path.isfile(self.file)
