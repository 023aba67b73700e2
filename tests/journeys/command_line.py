#!/usr/bin/python3
"""What the program answers where it does not start: no display and no bus is needed for any of it."""

import os
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["QUILLMERE_PROGRAM"]


class CommandLine(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.TemporaryDirectory()
        self.addCleanup(self.home.cleanup)

    def run_program(self, *arguments, **environment):
        environment = {"HOME": self.home.name, "XDG_RUNTIME_DIR": self.home.name, "LANG": "C.UTF-8", **environment}
        environment.update({key: value for key, value in os.environ.items() if key.endswith("SAN_OPTIONS")})
        return subprocess.run([PROGRAM, *arguments], env=environment, stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=30)

    def assert_answers(self, done):
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def assert_refuses(self, done, status, line):
        self.assertEqual((done.returncode, done.stdout, done.stderr), (status, "", f"quillmere: {line}\n"))
        self.assertEqual(os.listdir(self.home.name), [], "nothing was begun")

    def test_help_goes_to_the_output(self):
        done = self.run_program("--help")
        self.assert_answers(done)
        self.assertTrue(done.stdout.startswith("Usage: quillmere [options]\n"), done.stdout)
        for option in "--autostart", "--show <window>", "--review", "--close-window":
            self.assertIn(option, done.stdout)

    def test_the_version_goes_to_the_output(self):
        done = self.run_program("--version")
        self.assert_answers(done)
        self.assertRegex(done.stdout, r"^Quillmere \d+\.\d+\.\d+\n$")

    def test_help_and_version_ask_for_no_display(self):
        for option in "--help", "--version":
            self.assert_answers(self.run_program(option, DISPLAY=":65535", QT_QPA_PLATFORM="nonsense"))

    def test_where_no_program_runs_there_is_no_window_to_close(self):
        self.assert_answers(self.run_program("--close-window", QT_QPA_PLATFORM="offscreen",
                                             DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent"))
        self.assertFalse(os.path.exists(os.path.join(self.home.name, ".local")), "nothing was begun")

    def test_an_unknown_option_is_named(self):
        self.assert_refuses(self.run_program("--inbox"), 2, "Unknown option 'inbox'. Try: quillmere --help")

    def test_an_unknown_window_is_named(self):
        self.assert_refuses(self.run_program("--show", "quit"), 1, "Unknown window 'quit'. Try: quillmere --help")

    def test_without_any_display(self):
        self.assert_refuses(self.run_program(), 1, "there is no display: neither DISPLAY nor WAYLAND_DISPLAY is set.")

    def test_the_x_server_is_not_there(self):
        self.assert_refuses(self.run_program(DISPLAY=":65535"), 1,
                            "the X display ':65535' that DISPLAY names cannot be used.")

    def test_the_wayland_compositor_is_not_there(self):
        self.assert_refuses(self.run_program(WAYLAND_DISPLAY="none"), 1,
                            "there is no X display, and Qt cannot use the Wayland display 'none'.")

    def test_a_platform_that_cannot_be(self):
        for platform in "wayland", "nonsense":
            self.assert_refuses(self.run_program(QT_QPA_PLATFORM=platform, WAYLAND_DISPLAY="none"), 1,
                                f"Qt cannot show windows on the platform '{platform}' that QT_QPA_PLATFORM names.")


if __name__ == "__main__":
    unittest.main()
