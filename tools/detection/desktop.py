"""A private desktop: display, session bus and home of its own, all gone at the end."""

import ctypes
import os
import shutil
import signal
import subprocess
import tempfile
import time

_BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={socket}</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow user="*"/><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
  </policy>
</busconfig>
"""
# Of this machine's services only the settings of Xfce are started by name.
_SERVICES = ["/usr/share/dbus-1/services/org.xfce.Xfconf.service"]

# Some programs warn of root across their windows, so that root starts them as another.
_NOBODY = 65534

_PR_SET_PDEATHSIG = 1
_libc = ctypes.CDLL(None)


class Failed(Exception):
    """What did not come true; the rest of the measurement goes on without this desktop."""


def _die_with_parent():
    _libc.prctl(_PR_SET_PDEATHSIG, signal.SIGKILL)


def wait_until(what, condition, timeout=20.0):
    deadline = time.monotonic() + timeout
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise Failed(f"not within {timeout:g} s: {what}")
        time.sleep(0.05)


class Desktop:
    def __init__(self, scale):
        self.scale = scale
        self.width, self.height = 1920 * scale, 1080 * scale
        self._processes = []

    def __enter__(self):
        try:
            self._set_up()
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self._processes):
            # The bus starts helpers, which belong to its group.
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
        if hasattr(self, "log"):
            self.log.close()
        shutil.rmtree(getattr(self, "scratch", ""), ignore_errors=True)

    def _set_up(self):
        self.scratch = tempfile.mkdtemp(prefix="quillmere-detection-")
        self.home = os.path.join(self.scratch, "home")
        runtime = os.path.join(self.scratch, "runtime")
        os.mkdir(self.home)
        os.mkdir(runtime, 0o700)
        self.log = open(os.path.join(self.scratch, "log.txt"), "w+", encoding="utf-8", errors="replace")
        self.environment = {
            "PATH": os.environ.get("PATH", "/usr/bin:/bin"), "HOME": self.home, "LANG": "C.UTF-8", "TZ": "UTC",
            "XDG_CONFIG_HOME": os.path.join(self.home, ".config"), "XDG_RUNTIME_DIR": runtime,
            "XDG_CACHE_HOME": os.path.join(self.home, ".cache"), "XDG_DATA_HOME": os.path.join(self.home, ".share"),
            "GSETTINGS_BACKEND": "keyfile", "NO_AT_BRIDGE": "1", "GTK_A11Y": "none", "LIBGL_ALWAYS_SOFTWARE": "1",
            "QT_QPA_PLATFORM": "xcb", "QT_QPA_PLATFORMTHEME": "qt5ct", "QT_AUTO_SCREEN_SCALE_FACTOR": "0",
        }
        if self.scale != 1:
            # Both multiply their factor by that of the fonts, and so are told to leave those.
            self.environment.update(GDK_SCALE=str(self.scale), GDK_DPI_SCALE=str(1 / self.scale),
                                    QT_SCALE_FACTOR=str(self.scale), QT_FONT_DPI="96",
                                    XCURSOR_SIZE=str(24 * self.scale))
        self._prepare_bus(runtime)
        self._start_display()
        self._start_bus()

    def _prepare_bus(self, runtime):
        services, socket = os.path.join(self.scratch, "services"), os.path.join(runtime, "bus")
        os.mkdir(services)
        for service in _SERVICES:
            if os.path.exists(service):
                shutil.copy(service, services)
        self.write("../bus.conf", _BUS_CONFIGURATION.format(socket=socket, services=services))
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + socket
        self._configuration = os.path.join(self.scratch, "bus.conf")

    def _start_display(self):
        # -displayfd lets the server itself take a free number; -noreset keeps it when its last client leaves.
        reading, writing = os.pipe()
        self.start(["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{self.width}x{self.height}x24", "-dpi",
                    str(96 * self.scale), "-noreset", "-nolisten", "tcp"], pass_fds=(writing,))
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise Failed("the virtual display did not start")
        self.environment["DISPLAY"] = ":" + number

    def _start_bus(self):
        # After the display, which what it starts must know.
        self.start(["dbus-daemon", "--nofork", "--config-file", self._configuration])
        socket = self.environment["DBUS_SESSION_BUS_ADDRESS"].partition("=")[2]
        wait_until("the session bus listens", lambda: os.path.exists(socket))

    def write(self, path, text):
        """A file in the home."""
        full = os.path.join(self.home, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as file:
            file.write(text)
        return full

    def start(self, command, **options):
        process = subprocess.Popen(command, env={**self.environment, **options.pop("env", {})},
                                   stdin=subprocess.DEVNULL, stdout=self.log, stderr=self.log, cwd=self.home,
                                   preexec_fn=_die_with_parent, start_new_session=True, **options)
        self._processes.append(process)
        return process

    def start_program(self, command):
        """A program with windows. What it reads of the home is there already."""
        if os.geteuid() != 0:
            return self.start(command)
        for path, folders, files in os.walk(self.scratch):
            for name in (".", *folders, *files):
                os.chown(os.path.join(path, name), _NOBODY, _NOBODY, follow_symlinks=False)
        return self.start(command, user=_NOBODY, group=_NOBODY, extra_groups=[])

    def run(self, *command):
        try:
            done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True,
                                  text=True, timeout=60, check=False)
        except subprocess.TimeoutExpired as late:
            raise Failed(str(late)) from late
        if done.returncode != 0:
            raise Failed(f"{command[0]} said: {done.stderr.strip() or done.stdout.strip()}")
        return done.stdout

    def last_words(self):
        """The end of what the desktop's programs printed."""
        self.log.flush()
        with open(self.log.name, encoding="utf-8", errors="replace") as file:
            return file.read()[-1500:]
