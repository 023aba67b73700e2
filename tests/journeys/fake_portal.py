"""The desktop's settings portal, as programs find it on the session bus."""

import sys

from gi.repository import GLib

import accessibility
from waiting import wait_until

_NAME, _PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
_SETTINGS, _MOCK = "org.freedesktop.portal.Settings", "org.freedesktop.DBus.Mock"
_APPEARANCE = "org.freedesktop.appearance"


class FakePortal:
    def __init__(self, desktop, answer="ret = {}"):
        self._bus = desktop.bus
        self._values = {}
        self._process = desktop.start([sys.executable, "-m", "dbusmock", "--session", _NAME, _PATH, _SETTINGS])
        wait_until("the portal runs", self._is_running)
        self._answer(answer)

    def _is_running(self):
        return accessibility.call(self._bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                  "NameHasOwner", GLib.Variant("(s)", (_NAME,)))[0]

    def stop(self):
        self._process.kill()
        self._process.wait()
        wait_until("the portal is gone", lambda: not self._is_running())

    def _answer(self, code):
        self._call("AddMethod", GLib.Variant("(sssss)", (_SETTINGS, "ReadAll", "as", "a{sa{sv}}", code)))

    def _call(self, method, arguments):
        accessibility.call(self._bus, _NAME, _PATH, _MOCK, method, arguments)

    def set(self, key, value, code):
        """Tells of the change, and whoever asks from now on; `code` is the value as the mock's Python has it."""
        self._values[key] = code
        values = ", ".join(f"'{name}': {text}" for name, text in self._values.items())
        self._answer(f"ret = {{'{_APPEARANCE}': dbus.Dictionary({{{values}}}, signature='sv')}}")
        told = [GLib.Variant("s", _APPEARANCE), GLib.Variant("s", key), GLib.Variant("v", value)]
        self._call("EmitSignal", GLib.Variant("(sssav)", (_SETTINGS, "SettingChanged", "ssv", told)))

    def set_number(self, key, number):
        self.set(key, GLib.Variant("u", number), f"dbus.UInt32({number}, variant_level=1)")

    def set_accent(self, red, green, blue):
        self.set("accent-color", GLib.Variant("(ddd)", (red, green, blue)),
                 f"dbus.Struct(({red}, {green}, {blue}), signature='ddd', variant_level=1)")
