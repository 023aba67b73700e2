"""Wallpapers: a plain colour, a gradient, and one that looks like a photograph."""

import os
import zlib

import numpy

KINDS = ["plain", "gradient", "photo"]


def wallpaper(kind, width, height, seed):
    """Rows of blue, green, red and a byte to spare."""
    random = numpy.random.default_rng(seed)
    picture = {"plain": _plain, "gradient": _gradient, "photo": _photo}[kind](width, height, random)
    pixels = numpy.zeros((height, width, 4), numpy.uint8)
    # Half a level of noise keeps what is smooth from lying in bands.
    noise = random.random((height, width, 1), numpy.float32) if kind != "plain" else 0.5
    pixels[:, :, :3] = numpy.clip(picture[:, :, ::-1] + noise, 0, 255)
    return pixels


def _colour(random, darkest, lightest):
    return random.uniform(darkest, lightest, 3).astype(numpy.float32)


def _plain(width, height, random):
    return numpy.broadcast_to(numpy.round(_colour(random, 40, 200)), (height, width, 3))


def _gradient(width, height, random):
    x, y = numpy.meshgrid(numpy.linspace(0, 1, width, dtype=numpy.float32),
                          numpy.linspace(0, 1, height, dtype=numpy.float32))
    angle = random.uniform(0, numpy.pi / 2)
    along = ((x * numpy.cos(angle) + y * numpy.sin(angle)) / (numpy.cos(angle) + numpy.sin(angle)))[:, :, None]
    return _colour(random, 20, 130) * (1 - along) + _colour(random, 110, 245) * along


def _smooth_noise(random, width, height, cell):
    """Values about 0, alike within a cell."""
    columns, rows = width // cell + 2, height // cell + 2
    grid = random.normal(0, 1, (rows, columns)).astype(numpy.float32)

    def spread(count, along):
        at = numpy.arange(count, dtype=numpy.float32) / cell
        low = at.astype(int)
        part = at - low
        part = part * part * (3 - 2 * part)
        part = part[:, None] if along == 0 else part[None, :]
        return numpy.take(grid, low, along) * (1 - part) + numpy.take(grid, low + 1, along) * part

    grid = spread(height, 0)
    return spread(width, 1)


def _photo(width, height, random):
    """Hills before a sky with clouds, the nearer the darker and the rougher, with a sensor's grain."""
    unit = height // 36
    y = numpy.linspace(0, 1, height, dtype=numpy.float32)[:, None, None]
    sky = numpy.array([70, 120, 190]) * (1 - y) + numpy.array([235, 215, 190]) * y
    clouds = sum(_smooth_noise(random, width, height, unit * 2 ** k) * 2 ** (k - 4) for k in range(5))
    picture = (sky + 14 * numpy.maximum(clouds, 0)[:, :, None]).astype(numpy.float32)
    rows = numpy.arange(height)[:, None]
    for layer in range(4):
        line = sum(_smooth_noise(random, width, 2, unit * 2 ** k)[0] * 2 ** k for k in range(5))
        crest = height * (0.45 + 0.13 * layer) + line * unit * 0.06
        colour = numpy.array([120, 135, 140], numpy.float32) * (1 - layer / 4) + numpy.array([22, 40, 20]) * (layer / 4)
        texture = sum(_smooth_noise(random, width, height, max(2, unit // 2 ** k)) * (2 + layer * 2) / (k + 1)
                      for k in range(1, 4))
        part = numpy.clip(rows - crest[None, :], 0, 1)[:, :, None]
        picture = picture * (1 - part) + (colour + texture[:, :, None]) * part
    return picture + random.normal(0, 1.5, (height, width, 1)).astype(numpy.float32)


def stored(path, kind, width, height, seed):
    """As above, drawn once for each path: the big ones take seconds."""
    if not os.path.exists(path):
        pixels = wallpaper(kind, width, height, zlib.crc32(seed.encode()))
        pixels.tofile(path)
        return pixels
    return numpy.fromfile(path, numpy.uint8).reshape(height, width, 4)
