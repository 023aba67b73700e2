"""The windows of a journey's desktop as the display server has them."""

import re

import Xlib.display
import Xlib.ext.shape
import Xlib.X
import Xlib.Xatom

from harness import POPUP_MARGIN, POPUP_TITLE
from waiting import wait_until


def open_terminal(desktop, title, size, place, ground="white"):
    """A window of another application, which is where the keyboard goes on a click."""
    desktop.start(["xterm", "-fa", "monospace", "-fs", "9", "-bg", ground, "-geometry", f"{size}+{place[0]}+{place[1]}",
                   "-T", title, "-e", "cat"])
    return wait_until(f"the terminal {title} opened", lambda: desktop.window_ids(title))[0]


class Windows:
    def __init__(self, desktop):
        self._desktop = desktop
        self._display = Xlib.display.Display(desktop.environment["DISPLAY"])
        self.root = self._display.screen().root

    def find(self, title):
        """The mapped window of this title, as a number."""
        return int(wait_until(f"a window “{title}”", lambda: self._desktop.window_ids(title))[0])

    def states(self, title):
        described = self._desktop.run("xprop", "-id", str(self.find(title)), "_NET_WM_STATE")
        return set(re.findall(r"_NET_WM_STATE_(\w+)", described))

    def frame(self, title):
        """Its place on the screen in pixels, without what a window manager puts around it: left, top, right, bottom."""
        window = self._display.create_resource_object("window", self.find(title))
        geometry, corner = window.get_geometry(), window.translate_coords(self.root, 0, 0)
        return -corner.x, -corner.y, geometry.width - corner.x - 1, geometry.height - corner.y - 1

    def outer_frame(self, title):
        """The same with what the window manager draws around it: x, y, width and height."""
        left, top, right, bottom = self.frame(title)
        described = self._desktop.run("xprop", "-id", str(self.find(title)), "_NET_FRAME_EXTENTS")
        around = [int(number) for number in described.split("=")[1].split(",")]
        left, top = left - around[0], top - around[2]
        return left, top, right + 1 + around[1] - left, bottom + 1 + around[3] - top

    def card(self):
        """The popup's, from its first to its last pixel."""
        left, top, right, bottom = self.frame(POPUP_TITLE)
        margin = round(POPUP_MARGIN * self._desktop.scale)
        return left + margin, top + margin, right - margin, bottom - margin

    def is_shaped(self, title):
        """Whether it is cut to an outline of its own."""
        window = self._display.create_resource_object("window", self.find(title))
        return bool(window.shape_query_extents().bounding_shaped)

    def at(self, place):
        """The window of an application that a click there reaches; None for the desktop itself."""
        self._desktop.move_pointer(place)
        window = self.root.query_pointer().child
        return window.id if window else None

    def popup_is_at(self, place):
        return self.at(place) == self._outermost(self.find(POPUP_TITLE))

    def _outermost(self, number):
        """Window managers put windows into frames of their own."""
        window = self._display.create_resource_object("window", number)
        while (parent := window.query_tree().parent) != self.root:
            window = parent
        return window.id

    def is_on_top(self, title):
        """Whether it is seen and clicked where it stands: the pointer finds it, and its colour is there."""
        if not self._desktop.window_ids(title):
            return False
        left, top, right, _ = self.card()
        # On the card's upper padding, where there is nothing but its ground.
        place = ((left + right) // 2, top + round(4 * self._desktop.scale))
        return self.popup_is_at(place) and min(self.pixel(place)) > 230

    def pixel(self, place):
        """What the person sees there: red, green and blue."""
        image = self.root.get_image(place[0], place[1], 1, 1, Xlib.X.ZPixmap, 0xFFFFFFFF)
        return tuple(image.data[2::-1])

    def activate(self, title):
        # As a task bar does.
        self._desktop.run("wmctrl", "-i", "-a", str(self.find_hidden(title)), check=True)
        wait_until(f"“{title}” has the keyboard", lambda: self._desktop.active_title() == title)

    def find_hidden(self, title):
        """Also one that is put away."""
        # The search ends early when a window closes under it.
        return int(wait_until(f"a window “{title}”", lambda: self._desktop.run(
            "xdotool", "search", "--name", f"^{re.escape(title)}$").split())[-1])

    def click(self, title):
        left, top, right, bottom = self.frame(title)
        self._desktop.run("xdotool", "mousemove", str((left + right) // 2), str((top + bottom) // 2), "click", "1",
                          check=True)

    def set_full_screen(self, title, wanted):
        self._desktop.run("wmctrl", "-i", "-r", str(self.find(title)), "-b",
                          ("add" if wanted else "remove") + ",fullscreen", check=True)
        wait_until(f"“{title}” " + ("fills" if wanted else "no longer fills") + " the screen",
                   lambda: ("FULLSCREEN" in self.states(title)) == wanted)

    def minimize(self, title):
        number = self.find(title)
        self._desktop.run("xdotool", "windowminimize", str(number), check=True)
        wait_until(f"“{title}” is put away", lambda: "HIDDEN" in self.states_of(number))

    def states_of(self, number):
        described = self._desktop.run("xprop", "-id", str(number), "_NET_WM_STATE")
        return set(re.findall(r"_NET_WM_STATE_(\w+)", described))

    def close(self, title):
        self._desktop.run("wmctrl", "-i", "-c", str(self.find(title)), check=True)
        wait_until(f"“{title}” is closed", lambda: not self._desktop.window_ids(title))


class Dock:
    """A panel of the desktop at the edge of a screen, which reserves `bottom` or `right` pixels of the display."""

    def __init__(self, desktop, x, y, width, height, bottom=0, right=0):
        self._display = Xlib.display.Display(desktop.environment["DISPLAY"])
        screen = self._display.screen()
        self._window = screen.root.create_window(x, y, width, height, 0, screen.root_depth,
                                                 background_pixel=screen.black_pixel)
        self._set("_NET_WM_WINDOW_TYPE", Xlib.Xatom.ATOM, [self._display.get_atom("_NET_WM_WINDOW_TYPE_DOCK")])
        strut = [0, right, 0, bottom, 0, 0, y if right else 0, y + height - 1 if right else 0, 0, 0,
                 x if bottom else 0, x + width - 1 if bottom else 0]
        self._set("_NET_WM_STRUT_PARTIAL", Xlib.Xatom.CARDINAL, strut)

    def _set(self, name, kind, values):
        self._window.change_property(self._display.get_atom(name), kind, 32, values)

    def __enter__(self):
        self._window.map()
        self._display.sync()
        return self

    def __exit__(self, *_):
        self._display.close()
