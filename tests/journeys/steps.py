"""Steps that several journeys share."""

import configparser
import datetime
import os
import urllib.parse

from harness import expect, wait_until

DIALOG = "Choose Screenshot Folder"


def choose_folder_in_dialog(desktop, folder):
    """From the Inbox's set-up view, as on the first start."""
    desktop.click(desktop.wait_for("Choose Screenshot Folder…", "push button", "Quillmere"))
    wait_until("the folder dialog has the keyboard", lambda: desktop.active_title() == DIALOG)
    # The field has the keyboard from the start; what stands in it is replaced.
    desktop.key("ctrl+a")
    desktop.type(folder)
    desktop.key("Return")
    wait_until("the folder dialog is gone", lambda: not desktop.window_ids(DIALOG))
    wait_until("the chosen folder is watched",
               lambda: not desktop.find("Choose Your Screenshot Folder", "label", "Quillmere"))


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
            entry = parser["Trash Info"]
            if urllib.parse.unquote(entry["Path"]) == path:
                expect(f"{path} is in the Trash once", self.info is None)
                self.info = os.path.join(directory, name)
                self.file = os.path.join(trash, "files", name.removesuffix(".trashinfo"))
                self.deleted = datetime.datetime.fromisoformat(entry["DeletionDate"])

    @property
    def is_whole(self):
        return self.info is not None and os.path.isfile(self.file)
