"""What is known of captures by what the window system told: of whole screens, of parts of them, of what capture tools
make of a window, of a capture after which the window moved, and of one from another desktop."""

import collections
import json
import os
import random
import subprocess
import time

from PIL import Image

from verdicts import is_match, rectangle_of, visible_share

# What each is started with before the file's path, and whether it takes the window in front alone.
TOOLS = {
    "scrot, screen": (["scrot"], False),
    "scrot, window": (["scrot", "-u", "-b"], True),
    "scrot, window's content": (["scrot", "-u"], True),
    "gnome-screenshot, screen": (["gnome-screenshot", "-f"], False),
    "gnome-screenshot, window": (["gnome-screenshot", "-w", "-f"], True),
    "xfce4-screenshooter, screen": (["xfce4-screenshooter", "-f", "-s"], False),
    "xfce4-screenshooter, window": (["xfce4-screenshooter", "-w", "-s"], True),
    "spectacle, screen": (["spectacle", "-b", "-n", "-f", "-o"], False),
    "spectacle, window": (["spectacle", "-b", "-n", "-a", "-o"], True),
    "flameshot, screen": (["flameshot", "full", "-p"], False),
}
REGIONS = 2  # of each capture: one around a window, one anywhere


class Tally:
    """How often each kind of capture was right, told nothing, or was wrong."""

    def __init__(self):
        self.counts = collections.defaultdict(collections.Counter)
        self.wrong = []
        self.windows = collections.Counter()

    def add(self, kind, verdict, name):
        self.counts[kind][verdict] += 1
        if verdict == "wrong":
            self.wrong.append(f"{kind}: {name}")


def told(detector, path, states):
    found = subprocess.run([detector, path, "--states", states, "--only-known"], capture_output=True, text=True,
                           check=True, timeout=120)
    return json.loads(found.stdout)["known"]


def _front(known):
    return rectangle_of(known["windows"][known["front"]]) if known and known["front"] is not None else None


def _verdict(known, is_right):
    return "nothing" if not known else "right" if is_right else "wrong"


def screen(tally, name, known, shown):
    frames = [window.frame for window in shown]
    tally.add("whole screen", _verdict(known, _front(known) and is_match(_front(known), frames[-1])), name)
    found = [rectangle_of(one) for one in known["windows"]] if known else []
    for i, frame in enumerate(frames):
        half = visible_share(frame, frames[i + 1:]) >= 0.5
        is_found = any(is_match(one, frame) for one in found)
        tally.windows.update({"all": 1, "found": is_found, "half": half, "half found": half and is_found})


def parts(tally, name, detector, path, states, shown, seed):
    """Cut out of the capture, as tools cut them out of the screen."""
    chance, whole = random.Random(f"part {name} {seed}"), Image.open(path).convert("RGB")
    for i in range(REGIONS):
        width, height = (chance.randint(room // 6, room * 2 // 3) for room in whole.size)
        x, y = (chance.randint(0, room - side) for room, side in zip(whole.size, (width, height)))
        if i == 0:
            left, top, wide, high = chance.choice(shown).frame
            x, y = (max(0, place - chance.randint(5, 60)) for place in (left, top))
            width = min(whole.width - x, wide + chance.randint(10, 120))
            height = min(whole.height - y, high + chance.randint(10, 120))
        part = path.replace(".png", f"-part{i}.png")
        whole.crop((x, y, x + width, y + height)).save(part, compress_level=1)
        known = told(detector, part, states)
        true = [_clipped(window.frame, (x, y, width, height)) for window in shown]
        is_right = known and all(any(is_match(rectangle_of(one), frame) for frame in true if frame)
                                 for one in known["windows"])
        tally.add("part around a window" if i == 0 else "part anywhere", _verdict(known, is_right), f"{name} {x},{y}")
        os.remove(part)


def _clipped(frame, part):
    x1, y1 = max(frame[0], part[0]), max(frame[1], part[1])
    x2, y2 = min(frame[0] + frame[2], part[0] + part[2]), min(frame[1] + frame[3], part[1] + part[3])
    return (x1 - part[0], y1 - part[1], x2 - x1, y2 - y1) if x2 > x1 and y2 > y1 else None


def by_tools(tally, name, detector, desktop, watch, folder, front):
    for tool, (command, is_window) in TOOLS.items():
        path, states = (os.path.join(folder, "tool" + end) for end in (".png", ".states"))
        try:
            subprocess.run([*command, path], env=desktop.environment, capture_output=True, timeout=30, check=False)
        except subprocess.TimeoutExpired:
            continue
        if not _comes(path):
            continue
        watch.write(states)
        known = told(detector, path, states)
        is_right = known and (known["kind"] == "window" if is_window else is_match(_front(known), front.frame))
        tally.add(tool, _verdict(known, is_right), name)
        os.remove(path)


def _comes(path):
    """Some tools write when they have ended."""
    for _ in range(40):
        try:
            Image.open(path).load()
            return True
        except (OSError, SyntaxError):
            time.sleep(0.1)
    return False


def print_all(tally):
    print("## Known by what the window system told\n")
    counts = tally.windows
    print(f"Of whole screens: {counts['found']} of {counts['all']} windows, {counts['half found']} of the "
          f"{counts['half']} at least half visible ones.\n")
    print("| | right | nothing | wrong |\n| --- | --- | --- | --- |")
    for kind, verdicts in tally.counts.items():
        print(f"| {kind} | {verdicts['right']} | {verdicts['nothing']} | {verdicts['wrong']} |")
    print()
    for line in tally.wrong:
        print(f"Wrong: {line}")
    print()
