#!/usr/bin/python3
"""The program starts with the session without a word and waits for the tray; it ends with the session without a
question, and no screenshot is lost; who quits while some wait is asked."""

import json
import os
import signal
import subprocess
import sys
import time

from gi.repository import GLib

import accessibility
import captures
from fake_tray import EmbeddingTray, FakeTray
from harness import expect, hold_for, run_side_by_side, wait_until

QUESTION = "Quit Quillmere?"
OWN_WINDOWS = ("Quillmere", "Settings", "About Quillmere", "Welcome to Quillmere")
TRAY_ITEMS = ["Open Quillmere", "Review Screenshot", "About Quillmere", "Settings", "Check for Updates…",
              "Quit Quillmere"]
_LOGIND, _LOGIND_PATH = "org.freedesktop.login1", "/org/freedesktop/login1"
_MANAGER, _MOCK = "org.freedesktop.login1.Manager", "org.freedesktop.DBus.Mock"


def own_windows(desktop):
    return [title for title in OWN_WINDOWS if desktop.window_ids(title)]


def three_waiting(desktop):
    shots = [captures.save(desktop.folder) for _ in range(3)]
    desktop.popup.wait_for(shots[0])
    wait_until("all three wait", lambda: all(desktop.state_of(shot) == "pending" for shot in shots))
    return shots


def all_wait_again(desktop, shots):
    expect("it ended with 0", desktop.program.wait() == 0)
    expect("all are still pending", all(desktop.state_of(shot) == "pending" for shot in shots))
    expect("and all files are there", all(os.path.exists(shot) for shot in shots))
    desktop.launch("--autostart")
    desktop.popup.wait_for(shots[0])
    wait_until("the others wait behind it", lambda: desktop.popup.waiting_count == 2)


# --- The start ---

def silent(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    hold_for("no window opens", lambda: not own_windows(desktop), 2)
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    expect("it watches, and still has no window", not own_windows(desktop))


def without_folder(desktop):
    desktop.launch("--autostart")
    desktop.wait_for("Choose Your Screenshot Folder", "label", "Quillmere")


def tray_comes_late(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    for turn in range(2):
        tray = FakeTray(desktop)
        tray.wait_for_icon()
        items = tray.menu.items()
        expect(f"the menu in turn {turn}: {list(items)}", list(items) == TRAY_ITEMS)
        expect("updates cannot be checked", not tray.menu.is_enabled("Check for Updates…"))
        tray.click()
        wait_until("a click opens the Inbox", lambda: desktop.active_title() == "Quillmere")
        desktop.key("ctrl+w")
        wait_until("the Inbox is closed", lambda: not own_windows(desktop))
        tray.menu.choose("Settings")
        wait_until("its item opens the settings", lambda: desktop.active_title() == "Settings")
        desktop.action("close-window", wait=True)
        wait_until("they are closed", lambda: not own_windows(desktop))
        tray.stop()
    # One that does not answer changes nothing.
    FakeTray(desktop, hangs=True)
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


def opens_by_click(desktop, tray):
    """The icon may have been placed just now and not hear the first one, or gone and asked again."""
    if not own_windows(desktop):
        tray.wait_for_icon()
        desktop.run("xdotool", "click", "1", check=True)
        time.sleep(0.5)
    return desktop.active_title() == "Quillmere"


def tray_that_embeds(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    for _ in range(2):
        tray = EmbeddingTray(desktop)
        desktop.move_pointer(tray.wait_for_icon())
        wait_until("a click opens the Inbox", lambda: opens_by_click(desktop, tray))
        desktop.key("ctrl+w")
        wait_until("the Inbox is closed", lambda: not own_windows(desktop))
        tray.stop()


# --- The end ---

def quit_from_the_tray(desktop):
    desktop.choose_folder()
    tray = FakeTray(desktop)
    desktop.launch("--autostart")
    shots = three_waiting(desktop)
    tray.menu.choose("Quit Quillmere")
    wait_until("it asks", lambda: desktop.active_title() == QUESTION)
    expect("in words", desktop.find("3 screenshots are still waiting for a decision. They’ll be waiting again the next "
                                    "time you open Quillmere, but a screenshot you take while it’s closed is saved "
                                    "without a popup.", None, QUESTION))
    (question,) = desktop.window_ids(QUESTION)
    states = desktop.run("xprop", "-id", question, "_NET_WM_STATE")
    expect(f"with no window behind it, it stands in the task bar itself: {states}", "SKIP_TASKBAR" not in states)
    desktop.key("Return")
    wait_until("Return cancels", lambda: not desktop.window_ids(QUESTION))
    hold_for("it runs on", lambda: desktop.program.is_running, 1)
    expect("no window was opened", not own_windows(desktop))
    tray.menu.choose("Quit Quillmere")
    desktop.click(desktop.wait_for("Quit Quillmere", "push button", QUESTION))
    all_wait_again(desktop, shots)


class SessionManager:
    def __init__(self, desktop):
        self.news = []
        script = os.path.join(os.path.dirname(os.path.abspath(__file__)), "session_manager.py")
        self._process = subprocess.Popen([sys.executable, "-B", script], env=desktop.environment,
                                         stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        desktop.environment["SESSION_MANAGER"] = self.next("listens")["at"]

    def next(self, event):
        """What came until then is kept."""
        for line in self._process.stdout:
            told = json.loads(line)
            self.news.append(told)
            if told["event"] == event:
                return told
        expect(f"the session manager tells that something {event}", False)
        return None

    def order(self, command):
        self._process.stdin.write(command + "\n")
        self._process.stdin.flush()

    def close(self):
        self._process.kill()
        self._process.communicate()


def restart_command(manager):
    told = {}
    for news in manager.news:
        told.update(news.get("values", {}))
    return told


def logout(desktop):
    manager = SessionManager(desktop)
    try:
        desktop.choose_folder()
        desktop.launch("--autostart")
        manager.next("joined")
        shots = three_waiting(desktop)
        # Called off by another program: everything goes on.
        manager.order("save")
        expect("it saved", manager.next("saved")["success"])
        command = restart_command(manager)["RestartCommand"]
        expect(f"without a window it comes back without one: {command}", "--autostart" in command)
        desktop.action("inbox")
        wait_until("the Inbox is open", lambda: desktop.active_title() == "Quillmere")
        manager.order("shutdown")
        expect("it saved", manager.next("saved")["success"])
        command = restart_command(manager)["RestartCommand"]
        expect(f"with a window it comes back with it: {command}", "--autostart" not in command)
        expect("nobody was asked", not desktop.window_ids(QUESTION))
        manager.order("die")
        wait_until("it ended", lambda: not desktop.program.is_running)
        expect("and asked for nothing", not [news for news in manager.news if news["event"] == "asks"])
        del desktop.environment["SESSION_MANAGER"]
        all_wait_again(desktop, shots)
    finally:
        manager.close()


def terminated(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    shots = three_waiting(desktop)
    # Under the question, too.
    desktop.action("quit")
    wait_until("it asks", lambda: desktop.active_title() == QUESTION)
    os.kill(desktop.program.pid, signal.SIGTERM)
    all_wait_again(desktop, shots)


def call_logind(desktop, method, arguments):
    return accessibility.call(desktop.bus, _LOGIND, _LOGIND_PATH, _MOCK, method, arguments)


def calls_of(desktop, method):
    return [arguments for _, arguments in call_logind(desktop, "GetMethodCalls", GLib.Variant("(s)", (method,)))[0]]


def shut_down(desktop):
    """The machine goes down: logind tells it, and waits for whom it was asked to wait for."""
    desktop.environment["DBUS_SYSTEM_BUS_ADDRESS"] = desktop.environment["DBUS_SESSION_BUS_ADDRESS"]
    desktop.start([sys.executable, "-m", "dbusmock", "--system", "-t", "logind"], stdout=subprocess.DEVNULL)
    wait_until("logind runs", lambda: accessibility.call(
        desktop.bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
        GLib.Variant("(s)", (_LOGIND,)))[0])
    given = os.path.join(desktop.scratch, "given")
    os.mkfifo(given)
    end = os.open(given, os.O_RDONLY | os.O_NONBLOCK)
    call_logind(desktop, "AddMethod", GLib.Variant("(sssss)", (_MANAGER, "Inhibit", "ssss", "h", (
        "import os\n"
        f"fd = os.open('{given}', os.O_WRONLY)\n"
        "ret = dbus.types.UnixFd(fd)\n"
        "os.close(fd)"))))
    desktop.choose_folder()
    desktop.launch("--autostart")
    shots = three_waiting(desktop)
    wait_until("what is read in a screenshot is saved soon, and until then the machine would wait",
               lambda: calls_of(desktop, "Inhibit"), 90)
    for arguments in calls_of(desktop, "Inhibit"):
        expect(f"it asks for a delay: {arguments}", (arguments[0], arguments[1], arguments[3]) ==
               ("shutdown", "Quillmere", "delay"))
    wait_until("the machine need not wait any more", lambda: is_let_go(end), 30)
    call_logind(desktop, "EmitSignal", GLib.Variant("(sssav)", (_MANAGER, "PrepareForShutdown", "b",
                                                                [GLib.Variant("b", True)])))
    desktop.action("none", wait=True)
    expect("nobody is asked", not desktop.window_ids(QUESTION) and not own_windows(desktop))
    os.kill(desktop.program.pid, signal.SIGTERM)
    os.close(end)
    all_wait_again(desktop, shots)


def is_let_go(end):
    try:
        return os.read(end, 1) == b""
    except BlockingIOError:
        return False


run_side_by_side("login", {"silent": silent, "without-folder": without_folder, "tray-comes-late": tray_comes_late,
                           "tray-that-embeds": tray_that_embeds,
                           "quit-from-the-tray": quit_from_the_tray, "logout": logout, "terminated": terminated,
                           "shut-down": shut_down})
