"""A Wayland session of its own for one journey, with an X server beside it as desktops have it."""

import os
import pwd
import shutil
import subprocess
import sys
import tempfile
import time

import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf, Gio, GLib  # noqa: E402

import wayland_input
from harness import Desktop, copy_program, run_on, wait_until

_SIZE = (1280, 800)
# sway's bar, in pixels: so high that the popup has to know of it.
_BAR = 48


def _told(desktop):
    return os.path.join(desktop.scratch, "display.txt")


def _write(desktop, name, text):
    path = os.path.join(desktop.environment["XDG_CONFIG_HOME"], name)
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "a", encoding="utf-8") as file:
        file.write(text)


# No key repeats: on a busy machine the moment between its press and its release may be longer than a finger's.


def _sway(desktop):
    configuration = os.path.join(desktop.scratch, "sway.conf")
    with open(configuration, "w", encoding="utf-8") as file:
        file.write(f"output HEADLESS-1 resolution {_SIZE[0]}x{_SIZE[1]}\nxwayland enable\n"
                   "input type:keyboard repeat_rate 0\n"
                   f"bar {{\n position bottom\n height {_BAR}\n}}\n"
                   # It starts the X server with the first program that asks.
                   f"exec echo $DISPLAY > {_told(desktop)}.new && mv {_told(desktop)}.new {_told(desktop)}\n")
    return ["sway", "-c", configuration], {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1",
                                           "WLR_RENDERER": "pixman"}


def _kwin(desktop):
    _write(desktop, "kcminputrc", "[Keyboard]\nKeyRepeat=nothing\n")
    # Its file has a capability that sandboxes refuse; a copy has none.
    program = os.path.join(desktop.scratch, "kwin_wayland")
    shutil.copyfile(shutil.which("kwin_wayland"), program)
    os.chmod(program, 0o755)
    return [program, "--virtual", "--xwayland", "--no-lockscreen", "--no-global-shortcuts", "--width", str(_SIZE[0]),
            "--height", str(_SIZE[1])], {"KWIN_WAYLAND_NO_PERMISSION_CHECKS": "1", "LIBGL_ALWAYS_SOFTWARE": "1",
                                         "KWIN_SCREENSHOT_NO_PERMISSION_CHECKS": "1"}


def _mutter(desktop):
    _write(desktop, "glib-2.0/settings/keyfile", "[org/gnome/desktop/peripherals/keyboard]\nrepeat=false\n")
    return ["mutter", "--headless", "--wayland", "--virtual-monitor", "{}x{}".format(*_SIZE)], \
        {"LIBGL_ALWAYS_SOFTWARE": "1"}


_COMPOSITORS = {"sway": (_sway, wayland_input.SwayInput), "kwin": (_kwin, wayland_input.KWinInput),
                "mutter": (_mutter, wayland_input.MutterInput)}


class WaylandDesktop(Desktop):
    def __init__(self, name, compositor):
        super().__init__(name)
        self.compositor, self.size = compositor, _SIZE
        self.bar_height = _BAR if compositor == "sway" else 0

    def _start_display(self):
        """The compositor brings it."""

    def _start_window_manager(self):
        make, make_input = _COMPOSITORS[self.compositor]
        command, environment = make(self)
        del self.environment["QT_QPA_PLATFORM"]  # as people start it: it finds the X server by itself
        runtime = self.environment["XDG_RUNTIME_DIR"]
        self._log = open(os.path.join(self.scratch, "compositor.txt"), "w", encoding="utf-8")
        self.start(command, environment=environment, stdout=self._log, stderr=self._log)
        wait_until("the compositor listens", lambda: self._socket_in(runtime), 20)
        self.wayland_socket = self._socket_in(runtime)
        self.environment["WAYLAND_DISPLAY"] = os.path.basename(self.wayland_socket)
        self.environment["DISPLAY"] = wait_until("its X server has a name", self._x_display, 20)
        if self.compositor == "sway":
            self.environment["SWAYSOCK"] = next(
                os.path.join(runtime, name) for name in os.listdir(runtime) if name.startswith("sway-ipc"))
        self.input = make_input(self)

    @staticmethod
    def _socket_in(runtime):
        names = [name for name in os.listdir(runtime) if name.startswith("wayland-") and not name.endswith(".lock")]
        return os.path.join(runtime, names[0]) if names else None

    def _x_display(self):
        """sway tells what it starts; the others have started the X server, and its command line tells."""
        for process in self._descendants():
            try:
                with open(f"/proc/{process}/cmdline", "rb") as file:
                    words = file.read().decode(errors="replace").split("\0")
            except OSError:
                continue
            if os.path.basename(words[0]) == "Xwayland":
                self._take_authority(words)
                return next(word for word in words[1:] if word.startswith(":"))
        try:
            with open(_told(self), encoding="utf-8") as file:
                return file.read().strip()
        except FileNotFoundError:
            return None

    def _take_authority(self, words):
        if "-auth" in words:
            self.environment["XAUTHORITY"] = words[words.index("-auth") + 1]

    def _descendants(self):
        compositor = self._processes[-1].pid
        found, frontier = [], [compositor]
        while frontier:
            parent = frontier.pop()
            try:
                with open(f"/proc/{parent}/task/{parent}/children", encoding="utf-8") as file:
                    children = [int(word) for word in file.read().split()]
            except OSError:
                continue
            found += children
            frontier += children
        return found

    # What a person sees and does

    def open_terminal(self):
        """A Wayland window that has the keyboard."""
        typed = os.path.join(self.scratch, "typed.txt")
        shell = os.path.join(self.scratch, "shell")
        with open(shell, "w", encoding="utf-8") as file:
            file.write(f"#!/bin/sh\nexec cat > {typed}\n")
        os.chmod(shell, 0o755)
        self.start(["weston-terminal", f"--shell={shell}"], stdout=self._log, stderr=self._log)
        wait_until("the terminal reads", lambda: os.path.exists(typed), 20)

        terminal = Terminal(self, typed)
        terminal.wait_for_keyboard()
        return terminal

    def key(self, *keys):
        for combination in keys:
            self.input.key(combination)
            time.sleep(0.1)  # a person's finger; keys come back to the program over the accessibility bus

    def type(self, text):
        self.input.type(text)

    def click(self, control):
        self.input.click(self.settled_place_of(control))

    def move_pointer(self, place):
        self.input.move(place)

    def picture(self, path):
        """mutter alone has no way without a shell around it."""
        if self.compositor == "sway":
            self.run("grim", path)
        elif self.compositor == "kwin":
            self._kwin_picture(path)

    def _kwin_picture(self, path):
        """It writes the pixels into a pipe: blue, green, red and alpha."""
        reading, writing = os.pipe()
        arguments = GLib.Variant("(a{sv}h)", ({}, 0))
        descriptors = Gio.UnixFDList.new_from_array([writing])
        reply, _ = self.bus.call_with_unix_fd_list_sync(
            "org.kde.KWin", "/org/kde/KWin/ScreenShot2", "org.kde.KWin.ScreenShot2", "CaptureActiveScreen", arguments,
            None, Gio.DBusCallFlags.NONE, 5000, descriptors, None)
        described = reply.unpack()[0]
        with os.fdopen(reading, "rb") as pipe:
            pixels = bytearray(pipe.read(described["stride"] * described["height"]))
        pixels[0::4], pixels[2::4] = pixels[2::4], pixels[0::4]
        GdkPixbuf.Pixbuf.new_from_bytes(GLib.Bytes.new(bytes(pixels)), GdkPixbuf.Colorspace.RGB, True, 8,
                                        described["width"], described["height"], described["stride"]).savev(path, "png")


class Terminal:
    def __init__(self, desktop, path):
        self._desktop, self._path = desktop, path

    def wait_for_keyboard(self):
        """No one else tells which window of Wayland has it: whether an empty line arrives."""
        length = os.path.getsize(self._path)

        def has_it():
            self._desktop.type("\n")
            return os.path.getsize(self._path) > length

        wait_until("the terminal has the keyboard", has_it)

    @property
    def lines(self):
        """Without the empty ones."""
        with open(self._path, encoding="utf-8") as file:
            return [line for line in file.read().split("\n") if line]


def run_wayland_journey(name, journey, compositor):
    """sway refuses to run as root, and an X server of another user lets nobody in: the whole journey is an ordinary
    person's."""
    program = os.environ.get("QUILLMERE_PROGRAM")
    if os.geteuid() == 0:
        sockets = "/tmp/.X11-unix"
        if not os.path.isdir(sockets):  # nobody's X server may not be the one that makes it
            os.mkdir(sockets)
            os.chmod(sockets, 0o1777)
        folder = tempfile.mkdtemp(prefix="quillmere-wayland-")
        copy = copy_program(program, folder)
        os.chmod(folder, 0o755)
        os.environ["QUILLMERE_PROGRAM"] = copy
        wanted, pictures = os.environ["QUILLMERE_PICTURES"], os.path.join(folder, "pictures")
        os.environ["QUILLMERE_PICTURES"] = pictures
        nobody = pwd.getpwnam("nobody")
        os.mkdir(pictures)
        os.chown(pictures, nobody.pw_uid, nobody.pw_gid)
        done = subprocess.run([sys.executable, "-B", *sys.argv], user=nobody.pw_uid, group=nobody.pw_gid,
                              extra_groups=[], stdin=subprocess.DEVNULL, check=False)
        shutil.copytree(pictures, wanted, dirs_exist_ok=True)
        shutil.rmtree(folder)
        sys.exit(done.returncode)
    run_on(WaylandDesktop(name, compositor), journey)
