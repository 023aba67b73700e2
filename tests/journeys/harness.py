"""A desktop of its own for one journey: display, window manager, session bus and home, all gone at the end."""

import base64
import ctypes
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import urllib.parse

import Xlib.display
import Xlib.X
from gi.repository import GLib

import accessibility
from waiting import JourneyFailed, expect, hold_for, wait_until  # noqa: F401 (for the journeys)

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
POPUP_TITLE = "Screenshot Decision"
POPUP_MARGIN = 24

# A click is dropped by design until 0.3 s after the popup's content changed.
CLICK_GATE = 0.35

_BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{services}</servicedir>
  <policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
"""

# How each window manager is started, and with a compositor of its own or beside it. What draws with OpenGL has to do
# without a graphics card.
_SOFTWARE_OPENGL = {"LIBGL_ALWAYS_SOFTWARE": "1"}
_PICOM = ["picom", "--config", "/dev/null", "--backend", "xrender"]


class WindowManager:
    def __init__(self, command, environment=None, needs_picom=False, is_compositing=False):
        self.command, self.environment = command, environment or {}
        self.needs_picom, self.is_compositing = needs_picom, is_compositing


WINDOW_MANAGERS = {
    "openbox": WindowManager(["openbox"]),
    "openbox+picom": WindowManager(["openbox"], needs_picom=True),
    "xfwm4": WindowManager(["xfwm4", "--compositor=off"]),
    "xfwm4+compositor": WindowManager(["xfwm4", "--compositor=on"], is_compositing=True),
    "kwin": WindowManager(["kwin_x11"], {"KWIN_COMPOSE": "N"}),
    "kwin+compositor": WindowManager(["kwin_x11"], {"KWIN_COMPOSE": "O2", **_SOFTWARE_OPENGL}, is_compositing=True),
    "mutter": WindowManager(["mutter", "--x11"], _SOFTWARE_OPENGL, is_compositing=True),
}

_PR_SET_PDEATHSIG = 1
_libc = ctypes.CDLL(None)


def copy_program(program, folder):
    """With the reader of pictures, where the program looks for it; gives the copy."""
    os.makedirs(folder, exist_ok=True)
    beside = os.path.join("libexec", "quillmere", "reader")
    reader = os.path.join(folder, beside)
    os.makedirs(os.path.dirname(reader), exist_ok=True)
    shutil.copy(os.path.join(os.path.dirname(program), beside), reader)
    return shutil.copy(program, folder)


def _die_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL)


class Program:
    """One run of the program."""

    def __init__(self, desktop, arguments):
        self._desktop = desktop
        self._tree = None
        desktop.errors.write(f"--- started with {arguments}\n")
        desktop.errors.flush()
        self._process = desktop.start([desktop.binary, *arguments], environment=desktop.program_environment,
                                      stderr=desktop.errors, stdout=desktop.errors)

    @property
    def pid(self):
        return self._process.pid

    @property
    def is_running(self):
        return self._process.poll() is None

    def kill(self):
        """As a power cut would: no handler runs."""
        self._process.kill()
        self._process.wait()

    def terminate(self):
        """As the session ends it."""
        self._process.terminate()
        expect("it ends with 0", self.wait(60) == 0)

    def wait(self, timeout=10.0):
        """The exit code."""
        wait_until("the program ended", lambda: not self.is_running, timeout)
        return self._process.returncode

    @property
    def tree(self):
        if self._tree is None:
            self._tree = accessibility.Tree(self._desktop.bus, self.pid)
        return self._tree


class Desktop:
    """`window_manager` is one of WINDOW_MANAGERS; `monitors` are xrandr's geometries by name, the first being the main
    one, of a display that is otherwise one screen; `scale` is how many pixels the program draws for a point."""

    def __init__(self, name, size="1280x800", window_manager="openbox", monitors=None, scale=1):
        self.name, self.program, self._size, self._processes = name, None, size, []
        self.window_manager, self._monitors, self.scale = WINDOW_MANAGERS[window_manager], monitors or {}, scale
        self.binary = os.environ.get("QUILLMERE_PROGRAM") or os.path.join(ROOT, "build", "quillmere")
        self.pictures = os.environ.get("QUILLMERE_PICTURES") or os.path.join(ROOT, "run")
        self.program_environment = {}  # what the program alone is given beside the desktop's

    def __enter__(self):
        try:
            self._set_up()
        except BaseException:
            self._tear_down()
            raise
        return self

    def _set_up(self):
        self.scratch = tempfile.mkdtemp(prefix="quillmere-journey-")
        self.home = os.path.join(self.scratch, "home")
        self.data_home = os.path.join(self.home, ".local", "share")
        self.config_home = os.path.join(self.home, ".config")
        self.folder = os.path.join(self.home, "Pictures", "Screenshots")
        runtime = os.path.join(self.scratch, "runtime")
        for path in (self.data_home, self.config_home, self.folder):
            os.makedirs(path)
        self.write_settings({})
        os.mkdir(runtime, 0o700)
        self.errors = open(os.path.join(self.scratch, "errors.txt"), "w+", encoding="utf-8", errors="replace")
        self.environment = {
            "PATH": os.environ.get("PATH", "/usr/bin:/bin"), "HOME": self.home, "LANG": "C.UTF-8", "TZ": "UTC",
            "XDG_DATA_HOME": self.data_home, "XDG_CONFIG_HOME": self.config_home,
            "XDG_CACHE_HOME": os.path.join(self.home, ".cache"), "XDG_RUNTIME_DIR": runtime,
            "XDG_STATE_HOME": os.path.join(self.home, ".local", "state"),
            "GSETTINGS_BACKEND": "keyfile", "QT_QPA_PLATFORM": "xcb", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1",
        }
        # What sanitizers and coverage are told from outside reaches the program.
        self.environment.update({key: value for key, value in os.environ.items() if key.endswith("SAN_OPTIONS")})
        if "QUILLMERE_DESKTOP" in os.environ:
            self.environment["XDG_CURRENT_DESKTOP"] = os.environ["QUILLMERE_DESKTOP"]
        if self.scale != 1:
            self.environment["QT_SCALE_FACTOR"] = str(self.scale)
        self._start_display()
        self._start_bus(runtime)
        self._start_window_manager()

    def _start_display(self):
        # -displayfd lets the server itself take a free number; -noreset keeps it when its last client leaves.
        reading, writing = os.pipe()
        self.start(["Xvfb", "-displayfd", str(writing), "-screen", "0", self._size + "x24", "-noreset", "-nolisten",
                    "tcp"], pass_fds=(writing,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        expect("the virtual display started", number)
        self.environment["DISPLAY"] = ":" + number
        for name, geometry in self._monitors.items():
            self.set_monitor(name, geometry, is_main=name == next(iter(self._monitors)))

    def set_monitor(self, name, geometry, is_main=False):
        """A monitor of the display, WIDTHxHEIGHT+X+Y in pixels; the one named “screen” is the display's own."""
        width, height, place = re.fullmatch(r"(\d+)x(\d+)(\+\d+\+\d+)", geometry).groups()
        self.run("xrandr", "--setmonitor", ("*" if is_main else "") + name, f"{width}/300x{height}/200{place}",
                 "screen" if is_main else "none", check=True)

    def remove_monitor(self, name):
        self.run("xrandr", "--delmonitor", name, check=True)

    def _start_window_manager(self):
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        manager = self.window_manager
        self.start(manager.command, environment=manager.environment, **quiet)
        wait_until("the window manager runs",
                   lambda: "window id" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"), 20)
        if manager.needs_picom:
            self.start_compositor()
        if manager.is_compositing:
            wait_until("it composites", lambda: self.has_compositor, 20)

    def start_compositor(self):
        """One beside the window manager."""
        process = self.start(_PICOM, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until("the compositor runs", lambda: self.has_compositor)
        return process

    @property
    def has_compositor(self):
        display = Xlib.display.Display(self.environment["DISPLAY"])
        try:
            return display.get_selection_owner(display.get_atom("_NET_WM_CM_S0")) != Xlib.X.NONE
        finally:
            display.close()

    def _start_bus(self, runtime):
        # Only the accessibility bus can be started by name, so no service of this machine joins in.
        services, socket = os.path.join(self.scratch, "services"), os.path.join(runtime, "bus")
        os.mkdir(services)
        shutil.copy("/usr/share/dbus-1/services/org.a11y.Bus.service", services)
        configuration = os.path.join(self.scratch, "bus.conf")
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(_BUS_CONFIGURATION.format(socket=socket, services=services))
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + socket
        self._run_bus = lambda: self.start(["dbus-daemon", "--nofork", "--config-file", configuration],
                                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self._bus_process = self._run_bus()
        self.bus = wait_until("the session bus answers", self._connect_to_bus)

    def restart_bus(self):
        """At the same address, as the session's service manager does it. The accessibility bus goes with it."""
        self._bus_process.kill()
        self._bus_process.wait()
        self._bus_process = self._run_bus()
        self.bus = wait_until("the new session bus answers", self._connect_to_bus)

    def _connect_to_bus(self):
        # Its socket is there a moment before it listens.
        try:
            return accessibility.connect(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        except GLib.Error:
            return None

    def __exit__(self, kind, error, trace):
        # A program built with a sanitizer tells what it found here, and may have ended as it should all the same.
        is_sane = "Sanitizer: " not in self._printed()
        if error is None and not is_sane:
            error = JourneyFailed("the sanitizer found something")
        if error is not None:
            self._report(error)
        self._tear_down()
        if kind is None and error is not None:
            raise error

    def _printed(self):
        self.errors.seek(0)
        return self.errors.read()

    def _report(self, error):
        # An excerpt of a long report shows its beginning or its end; the reason is told at both.
        print(f"{self.name}: {error!r}" if not isinstance(error, JourneyFailed) else f"{self.name}: {error}", flush=True)
        os.makedirs(self.pictures, exist_ok=True)
        picture = os.path.join(self.pictures, f"failed-{self.name}.png")
        self.picture(picture)
        print(f"The screen: {picture}")
        if self.program is not None and self.program.is_running:
            try:
                print("The windows:\n" + self.program.tree.describe())
            except GLib.Error as problem:
                print(f"The windows cannot be read: {problem.message}")
        print("The list: " + json.dumps([[item.get("state"), item.get("createdAt"), os.path.basename(path_of(item))]
                                         for item in self.records()],
                                        ensure_ascii=False))
        print("What the program printed:\n" + self._printed(), flush=True)

    def _tear_down(self):
        for process in reversed(self._processes):
            if process.poll() is None:
                process.kill()
            process.wait()
        if hasattr(self, "errors"):
            self.errors.close()
        shutil.rmtree(getattr(self, "scratch", ""), ignore_errors=True)

    # Processes

    def start(self, command, environment=None, **options):
        process = subprocess.Popen(command, env={**self.environment, **(environment or {})}, stdin=subprocess.DEVNULL,
                                   preexec_fn=_die_with_parent, **options)
        self._processes.append(process)
        return process

    def run(self, *command, check=False):
        done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True, text=True,
                              timeout=60, check=check)
        return done.stdout

    def launch(self, *arguments, timeout=20.0):
        """Starts the program and waits until it is up: from then on captures are announced."""
        self.program = Program(self, arguments)
        wait_until("the program took its name on the bus", self.has_bus_name, timeout)
        # Answered from the program's main loop, and so after its folder is watched; it has no such action.
        self.action("none", wait=True)
        return self.program

    def has_bus_name(self):
        expect("the program runs on", self.program.is_running)
        return accessibility.call(self.bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                  "NameHasOwner", GLib.Variant("(s)", ("com.quillmere.app",)))[0]

    def action(self, name, wait=False):
        """Waits for no reply by default: quitting may first ask a question."""
        target = ("com.quillmere.app", "/com/quillmere/app", "org.freedesktop.Application", "ActivateAction")
        arguments = GLib.Variant("(sava{sv})", (name, [], {}))
        if wait:
            accessibility.call(self.bus, *target, arguments, timeout=20)
        else:
            self.bus.call(*target, arguments, None, 0, -1, None, None)
            self.bus.flush_sync(None)

    # Settings and records

    def choose_folder(self, folder=None, settings=None):
        """The folder is chosen before the program starts, and what else is set."""
        bookmark = json.dumps({"path": folder or self.folder}).encode()
        self.write_settings({"quillmere.staging-folder-bookmark": base64.b64encode(bookmark).decode(),
                             **(settings or {})})

    def write_settings(self, settings):
        """The welcome is over, unless they say otherwise."""
        directory = os.path.join(self.config_home, "Quillmere")
        os.makedirs(directory, exist_ok=True)
        with open(os.path.join(directory, "settings.json"), "w", encoding="utf-8") as file:
            json.dump({"quillmere.welcome-seen": True, **settings}, file)

    def save_setting(self, group, key, value):
        """A setting of another program."""
        directory = os.path.join(self.config_home, "glib-2.0", "settings")
        os.makedirs(directory, exist_ok=True)
        with open(os.path.join(directory, "keyfile"), "w", encoding="utf-8") as file:
            file.write(f"[{group}]\n{key}={value}\n")

    @property
    def list_file(self):
        return os.path.join(self.data_home, "Quillmere", "screenshots.json")

    def records(self):
        """The list as it stands on disk, newest first; empty while there is none."""
        try:
            with open(self.list_file, encoding="utf-8") as file:
                return json.load(file)["items"]
        except FileNotFoundError:
            return []

    def record_of(self, path):
        found = [item for item in self.records() if path_of(item) == path]
        expect(f"{path} is listed once at most, not {len(found)} times", len(found) < 2)
        return found[0] if found else None

    def state_of(self, path):
        record = self.record_of(path)
        return record["state"] if record else None

    # Mouse and keys

    def find(self, name=None, role=None, window=None):
        return self.program.tree.find(name, role, window)

    def wait_for(self, name=None, role=None, window=None, timeout=10.0):
        return wait_until(f"a control {role or ''} {name!r} shows", lambda: self.find(name, role, window), timeout)

    def click(self, control):
        """A press and a release of the pointer in the middle of it, where the window really is on the screen."""
        place = None
        while (now := self.settled_place_of(control)) != place:
            self.move_pointer(place := now)
        self.run("xdotool", "click", "1", check=True)

    def settled_place_of(self, control):
        """When it is the same twice: a card that changes its height moves between the two questions for a place."""
        place = self.place_of(control)
        while (now := self.place_of(control)) != place:
            place = now
        return place

    def place_of(self, control):
        """The middle of it, counted from the corner of the screen."""
        x, y = control.centre
        left, top = self._corner_of(control.window)
        return left + round(x * self.scale), top + round(y * self.scale)

    def move_pointer(self, place):
        self.run("xdotool", "mousemove", str(place[0]), str(place[1]), check=True)

    def _corner_of(self, window):
        identifiers = self.window_ids(window.name) if window.name else []
        if len(identifiers) != 1:
            return tuple(round(number * self.scale) for number in window.extents[:2])  # a menu has no title and stands where the program put it
        # Not xdotool: it counts a frame twice.
        described = self.run("xwininfo", "-id", identifiers[0])
        return tuple(int(number) for number in re.findall(r"Absolute upper-left .: +(-?\d+)", described))

    def key(self, *keys):
        self.run("xdotool", "key", *keys, check=True)

    def type(self, text):
        self.run("xdotool", "type", "--delay", "20", text, check=True)

    # Windows

    def window_ids(self, title):
        """Mapped windows of this title."""
        return self.run("xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(title)}$").split()

    def active_window(self):
        match = re.search(r"0x[0-9a-f]+", self.run("xprop", "-root", "_NET_ACTIVE_WINDOW"))
        return int(match.group(), 16) if match else 0

    def active_title(self):
        window = self.active_window()
        return self.run("xdotool", "getwindowname", str(window)).strip() if window else ""

    def picture(self, path):
        self.run("scrot", "--overwrite", path)

    @property
    def popup(self):
        return Popup(self)


class Popup:
    """The popup as a person sees and uses it."""

    def __init__(self, desktop):
        self._desktop = desktop

    @property
    def is_shown(self):
        return bool(self._desktop.window_ids(POPUP_TITLE))

    def find(self, name=None, role=None):
        return self._desktop.program.tree.find(name, role, POPUP_TITLE)

    @property
    def stem(self):
        """The file name on show, without its extension; None while there is no popup."""
        try:
            field = self.find("Filename", ("text", "entry"))
            return field.text if field else None
        except GLib.Error:
            return None

    @property
    def waiting_count(self):
        label = self.find(re.compile(r"^\d+ more"))
        return int(label.name.split()[0]) if label else 0

    def wait_for(self, path, timeout=10.0):
        stem = os.path.splitext(os.path.basename(path))[0]
        try:
            wait_until("the popup", lambda: self.is_shown and self.stem == stem, timeout)
        except JourneyFailed:
            raise JourneyFailed(f"within {timeout:g} s the popup should show “{stem}”; it shows “{self.stem}”") from None

    def wait_gone(self, timeout=10.0):
        wait_until("the popup is gone", lambda: not self.is_shown, timeout)

    def press(self, name, role="push button"):
        """A click of the pointer on a button."""
        self._wait_until_at_rest()
        button = wait_until(f"the button {name} of the popup", lambda: self.find(name, role))
        self._desktop.click(button)

    def _wait_until_at_rest(self):
        """Until nothing on it has changed for as long as clicks are dropped after a change: on a busy machine its text
        may be read just before the click. What never rests is clicked all the same."""
        before = None
        for _ in range(10):
            try:
                now = [control.name for control in self._desktop.program.tree.find_all(window=POPUP_TITLE)]
            except GLib.Error:
                now = None  # one of them has gone meanwhile
            if now is not None and now == before:
                return
            before = now
            time.sleep(CLICK_GATE)

    def take_keyboard(self):
        """As the review shortcut does."""
        self._desktop.action("review")
        wait_until("the popup has the keyboard", lambda: self._desktop.active_title() == POPUP_TITLE)
        time.sleep(CLICK_GATE)

    def choose_duration(self, name):
        time.sleep(CLICK_GATE)
        picker = wait_until("the duration menu", lambda: self.find("Temporary duration", "combo box"))
        self._desktop.click(picker)
        self._desktop.click(self._desktop.wait_for(name, "list item", POPUP_TITLE))
        wait_until(f"the duration is {name}", lambda: picker.text == name)

    def tab_to(self, name, role=None):
        for _ in range(30):
            control = self.find(name, role)
            if control is not None and control.is_focused:
                return
            self._desktop.key("Tab")
        raise JourneyFailed(f"Tab does not reach {name}")


def path_of(record):
    """The absolute path in a record's file:// URL."""
    return urllib.parse.unquote(urllib.parse.urlsplit(record["url"]).path, errors="surrogateescape")


def run_journey(name, journey, **desktop_options):
    """Runs it on a desktop of its own and ends the process."""
    run_on(Desktop(name, **desktop_options), journey)


def run_on(new_desktop, journey):
    """Runs it on the desktop, which is gone with the process."""
    name = new_desktop.name
    try:
        with new_desktop as desktop:
            journey(desktop)
    except JourneyFailed as failure:
        print(f"{name}: {failure}", flush=True)
        sys.exit(1)
    print(f"{name}: all as it should be")
    sys.exit(0)


def run_side_by_side(name, journeys):
    """Journeys that mostly wait, each in a process and on a desktop of its own; or the one named as the argument. One
    that needs a desktop of some kind comes with the options of it."""
    if len(sys.argv) > 1:
        journey = journeys[sys.argv[1]]
        journey, options = journey if isinstance(journey, tuple) else (journey, {})
        run_journey(f"{name}-{sys.argv[1]}", journey, **options)
    running = [subprocess.Popen([sys.executable, os.path.abspath(sys.argv[0]), variant], stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                preexec_fn=_die_with_parent) for variant in journeys]
    for process in running:
        print(process.communicate()[0], end="", flush=True)
    sys.exit(max(process.returncode != 0 for process in running))
