#!/usr/bin/python3
"""A window that takes whatever is dropped on it in every form that is offered, and writes down what came.

Run as a program it is the window: drop_target.py FOLDER. Its states are files in the folder: `shown`, `hovered` while a
drag is over it, and `received.json` with the forms and, for each, a file with its bytes.
"""

import json
import os
import sys

from waiting import wait_until

TITLE = "Drop here"
PLACE = (40, 300, 300, 200)  # left, top, width, height


class DropTarget:
    """The window as a journey sees it."""

    def __init__(self, desktop):
        self._folder = os.path.join(desktop.scratch, "dropped")
        os.mkdir(self._folder)
        self._process = desktop.start([sys.executable, "-B", os.path.abspath(__file__), self._folder],
                                      environment={"NO_AT_BRIDGE": "1", "GDK_BACKEND": "x11"})
        wait_until("the drop target shows", lambda: self._has("shown") and desktop.window_ids(TITLE))
        self.centre = PLACE[0] + PLACE[2] // 2, PLACE[1] + PLACE[3] // 2

    def _has(self, name):
        return os.path.exists(os.path.join(self._folder, name))

    @property
    def is_hovered(self):
        return self._has("hovered")

    @property
    def has_received(self):
        return self._has("received.json")

    def take(self):
        """What was dropped: the bytes by form. Afterwards it waits for the next."""
        received = os.path.join(self._folder, "received.json")
        wait_until("something is dropped", lambda: os.path.exists(received), 20)
        with open(received, encoding="utf-8") as file:
            forms = json.load(file)
        os.remove(received)
        dropped = {}
        for form, name in forms.items():
            with open(os.path.join(self._folder, name), "rb") as file:
                dropped[form] = file.read()
        return dropped


def run(folder):
    import gi

    gi.require_version("Gdk", "3.0")
    gi.require_version("Gtk", "3.0")
    from gi.repository import Gdk, Gtk

    def mark(name, wanted=True):
        path = os.path.join(folder, name)
        if wanted:
            open(path, "wb").close()
        elif os.path.exists(path):
            os.remove(path)

    class Window(Gtk.Window):
        def __init__(self):
            super().__init__(title=TITLE)
            self.forms, self.waiting = {}, []
            self.set_default_size(*PLACE[2:])
            self.move(*PLACE[:2])
            # Not the keyboard: whoever has it keeps it.
            self.set_accept_focus(False)
            self.drag_dest_set(0, [], Gdk.DragAction.COPY | Gdk.DragAction.MOVE)
            self.connect("drag-motion", self.over)
            self.connect("drag-leave", lambda *_: mark("hovered", False))
            self.connect("drag-drop", self.dropped)
            self.connect("drag-data-received", self.received)
            self.connect("map-event", lambda *_: mark("shown"))
            self.connect("destroy", Gtk.main_quit)

        def over(self, _widget, context, _x, _y, time):
            # A greedy one: it moves what may be moved.
            can_move = context.get_actions() & Gdk.DragAction.MOVE
            Gdk.drag_status(context, Gdk.DragAction.MOVE if can_move else Gdk.DragAction.COPY, time)
            mark("hovered")
            return True

        def dropped(self, _widget, context, _x, _y, time):
            self.forms, self.waiting = {}, [target.name() for target in context.list_targets()]
            self.ask(context, time)
            return True

        def ask(self, context, time):
            if self.waiting:
                self.drag_get_data(context, Gdk.Atom.intern(self.waiting.pop(0), False), time)
                return
            with open(os.path.join(folder, "received.tmp"), "w", encoding="utf-8") as file:
                json.dump(self.forms, file)
            os.rename(os.path.join(folder, "received.tmp"), os.path.join(folder, "received.json"))
            # It asks the source to delete what it was given, whatever was agreed.
            Gtk.drag_finish(context, True, True, time)

        def received(self, _widget, context, _x, _y, data, _info, time):
            form = data.get_target().name()
            name = f"{len(self.forms)}.bytes"
            with open(os.path.join(folder, name), "wb") as file:
                file.write(data.get_data() or b"")
            self.forms[form] = name
            self.ask(context, time)

    Window().show_all()
    Gtk.main()


if __name__ == "__main__":
    run(sys.argv[1])
