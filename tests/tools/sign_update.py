#!/usr/bin/python3
"""The command with which updates are published. That programs believe what it writes is journey.update's matter."""

import base64
import json
import os
import subprocess
import tempfile
import unittest

TOOL = os.path.join(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))), "tools", "sign-update")


class SignUpdate(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        with open(self.file("package"), "wb") as file:
            file.write(b"the package")

    def file(self, name):
        return os.path.join(self.folder, name)

    def run_tool(self, *arguments):
        return subprocess.run([TOOL, *arguments], stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60)

    def make_key(self):
        done = self.run_tool("key", self.file("key"))
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return base64.b64decode(done.stdout.strip(), validate=True)

    def make_feed(self, **given):
        values = {"key": self.file("key"), "package": self.file("package"), "url": "https://updates.example/p.deb",
                  "version": "0.2.0", "output": self.file("feed"), **given}
        return self.run_tool("feed", *(part for name, value in values.items()
                                       for part in ("--" + name.replace("_", "-"), value)))

    def is_genuine(self, public_key, message, signature):
        # The fixed beginning of a public Ed25519 key in its coded form.
        with open(self.file("public"), "wb") as file:
            file.write(bytes.fromhex("302a300506032b6570032100") + public_key)
        for name, content in ("message", message), ("signature", signature):
            with open(self.file(name), "wb") as file:
                file.write(content)
        return subprocess.run(["openssl", "pkeyutl", "-verify", "-rawin", "-pubin", "-keyform", "DER", "-inkey",
                               self.file("public"), "-in", self.file("message"), "-sigfile", self.file("signature")],
                              capture_output=True).returncode == 0

    def test_a_key_is_its_owners_alone_and_never_replaced(self):
        self.assertEqual(len(self.make_key()), 32)
        self.assertEqual(os.stat(self.file("key")).st_mode & 0o7777, 0o600)
        with open(self.file("key"), "rb") as file:
            content = file.read()
        done = self.run_tool("key", self.file("key"))
        self.assertEqual(done.returncode, 1)
        self.assertIn("is there already", done.stderr)
        with open(self.file("key"), "rb") as file:
            self.assertEqual(file.read(), content)

    def test_feed_and_package_are_signed(self):
        key = self.make_key()
        done = self.make_feed(notes="Faster “now”", minimum="0.1", expires="2099-01-01T00:00:00Z")
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        with open(self.file("feed"), "rb") as file:
            line, _, content = file.read().partition(b"\n")
        name, kind, signature = line.split(b" ")
        self.assertEqual((name, kind), (b"quillmere-update-feed", b"ed25519"))
        self.assertTrue(self.is_genuine(key, name + b"\n" + content, base64.b64decode(signature)))
        self.assertFalse(self.is_genuine(key, name + b"\n" + content + b" ", base64.b64decode(signature)))
        values = json.loads(content)
        self.assertTrue(self.is_genuine(key, b"the package", base64.b64decode(values.pop("signature"))))
        self.assertEqual(values, {"format": 1, "version": "0.2.0", "minimumVersion": "0.1", "size": 11,
                                  "expires": "2099-01-01T00:00:00Z", "package": "https://updates.example/p.deb",
                                  "notes": "Faster “now”"})
        self.assertFalse(os.path.exists(self.file("feed.new")))

    def test_what_programs_would_refuse_is_not_written(self):
        self.make_key()
        with open(self.file("empty"), "wb"):
            pass
        for given in ({"version": "next"}, {"version": "1.2.3.4.5"}, {"minimum": "0.3"}, {"url": "http://a.example/p"},
                      {"url": "https://user@a.example/p"}, {"expires": "tomorrow"}, {"package": self.file("empty")},
                      {"notes": "n" * 16385}):
            done = self.make_feed(**given)
            self.assertEqual(done.returncode, 1, given)
            self.assertNotEqual(done.stderr, "")
            self.assertFalse(os.path.exists(self.file("feed")), given)

    def test_notes_come_from_a_file_too(self):
        self.make_key()
        with open(self.file("notes"), "w", encoding="utf-8") as file:
            file.write("Faster\nand smaller")
        self.assertEqual(self.make_feed(notes_file=self.file("notes")).returncode, 0)
        with open(self.file("feed"), "rb") as file:
            self.assertEqual(json.loads(file.read().partition(b"\n")[2])["notes"], "Faster\nand smaller")


if __name__ == "__main__":
    unittest.main()
