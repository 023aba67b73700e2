#!/usr/bin/python3
"""The desktop's e-mail portal. Run as a program it is the portal: fake_mail_portal.py FOLDER, into which the attachment
of each message is written as its mail program reads it."""

import os
import signal
import sys

from gi.repository import Gio, GLib

from waiting import wait_until

_NAME, _PATH = "org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop"
_INTERFACE = """<node><interface name="org.freedesktop.portal.Email">
  <method name="ComposeEmail"><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
    <arg type="o" direction="out"/></method>
  <property name="version" type="u" access="read"/>
</interface></node>"""


class FakeMailPortal:
    """As a journey sees it."""

    def __init__(self, desktop):
        self._folder = os.path.join(desktop.scratch, "mail")
        os.mkdir(self._folder)
        self._process = desktop.start([sys.executable, "-B", os.path.abspath(__file__), self._folder])
        wait_until("the portal runs", lambda: os.path.exists(os.path.join(self._folder, "running")))

    def taken(self):
        """The name and the bytes of what the next message has attached."""
        name, data = (os.path.join(self._folder, part) for part in ("name", "data"))
        wait_until("a message is composed", lambda: os.path.exists(name))
        with open(name, "rb") as file, open(data, "rb") as attachment:
            result = os.fsdecode(file.read()), attachment.read()
        os.remove(name)
        return result

    def stop_answering(self):
        """It stays on the bus."""
        self._process.send_signal(signal.SIGSTOP)


def run(folder):
    def write(name, data):
        with open(os.path.join(folder, name + ".part"), "wb") as file:
            file.write(data)
        os.rename(os.path.join(folder, name + ".part"), os.path.join(folder, name))

    def called(_connection, _sender, _path, _interface, _method, arguments, invocation):
        handle = arguments.unpack()[1]["attachment_fds"][0]
        descriptor = invocation.get_message().get_unix_fd_list().get(handle)
        write("data", os.pread(descriptor, 1 << 24, 0))
        write("name", os.fsencode(os.readlink(f"/proc/self/fd/{descriptor}")))
        invocation.return_value(GLib.Variant("(o)", (_PATH + "/request/1/t",)))

    def acquired(connection, _name):
        interface = Gio.DBusNodeInfo.new_for_xml(_INTERFACE).interfaces[0]
        connection.register_object(_PATH, interface, called, lambda *_: GLib.Variant("u", 3), None)

    Gio.bus_own_name(Gio.BusType.SESSION, _NAME, Gio.BusNameOwnerFlags.NONE, acquired,
                     lambda *_: write("running", b""), None)
    GLib.MainLoop().run()


if __name__ == "__main__":
    run(sys.argv[1])
