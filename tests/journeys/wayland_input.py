"""Keyboard and pointer of a Wayland session, each by what its compositor offers for it."""

import ctypes
import os
import struct
import subprocess
import time

from gi.repository import GLib

import accessibility
from harness import wait_until
from wayland_wire import Wire, fixed, string

_KEYS = dict(zip("1234567890-=", range(2, 14))) | dict(zip("qwertyuiop[]", range(16, 28))) | \
    dict(zip("asdfghjkl;'`", range(30, 42))) | dict(zip("\\zxcvbnm,./", range(43, 54))) | {" ": 57, "\n": 28}
_NAMED = {"Return": 28, "Escape": 1, "Tab": 15, "Delete": 111, "space": 57, "Print": 99, "F11": 87, "Down": 108}
_MODIFIERS = {"ctrl": (29, 4), "shift": (42, 1), "alt": (56, 8)}  # code, xkb mask
_LEFT_BUTTON = 272

# How long a key is down, in seconds, and how long until the next.
_TOUCH = 0.01


class Input:
    """Codes are those of linux/input-event-codes.h; places count from the corner of the session's one screen."""

    def type(self, text):
        for letter in text:
            modifiers = ["shift"] if letter.isupper() else []
            self._stroke(_KEYS[letter.lower()], modifiers)
            time.sleep(_TOUCH)

    def key(self, combination):
        *modifiers, name = combination.split("+")
        self._stroke(_NAMED.get(name) or _KEYS[name], modifiers)

    def hold(self, name):
        self._set_key(_NAMED[name], True)

    def let_go(self, name):
        self._set_key(_NAMED[name], False)

    def click(self, place):
        self.move(place)
        time.sleep(0.05)  # until what lies there knows of the pointer
        self._set_button(True)
        time.sleep(0.02)
        self._set_button(False)

    def _stroke(self, code, modifiers):
        for name in modifiers:
            self._set_key(_MODIFIERS[name][0], True)
        self._set_modifiers(sum(_MODIFIERS[name][1] for name in modifiers))
        self._set_key(code, True)
        time.sleep(_TOUCH)
        self._set_key(code, False)
        for name in modifiers:
            self._set_key(_MODIFIERS[name][0], False)
        self._set_modifiers(0)

    def _set_modifiers(self, mask):
        """Most compositors know by themselves."""


class SwayInput(Input):
    """The virtual keyboard and pointer of wlroots."""

    def __init__(self, desktop):
        self._size = desktop.size
        self._wire = Wire(desktop.wayland_socket)
        seat, manager = self._wire.bind("wl_seat", 1), self._wire.bind("zwp_virtual_keyboard_manager_v1", 1)
        self._keyboard = self._wire.new_id()
        self._wire.send(manager, 0, struct.pack("=II", seat, self._keyboard))
        pointers = self._wire.bind("zwlr_virtual_pointer_manager_v1", 1)
        self._pointer = self._wire.new_id()
        self._wire.send(pointers, 0, struct.pack("=II", seat, self._pointer))
        keymap = subprocess.run(["xkbcli", "compile-keymap", "--layout", "us"], capture_output=True, check=True).stdout
        descriptor = os.memfd_create("keymap")
        os.write(descriptor, keymap + b"\0")
        self._wire.send(self._keyboard, 0, struct.pack("=II", 1, len(keymap) + 1), descriptor)
        os.close(descriptor)
        self._wire.round_trip()

    def _set_key(self, code, is_down):
        self._wire.send(self._keyboard, 1, struct.pack("=III", _now(), code, is_down))
        self._wire.round_trip()

    def _set_modifiers(self, mask):
        self._wire.send(self._keyboard, 2, struct.pack("=IIII", mask, 0, 0, 0))

    def move(self, place):
        # The X server takes the step with which the pointer comes onto a window for one to be added to its place; the
        # next one tells it the place itself.
        for x in (place[0] - 1, place[0]):
            self._wire.send(self._pointer, 1, struct.pack("=IIIII", _now(), x, place[1], *self._size))
            self._show()

    def _set_button(self, is_down):
        self._wire.send(self._pointer, 2, struct.pack("=III", _now(), _LEFT_BUTTON, is_down))
        self._show()

    def _show(self):
        self._wire.send(self._pointer, 4)
        self._wire.round_trip()


class KWinInput(Input):
    """KWin's protocol for remote control."""

    def __init__(self, desktop):
        self._wire = Wire(desktop.wayland_socket)
        self._device = self._wire.bind("org_kde_kwin_fake_input", 4)
        self._wire.send(self._device, 0, string("journey") + string("to type and click"))
        self._wire.round_trip()

    def _set_key(self, code, is_down):
        self._wire.send(self._device, 10, struct.pack("=II", code, is_down))
        self._wire.round_trip()

    def move(self, place):
        self._wire.send(self._device, 9, fixed(place[0]) + fixed(place[1]))
        self._wire.round_trip()

    def _set_button(self, is_down):
        self._wire.send(self._device, 2, struct.pack("=II", _LEFT_BUTTON, is_down))
        self._wire.round_trip()


class MutterInput(Input):
    """GNOME's remote control, over the session bus."""

    _NAME = "org.gnome.Mutter.RemoteDesktop"

    def __init__(self, desktop):
        self._bus = desktop.bus
        # mutter takes its names one after the other, some of them after its screens and sockets are there.
        wait_until("mutter can be controlled", lambda: accessibility.call(
            self._bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
            GLib.Variant("(s)", (self._NAME,)))[0])
        self._session = accessibility.call(self._bus, self._NAME, "/org/gnome/Mutter/RemoteDesktop", self._NAME,
                                           "CreateSession", None)[0]
        self._call("Start", None)

    def _call(self, method, arguments):
        accessibility.call(self._bus, self._NAME, self._session, self._NAME + ".Session", method, arguments)

    def _set_key(self, code, is_down):
        self._call("NotifyKeyboardKeycode", GLib.Variant("(ub)", (code, is_down)))

    def move(self, place):
        # Without a picture of the screen there are no places, but the corner is always reached.
        # The last step is one within the window, as above.
        for x, y in ((-10000, -10000), (place[0] - 1, place[1]), (1, 0)):
            self._call("NotifyPointerMotionRelative", GLib.Variant("(dd)", (x, y)))

    def _set_button(self, is_down):
        self._call("NotifyPointerButton", GLib.Variant("(ib)", (_LEFT_BUTTON, is_down)))


def _now():
    return int(time.monotonic() * 1000) & 0xFFFFFFFF
