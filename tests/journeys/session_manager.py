#!/usr/bin/python3
"""A session manager of the X server's kind (XSMP), by libSM, which Qt brings with it.

Prints a line of JSON for each thing that happens: where it listens, each program that joins, asks to interact, has
saved or leaves, and the properties that it tells. Does what each line of its standard input says: "shutdown" has
every program save, as a logout does, "save" the same without ending, "die" ends them."""

import ctypes
import json
import os
import select
import sys

_ICE, _SM, _LIBC = ctypes.CDLL("libICE.so.6"), ctypes.CDLL("libSM.so.6"), ctypes.CDLL(None)
_LIBC.malloc.restype = _LIBC.strdup.restype = ctypes.c_void_p
_LIBC.malloc.argtypes, _LIBC.strdup.argtypes = [ctypes.c_size_t], [ctypes.c_char_p]

_pointer = ctypes.c_void_p
_REGISTER = ctypes.CFUNCTYPE(ctypes.c_int, _pointer, _pointer, _pointer)
_INTERACT_REQUEST = ctypes.CFUNCTYPE(None, _pointer, _pointer, ctypes.c_int)
_INTERACT_DONE = ctypes.CFUNCTYPE(None, _pointer, _pointer, ctypes.c_int)
_SAVE_REQUEST = ctypes.CFUNCTYPE(None, _pointer, _pointer, *[ctypes.c_int] * 5)
_PHASE_2 = ctypes.CFUNCTYPE(None, _pointer, _pointer)
_SAVE_DONE = ctypes.CFUNCTYPE(None, _pointer, _pointer, ctypes.c_int)
_CLOSE = ctypes.CFUNCTYPE(None, _pointer, _pointer, ctypes.c_int, _pointer)
_SET = ctypes.CFUNCTYPE(None, _pointer, _pointer, ctypes.c_int, _pointer)
_DELETE = ctypes.CFUNCTYPE(None, _pointer, _pointer, ctypes.c_int, _pointer)
_GET = ctypes.CFUNCTYPE(None, _pointer, _pointer)
_NEW_CLIENT = ctypes.CFUNCTYPE(ctypes.c_int, _pointer, _pointer, ctypes.POINTER(ctypes.c_ulong), _pointer,
                               ctypes.POINTER(ctypes.c_char_p))
_HOST_BASED = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_char_p)
_IO_ERROR = ctypes.CFUNCTYPE(None, _pointer)

for library, name, result, *takes in (
        (_ICE, "IceListenForConnections", ctypes.c_int, _pointer, _pointer, ctypes.c_int, ctypes.c_char_p),
        (_ICE, "IceComposeNetworkIdList", ctypes.c_char_p, ctypes.c_int, _pointer),
        (_ICE, "IceGetListenConnectionNumber", ctypes.c_int, _pointer),
        (_ICE, "IceAcceptConnection", _pointer, _pointer, ctypes.POINTER(ctypes.c_int)),
        (_ICE, "IceConnectionNumber", ctypes.c_int, _pointer),
        (_ICE, "IceConnectionStatus", ctypes.c_int, _pointer),
        (_ICE, "IceProcessMessages", ctypes.c_int, _pointer, _pointer, _pointer),
        (_ICE, "IceSetHostBasedAuthProc", None, _pointer, _HOST_BASED),
        (_ICE, "IceSetIOErrorHandler", _pointer, _IO_ERROR),
        (_ICE, "IceCloseConnection", ctypes.c_int, _pointer),
        (_SM, "SmsInitialize", ctypes.c_int, ctypes.c_char_p, ctypes.c_char_p, _NEW_CLIENT, _pointer, _HOST_BASED,
         ctypes.c_int, ctypes.c_char_p),
        (_SM, "SmsGenerateClientID", _pointer, _pointer),
        (_SM, "SmsRegisterClientReply", ctypes.c_int, _pointer, _pointer),
        (_SM, "SmsSaveYourself", None, _pointer, *[ctypes.c_int] * 4),
        (_SM, "SmsSaveYourselfPhase2", None, _pointer),
        (_SM, "SmsInteract", None, _pointer),
        (_SM, "SmsDie", None, _pointer),
        (_SM, "SmsSaveComplete", None, _pointer),
        (_SM, "SmsCleanUp", None, _pointer),
        (_SM, "SmsGetIceConnection", _pointer, _pointer)):
    function = getattr(library, name)
    function.restype, function.argtypes = result, takes

_SAVE_LOCAL, _SAVE_BOTH, _INTERACT_ANY = 1, 2, 2


class Value(ctypes.Structure):
    _fields_ = [("length", ctypes.c_int), ("value", _pointer)]


class Property(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("type", ctypes.c_char_p), ("count", ctypes.c_int),
                ("values", ctypes.POINTER(Value))]


def tell(event, **details):
    print(json.dumps({"event": event, **details}), flush=True)


class Manager:
    def __init__(self):
        self._clients, self._connections, self._is_saving = set(), {}, False
        # In the order in which the library's table has them.
        self._callbacks = [_REGISTER(self._register), _INTERACT_REQUEST(self._interact_request),
                           _INTERACT_DONE(lambda *_: tell("interacted")), _SAVE_REQUEST(lambda *_: None),
                           _PHASE_2(lambda client, _: _SM.SmsSaveYourselfPhase2(client)), _SAVE_DONE(self._saved),
                           _CLOSE(self._closed), _SET(self._set), _DELETE(lambda *_: None), _GET(lambda *_: None)]
        self._new_client = _NEW_CLIENT(self._joined)
        self._everyone = _HOST_BASED(lambda _: 1)
        self._io_error = _IO_ERROR(lambda _: None)
        _ICE.IceSetIOErrorHandler(self._io_error)

    def run(self):
        error = ctypes.create_string_buffer(256)
        if not _SM.SmsInitialize(b"journeys", b"1", self._new_client, None, self._everyone, 256, error):
            sys.exit(error.value.decode())
        count, listeners = ctypes.c_int(), ctypes.POINTER(_pointer)()
        if not _ICE.IceListenForConnections(ctypes.byref(count), ctypes.byref(listeners), 256, error):
            sys.exit(error.value.decode())
        doors = {_ICE.IceGetListenConnectionNumber(listeners[i]): listeners[i] for i in range(count.value)}
        for listener in doors.values():
            _ICE.IceSetHostBasedAuthProc(listener, self._everyone)
        tell("listens", at=_ICE.IceComposeNetworkIdList(count.value, listeners).decode())
        while True:
            ready, _, _ = select.select([0, *doors, *self._connections], [], [])
            for descriptor in ready:
                if descriptor == 0:
                    if not self._obey():
                        return
                elif descriptor in doors:
                    status = ctypes.c_int()
                    connection = _ICE.IceAcceptConnection(doors[descriptor], ctypes.byref(status))
                    if connection:
                        self._connections[_ICE.IceConnectionNumber(connection)] = connection
                elif descriptor in self._connections:
                    self._process(descriptor)

    def _process(self, descriptor):
        _SUCCESS = 0
        connection = self._connections[descriptor]
        if _ICE.IceProcessMessages(connection, None, None) != _SUCCESS:
            gone = {client for client in self._clients if _SM.SmsGetIceConnection(client) == connection}
            self._forget(gone, descriptor)

    def _forget(self, clients, descriptor):
        for client in clients:
            self._clients.discard(client)
            tell("left")
        self._connections.pop(descriptor, None)

    def _obey(self):
        command = os.read(0, 100).decode().strip()
        for client in list(self._clients):
            if command in ("shutdown", "save"):
                self._is_saving = True
                _SM.SmsSaveYourself(client, _SAVE_BOTH, int(command == "shutdown"), _INTERACT_ANY, 0)
            elif command == "die":
                _SM.SmsDie(client)
        return bool(command)

    # --- What programs do ---

    def _joined(self, client, _data, mask, table, _reason):
        pairs = (_pointer * (2 * len(self._callbacks))).from_address(table)
        for place, callback in enumerate(self._callbacks):
            pairs[2 * place] = ctypes.cast(callback, _pointer).value
            pairs[2 * place + 1] = None
        mask[0] = (1 << len(self._callbacks)) - 1
        self._clients.add(client)
        return 1

    def _register(self, client, _data, previous):
        identifier = previous or _SM.SmsGenerateClientID(client)
        _SM.SmsRegisterClientReply(client, identifier)
        tell("joined", id=ctypes.string_at(identifier).decode())
        if not previous:
            # As the protocol has it for a new program.
            _SM.SmsSaveYourself(client, _SAVE_LOCAL, 0, 0, 0)
        return 1

    def _interact_request(self, client, _data, _kind):
        tell("asks")
        _SM.SmsInteract(client)

    def _saved(self, client, _data, success):
        if self._is_saving:
            tell("saved", success=bool(success))
        self._is_saving = False
        _SM.SmsSaveComplete(client)

    def _closed(self, client, _data, _count, _reasons):
        connection = _SM.SmsGetIceConnection(client)
        descriptor = _ICE.IceConnectionNumber(connection)
        _SM.SmsCleanUp(client)
        _ICE.IceCloseConnection(connection)
        self._forget({client}, descriptor)

    def _set(self, _client, _data, count, properties):
        table = ctypes.cast(properties, ctypes.POINTER(ctypes.POINTER(Property)))
        told = {}
        for i in range(count):
            entry = table[i].contents
            values = [ctypes.string_at(entry.values[k].value, entry.values[k].length) for k in range(entry.count)]
            told[entry.name.decode()] = [value[0] if entry.type == b"CARD8" else value.decode(errors="replace")
                                         for value in values]
        tell("properties", values=told)


if __name__ == "__main__":
    Manager().run()
