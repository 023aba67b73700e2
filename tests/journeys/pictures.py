"""What the bytes of pictures say."""

import random
import struct
import zlib


def png_size_of(data):
    """Width and height; the bytes must be a PNG."""
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        raise ValueError("no PNG")
    return struct.unpack(">II", data[16:24])


def png_size(path):
    with open(path, "rb") as file:
        return png_size_of(file.read())


def noise_png(width, height):
    """A picture that does not get smaller by compressing; the same each time."""
    row = random.Random(4711)
    rows = b"".join(b"\0" + row.randbytes(3 * width) for _ in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + _chunk(b"IHDR", header) + _chunk(b"IDAT", zlib.compress(rows, 1)) + _chunk(b"IEND", b"")


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
