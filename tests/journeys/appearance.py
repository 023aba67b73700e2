#!/usr/bin/python3
"""All windows look as the desktop wants it, from the start and while they are open, whichever way it tells."""

import os
import signal

import captures
from fake_portal import FakePortal
from harness import POPUP_TITLE, expect, run_journey, wait_until
from screen import Screen, is_dark, is_light
from steps import open_settings, quit_program

INBOX, SETTINGS = "Quillmere", "Settings"
BLACK, WHITE = (0, 0, 0), (255, 255, 255)
VIOLET = (145, 65, 172)
YELLOW = (255, 255, 0)


def open_windows(desktop):
    desktop.launch()
    open_settings(desktop, "Screenshots")
    # Side by side: what is covered has no pixels.
    for title, place in ((SETTINGS, "0,0,0,560,500"), (INBOX, "0,580,0,690,620")):
        desktop.run("wmctrl", "-F", "-r", title, "-e", place, check=True)
    return Screen(desktop)


def has_ground(screen, kind):
    for title in (INBOX, SETTINGS):
        wait_until(f"the window “{title}” {kind.__name__}", lambda: kind(screen.ground(title)))


def nothing_stands_out(screen, kind):
    """Writing covers little; a field or a label's ground that was left behind would be more."""
    for title in (INBOX, SETTINGS):
        wait_until(f"nothing in “{title}” {kind.__name__}", lambda: screen.share(title, kind) < 0.03)


def has_accent(screen, colour):
    # The selected row of the list.
    wait_until(f"the accent is {colour}", lambda: screen.colours(INBOX)[colour] > 1000)


def by_portal(desktop):
    """The portal starts after the program, and first of all it does not answer."""
    hanging = FakePortal(desktop, "import time; time.sleep(3600)")
    screen = open_windows(desktop)
    has_ground(screen, is_light)
    hanging.stop()

    portal = FakePortal(desktop)
    portal.set_number("color-scheme", 1)
    has_ground(screen, is_dark)
    nothing_stands_out(screen, is_light)
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    # Beside the picture.
    wait_until("the popup is dark", lambda: screen.share(POPUP_TITLE, is_dark) > 0.3)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    desktop.action("inbox")
    wait_until("the Inbox is in front", lambda: desktop.active_title() == INBOX)
    desktop.click(desktop.wait_for(os.path.basename(shot), "list item", INBOX))

    portal.set_accent(*(channel / 255 for channel in VIOLET))
    has_accent(screen, VIOLET)
    portal.set_accent(1.0, 1.0, 0.0)
    has_accent(screen, YELLOW)
    portal.set_number("contrast", 1)
    wait_until("the Inbox is black", lambda: screen.ground(INBOX) == BLACK)
    has_ground(screen, is_dark)
    nothing_stands_out(screen, is_light)
    portal.set_number("color-scheme", 2)
    wait_until("the Inbox is white", lambda: screen.ground(INBOX) == WHITE)
    has_ground(screen, is_light)
    nothing_stands_out(screen, is_dark)
    portal.set_number("contrast", 0)
    portal.set_number("color-scheme", 0)
    has_ground(screen, is_light)
    quit_program(desktop)

    portal.set_number("color-scheme", 1)
    screen = open_windows(desktop)
    has_ground(screen, is_dark)
    nothing_stands_out(screen, is_light)
    quit_program(desktop)
    portal.stop()


def by_gnome_settings(desktop):
    desktop.save_setting("org/gnome/desktop/interface", "color-scheme", "'prefer-dark'")
    screen = open_windows(desktop)
    has_ground(screen, is_dark)
    desktop.save_setting("org/gnome/desktop/interface", "color-scheme", "'default'")
    has_ground(screen, is_light)
    nothing_stands_out(screen, is_dark)
    desktop.save_setting("org/gnome/desktop/a11y/interface", "high-contrast", "true")
    wait_until("the Inbox is white", lambda: screen.ground(INBOX) == WHITE)
    has_ground(screen, is_light)
    desktop.save_setting("org/gnome/desktop/interface", "color-scheme", "'prefer-dark'")
    has_ground(screen, is_dark)
    quit_program(desktop)
    desktop.save_setting("org/gnome/desktop/interface", "color-scheme", "'default'")


def by_kde_settings(desktop):
    file = os.path.join(desktop.config_home, "kdeglobals")

    def write(window, accent):
        with open(file + ".new", "w", encoding="utf-8") as settings:
            settings.write(f"[General]\nAccentColor={accent}\n\n[Colors:Window]\nBackgroundNormal={window}\n")
        os.rename(file + ".new", file)

    desktop.environment["XDG_CURRENT_DESKTOP"] = "KDE"
    # From the days before, on another desktop.
    desktop.save_setting("org/gnome/desktop/interface", "color-scheme", "'prefer-dark'")
    write("239,240,241", "61,174,233")
    screen = open_windows(desktop)
    has_ground(screen, is_light)
    write("32,35,38", ",".join(map(str, VIOLET)))
    has_ground(screen, is_dark)
    nothing_stands_out(screen, is_light)
    desktop.click(desktop.wait_for(None, "list item", INBOX))
    has_accent(screen, VIOLET)
    write("239,240,241", ",".join(map(str, VIOLET)))
    has_ground(screen, is_light)
    quit_program(desktop)
    del desktop.environment["XDG_CURRENT_DESKTOP"]
    desktop.save_setting("org/gnome/desktop/interface", "color-scheme", "'default'")


def by_x_settings(desktop):
    """As Xfce, MATE and Cinnamon have it."""
    file = os.path.join(desktop.home, "xsettings.conf")

    def write(theme, font):
        with open(file, "w", encoding="utf-8") as settings:
            settings.write(f'Net/ThemeName "{theme}"\nGtk/FontName "{font}"\n')

    def start():
        return desktop.start(["xsettingsd", "-c", file])

    screen = open_windows(desktop)
    has_ground(screen, is_light)
    label = desktop.wait_for("Screenshot folder", "label", SETTINGS)
    width = label.extents[2]
    write("Greybird-dark", "DejaVu Serif 20")
    manager = start()
    has_ground(screen, is_dark)
    wait_until("the font is the desktop's",
               lambda: desktop.find("Screenshot folder", "label", SETTINGS).extents[2] > 1.5 * width)
    write("Greybird", "DejaVu Serif 20")
    manager.send_signal(signal.SIGHUP)
    has_ground(screen, is_light)
    quit_program(desktop)

    write("Greybird-dark", "DejaVu Serif 20")
    manager.send_signal(signal.SIGHUP)
    screen = open_windows(desktop)
    has_ground(screen, is_dark)
    quit_program(desktop)
    manager.kill()
    manager.wait()


def journey(desktop):
    desktop.choose_folder()
    by_portal(desktop)
    by_gnome_settings(desktop)
    by_kde_settings(desktop)
    by_x_settings(desktop)
    expect("no program runs on", not desktop.program.is_running)


if __name__ == "__main__":
    run_journey("appearance", journey)
