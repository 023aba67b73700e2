"""What stands on the desktop: windows of real programs, and for each seed some of them at places of its own."""

import random
import time

from desktop import Failed, wait_until

LETTER = """Dear Mira,

thank you for the photographs. I have put the ones of the harbour first, since everyone asks for them, and left out the
two that came out too dark to print. If you still have the originals, a larger copy of the lighthouse would be good: the
printer wants at least three thousand dots across.

The text for the second chapter is nearly done. What is missing are the dates of the two exhibitions and the name of the
man who lent the boat. I remember the boat very well, and nothing else.

""" * 3
LOG = r"""\033[1m$ make\033[0m
[ 1/12] chapter-1.tex
[ 2/12] chapter-2.tex
[ 3/12] chapter-3.tex: 2 references are not known yet
[ 4/12] figures/overview.svg
[ 5/12] figures/harbour.svg
\033[33mwarning:\033[0m figures/harbour.svg: a font is missing
[12/12] report.pdf

\033[32mDone in 2.4 s.\033[0m
\033[1m$ ls -l figures\033[0m
-rw-r--r-- 1 mira mira  18211 Jan  2 10:14 harbour.svg
-rw-r--r-- 1 mira mira   9120 Jan  2 10:15 overview.svg
-rw-r--r-- 1 mira mira 220915 Jan  3 09:40 lighthouse.png
\033[1m$ \033[0m
"""
FILES = ["harbour.svg", "18 kB", "Drawing", "overview.svg", "9 kB", "Drawing", "lighthouse.png", "221 kB", "Picture",
         "report.pdf", "1.2 MB", "Document", "letter.txt", "3 kB", "Text", "boat.jpg", "2.4 MB", "Picture"] * 3


def programs(desktop, is_dark):
    """Parts of the titles that the windows have, and the commands that open them."""
    letter, log = desktop.write("letter.txt", LETTER), desktop.write("build.log", LOG.replace(r"\033", "\033") * 3)

    def terminal(title, background, foreground, file):
        return ["xterm", "-T", title, "-fa", "DejaVu Sans Mono", "-fs", "10", "-bg", background, "-fg", foreground,
                "-e", "sh", "-c", f"cat {file}; sleep 1000"]

    dialog = "--width=500", "--height=400"
    return {
        "Build": terminal("Build", "#20262c", "#d5dde3", log),
        "Notes": terminal("Notes", *(("#fbf8f0", "#333a40") if not is_dark else ("black", "gray90")), letter),
        "harbour.txt": ["mousepad", "--disable-server", desktop.write("harbour.txt", LETTER)],
        "Letter": ["zenity", "--text-info", "--title=Letter", f"--filename={letter}", *dialog],
        "Figures": ["zenity", "--list", "--title=Figures", "--text=Which of them?", "--column=Name", "--column=Size",
                    "--column=Kind", *FILES, *dialog],
        "chapter.txt": ["featherpad", "--standalone", desktop.write("chapter.txt", LETTER)],
        "Open": ["zenity", "--file-selection", "--title=Open", f"--filename={desktop.home}/"],
        "Files": ["xterm", "-T", "Files", "-fa", "DejaVu Sans Mono", "-fs", "11", "-e", "sh", "-c",
                  f"ls -l /usr/share; cat {log}; sleep 1000"],
    }


def open_all(desktop, screen, is_dark):
    """The identifiers of the windows by the programs' keys."""
    wanted = programs(desktop, is_dark)
    for command in wanted.values():
        desktop.start_program(command)

    def opened():
        titles = {identifier: screen.title_of(identifier) for identifier in screen.all_windows()}
        found = {key: identifier for key in wanted for identifier, title in titles.items() if key in title}
        return found if len(found) == len(wanted) else None

    windows = wait_until("the programs' windows opened", opened, 30)
    for identifier in windows.values():
        screen.put_away(identifier)
    wait_until("the windows are put away", lambda: not screen.windows())
    return windows


def arrange(screen, windows, keys, scale, seed, settle):
    """Puts these out, the last one in front, and gives them as the server tells of them, the lowest first."""
    chance = random.Random(seed)
    for key in windows.keys() - set(keys):
        screen.put_away(windows[key])
    for key in keys:
        identifier = windows[key]
        width, height = (int(side * scale) for side in (chance.randint(520, 1050), chance.randint(360, 700)))
        x, y = (chance.randint(30 * scale, room - side - 60 * scale)
                for room, side in ((screen.width, width), (screen.height, height)))
        screen.take_out(identifier)
        screen.place(identifier, x, y, width, height)
        screen.sync()
        wait_until(f"the window {key} is shown", lambda: identifier in [one.identifier for one in screen.windows()])
        screen.activate(identifier)
        wait_until(f"the window {key} is in front", lambda: screen.windows()[-1].identifier == identifier)
    order = [windows[key] for key in keys]

    def told():
        return [(one.identifier, one.frame) for one in screen.windows()]

    last, since, deadline = told(), time.monotonic(), time.monotonic() + 15
    while time.monotonic() - since < settle:
        time.sleep(0.1)
        now = told()
        if now != last or [identifier for identifier, _ in now] != order:
            last, since = now, time.monotonic()
        if time.monotonic() > deadline:
            raise Failed(f"the windows {keys} do not come to rest")
    return screen.windows()
