"""The controls of a running program, as a screen reader finds them.

Asked over the bus itself rather than through a library, since a library's cache outlives the program that it described
when that is killed and started again.
"""

import re

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

_SHOWING, _VISIBLE, _ENABLED, _FOCUSED, _CHECKED, _SELECTED = 25, 30, 8, 12, 4, 23
_IS_DEFAULT = 39
_SCREEN, _LABELLED_BY = 0, 2
_DEPTH = 40


def connect(address):
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)


def call(connection, name, path, interface, method, arguments=None, timeout=5.0):
    reply = connection.call_sync(name, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                                 int(timeout * 1000), None)
    return reply.unpack() if reply is not None else ()


class Control:
    def __init__(self, connection, owner, path):
        self._connection, self._owner, self._path = connection, owner, path
        self.window = None  # the top-level window it stands in, once found
        self.name = self._property("Accessible", "Name")
        self.role = self._call("Accessible", "GetRoleName")[0]

    def _call(self, interface, method, arguments=None):
        return call(self._connection, self._owner, self._path, "org.a11y.atspi." + interface, method, arguments)

    def _property(self, interface, name):
        return call(self._connection, self._owner, self._path, "org.freedesktop.DBus.Properties", "Get",
                    GLib.Variant("(ss)", ("org.a11y.atspi." + interface, name)))[0]

    def children(self):
        for owner, path in self._call("Accessible", "GetChildren")[0]:
            try:
                yield Control(self._connection, owner, path)
            except GLib.Error:
                continue  # gone between the two questions

    def _has(self, state):
        words = self._call("Accessible", "GetState")[0]
        return bool(words[state // 32] >> (state % 32) & 1)

    @property
    def is_showing(self):
        return self._has(_SHOWING) and self._has(_VISIBLE)

    @property
    def is_enabled(self):
        return self._has(_ENABLED)

    @property
    def is_focused(self):
        return self._has(_FOCUSED)

    @property
    def is_checked(self):
        return self._has(_CHECKED)

    @property
    def is_selected(self):
        return self._has(_SELECTED)

    @property
    def is_default(self):
        return self._has(_IS_DEFAULT)

    @property
    def key(self):
        """What presses it from anywhere in its window."""
        return self._call("Action", "GetKeyBinding", GLib.Variant("(i)", (0,)))[0].rpartition(";")[2]

    @property
    def keys(self):
        """All that press it from anywhere in its window."""
        count = self._property("Action", "NActions")
        bindings = [self._call("Action", "GetKeyBinding", GLib.Variant("(i)", (index,)))[0] for index in range(count)]
        return [binding.rpartition(";")[2] for binding in bindings if binding]

    @property
    def actions(self):
        """The names, in the program's order, of what can be done with it."""
        count = self._property("Action", "NActions")
        return [self._call("Action", "GetName", GLib.Variant("(i)", (index,)))[0] for index in range(count)]

    def do(self, action):
        """As a screen reader does it: without pointer and keys."""
        self._call("Action", "DoAction", GLib.Variant("(i)", (self.actions.index(action),)))

    def write(self, text):
        """In the place of what stands in it."""
        return self._call("EditableText", "SetTextContents", GLib.Variant("(s)", (text,)))[0]

    @property
    def labels(self):
        """The names of the controls that say what this one is for."""
        relations = dict(self._call("Accessible", "GetRelationSet")[0])
        return [Control(self._connection, *target).name for target in relations.get(_LABELLED_BY, [])]

    @property
    def description(self):
        return self._property("Accessible", "Description")

    @property
    def text(self):
        return self._call("Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    @property
    def extents(self):
        """x, y, width and height, on the screen as the program believes it stands there."""
        return self._call("Component", "GetExtents", GLib.Variant("(u)", (_SCREEN,)))[0]

    @property
    def centre(self):
        """Counted from the corner of its window."""
        x, y, width, height = self.extents
        left, top = self.window.extents[:2] if self.window else (0, 0)
        return x + width // 2 - left, y + height // 2 - top

    def walk(self, depth=_DEPTH):
        yield self
        if depth:
            try:
                children = list(self.children())
            except GLib.Error:
                return
            for child in children:
                yield from child.walk(depth - 1)

    def __repr__(self):
        return f"{self.role} “{self.name}”"


class Focus:
    """Which controls a screen reader is told to have got the keyboard, from now on; also items of menus, which are in
    no window's tree."""

    def __init__(self, connection):
        self._connection, self._sources = connection, []
        for event in ("object:state-changed:focused", "focus:"):
            call(connection, "org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry",
                 "RegisterEvent", GLib.Variant("(s)", (event,)))
        connection.signal_subscribe(None, "org.a11y.atspi.Event.Object", "StateChanged", None, "focused",
                                    Gio.DBusSignalFlags.NONE, self._heard)

    def _heard(self, _connection, sender, path, _interface, _signal, arguments):
        if arguments.unpack()[1] == 1:
            self._sources.append((sender, path))

    @property
    def last(self):
        """The control that has it; None while nothing was told."""
        while GLib.MainContext.default().iteration(False):
            pass
        try:
            return Control(self._connection, *self._sources[-1]) if self._sources else None
        except GLib.Error:
            return None  # gone meanwhile

    @property
    def name(self):
        control = self.last
        return control.name if control else None


class Tree:
    """All windows of the process `pid`."""

    def __init__(self, session_bus, pid):
        address = call(session_bus, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0]
        self._connection = connect(address)
        self._pid = pid

    def focus(self):
        return Focus(self._connection)

    def _application(self):
        root = ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root")
        children = call(self._connection, *root, "org.a11y.atspi.Accessible", "GetChildren")[0]
        for owner, path in children:
            try:
                pid = call(self._connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "GetConnectionUnixProcessID", GLib.Variant("(s)", (owner,)))[0]
                if pid == self._pid:
                    return Control(self._connection, owner, path)
            except GLib.Error:
                continue
        return None

    def windows(self):
        application = self._application()
        return list(application.children()) if application else []

    def find_all(self, name=None, role=None, window=None, showing=True):
        """`name` is the whole name or a compiled pattern; `window` the title of the window it stands in."""
        found = []
        try:
            for top in self.windows():
                if window is not None and top.name != window:
                    continue
                for control in top.walk():
                    if name is not None and not _matches(name, control.name):
                        continue
                    if role is not None and control.role not in ((role,) if isinstance(role, str) else role):
                        continue
                    try:
                        if not showing or control.is_showing:
                            control.window = top
                            found.append(control)
                    except GLib.Error:
                        continue
        except GLib.Error:
            pass  # the program is starting or ending
        return found

    def find(self, name=None, role=None, window=None, showing=True):
        found = self.find_all(name, role, window, showing)
        return found[0] if found else None

    def describe(self):
        """What shows, indented as it is nested; * has the keyboard, + is selected."""
        lines = []

        def add(control, indent):
            if not control.is_showing:
                return
            marks = ("*" if control.is_focused else "") + ("+" if control.is_selected else "")
            lines.append("  " * indent + repr(control) + (f" {marks}" if marks else ""))
            for child in control.children():
                add(child, indent + 1)

        try:
            for top in self.windows():
                add(top, 0)
        except GLib.Error as error:
            lines.append(f"(no more: {error.message})")
        return "\n".join(lines)


def _matches(wanted, name):
    return bool(wanted.search(name)) if isinstance(wanted, re.Pattern) else wanted == name
