"""A drag of the popup's preview, or of another control, with the pointer, step by step."""

import Xlib.display
import Xlib.ext.xfixes

from waiting import wait_until


class Cursor:
    """What the pointer looks like: during a drag it tells whether what lies below would take it."""

    def __init__(self, desktop):
        self._display = Xlib.display.Display(desktop.environment["DISPLAY"])
        self._display.xfixes_query_version()
        self._root = self._display.screen().root

    @property
    def picture(self):
        image = self._display.xfixes_get_cursor_image(self._root)
        return image.width, image.height, tuple(image.cursor_image)


class Drag:
    """From its making the button is down on the preview and the picture on its way; `drop` or `release` lets it go."""

    def __init__(self, desktop, control=None):
        self._desktop, self._cursor = desktop, Cursor(desktop)
        control = control or wait_until("the preview", lambda: desktop.popup.find(role="graphic"))
        self._x, self._y = desktop.settled_place_of(control)
        desktop.move_pointer((self._x, self._y))
        self._usual = self._cursor.picture
        desktop.run("xdotool", "mousedown", "1", check=True)
        # By steps: a single jump of the pointer is no movement that programs see. On to and fro as a hand does, since a
        # busy program sees several steps as one.
        for step in range(1, 4):
            desktop.move_pointer((self._x - 8 * step, self._y))
        steps = [(self._x - 32, self._y), (self._x - 24, self._y)]

        def is_dragged():
            desktop.move_pointer(steps[0])
            steps.reverse()
            return self._cursor.picture != self._usual

        wait_until("the picture is dragged", is_dragged)
        # The card itself takes nothing.
        self._refused = self._settled_picture()

    def _settled_picture(self):
        """Of the cursor, when the program has done what the last movement asks of it."""
        self._desktop.action("none", wait=True)
        return self._cursor.picture

    def move_to(self, place, is_there=lambda: True):
        """Until what stands there would take it, and says so itself if it can; one that has not seen the drag come
        hears of it by a movement."""
        places = [(place[0] - 6, place[1]), place]

        def is_accepted():
            self._desktop.move_pointer(places[0])
            places.reverse()
            return self._settled_picture() not in (self._usual, self._refused) and is_there()

        wait_until("the receiver would take it", is_accepted)

    def release(self):
        self._desktop.run("xdotool", "mouseup", "1", check=True)

    def drop(self, place, is_there=lambda: True):
        self.move_to(place, is_there)
        self.release()
