"""The clipboard as another program finds it."""

import shutil
import subprocess

import Xlib.display
import Xlib.X

from waiting import wait_until


class Clipboard:
    def __init__(self, desktop):
        self._desktop = desktop

    def bytes_as(self, form):
        """Asked by a process of its own; nothing where nobody answers."""
        done = subprocess.run(["xclip", "-selection", "clipboard", "-out", "-target", form], stdin=subprocess.DEVNULL,
                              env=self._desktop.environment, capture_output=True, timeout=60, check=False)
        return done.stdout

    @property
    def forms(self):
        """Those of the content, without what every owner of a selection answers about itself."""
        offered = self.bytes_as("TARGETS").decode("ascii").split()
        return [form for form in offered if form not in ("TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS")]

    def everything(self):
        return {form: self.bytes_as(form) for form in self.forms}

    @property
    def text(self):
        return self.bytes_as("UTF8_STRING").decode()


def start_manager(desktop):
    """The one of a desktop, which takes over what a program leaves that ends."""
    if not shutil.which("xfsettingsd"):
        raise RuntimeError("xfsettingsd is not installed")
    desktop.start(["xfsettingsd", "--no-daemon", "--disable-wm-check"], stdout=subprocess.DEVNULL,
                  stderr=subprocess.DEVNULL)
    display = Xlib.display.Display(desktop.environment["DISPLAY"])
    manager = display.get_atom("CLIPBOARD_MANAGER")
    wait_until("a clipboard manager runs", lambda: display.get_selection_owner(manager) != Xlib.X.NONE, 20)
