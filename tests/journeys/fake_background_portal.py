#!/usr/bin/python3
"""The desktop's portal for what starts at login. Run as a program it is the portal: fake_background_portal.py FOLDER, into
which it writes what it is asked, and from which it reads what the person answers, however late."""

import json
import os
import sys

from gi.repository import Gio, GLib

from waiting import wait_until

_NAME, _PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
_BACKGROUND = """<node><interface name="org.freedesktop.portal.Background">
  <method name="RequestBackground"><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
    <arg type="o" direction="out"/></method>
  <property name="version" type="u" access="read"/>
</interface></node>"""


class FakeBackgroundPortal:
    """As a journey sees it."""

    def __init__(self, desktop):
        self._folder = os.path.join(desktop.scratch, "background")
        os.makedirs(self._folder, exist_ok=True)
        self._process = desktop.start([sys.executable, "-B", os.path.abspath(__file__), self._folder])
        wait_until("the portal runs", lambda: os.path.exists(self._path("running")))

    def _path(self, name):
        return os.path.join(self._folder, name)

    def was_asked(self):
        return os.path.exists(self._path("asked"))

    def asked(self):
        """What it is asked next."""
        wait_until("the portal is asked", self.was_asked)
        with open(self._path("asked"), encoding="utf-8") as file:
            question = json.load(file)
        os.remove(self._path("asked"))
        return question

    def answer(self, how, starts):
        with open(self._path("answer.part"), "w", encoding="utf-8") as file:
            json.dump([how, starts], file)
        os.rename(self._path("answer.part"), self._path("answer"))
        wait_until("the answer is given", lambda: not os.path.exists(self._path("answer")))


def run(folder):
    bus, handle = Gio.bus_get_sync(Gio.BusType.SESSION), []

    def write(name, text):
        with open(os.path.join(folder, name + ".part"), "w", encoding="utf-8") as file:
            file.write(text)
        os.rename(os.path.join(folder, name + ".part"), os.path.join(folder, name))

    def called(_connection, sender, _path, _interface, _method, arguments, invocation):
        _parent, options = arguments.unpack()
        path = f"{_PATH}/request/{sender[1:].replace('.', '_')}/{options['handle_token']}"
        handle[:] = [path]
        invocation.return_value(GLib.Variant("(o)", (path,)))
        write("asked", json.dumps(options))

    def look():
        path = os.path.join(folder, "answer")
        if os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                how, starts = json.load(file)
            results = {"background": GLib.Variant("b", True), "autostart": GLib.Variant("b", starts)}
            bus.emit_signal(None, handle[0], "org.freedesktop.portal.Request", "Response",
                            GLib.Variant("(ua{sv})", (how, results)))
            bus.flush_sync(None)
            os.remove(path)
        return True

    interface = Gio.DBusNodeInfo.new_for_xml(_BACKGROUND).interfaces[0]
    bus.register_object(_PATH, interface, called, lambda *_: GLib.Variant("u", 1), None)
    Gio.bus_own_name_on_connection(bus, _NAME, Gio.BusNameOwnerFlags.NONE, lambda *_: write("running", ""), None)
    GLib.timeout_add(50, look)
    GLib.MainLoop().run()


if __name__ == "__main__":
    run(sys.argv[1])
