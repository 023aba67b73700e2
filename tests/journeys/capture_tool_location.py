#!/usr/bin/python3
"""The capture tools themselves save where the program says they do: before a change, after it and after its undo."""

import glob
import os
import shutil
import subprocess

from harness import ROOT, JourneyFailed, expect, run_side_by_side, wait_until

PROBE = os.environ.get("QUILLMERE_LOCATION_PROBE") or os.path.join(ROOT, "build", "location_probe")

# Each of these characters means something in one of the configuration files.
HARD_NAME = "Shöts 1ä2 漢😀, 100% %41; a=b \"q\" 'r' \\n $HOME #1"
# Which the tools that know names as text only cannot save to.
NAME_THAT_IS_NO_TEXT = b"Sh\xf6ts"


class Tool:
    """One capture tool, alone in the search path of the program's code, and how a screenshot is taken with it."""

    def __init__(self, desktop, command, configuration=None, text=""):
        self.desktop = desktop
        self.command = command
        # The accessibility bridge of the other programs' toolkit only delays them here.
        self.environment = {**desktop.environment, "NO_AT_BRIDGE": "1"}
        self.file = configuration and os.path.join(desktop.config_home, configuration)
        if text:
            os.makedirs(os.path.dirname(self.file), exist_ok=True)
            with open(self.file, "w", encoding="utf-8") as file:
                file.write(text)
        self.bin = os.path.join(desktop.scratch, "bin")
        os.mkdir(self.bin)
        program = shutil.which(command[0], path=desktop.environment["PATH"])
        expect(f"{command[0]} is installed", program)
        os.symlink(program, os.path.join(self.bin, command[0]))

    def probe(self, *arguments):
        """What it printed; None when it ended with 1."""
        done = subprocess.run([PROBE, *arguments], env={**self.environment, "PATH": self.bin}, capture_output=True,
                              timeout=20)
        expect(f"the probe understands {arguments}: {done.stderr}", done.returncode in (0, 1))
        return os.fsdecode(done.stdout.removesuffix(b"\n")) if done.returncode == 0 else None

    def start(self):
        # In a folder of its own: a tool that does not understand its value may take it for a relative path.
        directory = os.path.join(self.desktop.scratch, "elsewhere")
        os.makedirs(directory, exist_ok=True)
        return subprocess.Popen(self.command, env=self.environment, cwd=directory, stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=self.desktop.errors)

    def take(self):
        """Takes a screenshot and gives the folder in which it is then found."""
        before = self._pictures()
        process = self.start()
        try:
            self._answer()
            process.wait(30)
        except subprocess.TimeoutExpired:
            raise JourneyFailed(f"{self.command[0]} does not end") from None
        finally:
            process.kill()
            process.wait()
        new = wait_until(f"{self.command[0]} saved a screenshot", lambda: self._pictures() - before)
        expect(f"it is one, not {new}", len(new) == 1)
        saved = new.pop()
        # The next one may be of the same name.
        os.remove(saved)
        return os.path.dirname(saved)

    def _answer(self):
        """What a person does meanwhile."""

    def _pictures(self):
        return set(glob.glob(os.path.join(self.desktop.scratch, "**", "*.png"), recursive=True))

    def configuration(self):
        with open(self.file, "rb") as file:
            return file.read()


class DialogTool(Tool):
    """Asks what to do with the screenshot and where to save it; both times with the answer that is wanted here."""

    def _answer(self):
        for title in ("Screenshot", "Save screenshot as..."):
            wait_until(f"the window “{title}” has the keyboard", lambda: self.desktop.active_title() == title)
            self.desktop.key("Return")
            wait_until(f"the window “{title}” is gone", lambda: self.desktop.active_title() != title)


def make_folder(desktop, name):
    path = os.path.join(os.fsencode(desktop.home), name if isinstance(name, bytes) else name.encode())
    os.makedirs(path, exist_ok=True)
    return os.fsdecode(path)


def name_pictures_folder(desktop, name):
    with open(os.path.join(desktop.config_home, "user-dirs.dirs"), "w", encoding="utf-8") as file:
        file.write(f'XDG_PICTURES_DIR="$HOME/{name}"\n')
    return make_folder(desktop, name)


def saves_where_it_is_told(tool):
    told = tool.probe("folder")
    saved = tool.take()
    expect(f"{tool.command[0]} should save to {told!r}, not to {saved!r}", saved == told)
    return told


def check_change_and_undo(tool, folder):
    before, previous = saves_where_it_is_told(tool), tool.probe("raw")
    expect(f"a change to {folder!r} is accepted", tool.probe("set-folder", folder) is not None)
    expect("it is the new folder", saves_where_it_is_told(tool) == folder)
    undo = ("unset",) if previous is None else ("set", previous)
    expect("the undo is accepted", tool.probe(*undo) is not None)
    expect("its value is the old one", tool.probe("raw") == previous)
    expect("it saves where it did before", saves_where_it_is_told(tool) == before)


def check(tool, keeps_any_name):
    # Nothing is set; then a folder is.
    check_change_and_undo(tool, make_folder(tool.desktop, HARD_NAME))
    expect("a plain folder is accepted", tool.probe("set-folder", make_folder(tool.desktop, "plain")) is not None)
    check_change_and_undo(tool, make_folder(tool.desktop, HARD_NAME))
    no_text = make_folder(tool.desktop, NAME_THAT_IS_NO_TEXT)
    if keeps_any_name:
        check_change_and_undo(tool, no_text)
    else:
        expect("a name that it cannot keep is refused", tool.probe("set-folder", no_text) is None)
    expect("the folder is taken out again", tool.probe("unset") is not None)
    # Its own default moves with the person's folders.
    bilder = name_pictures_folder(tool.desktop, "Bilder")
    return saves_where_it_is_told(tool) == bilder


def spectacle(desktop):
    tool = Tool(desktop, ["spectacle", "-b", "-n", "-f"], "spectaclerc", "[General]\nincludePointer=true\n")
    expect("pictures are its default", check(tool, keeps_any_name=False))
    expect("its other settings are there", b"[General]\nincludePointer=true\n" in tool.configuration())
    # Its key may ask for variables to be expanded.
    with open(tool.file, "w", encoding="utf-8") as file:
        file.write("[Save]\ndefaultSaveLocation[$e]=$HOME/plain\n")
    check_change_and_undo(tool, make_folder(desktop, HARD_NAME))


def flameshot(desktop):
    # Without a fixed path it asks each time.
    tool = Tool(desktop, ["flameshot", "full"], "flameshot/flameshot.ini",
                f"[General]\nsavePath={desktop.folder}\nsavePathFixed=true\nuiColor=#740096\n")
    check_change_and_undo(tool, make_folder(desktop, HARD_NAME))
    expect("the file is as it was", tool.configuration().decode() ==
           f"[General]\nsavePath={desktop.folder}\nsavePathFixed=true\nuiColor=#740096\n")
    expect("a name that it cannot keep is refused",
           tool.probe("set-folder", make_folder(desktop, NAME_THAT_IS_NO_TEXT)) is None)


def gnome_screenshot(desktop):
    expect("pictures are its default", check(Tool(desktop, ["gnome-screenshot"]), keeps_any_name=True))


def xfce4_screenshooter(desktop):
    tool = DialogTool(desktop, ["xfce4-screenshooter", "-f"], "xfce4/xfce4-screenshooter")
    check(tool, keeps_any_name=True)


def ksnip(desktop):
    tool = Tool(desktop, ["ksnip", "-f", "-s"], "ksnip/ksnip.conf",
                "[Application]\nSaveFilename=ksnip_$T\n\n[Painter]\nTextFont=Arial\n")
    expect("home is its default", not check(tool, keeps_any_name=False))
    expect("the file is as it was",
           tool.configuration() == b"[Application]\nSaveFilename=ksnip_$T\n\n[Painter]\nTextFont=Arial\n")


run_side_by_side("capture-tool-location", {tool.__name__: tool for tool in (
    spectacle, flameshot, gnome_screenshot, xfce4_screenshooter, ksnip)})
