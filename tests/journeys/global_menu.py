#!/usr/bin/python3
"""On a desktop that shows the menus of windows in a bar of its own, the Inbox gives its menus to that and shows none
itself; an item that is chosen there is done."""

import threading

from gi.repository import Gio, GLib

import accessibility
from harness import expect, run_journey, wait_until
from inbox import TITLE, TRASH_ONE, file_names, open_inbox, pending, saved, wait_for_selection
from steps import select_row
from waiting import JourneyFailed

_REGISTRAR = "com.canonical.AppMenu.Registrar"
_REGISTRAR_PATH = "/com/canonical/AppMenu/Registrar"
_BUS = ("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus")
_MENU = "com.canonical.dbusmenu"
_INTERFACE = """<node><interface name="com.canonical.AppMenu.Registrar">
  <method name="RegisterWindow"><arg type="u" direction="in"/><arg type="o" direction="in"/></method>
  <method name="UnregisterWindow"><arg type="u" direction="in"/></method>
</interface></node>"""


class Registrar:
    """The desktop's menu bar: it is told which window has its menus where on the bus. It answers from a thread of its
    own, since whoever registers waits for that."""

    def __init__(self, desktop):
        self._bus, self._menus = desktop.bus, {}
        self._address = desktop.environment["DBUS_SESSION_BUS_ADDRESS"]
        threading.Thread(target=self._serve, daemon=True).start()
        wait_until("the registrar is on the bus", self._is_there)

    def _serve(self):
        context = GLib.MainContext.new()
        context.push_thread_default()
        connection = accessibility.connect(self._address)
        interface = Gio.DBusNodeInfo.new_for_xml(_INTERFACE).interfaces[0]
        connection.register_object(_REGISTRAR_PATH, interface, self._called, None, None)
        accessibility.call(connection, *_BUS, "RequestName", GLib.Variant("(su)", (_REGISTRAR, 0)))
        GLib.MainLoop.new(context, False).run()

    def _is_there(self):
        return accessibility.call(self._bus, *_BUS, "NameHasOwner", GLib.Variant("(s)", (_REGISTRAR,)))[0]

    def _called(self, _connection, sender, _path, _interface, method, arguments, invocation):
        window, *menu = arguments.unpack()
        if method == "RegisterWindow":
            self._menus[window] = Menu(self._bus, sender, menu[0])
        else:
            self._menus.pop(window, None)
        invocation.return_value(None)

    def menu_of(self, window):
        return self._menus.get(window)


class Menu:
    def __init__(self, bus, owner, path):
        self._bus, self._owner, self._path = bus, owner, path

    def _call(self, method, arguments):
        return accessibility.call(self._bus, self._owner, self._path, _MENU, method, arguments)

    def items(self, parent=0):
        """Its visible items, separators left out: by name their number, properties and number of items below them."""
        self._call("AboutToShow", GLib.Variant("(i)", (parent,)))
        _, (_, _, children) = self._call("GetLayout", GLib.Variant("(iias)", (parent, -1, [])))
        return {properties["label"].replace("_", ""): (number, properties, len(below))
                for number, properties, below in children
                if properties.get("visible", True) and "label" in properties}

    def find(self, *names):
        number = 0
        for name in names:
            number, properties, _ = self.items(number)[name]
        return number, properties

    def is_enabled(self, *names):
        return self.find(*names)[1].get("enabled", True)

    def choose(self, *names):
        number, _ = self.find(*names)
        self._call("Event", GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("i", 0), 0)))


MENUS = {
    "File": ["About Quillmere", "Check for Updates…", "Choose Screenshot Folder…", "Settings", "Close Window",
             "Quit Quillmere"],
    "Edit": ["Undo", "Redo", "Cut", "Copy", "Paste", "Select All", "Find"],
    "Screenshot": ["Review Screenshot", "Keep", "Mark Temporary", "Rename", "Use Suggested Name", "Move and Rename…",
                   "Quick Look", "Show in File Manager", "Download", "Show Original", "Copy Screenshot", "Share",
                   "Extract Text", "Extract Window…", "Crop…", "Analyze", "Remove from Inbox", "Move to Trash"],
    "Help": ["Welcome to Quillmere", "Quillmere Help", "Quillmere Support Website", "Contact Support…",
             "Keyboard Shortcuts"],
}
# With one pending screenshot selected, nothing suggested for it and no model.
OF_ONE = {"Keep", "Mark Temporary", "Rename", "Move and Rename…", "Quick Look", "Show in File Manager",
          "Copy Screenshot", "Share", "Extract Text", "Extract Window…", "Crop…", "Remove from Inbox", "Move to Trash"}


def enabled(menu):
    items = menu.items(menu.find("Screenshot")[0])
    return {name for name, (_, properties, _) in items.items() if properties.get("enabled", True)} - {"Review Screenshot"}


def wait_for_enabled(menu, names, when):
    try:
        wait_until(f"{when}, so much can be done", lambda: enabled(menu) == names)
    except JourneyFailed as failure:
        raise JourneyFailed(f"{failure}; other than it should be: {enabled(menu) ^ names}") from None


def journey(desktop):
    registrar = Registrar(desktop)
    desktop.choose_folder()
    desktop.launch("--autostart")
    kept = saved(desktop, "Receipt.png")
    shot = pending(desktop)
    open_inbox(desktop)
    window = int(desktop.window_ids(TITLE)[0])
    menu = wait_until("the Inbox gives its menus away", lambda: registrar.menu_of(window))
    expect("it has no bar itself", not desktop.find(None, "menu bar", TITLE))
    expect(f"the menus: {list(menu.items())}", list(menu.items()) == list(MENUS))
    for title, names in MENUS.items():
        there = list(menu.items(menu.find(title)[0]))
        expect(f"the items of {title}: {there}", there == names)
    shortcut = menu.find("Screenshot", "Move to Trash")[1].get("shortcut")
    expect(f"its key stands beside the item: {shortcut}", shortcut and shortcut[0] == ["Control", "Backspace"])

    wait_for_enabled(menu, set(), "with nothing selected")
    select_row(desktop, shot)
    wait_for_enabled(menu, OF_ONE, "with a pending one selected")
    menu.choose("Screenshot", "Mark Temporary", "15 Minutes")
    wait_until("it is temporary", lambda: desktop.state_of(shot) == "temporary")
    wait_for_enabled(menu, OF_ONE - {"Mark Temporary"}, "with a temporary one selected")
    menu.choose("Screenshot", "Keep")
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent")
    wait_for_enabled(menu, OF_ONE - {"Mark Temporary", "Keep"}, "with a saved one selected")

    menu.choose("Screenshot", "Move to Trash")
    wait_until("it asks", lambda: desktop.active_title() == TRASH_ONE)
    wait_for_enabled(menu, set(), "under the question")
    expect("Find is off as well", not menu.is_enabled("Edit", "Find"))
    desktop.key("Return")
    wait_until("the question is gone", lambda: desktop.active_title() == TITLE)
    expect("it is still kept", desktop.state_of(shot) == "permanent")

    menu.choose("Edit", "Find")
    wait_until("the search field has the keyboard", lambda: desktop.find("Search", "text", TITLE).is_focused)
    desktop.key("Escape")
    wait_until("the list has the keyboard", lambda: not desktop.find("Search", "text", TITLE).is_focused)
    menu.choose("Edit", "Select All")
    wait_for_selection(desktop, file_names([shot, kept]))
    # Its keys work as they do without such a bar.
    desktop.key("ctrl+comma")
    wait_until("the settings have the keyboard", lambda: desktop.active_title() == "Settings")
    desktop.key("Escape")
    open_inbox(desktop)
    menu.choose("File", "Close Window")
    wait_until("the Inbox is closed", lambda: not desktop.window_ids(TITLE))
    wait_until("its menus are gone", lambda: not registrar.menu_of(window))


if __name__ == "__main__":
    run_journey("global-menu", journey)
