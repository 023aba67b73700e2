"""How far a compositor's shadow really reaches, seen on a plain ground around a window that stands alone."""

import numpy

GROUND = 224
_VISIBLE = 1  # level


def plain_ground(width, height):
    return numpy.full((height, width, 4), GROUND, numpy.uint8)


def drawn_extents(picture, frame):
    """Of left, top, right and bottom: the pixels beside the middle of a side up to the first of the ground."""
    gray = numpy.asarray(picture.convert("L")).astype(int)
    x, y, width, height = frame
    row, column = gray[y + height // 2], gray[:, x + width // 2]
    outward = (row[:x][::-1], column[:y][::-1], row[x + width:], column[y + height:])
    extents = []
    for line in outward:
        plain = numpy.nonzero(abs(line - GROUND) < _VISIBLE)[0]
        extents.append(int(plain[0]) if len(plain) else len(line))
    return tuple(extents)
