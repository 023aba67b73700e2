"""The desktop's tray, as its panel plays it: on the session bus, where it is told of icons and shows their menus, or on
the X server, where it embeds their windows."""

import threading

import Xlib.display
import Xlib.error
import Xlib.protocol.event
import Xlib.X
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
        self._bus, self._address = desktop.bus, desktop.environment["DBUS_SESSION_BUS_ADDRESS"]
        self._hangs, self.items = hangs, []
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


class EmbeddingTray:
    """A panel that takes icons as windows of the X server into its own."""

    def __init__(self, desktop):
        self._display = Xlib.display.Display(desktop.environment["DISPLAY"])
        screen = self._display.screen()
        self._window = screen.root.create_window(0, 0, 32, 32, 0, screen.root_depth, override_redirect=True,
                                                 event_mask=Xlib.X.StructureNotifyMask)
        self._window.map()
        selection = self._display.intern_atom("_NET_SYSTEM_TRAY_S0")
        self._window.set_selection_owner(selection, Xlib.X.CurrentTime)
        announcement = Xlib.protocol.event.ClientMessage(
            window=screen.root, client_type=self._display.intern_atom("MANAGER"),
            data=(32, [Xlib.X.CurrentTime, selection, self._window.id, 0, 0]))
        screen.root.send_event(announcement, event_mask=Xlib.X.StructureNotifyMask)
        self._display.sync()

    def wait_for_icon(self):
        """Takes it in and gives the middle of it. One may ask, go, and ask again with another window."""
        wait_until("the icon is in its place", self._has_taken_one)
        return 16, 16

    def _has_taken_one(self):
        _REQUEST_DOCK = 0
        opcode = self._display.intern_atom("_NET_SYSTEM_TRAY_OPCODE")
        while self._display.pending_events():
            event = self._display.next_event()
            is_ours = event.type == Xlib.X.ClientMessage and event.client_type == opcode
            if is_ours and event.data[1][1] == _REQUEST_DOCK:
                icon = self._display.create_resource_object("window", event.data[1][2])
                ignored = Xlib.error.CatchError(Xlib.error.BadWindow)
                icon.reparent(self._window, 0, 0, onerror=ignored)
                icon.configure(width=32, height=32, onerror=ignored)
                icon.map(onerror=ignored)
                self._display.sync()
        return bool(self._window.query_tree().children)

    def stop(self):
        self._window.destroy()
        self._display.sync()
        self._display.close()
