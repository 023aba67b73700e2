#!/usr/bin/python3
"""The printed form of detect-windows, its options and what it says of bad input."""

import json
import os
import subprocess
import sys
import tempfile
import unittest

TOOL = os.environ["QUILLMERE_DETECT_WINDOWS"]
WIDTH, HEIGHT = 640, 480
FRAME = (100, 80, 400, 300)


def pgm(width, height, level, outline=None, head=None):
    rows = [bytearray([level]) * width for _ in range(height)]
    if outline:
        x, y, w, h = outline
        for column in range(x + 1, x + w):
            rows[y + 1][column] = rows[y + h - 1][column] = 20
        for row in range(y + 1, y + h):
            rows[row][x + 1] = rows[row][x + w - 1] = 20
    return (head or f"P5\n# a comment\n{width} {height}\n255\n").encode() + b"".join(rows)


class DetectWindows(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def file(self, name, content):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(content)
        return path

    def run_tool(self, *arguments):
        return subprocess.run([TOOL, *arguments], capture_output=True, text=True, timeout=60)

    def found(self, *arguments):
        done = self.run_tool(*arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        return json.loads(done.stdout)

    def window_picture(self):
        return self.file("window.pgm", pgm(WIDTH, HEIGHT, 120, FRAME))

    def test_prints_one_object_with_everything_in_its_place(self):
        result = self.found(self.window_picture())
        self.assertEqual(list(result), ["width", "height", "threshold", "candidates", "windows", "primary"])
        self.assertEqual((result["width"], result["height"], result["threshold"]), (WIDTH, HEIGHT, 16))
        self.assertGreaterEqual(result["candidates"], 1)
        (window,) = result["windows"]
        self.assertEqual(list(window), ["x", "y", "width", "height", "hasTitleBarButtons", "isFullyDrawn", "isCovered",
                                        "isEnclosed", "shadow", "sides"])
        self.assertEqual((window["x"], window["y"], window["width"], window["height"]), FRAME)
        self.assertTrue(window["isFullyDrawn"])
        self.assertEqual(window["shadow"], {"left": 0, "top": 0, "right": 0, "bottom": 0, "source": "none"})
        self.assertEqual(window["sides"], [{"kind": "clear", "extent": 0, "clipped": False}] * 4)
        self.assertEqual(result["primary"], 0)

    def test_a_plain_picture_has_no_window(self):
        result = self.found(self.file("plain.pgm", pgm(WIDTH, HEIGHT, 120)))
        self.assertEqual((result["threshold"], result["candidates"], result["windows"], result["primary"]),
                         (None, 0, [], None))

    def test_eight_pixels_are_too_few(self):
        self.assertEqual(self.found(self.file("small.pgm", pgm(8, 200, 120)))["windows"], [])

    def test_rectangles_may_be_given_or_left_out(self):
        picture = self.window_picture()
        given = self.file("rectangles", b"100 80 400 300\n0 0 10.5 10\n")
        self.assertEqual(self.found(picture, "--rectangles", given), self.found(picture, "--no-rectangles"))

    def test_times_are_medians_of_each_stage(self):
        times = self.found(self.window_picture(), "--time", "3")["milliseconds"]
        self.assertEqual(list(times), ["edges", "detect", "detectWithShadows"])
        self.assertTrue(all(time > 0 for time in times.values()))

    def test_what_is_wrong_is_said(self):
        picture = self.window_picture()
        for arguments, reason in [
            ([], "IMAGE"),
            ([picture, "--scale", "two"], "--scale cannot be two"),
            ([picture, "--time"], "--time needs a value"),
            ([picture, "--faster"], "what is --faster?"),
            ([picture, "--rectangles", "/nowhere"], "cannot read /nowhere"),
            ([picture, "--rectangles", self.file("odd", b"1 2 x")], "each line of"),
            (["/nowhere.png"], "couldn’t be opened"),
            ([self.file("text.png", b"no picture")], "couldn’t be opened"),
            ([self.file("short.pgm", pgm(WIDTH, HEIGHT, 1)[:1000])], "no 8-bit binary PGM"),
            ([self.file("deep.pgm", pgm(9, 9, 1, head="P5 9 9 65535\n"))], "no 8-bit binary PGM"),
        ]:
            done = self.run_tool(*arguments)
            self.assertEqual(done.returncode, 1, arguments)
            self.assertIn(reason, done.stderr)
            self.assertEqual(done.stdout, "")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]])
