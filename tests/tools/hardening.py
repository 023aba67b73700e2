#!/usr/bin/python3
"""What ends the program at a fault in memory is in the finished files: read from them as the loader reads them."""

import os
import re
import subprocess
import sys
import unittest

FILES = sys.argv[1:]
PROGRAMS = [path for path in FILES if not path.endswith(".so")]
del sys.argv[1:]


def read(path, *options):
    return subprocess.run(["readelf", "-W", *options, path], check=True, capture_output=True, text=True,
                          env={**os.environ, "LC_ALL": "C"}).stdout


class Hardening(unittest.TestCase):
    def expect(self, paths, *expectations):
        self.assertTrue(paths)
        for path in paths:
            for options, pattern in expectations:
                with self.subTest(file=os.path.basename(path), pattern=pattern):
                    self.assertTrue(re.search(pattern, read(path, options), re.MULTILINE))

    def test_stands_at_an_address_that_nobody_knows(self):
        self.expect(FILES, ("-h", r"Type: +DYN"))
        self.expect(PROGRAMS, ("-d", r"\(FLAGS_1\).* PIE\b"))

    def test_every_address_is_bound_and_read_only_from_the_start(self):
        self.expect(FILES, ("-l", r"^ +GNU_RELRO "), ("-d", r"\(FLAGS_1\).* NOW\b"))

    def test_nothing_can_be_written_and_run(self):
        self.expect(FILES, ("-l", r"^ +GNU_STACK .* RW +0x\w+$"))
        for path in FILES:
            self.assertFalse(re.search(r"^ +LOAD .* RWE ", read(path, "-l"), re.MULTILINE), path)

    def test_the_stack_is_watched_and_copies_are_checked(self):
        self.expect(FILES, ("--dyn-syms", r" UND __stack_chk_fail@"))
        # The library copies nothing whose size the compiler knows.
        self.expect(PROGRAMS, ("--dyn-syms", r" UND __(?!stack_)\w+_chk@"))


if __name__ == "__main__":
    unittest.main()
