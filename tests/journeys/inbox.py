"""The Inbox as the keyboard and a screen reader find it."""

import os

import captures
from harness import JourneyFailed, expect, wait_until

TITLE = "Quillmere"
TRASH_ONE, TRASH_SEVERAL = "Move Screenshot to Trash?", "Move Screenshots to Trash?"


def open_inbox(desktop):
    desktop.action("inbox")
    wait_until("the Inbox has the keyboard", lambda: desktop.active_title() == TITLE)


def rows(desktop):
    """The names in the list, from the top."""
    return [row.name for row in desktop.program.tree.find_all(None, "list item", TITLE)]


def selected(desktop):
    return [row.name for row in desktop.program.tree.find_all(None, "list item", TITLE) if row.is_selected]


def wait_for_selection(desktop, names, what=None):
    try:
        wait_until(what or f"{names} are selected", lambda: selected(desktop) == names)
    except JourneyFailed as failure:
        raise JourneyFailed(f"{failure}; selected instead: {selected(desktop)}") from None


def pending(desktop):
    """A screenshot that waits for its decision, without a popup."""
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Dismiss Screenshot Popup")
    desktop.popup.wait_gone()
    wait_until("it is pending", lambda: desktop.state_of(shot) == "pending")
    return shot


def saved(desktop, name, **picture):
    """One that is kept, and has got another name in a file manager."""
    shot = captures.save(desktop.folder, **picture)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent")
    path = os.path.join(desktop.folder, name)
    desktop.run("mv", shot, path, check=True)
    wait_until("its record follows", lambda: desktop.state_of(path) == "permanent")
    return path


def file_names(paths):
    return [os.path.basename(path) for path in paths]


def expect_untouched(desktop, states):
    """`states` by path."""
    for path, state in states.items():
        expect(f"{path} stands where it was", os.path.exists(path))
        expect(f"{path} is {state}, not {desktop.state_of(path)}", desktop.state_of(path) == state)
