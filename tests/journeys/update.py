#!/usr/bin/python3
"""Updates from a server of the test's own: those that are installed, and all that is refused on the way."""

import datetime
import json
import os
import queue
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PROGRAM = os.environ["QUILLMERE_PROGRAM"]
HOST = os.environ["QUILLMERE_UPDATE_HOST"]
LIBRARY = os.environ["QUILLMERE_UPDATE_LIBRARY"]
SIGN = os.path.join(ROOT, "tools", "sign-update")
PATIENCE = 30
# As the server and the network have it, in the words of the windows.
FOUND, READY, UP_TO_DATE, FAILED = ("A New Version of Quillmere Is Available", "Ready to Install", "You’re Up to Date",
                                    "Quillmere Wasn’t Updated")


class Host:
    """A program with the updater, as it was installed."""

    def __init__(self, path, environment):
        self._process = subprocess.Popen([path], env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                         stderr=subprocess.DEVNULL, text=True, encoding="utf-8")
        self._lines = queue.Queue()
        self.told = []
        self._reader = threading.Thread(target=self._read, daemon=True)
        self._reader.start()
        self.can_check = self._next() == "can check"

    @property
    def pid(self):
        return self._process.pid

    def _read(self):
        for line in self._process.stdout:
            self._lines.put(line.rstrip("\n"))

    def _next(self):
        return self._lines.get(timeout=PATIENCE)

    def do(self, what):
        self._process.stdin.write(what + "\n")
        self._process.stdin.flush()

    def window(self):
        self.do("window")
        while not (line := self._next()).startswith("window "):
            self.told.append(line)
        return line[len("window "):]

    def wait_for(self, heading):
        end = time.monotonic() + PATIENCE
        while not (shown := self.window()).startswith(heading):
            if time.monotonic() > end or (shown.startswith(FAILED) and heading != FAILED):
                raise AssertionError(f"“{heading}” does not show, but “{shown}”")
            time.sleep(0.02)
        return shown

    def dismiss(self):
        """The answer that changes nothing; the window goes in a later turn."""
        self.do("reject")
        end = time.monotonic() + PATIENCE
        while (shown := self.window()) != "none":
            if time.monotonic() > end:
                raise AssertionError(f"“{shown}” stays")
            time.sleep(0.02)

    def wait_for_end(self):
        self._process.wait(PATIENCE)
        self._reader.join()
        while not self._lines.empty():
            self.told.append(self._lines.get())
        return self._process.returncode

    def stop(self):
        if self._process.poll() is None:
            self._process.kill()
        self._process.wait()
        self._reader.join()
        self._process.stdin.close()
        self._process.stdout.close()


class Updates(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.mkdtemp(prefix="quillmere-update-")
        cls.server_folder = os.path.join(cls.scratch, "server")
        os.mkdir(cls.server_folder)
        cls.files = os.path.join(cls.server_folder, "files")
        cls.server = subprocess.Popen([sys.executable, "-B", os.path.join(ROOT, "tests", "support", "update_server.py"),
                                       cls.server_folder], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        cls.ports = json.loads(cls.server.stdout.readline())
        cls.key = os.path.join(cls.scratch, "maker.key")
        cls.public_key = cls.sign("key", cls.key).strip()

    @classmethod
    def tearDownClass(cls):
        cls.server.kill()
        cls.server.wait()
        cls.server.stdout.close()
        shutil.rmtree(cls.scratch, ignore_errors=True)

    @classmethod
    def sign(cls, *arguments):
        return subprocess.run([SIGN, *arguments], check=True, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=60).stdout

    def setUp(self):
        folder = tempfile.mkdtemp(prefix="installed-", dir=self.scratch)
        self.installed = folder
        for part in ("bin", "lib/quillmere", "share/quillmere", "home", "runtime"):
            os.makedirs(os.path.join(folder, part))
        shutil.copy(HOST, self.path("bin", "host"))
        shutil.copy(LIBRARY, self.path("lib", "quillmere", "libquillmere-update.so"))
        shutil.copy(os.path.join(self.server_folder, "authority.pem"), self.path("share", "quillmere"))
        os.chmod(self.path("runtime"), 0o700)
        self.environment = {"PATH": "/usr/bin:/bin", "HOME": self.path("home"), "LANG": "C.UTF-8",
                            "XDG_RUNTIME_DIR": self.path("runtime"), "QT_QPA_PLATFORM": "offscreen",
                            "XDG_CACHE_HOME": self.path("home", "cache"),
                            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere",
                            "DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"}
        # What sanitizers are told from outside reaches the program.
        self.environment.update({name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")})
        self.package = os.path.join(self.files, "quillmere-0.2.0.AppImage")
        self.write_program(self.package, "new")
        requests = os.path.join(self.server_folder, "requests")
        if os.path.exists(requests):
            os.remove(requests)

    def path(self, *parts):
        return os.path.join(self.installed, *parts)

    def write_program(self, path, name):
        with open(path, "w", encoding="ascii") as file:
            # Long enough to be cut in the middle, and to be on its way for a while.
            file.write(f"#!/bin/sh\necho {name} > {self.path('started')}\nexit\n" + "#" * 20000)
        os.chmod(path, 0o755)

    def url(self, path, server="secure"):
        return f"{'http' if server == 'plain' else 'https'}://localhost:{self.ports[server]}{path}"

    def publish(self, version="0.2.0", days=30, package=None, minimum="0.1"):
        expires = datetime.datetime.now(datetime.timezone.utc) + datetime.timedelta(days=days)
        self.sign("feed", "--key", self.key, "--package", self.package, "--url",
                  package or self.url("/files/quillmere-0.2.0.AppImage"), "--version", version, "--minimum", minimum,
                  "--expires", expires.strftime("%Y-%m-%dT%H:%M:%SZ"), "--notes", "<b>Faster</b>",
                  "--output", os.path.join(self.files, "feed"))

    def launch(self, feed="/files/feed", server="secure", form="single-file", **environment):
        self.configure({"url": self.url(feed, server), "key": self.public_key, "authority": "authority.pem", "form": form})
        self.single_file = self.path("home", "Quillmere.AppImage")
        self.write_program(self.single_file, "old")
        host = Host(self.path("bin", "host"), {**self.environment, "APPIMAGE": self.single_file,
                                               "APPDIR": self.installed, **environment})
        self.addCleanup(host.stop)
        return host

    def configure(self, values):
        with open(self.path("share", "quillmere", "update.json"), "w", encoding="utf-8") as file:
            json.dump(values, file)

    def requests_to(self, server):
        path = os.path.join(self.server_folder, "requests")
        if not os.path.exists(path):
            return []
        with open(path, encoding="ascii") as file:
            return [line.split()[1] for line in file if line.startswith(f"{self.ports[server]} ")]

    def content(self, path):
        with open(path, encoding="ascii") as file:
            return file.read()

    def assert_nothing_changed(self):
        self.assertIn("echo old", self.content(self.single_file))
        self.assertEqual(sorted(os.listdir(self.path("home"))), ["Quillmere.AppImage", "cache"]
                         if os.path.exists(self.path("home", "cache")) else ["Quillmere.AppImage"])
        left = [name for _, folders, files in os.walk(self.path("home", "cache", "Quillmere", "updates"))
                for name in folders + files]
        self.assertEqual(left, [])
        self.assertFalse(os.path.exists(self.path("started")))

    def assert_refused(self, words, feed="/files/feed", server="secure", downloads=False):
        host = self.launch(feed, server)
        self.assertTrue(host.can_check)
        host.do("check")
        if downloads:
            host.wait_for(FOUND)
            host.do("accept")
        self.assertIn(words, host.wait_for(FAILED))
        host.dismiss()
        self.assertEqual(host.told, ["borrow", "repay"])
        self.assert_nothing_changed()

    # What is installed

    def install(self, feed="/files/feed"):
        host = self.launch(feed)
        host.do("check")
        shown = host.wait_for(FOUND)
        self.assertIn("0.2.0", shown)
        self.assertNotIn("/files/quillmere-0.2.0.AppImage", self.requests_to("secure"), "asks first")
        host.do("accept")
        host.wait_for(READY)
        self.assertIn("echo old", self.content(self.single_file), "asks first")
        host.do("accept")
        self.assertEqual(host.wait_for_end(), 0)
        self.assertEqual(host.told, ["borrow", "quit for an update"])
        end = time.monotonic() + PATIENCE
        while not os.path.exists(self.path("started")) and time.monotonic() < end:
            time.sleep(0.02)
        self.assertEqual(self.content(self.path("started")), "new\n")
        self.assertEqual(os.stat(self.single_file).st_mode & 0o7777, 0o755)
        self.assertEqual(sorted(os.listdir(self.path("home"))), ["Quillmere.AppImage", "cache"])

    def test_a_signed_update_replaces_the_file_and_starts_it(self):
        self.publish()
        self.install()

    def test_a_redirect_within_the_server_is_followed(self):
        self.publish(package=self.url("/to/quillmere-0.2.0.AppImage"))
        self.install("/to/feed")

    # What is refused

    def test_one_bit_of_the_package(self):
        self.publish()
        with open(self.package, "r+b") as file:
            file.seek(10000)
            file.write(b'"')  # in the place of "#"
        self.assert_refused("isn’t the one the maker of Quillmere signed", downloads=True)

    def test_the_same_and_an_older_version(self):
        for version in "0.1.0", "0.0.9":
            self.publish(version=version, minimum="0")
            host = self.launch()
            host.do("check")
            host.wait_for(UP_TO_DATE)
            host.dismiss()
            self.assert_nothing_changed()

    def test_a_version_between_that_was_left_out(self):
        self.publish(minimum="0.1.9")
        self.assert_refused("too old to be updated in one step")

    def test_redirects_to_others(self):
        self.publish()
        for away in "other", "plain":
            self.assert_refused("pointed to another server", feed=f"/away?{away}/feed")
            self.publish(package=self.url(f"/away?{away}/quillmere-0.2.0.AppImage"))
            self.assert_refused("pointed to another server", downloads=True)
            self.assertEqual(self.requests_to(away), [], "nothing is asked there")

    def test_a_connection_that_is_cut(self):
        self.publish()
        self.assert_refused("broke off", feed="/cut/feed")
        self.publish(package=self.url("/cut/quillmere-0.2.0.AppImage"))
        self.assert_refused("broke off", downloads=True)

    def test_an_expired_feed(self):
        self.publish(days=-1)
        self.assert_refused("out of date")

    def test_a_truncated_feed(self):
        self.publish()
        path = os.path.join(self.files, "feed")
        with open(path, "r+b") as file:
            file.truncate(os.path.getsize(path) - 3)
        self.assert_refused("isn’t signed by the maker")

    def test_a_feed_of_someone_else(self):
        other = os.path.join(self.scratch, "other.key")
        if not os.path.exists(other):
            self.sign("key", other)
        mine, self.key = self.key, other
        self.publish()
        self.key = mine
        self.assert_refused("isn’t signed by the maker")

    def test_wrong_certificates(self):
        self.publish()
        for server in "stranger", "misnamed":
            self.assert_refused("couldn’t prove that it is the right one", server=server)
            self.assertEqual(self.requests_to(server), [])

    def test_a_package_larger_than_announced(self):
        self.publish()
        with open(self.package, "a", encoding="ascii") as file:
            file.write("more")
        self.assert_refused("sent more than it announced", downloads=True)

    def test_a_copy_that_is_no_single_file(self):
        self.publish()
        host = self.launch(APPIMAGE="")
        host.do("check")
        self.assertIn("isn’t a single file", host.wait_for(FAILED))
        self.assert_nothing_changed()

    def test_cancel_in_the_middle(self):
        self.publish(package=self.url("/drip/quillmere-0.2.0.AppImage"))
        host = self.launch()
        host.do("check")
        host.wait_for(FOUND)
        host.do("accept")
        host.wait_for("Downloading Quillmere 0.2.0…")
        host.dismiss()
        self.assertEqual(host.told, ["borrow", "repay"])
        self.assert_nothing_changed()

    def test_not_now(self):
        self.publish()
        host = self.launch()
        host.do("check")
        host.wait_for(FOUND)
        host.dismiss()
        self.assertEqual(self.requests_to("secure"), ["/files/feed"])
        self.assert_nothing_changed()

    # The desktop's installer

    def start_bus(self):
        address = "unix:path=" + self.path("runtime", "bus")
        bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--nopidfile", "--address=" + address],
                               stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(bus.wait)
        self.addCleanup(bus.kill)
        end = time.monotonic() + PATIENCE
        while not os.path.exists(self.path("runtime", "bus")) and time.monotonic() < end:
            time.sleep(0.02)
        return address

    def start_installer(self, address, code):
        environment = {**self.environment, "DBUS_SESSION_BUS_ADDRESS": address}
        name, path = "org.freedesktop.PackageKit", "/org/freedesktop/PackageKit"
        mock = subprocess.Popen(["/usr/bin/python3", "-m", "dbusmock", "--session", name, path, name], env=environment,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.addCleanup(mock.wait)
        self.addCleanup(mock.kill)
        subprocess.run(["gdbus", "wait", "--session", "--timeout", str(PATIENCE), name], env=environment, check=True)

        def add(interface, method, takes, gives, what):
            subprocess.run(["gdbus", "call", "--session", "--dest", name, "--object-path", path, "--method",
                            "org.freedesktop.DBus.Mock.AddMethod", interface, method, takes, gives, what],
                           env=environment, check=True, stdout=subprocess.DEVNULL)

        add(name, "CreateTransaction", "", "o", f"ret = '{path}'")
        add(name + ".Transaction", "SetHints", "as", "", "")
        add(name + ".Transaction", "InstallFiles", "tas", "", code)
        return mock

    def launch_for_package(self, code):
        self.publish()
        address = self.start_bus()
        mock = self.start_installer(address, code) if code is not None else None
        host = self.launch(form="package", DBUS_SYSTEM_BUS_ADDRESS=address)
        host.do("check")
        host.wait_for(FOUND)
        host.do("accept")
        host.wait_for(READY)
        host.do("accept")
        return host, mock

    def finished(self, status):
        return (f"import shutil; shutil.copy(args[1][0], {self.path('installed')!r})\n"
                f"self.EmitSignal('org.freedesktop.PackageKit.Transaction', 'Finished', 'uu', [{status}, 5])")

    def test_the_package_goes_to_the_installer(self):
        host, _ = self.launch_for_package(self.finished(1))
        self.assertEqual(host.wait_for_end(), 0)
        self.assertIn("quit for an update", host.told)
        self.assertIn("echo new", self.content(self.path("installed")))
        self.assertIn("echo old", self.content(self.single_file))

    def test_an_installer_that_refuses(self):
        host, _ = self.launch_for_package(self.finished(2))
        self.assertIn("couldn’t be installed", host.wait_for(FAILED))
        host.dismiss()
        self.assertNotIn("quit", host.told)

    def test_an_installer_that_vanishes(self):
        host, mock = self.launch_for_package(f"open({self.path('asked')!r}, 'w')")
        host.wait_for("Installing Quillmere 0.2.0…")
        while not os.path.exists(self.path("asked")):
            time.sleep(0.02)
        mock.kill()
        self.assertIn("couldn’t be installed", host.wait_for(FAILED))

    def test_no_installer(self):
        host, _ = self.launch_for_package(None)
        self.assertIn("no service that installs packages", host.wait_for(FAILED))

    # What is loaded

    def mapped(self, pid):
        with open(f"/proc/{pid}/maps", encoding="utf-8", errors="replace") as file:
            return {os.path.basename(line.split()[-1]) for line in file if "/" in line}

    def internet_sockets(self, pid):
        """As the kernel lists them, of the process's own descriptors."""
        own = set()
        for name in os.listdir(f"/proc/{pid}/fd"):
            try:
                own.add(os.readlink(f"/proc/{pid}/fd/{name}"))
            except FileNotFoundError:
                continue
        found = []
        for kind in "tcp", "tcp6", "udp", "udp6":
            with open(f"/proc/{pid}/net/{kind}", encoding="ascii") as file:
                found += [line for line in list(file)[1:] if f"socket:[{line.split()[9]}]" in own]
        return found

    def test_without_a_configuration_nothing_is_loaded_and_nobody_is_asked(self):
        for values in None, {"url": self.url("/files/feed", "plain"), "key": self.public_key}, {"url": 1}:
            if values is not None:
                self.configure(values)
            host = Host(self.path("bin", "host"), self.environment)
            self.addCleanup(host.stop)
            self.assertFalse(host.can_check)
            host.do("check")
            self.assertEqual(host.window(), "none")
            loaded = self.mapped(host.pid)
            self.assertFalse({name for name in loaded if "quillmere-update" in name or "openssl" in name}, loaded)
            self.assertEqual(self.internet_sockets(host.pid), [])
        self.assertEqual(self.requests_to("secure") + self.requests_to("plain"), [])

    def test_the_environment_configures_nothing(self):
        host = Host(self.path("bin", "host"), {**self.environment, "QUILLMERE_UPDATE_FEED": self.url("/files/feed"),
                                               "QUILLMERE_UPDATE_KEY": self.public_key,
                                               "SSL_CERT_FILE": os.path.join(self.server_folder, "authority.pem")})
        self.addCleanup(host.stop)
        self.assertFalse(host.can_check)

    def needed(self, path):
        done = subprocess.run(["readelf", "--dynamic", path], check=True, capture_output=True, text=True, timeout=60)
        return [line.split("[")[1].rstrip("]") for line in done.stdout.splitlines() if "(NEEDED)" in line]

    def test_the_program_itself_needs_no_tls(self):
        def offending(libraries):
            return [name for name in libraries if name.startswith(("libssl", "libcrypto", "libquillmere-update"))]

        needed = self.needed(PROGRAM)
        self.assertTrue(any(name.startswith("libQt6Core") for name in needed), needed)
        self.assertEqual(offending(needed), [])
        self.assertEqual(offending(self.needed(HOST)), [])
        self.assertEqual([name.split(".")[0] for name in offending(self.needed(LIBRARY))], ["libcrypto"])

    def test_the_library_shows_its_one_function(self):
        done = subprocess.run(["nm", "--dynamic", "--defined-only", LIBRARY], check=True, capture_output=True, text=True,
                              timeout=60)
        names = [line.split()[-1] for line in done.stdout.splitlines()]
        self.assertIn("quillmereUpdate", names)
        self.assertEqual([name for name in names if "quillmere" in name and name != "quillmereUpdate"], [])


if __name__ == "__main__":
    unittest.main()
