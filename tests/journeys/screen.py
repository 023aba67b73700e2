"""What stands on the screen, pixel by pixel."""

import collections

from Xlib import X
from Xlib.display import Display


class Screen:
    def __init__(self, desktop):
        self._desktop = desktop
        self._display = Display(desktop.environment["DISPLAY"])

    def colours(self, title):
        """How many pixels have each colour (red, green, blue), where the window of this title is on the screen."""
        window = self._display.create_resource_object("window", int(self._desktop.window_ids(title)[0]))
        size, root = window.get_geometry(), self._display.screen()
        corner = window.translate_coords(root.root, 0, 0)  # the way back: of the root's corner as the window counts
        left, top = max(0, -corner.x), max(0, -corner.y)
        width = min(size.width - corner.x, root.width_in_pixels) - left
        height = min(size.height - corner.y, root.height_in_pixels) - top
        pixels = root.root.get_image(left, top, width, height, X.ZPixmap, 0xFFFFFFFF).data
        counted = collections.Counter(pixels[at:at + 3] for at in range(0, len(pixels), 4))
        return collections.Counter({(raw[2], raw[1], raw[0]): count for raw, count in counted.items()})

    def ground(self, title):
        """The colour that most of the window has."""
        return self.colours(title).most_common(1)[0][0]

    def share(self, title, accepts):
        """Of the window's pixels those whose colour is accepted, from 0 to 1."""
        colours = self.colours(title)
        return sum(count for colour, count in colours.items() if accepts(colour)) / colours.total()


def is_light(colour):
    return min(colour) > 200


def is_dark(colour):
    return max(colour) < 70
