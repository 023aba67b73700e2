#!/usr/bin/python3
"""Takes ten captures of desktops of many sizes, with photographs, terminals, file managers, documents and the program's
own windows, for what measures how pictures are read and written. Prints a line for each.

  take_captures.py FOLDER
"""

import os
import subprocess
import sys
import time

import captures
from harness import ROOT, Desktop, wait_until

PHOTOGRAPHS = "/usr/share/backgrounds/mate"
SOURCE = os.path.join(ROOT, "src", "model", "AppModelCrops.cpp")
CHANGES = os.path.join(ROOT, "CHANGELOG.md")
GUIDE = os.path.join(ROOT, "docs", "architecture.md")


class Scene:
    """What stands on one desktop; `scale` is also that of the programs' letters."""

    def __init__(self, desktop):
        self.desktop = desktop

    def photograph(self, name):
        self.desktop.run("hsetroot", "-cover", os.path.join(PHOTOGRAPHS, name), check=True)

    def colour(self, value):
        self.desktop.run("hsetroot", "-solid", value, check=True)

    def terminal(self, command, frame, background="#20262c", letters="#d5dde3"):
        title = f"Terminal {frame}"
        self._start(["xterm", "-T", title, "-fa", "DejaVu Sans Mono", "-fs", str(10 * self.desktop.scale), "-bg",
                     background, "-fg", letters, "-e", "sh", "-c", f"{command}; sleep 1000"])
        self._place(f"^{title}$".replace("(", r"\(").replace(")", r"\)"), frame)

    def text(self, path, frame):
        title = os.path.basename(path)
        self._start(["zenity", "--text-info", f"--title={title}", f"--filename={path}"])
        self._place(f"^{title}$", frame)

    def folder(self, path, frame):
        self._start(["thunar", path])
        self._place(f"^{os.path.basename(path)}", frame)

    def inbox(self, frame):
        """With some screenshots in it."""
        desktop = self.desktop
        desktop.choose_folder()
        desktop.launch("--autostart")
        colours = ((70, 130, 180), (200, 120, 60), (60, 60, 70), (230, 230, 225))
        for index, colour in enumerate(colours):
            desktop.popup.wait_for(captures.save(desktop.folder, width=640 + 40 * index, height=400, colour=colour))
            desktop.popup.press("Keep")
            desktop.popup.wait_gone()
        desktop.action("inbox", wait=True)
        self._place("^Quillmere$", frame)

    def settings(self):
        self.desktop.action("settings", wait=True)
        wait_until("the settings are shown", lambda: self.desktop.window_ids("Settings"))

    def popup(self):
        self.desktop.popup.wait_for(captures.save(self.desktop.folder, width=900, height=560, colour=(40, 90, 60)))

    def _start(self, command):
        self.desktop.start(command, {"NO_AT_BRIDGE": "1", "GDK_SCALE": str(self.desktop.scale)},
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def _place(self, title, frame):
        window = wait_until(f"a window {title} is shown", lambda: self.desktop.run(
            "xdotool", "search", "--onlyvisible", "--name", title).split(), 30)[-1]
        self.desktop.run("wmctrl", "-i", "-r", window, "-e", "0," + ",".join(map(str, frame)), check=True)


def terminal_alone(scene):
    scene.colour("#3b4252")
    scene.terminal(f"cat {SOURCE}", (0, 0, 800, 560))


def folder_on_photograph(scene):
    scene.photograph("nature/Garden.jpg")
    scene.folder("/usr/share", (180, 120, 860, 540))


def terminals_on_photograph(scene):
    scene.photograph("nature/Storm.jpg")
    scene.terminal("ls -l --color=always /usr/lib", (40, 40, 760, 500))
    scene.terminal(f"cat {SOURCE}", (520, 220, 800, 480), "#fbf8f0", "#333a40")


def document(scene):
    scene.colour("#2e7d6b")
    scene.text(CHANGES, (0, 0, 1920, 1040))


def windows_on_drawing(scene):
    scene.photograph("abstract/Waves.png")
    scene.text(GUIDE, (90, 80, 900, 800))
    scene.folder("/etc", (760, 300, 1000, 640))


def inbox(scene):
    scene.photograph("nature/YellowFlower.jpg")
    scene.inbox((300, 150, 1700, 1050))


def large_settings(scene):
    scene.photograph("desktop/GreenTraditional.jpg")
    scene.inbox((120, 100, 2000, 1300))
    scene.settings()


def photograph_alone(scene):
    scene.photograph("nature/LadyBird.jpg")
    scene.terminal("uname -a", (2300, 1500, 1200, 500))


def large_windows(scene):
    scene.photograph("abstract/Elephants_3840x2160.jpg")
    scene.folder("/usr/share", (200, 160, 1900, 1300))
    scene.text(CHANGES, (1700, 500, 1900, 1500))


def everything(scene):
    scene.photograph("abstract/Elephants_5640x3172.jpg")
    scene.folder("/usr/share", (200, 200, 2000, 1500))
    scene.text(GUIDE, (1500, 900, 2200, 1800))
    scene.terminal(f"cat {SOURCE}", (3000, 300, 1900, 1600))
    scene.inbox((600, 1200, 2400, 1500))
    scene.popup()


SCENES = [
    (terminal_alone, "800x600", "openbox", 1), (folder_on_photograph, "1280x800", "xfwm4+compositor", 1),
    (terminals_on_photograph, "1366x768", "openbox+picom", 1), (document, "1920x1080", "openbox", 1),
    (windows_on_drawing, "1920x1200", "xfwm4+compositor", 1), (inbox, "2560x1440", "openbox+picom", 1),
    (large_settings, "2560x1600", "openbox+picom", 2), (photograph_alone, "3840x2160", "openbox", 2),
    (large_windows, "3840x2160", "openbox+picom", 2), (everything, "5120x2880", "openbox+picom", 2),
]


def main(folder):
    for number, (arrange, size, manager, scale) in enumerate(SCENES):
        name = f"{number:02}_{arrange.__name__}_{size}"
        with Desktop(name, size, manager, scale=scale) as desktop:
            arrange(Scene(desktop))
            time.sleep(2)  # until every program has drawn, and what fades in has done so
            desktop.run("scrot", os.path.join(folder, name + ".png"), check=True)
        print(name, flush=True)


main(sys.argv[1])
