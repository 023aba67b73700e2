"""The desktop's speech service, without sound, and what listens on the accessibility bus."""

import os
import re
import time

from gi.repository import Gio, GLib

import accessibility
from waiting import JourneyFailed, expect, wait_until

_REGISTRY = ("org.a11y.atspi.Registry", "/org/a11y/atspi/registry", "org.a11y.atspi.Registry")
_STATUS = "org.a11y.Status"


class SpeechDispatcher:
    """The real one, with its dummy voice."""

    def __init__(self, desktop):
        configuration = os.path.join(desktop.config_home, "speech-dispatcher")
        logs = os.path.join(desktop.home, "speech")
        os.makedirs(configuration)
        os.makedirs(logs)
        with open(os.path.join(configuration, "speechd.conf"), "w", encoding="utf-8") as file:
            file.write(f'LogLevel 5\nLogDir "{logs}"\nAudioOutputMethod "libao"\nDefaultModule dummy\n'
                       'AddModule "dummy" "sd_dummy" ""\n')
        with open(os.path.join(desktop.home, ".libao"), "w", encoding="utf-8") as file:
            file.write("default_driver=null\n")
        self._log = os.path.join(logs, "speech-dispatcher.log")
        self.process = desktop.start(["speech-dispatcher", "--run-single", "--timeout", "0"], stderr=desktop.errors)
        socket = os.path.join(desktop.environment["XDG_RUNTIME_DIR"], "speech-dispatcher", "speechd.sock")
        wait_until("the speech service runs", lambda: os.path.exists(socket))

    def spoken(self):
        """Each text with its priority, 1 for important and 2 for a message, in the order in which they came."""
        with open(self._log, encoding="utf-8", errors="replace") as file:
            said = re.findall(r"Queueing message \|(.*?)\| with priority (\d)", file.read(), re.DOTALL)
        return [(re.sub(r"<[^>]*>", "", text), int(priority)) for text, priority in said]

    def has_clients(self):
        """Whether anybody ever connected."""
        with open(self._log, encoding="utf-8", errors="replace") as file:
            return "SET SELF CLIENT_NAME" in file.read().upper()


class Orca:
    """The screen reader of Debian 12, over the speech service. It says each key that is pressed, which is left out."""

    _KEYS = {"tab", "space", "escape", "return", "left shift", "left control", "delete", "backspace", "slash"}
    _SILENCE = 1.2  # seconds; it says what belongs together within a fraction of one

    def __init__(self, desktop, speech):
        self._speech, self._heard = speech, 0
        self.process = desktop.start(["orca"], stdout=desktop.errors, stderr=desktop.errors)
        wait_until("Orca speaks", speech.spoken, 30)
        self.is_silent()

    def _new(self):
        said = [text.strip() for text, _ in self._speech.spoken()[self._heard:]]
        return [text for text in said if text not in self._KEYS]

    def is_silent(self):
        """It has said all that it has to say; the texts."""
        count, since = -1, time.monotonic()
        while time.monotonic() - since < self._SILENCE:
            if len(self._speech.spoken()) != count:
                count, since = len(self._speech.spoken()), time.monotonic()
            time.sleep(0.05)
        said = self._new()
        self._heard = count
        return said

    def says(self, *texts):
        """These, in this order, and nothing else."""
        try:
            wait_until("Orca says it", lambda: len(self._new()) >= len(texts))
        except JourneyFailed:
            pass
        said = self.is_silent()
        expect(f"Orca says {list(texts)}, not {said}", said == list(texts))

    def has_been_heard(self, text):
        """The program lets an announcement be heard whole before the next."""
        time.sleep(1 + 0.075 * len(text))
        self.is_silent()

    def stop(self):
        self.process.terminate()
        self.process.wait()


class AccessibilityListener:
    """Listens on the accessibility bus as a screen reader does; `events` in the form of the registry."""

    def __init__(self, desktop, events):
        address = accessibility.call(desktop.bus, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0]
        self._bus = accessibility.connect(address)
        self._events = events
        self.heard = []
        self._bus.signal_subscribe(None, "org.a11y.atspi.Event.Object", None, None, None, Gio.DBusSignalFlags.NONE,
                                   self._hear)
        for event in events:
            self._call("RegisterEvent", GLib.Variant("(sass)", (event, [], "")))

    def _call(self, method, arguments):
        accessibility.call(self._bus, *_REGISTRY, method, arguments)

    def _hear(self, _bus, _sender, _path, _interface, name, arguments):
        kind, detail, _, value = arguments.unpack()[:4]
        if name == "Announcement" or (name == "StateChanged" and kind == "showing"):
            self.heard.append((name, detail, value))

    def announced(self):
        """Each text with its politeness, 1 for polite and 2 for assertive."""
        self._collect()
        return [(value, detail) for name, detail, value in self.heard if name == "Announcement"]

    def _collect(self):
        while GLib.MainContext.default().iteration(False):
            pass

    def stop(self):
        for event in self._events:
            self._call("DeregisterEvent", GLib.Variant("(s)", (event,)))
        self._bus.close_sync(None)


def set_screen_reader_enabled(desktop, is_enabled):
    """The desktop's switch."""
    arguments = GLib.Variant("(ssv)", (_STATUS, "ScreenReaderEnabled", GLib.Variant("b", is_enabled)))
    accessibility.call(desktop.bus, "org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set", arguments)
