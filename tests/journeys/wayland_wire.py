"""The Wayland protocol as bytes, as far as a test's own keyboard and pointer need it: requests alone, and the list of
what the compositor offers."""

import array
import os
import socket
import struct

_DISPLAY = 1


class Wire:
    def __init__(self, path):
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        self._socket.connect(path)
        self._last = _DISPLAY
        self._rest = b""
        self._registry = self.new_id()
        self.send(_DISPLAY, 1, struct.pack("=I", self._registry))
        self._globals = {}
        self.round_trip()

    def new_id(self):
        self._last += 1
        return self._last

    def send(self, target, opcode, arguments=b"", descriptor=None):
        message = struct.pack("=IHH", target, opcode, 8 + len(arguments)) + arguments
        rights = [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", [descriptor]))] if descriptor is not None else []
        self._socket.sendmsg([message], rights)

    def bind(self, interface, version):
        """The new object; None where the compositor has no such thing."""
        if interface not in self._globals:
            return None
        number = self.new_id()
        self.send(self._registry, 0,
                  struct.pack("=I", self._globals[interface]) + string(interface) + struct.pack("=II", version, number))
        return number

    def round_trip(self):
        """Until the compositor has taken everything that was sent."""
        callback = self.new_id()
        self.send(_DISPLAY, 0, struct.pack("=I", callback))
        while True:
            target, opcode, arguments = self._event()
            if target == callback:
                return
            if target == _DISPLAY and opcode == 0:
                raise RuntimeError(f"the compositor refuses: {arguments!r}")
            if target == self._registry and opcode == 0:
                name, length = struct.unpack_from("=II", arguments)
                self._globals[arguments[8:8 + length - 1].decode()] = name

    def _event(self):
        header = self._read(8)
        target, opcode, size = struct.unpack("=IHH", header)
        return target, opcode, self._read(size - 8)

    def _read(self, count):
        while len(self._rest) < count:
            # Descriptors that come along are nobody's here.
            data, rights, _, _ = self._socket.recvmsg(65536, socket.CMSG_SPACE(64))
            for _, _, passed in rights:
                for number in array.array("i", passed[:len(passed) - len(passed) % 4]):
                    os.close(number)
            if not data:
                raise RuntimeError("the compositor closed the connection")
            self._rest += data
        taken, self._rest = self._rest[:count], self._rest[count:]
        return taken


def string(text):
    data = text.encode() + b"\0"
    return struct.pack("=I", len(data)) + data + b"\0" * (-len(data) % 4)


def fixed(number):
    return struct.pack("=i", round(number * 256))
