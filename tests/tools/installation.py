#!/usr/bin/python3
"""Where an installation puts its files, that they name each other's places, and that nothing of it stays behind."""

import configparser
import os
import struct
import subprocess
import tempfile
import unittest

import help_pages

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD = os.environ["QUILLMERE_BUILD"]
MANIFEST = os.path.join(BUILD, "install_manifest.txt")
PREFIX = "/opt/quillmere"
ICONS = "share/icons/hicolor"
ENTRY = "share/applications/com.quillmere.app.desktop"
SERVICE = "share/dbus-1/services/com.quillmere.app.service"
SIZES = (16, 22, 24, 32, 48, 64, 128, 256)
HELP = "share/quillmere/help"
FILES = {"bin/quillmere", "libexec/quillmere/reader", ENTRY, SERVICE, f"{ICONS}/scalable/apps/com.quillmere.app.svg",
         f"{ICONS}/symbolic/apps/com.quillmere.app-symbolic.svg",
         *(f"{ICONS}/{size}x{size}/apps/com.quillmere.app.png" for size in SIZES),
         *(f"{HELP}/{page.name}" for page in help_pages.PAGES), f"{HELP}/{help_pages.STYLE.name}",
         *(f"{HELP}/pictures/{picture}" for picture in help_pages.shown_pictures())}


def keys(path, group):
    parser = configparser.RawConfigParser()
    parser.optionxform = str
    parser.read(path, encoding="utf-8")
    return dict(parser[group])


class Installation(unittest.TestCase):
    def setUp(self):
        self.keep_manifest()
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.destination = folder.name
        self.install(PREFIX)

    def keep_manifest(self):
        """What this build folder was really installed as can still be removed afterwards."""
        content = None
        if os.path.exists(MANIFEST):
            with open(MANIFEST, encoding="utf-8") as file:
                content = file.read()

        def restore():
            if content is not None:
                with open(MANIFEST, "w", encoding="utf-8") as file:
                    file.write(content)
            elif os.path.exists(MANIFEST):
                os.remove(MANIFEST)

        self.addCleanup(restore)

    def run_tool(self, *command):
        return subprocess.run(command, env={**os.environ, "DESTDIR": self.destination}, stdin=subprocess.DEVNULL,
                              capture_output=True, text=True, timeout=60)

    def install(self, prefix):
        done = self.run_tool(os.environ["QUILLMERE_CMAKE"], "--install", BUILD, "--prefix", prefix)
        self.assertEqual(done.returncode, 0, done.stderr)

    def uninstall(self):
        return self.run_tool(os.path.join(ROOT, "tools", "uninstall"), BUILD)

    def place(self, name, prefix=PREFIX):
        return os.path.join(self.destination + prefix, name)

    def files(self):
        base = self.destination + PREFIX
        return {os.path.relpath(os.path.join(folder, name), base) for folder, _, names in os.walk(base)
                for name in names}

    def test_every_file_has_its_place(self):
        self.assertEqual(self.files(), FILES)

    def test_the_program_runs_from_there(self):
        done = self.run_tool(self.place("bin/quillmere"), "--version")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertTrue(done.stdout.startswith("Quillmere "))

    def test_what_reads_pictures_is_there_and_for_the_program_alone(self):
        done = self.run_tool(self.place("libexec/quillmere/reader"))
        self.assertEqual((done.returncode, done.stdout), (2, ""))
        self.assertEqual(done.stderr, "This program is started by quillmere alone.\n")

    def test_the_launcher_entry_is_valid_and_names_the_program_and_its_icon(self):
        done = self.run_tool("desktop-file-validate", self.place(ENTRY))
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        entry = keys(self.place(ENTRY), "Desktop Entry")
        self.assertEqual(entry["Exec"], f"{PREFIX}/bin/quillmere")
        self.assertIn(f"{ICONS}/scalable/apps/{entry['Icon']}.svg", self.files())

    def test_the_actions_of_the_launcher_entry_are_options_of_the_program(self):
        windows = [(window, ["--show", window]) for window in ("inbox", "settings", "about", "welcome")]
        for action, options in [*windows, ("review", ["--review"]), ("close-window", ["--close-window"])]:
            command = keys(self.place(ENTRY), "Desktop Action " + action)["Exec"].split()
            self.assertEqual(command, [f"{PREFIX}/bin/quillmere", *options])
            self.assertEqual(self.run_tool(self.place("bin/quillmere"), *options, "--help").returncode, 0)

    def test_the_bus_starts_the_program_that_is_installed(self):
        service = keys(self.place(SERVICE), "D-BUS Service")
        self.assertEqual(service["Name"] + ".service", os.path.basename(SERVICE))
        self.assertEqual(service["Exec"], f"{PREFIX}/bin/quillmere")
        self.assertTrue(os.access(self.destination + service["Exec"], os.X_OK))

    def test_another_place_is_named_in_all_files(self):
        self.install("/usr/local")
        for name, group in ((SERVICE, "D-BUS Service"), (ENTRY, "Desktop Entry")):
            self.assertEqual(keys(self.place(name, "/usr/local"), group)["Exec"], "/usr/local/bin/quillmere")

    def test_the_icons_have_the_sizes_of_their_folders(self):
        for size in SIZES:
            with open(self.place(f"{ICONS}/{size}x{size}/apps/com.quillmere.app.png"), "rb") as file:
                head = file.read(24)
            self.assertEqual(struct.unpack(">8s4x4sII", head), (b"\x89PNG\r\n\x1a\n", b"IHDR", size, size))

    def test_the_pages_of_the_help_are_whole(self):
        for page in help_pages.PAGES:
            for target in help_pages.Page(page).files:
                self.assertTrue(os.path.isfile(self.place(f"{HELP}/{target}")), f"{page.name} needs {target}")

    def test_nothing_stays_behind(self):
        done = self.uninstall()
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(self.files(), set())
        self.assertEqual(sorted(os.listdir(self.place(""))), ["bin", "libexec", "share"])
        self.assertEqual(os.listdir(self.place("libexec")), [])
        self.assertEqual(os.listdir(self.place("share")), [])

    def test_what_others_put_there_stays(self):
        other = self.place("share/applications/other.desktop")
        with open(other, "w", encoding="utf-8"):
            pass
        self.uninstall()
        self.assertEqual(self.files(), {"share/applications/other.desktop"})

    def test_without_an_installation_a_line_says_so(self):
        self.uninstall()
        done = self.uninstall()
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertEqual(done.stderr, f"Nothing was installed from here: there is no {MANIFEST}.\n")


if __name__ == "__main__":
    unittest.main()
