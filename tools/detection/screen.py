"""The display as its server tells of it: windows, their places and their order."""

from dataclasses import dataclass

import Xlib.display
import Xlib.error
import Xlib.X
from Xlib.protocol import event

_ROWS_OF = 200_000  # bytes in one request
_EVERYWHERE = 0xFFFFFFFF


@dataclass
class Window:
    identifier: int
    title: str
    frame: tuple  # x, y, width, height with its decoration, without its shadow
    client: tuple  # without decoration
    is_client_decorated: bool


class Screen:
    def __init__(self, desktop):
        self.display = Xlib.display.Display(desktop.environment["DISPLAY"])
        self.root = self.display.screen().root
        self.width, self.height = desktop.width, desktop.height
        resources = f"Xft.dpi:\t{96 * desktop.scale}\nXft.antialias:\t1\nXft.hinting:\t1\nXft.rgba:\tnone\n"
        self.root.change_property(self._atom("RESOURCE_MANAGER"), self._atom("STRING"), 8, resources.encode())
        # Out of the picture's way: some capture tools draw it.
        self.root.warp_pointer(self.width - 1, self.height - 1)
        self.display.sync()
        self._wallpaper = None
        self._clock = self.root.create_window(-1, -1, 1, 1, 0, Xlib.X.CopyFromParent,
                                              event_mask=Xlib.X.PropertyChangeMask, override_redirect=True)

    def close(self):
        self.display.close()

    def _atom(self, name):
        return self.display.intern_atom(name)

    def _values(self, window, name):
        found = window.get_full_property(self._atom(name), Xlib.X.AnyPropertyType)
        return list(found.value) if found else []

    def is_managed(self):
        return bool(self._values(self.root, "_NET_SUPPORTING_WM_CHECK"))

    # Wallpaper

    def pixmap(self, pixels):
        """Of an array of rows of blue, green, red and a byte to spare."""
        pixmap = self.root.create_pixmap(self.width, self.height, self.display.screen().root_depth)
        context = pixmap.create_gc()
        rows = max(1, _ROWS_OF // (4 * self.width))
        for y in range(0, self.height, rows):
            part = pixels[y:y + rows]
            pixmap.put_image(context, 0, y, self.width, len(part), Xlib.X.ZPixmap, 24, 0, part.tobytes())
        context.free()
        self.display.sync()
        return pixmap

    def show_wallpaper(self, pixmap):
        """In a window of the desktop's kind: so file managers do it, and every compositor shows it."""
        if self._wallpaper is None:
            self._wallpaper = self.root.create_window(0, 0, self.width, self.height, 0, Xlib.X.CopyFromParent,
                                                      background_pixmap=pixmap)
            self._wallpaper.change_property(self._atom("_NET_WM_WINDOW_TYPE"), self._atom("ATOM"), 32,
                                            [self._atom("_NET_WM_WINDOW_TYPE_DESKTOP")])
            self._wallpaper.set_wm_name("wallpaper")
            self._wallpaper.set_wm_normal_hints(flags=1, x=0, y=0)
            self._wallpaper.map()
        else:
            self._wallpaper.change_attributes(background_pixmap=pixmap)
            self._wallpaper.clear_area(0, 0, 0, 0)
        self.display.sync()

    # Windows

    def _stacked(self):
        own = self._wallpaper.id if self._wallpaper else 0
        return [identifier for identifier in self._values(self.root, "_NET_CLIENT_LIST_STACKING") if identifier != own]

    def windows(self):
        """The lowest first, of the desktop on show."""
        result = []
        for identifier in self._stacked():
            try:
                window = self.display.create_resource_object("window", identifier)
                desktop = self._values(window, "_NET_WM_DESKTOP")
                if desktop and desktop[0] not in (0, _EVERYWHERE):
                    continue
                if window.get_attributes().map_state == Xlib.X.IsViewable:
                    result.append(self._described(window))
            except (Xlib.error.BadWindow, Xlib.error.BadDrawable):
                continue
        return result

    def _described(self, window):
        geometry = window.get_geometry()
        place = window.translate_coords(self.root, 0, 0)
        # The answer is the root's corner counted from the window's.
        x, y = -place.x, -place.y
        client = (x, y, geometry.width, geometry.height)
        name = self._values(window, "_NET_WM_NAME")
        title = bytes(name).decode(errors="replace") if name else str(window.get_wm_name())
        drawn = self._values(window, "_GTK_FRAME_EXTENTS")
        left, right, top, bottom = drawn or self._values(window, "_NET_FRAME_EXTENTS") or [0] * 4
        sign = -1 if drawn else 1
        frame = (x - sign * left, y - sign * top, client[2] + sign * (left + right), client[3] + sign * (top + bottom))
        return Window(window.id, title, frame, client, bool(drawn))

    def _tell(self, identifier, kind, values):
        window = self.display.create_resource_object("window", identifier)
        data = values + [0] * (5 - len(values))
        message = event.ClientMessage(window=window, client_type=self._atom(kind), data=(32, data))
        self.root.send_event(message, event_mask=Xlib.X.SubstructureRedirectMask | Xlib.X.SubstructureNotifyMask)

    def all_windows(self):
        return self._stacked()

    def title_of(self, identifier):
        return self._described(self.display.create_resource_object("window", identifier)).title

    def put_away(self, identifier):
        self._tell(identifier, "_NET_WM_DESKTOP", [1, 2])

    def take_out(self, identifier):
        self._tell(identifier, "_NET_WM_DESKTOP", [0, 2])
        # Some maximize what opens nearly as large as the display.
        remove, from_a_pager = 0, 2
        self._tell(identifier, "_NET_WM_STATE", [remove, self._atom("_NET_WM_STATE_MAXIMIZED_HORZ"),
                                                 self._atom("_NET_WM_STATE_MAXIMIZED_VERT"), from_a_pager])

    def place(self, identifier, x, y, width, height):
        """Its corner and its size, as far as it and the window manager agree."""
        north_west, everything, from_a_pager = 1, 0xF << 8, 2 << 12
        self._tell(identifier, "_NET_MOVERESIZE_WINDOW", [north_west | everything | from_a_pager, x, y, width, height])

    def _now(self):
        """The server's time, which some window managers insist on."""
        self._clock.change_property(self._atom("WM_NAME"), self._atom("STRING"), 8, b"clock")
        while True:
            happened = self.display.next_event()
            if happened.type == Xlib.X.PropertyNotify:
                return happened.time

    def activate(self, identifier):
        self._tell(identifier, "_NET_ACTIVE_WINDOW", [2, self._now()])
        self.display.sync()

    def sync(self):
        self.display.sync()
