"""The desktop's tray, as its panel plays it on the session bus: it is told of icons, and shows their menus."""

import threading

from gi.repository import Gio, GLib

import accessibility
from global_menu import Menu
from waiting import wait_until

_NAME, _PATH = "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher"
_ITEM, _ITEM_PATH = "org.kde.StatusNotifierItem", "/StatusNotifierItem"
_BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
_INTERFACE = f"""<node><interface name="{_NAME}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>"""


class FakeTray:
    """Answers from a thread of its own, since whoever registers may wait for that; one that hangs answers nobody."""

    def __init__(self, desktop, hangs=False):
        self._bus, self._address, self._hangs, self.items = desktop.bus, desktop.environment["DBUS_SESSION_BUS_ADDRESS"], hangs, []
        self._context = GLib.MainContext.new()
        self._loop = GLib.MainLoop.new(self._context, False)
        self._thread = threading.Thread(target=self._serve, daemon=True)
        self._thread.start()
        wait_until("the tray is on the bus", self._is_there)

    def _serve(self):
        self._context.push_thread_default()
        self._connection = accessibility.connect(self._address)
        interface = Gio.DBusNodeInfo.new_for_xml(_INTERFACE).interfaces[0]
        self._connection.register_object(_PATH, interface, self._called, self._property, None)
        accessibility.call(self._connection, *_BUS, "RequestName", GLib.Variant("(su)", (_NAME, 0)))
        if not self._hangs:
            self._loop.run()

    def _is_there(self):
        return accessibility.call(self._bus, *_BUS, "NameHasOwner", GLib.Variant("(s)", (_NAME,)))[0]

    def _called(self, _connection, sender, _path, _interface, method, arguments, invocation):
        if method == "RegisterStatusNotifierItem":
            self.items.append(sender)
        invocation.return_value(None)

    def _property(self, _connection, _sender, _path, _interface, name):
        return {"IsStatusNotifierHostRegistered": GLib.Variant("b", True),
                "RegisteredStatusNotifierItems": GLib.Variant("as", []),
                "ProtocolVersion": GLib.Variant("i", 0)}[name]

    def stop(self):
        """As a panel that crashes or is restarted."""
        self._loop.quit()
        self._thread.join()
        self._connection.close_sync(None)
        wait_until("the tray is gone", lambda: not self._is_there())

    def wait_for_icon(self):
        return wait_until("the icon is in the tray", lambda: self.items and self.items[-1])

    def _of_item(self, name):
        return accessibility.call(self._bus, self.wait_for_icon(), _ITEM_PATH, "org.freedesktop.DBus.Properties", "Get",
                                  GLib.Variant("(ss)", (_ITEM, name)))[0]

    def click(self):
        accessibility.call(self._bus, self.wait_for_icon(), _ITEM_PATH, _ITEM, "Activate", GLib.Variant("(ii)", (0, 0)))

    @property
    def menu(self):
        return Menu(self._bus, self.wait_for_icon(), self._of_item("Menu"))
