#!/usr/bin/python3
"""The desktop's portal for choosing files. Run as a program it is the portal: fake_chooser_portal.py FOLDER, into which
it writes what it is asked, and from which it reads what the person answers."""

import json
import os
import sys

from gi.repository import Gio, GLib

from waiting import wait_until

_NAME, _PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
_CHOOSER = """<node><interface name="org.freedesktop.portal.FileChooser">
  <method name="OpenFile"><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="o" direction="out"/></method>
  <method name="SaveFile"><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="a{sv}" direction="in"/><arg type="o" direction="out"/></method>
  <property name="version" type="u" access="read"/>
</interface></node>"""


class FakeChooserPortal:
    """As a journey sees it."""

    def __init__(self, desktop):
        self._folder = os.path.join(desktop.scratch, "chooser")
        os.makedirs(self._folder, exist_ok=True)
        self._process = desktop.start([sys.executable, "-B", os.path.abspath(__file__), self._folder])
        wait_until("the portal runs", lambda: os.path.exists(self._path("running")))
        os.remove(self._path("running"))

    def _path(self, name):
        return os.path.join(self._folder, name)

    def asked(self):
        """What the next dialog is opened with."""
        wait_until("the portal is asked", lambda: os.path.exists(self._path("asked")))
        with open(self._path("asked"), encoding="utf-8") as file:
            question = json.load(file)
        os.remove(self._path("asked"))
        return question

    def answer(self, how, *uris):
        with open(self._path("answer.part"), "w", encoding="utf-8") as file:
            json.dump([how, uris], file)
        os.rename(self._path("answer.part"), self._path("answer"))

    def vanish(self):
        self._process.kill()
        self._process.wait()


def run(folder):
    bus, handle = Gio.bus_get_sync(Gio.BusType.SESSION), []

    def write(name, text):
        with open(os.path.join(folder, name + ".part"), "w", encoding="utf-8") as file:
            file.write(text)
        os.rename(os.path.join(folder, name + ".part"), os.path.join(folder, name))

    def called(_connection, sender, _path, _interface, method, arguments, invocation):
        parent, title, options = arguments.unpack()
        path = f"{_PATH}/request/{sender[1:].replace('.', '_')}/{options['handle_token']}"
        handle[:] = [path]
        invocation.return_value(GLib.Variant("(o)", (path,)))
        known = {key: bytes(value).decode("utf-8", "replace") if isinstance(value, list) and key == "current_folder"
                 else value for key, value in options.items()}
        write("asked", json.dumps({"method": method, "parent": parent, "title": title, "options": known}))

    def look():
        path = os.path.join(folder, "answer")
        if os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                how, uris = json.load(file)
            os.remove(path)
            results = {"uris": GLib.Variant("as", uris)}
            bus.emit_signal(None, handle[0], "org.freedesktop.portal.Request", "Response",
                            GLib.Variant("(ua{sv})", (how, results)))
        return True

    interface = Gio.DBusNodeInfo.new_for_xml(_CHOOSER).interfaces[0]
    bus.register_object(_PATH, interface, called, lambda *_: GLib.Variant("u", 3), None)
    Gio.bus_own_name_on_connection(bus, _NAME, Gio.BusNameOwnerFlags.NONE, lambda *_: write("running", ""), None)
    GLib.timeout_add(50, look)
    GLib.MainLoop().run()


if __name__ == "__main__":
    run(sys.argv[1])
