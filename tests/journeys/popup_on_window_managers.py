#!/usr/bin/python3
"""The popup among other windows, on one window manager: who has the keyboard, where the popup shows, what a click
beside it reaches.

The argument names the window manager, as in the harness; a scale may follow it, as in openbox@1.5.
"""

import os
import sys
import time

import captures
from harness import CLICK_GATE, POPUP_TITLE, expect, hold_for, run_journey, wait_until
from windows import Windows, open_terminal

TYPING, OTHER = "Typing", "Other"


def journey(desktop):
    windows = Windows(desktop)
    desktop.choose_folder()
    desktop.launch("--autostart")
    desktop.run("wmctrl", "-n", "3", check=True)
    # Side by side on the left, and one below the popup's place.
    open_terminal(desktop, OTHER, "40x6", (20, 400))
    open_terminal(desktop, TYPING, "40x6", (20, 20))
    windows.activate(TYPING)

    shows_without_the_keyboard(desktop, windows)
    is_on_all_desktops(desktop, windows)
    lets_clicks_beside_it_through(desktop, windows)
    a_button_leaves_the_keyboard(desktop, windows)
    the_name_takes_the_keyboard(desktop, windows)
    the_review_gives_the_keyboard_back(desktop, windows)
    whoever_clicked_away_stays_there(desktop, windows)
    lies_over_full_screen(desktop, windows)
    stays_when_full_screen_goes(desktop, windows)


def show(desktop, **picture):
    shot = captures.save(desktop.folder, **picture)
    desktop.popup.wait_for(shot)
    return shot


def has_keyboard(desktop, title):
    return lambda: desktop.active_title() == title


def shows_without_the_keyboard(desktop, windows):
    show(desktop)
    hold_for("mapping the popup moves the keyboard nowhere", has_keyboard(desktop, TYPING), 0.3)
    dialog = desktop.find(POPUP_TITLE, "dialog")
    expect("a screen reader finds the dialog", dialog)
    states = windows.states(POPUP_TITLE)
    expect(f"it is in no task bar and no pager: {states}", {"SKIP_TASKBAR", "SKIP_PAGER"} <= states)
    expect(f"it calls for no attention: {states}", "DEMANDS_ATTENTION" not in states)


def is_on_all_desktops(desktop, windows):
    for number in ("1", "2", "0"):
        desktop.run("xdotool", "set_desktop", number, check=True)
        wait_until("the desktop changed", lambda: desktop.run("xdotool", "get_desktop").strip() == number)
        wait_until(f"the popup shows on desktop {number}", lambda: windows.is_on_top(POPUP_TITLE))
    windows.activate(TYPING)


def lets_clicks_beside_it_through(desktop, windows):
    """Also once the card is of another size; the first pixel of the card is the card's, the one before it is not."""
    def ends_at_its_edges():
        left, top, right, bottom = windows.card()
        middle_x, middle_y = (left + right) // 2, (top + bottom) // 2
        inside = ((left, middle_y), (right, middle_y), (middle_x, top), (middle_x, bottom))
        outside = ((left - 1, middle_y), (right + 1, middle_y), (middle_x, top - 1), (middle_x, bottom + 1))
        return all(map(windows.popup_is_at, inside)) and not any(map(windows.popup_is_at, outside))

    def check_edges():
        # The card may still be growing for what it has to say.
        wait_until("clicks reach the card to its last pixel, and none beside it", ends_at_its_edges)

    check_edges()
    desktop.popup.press("Dismiss Screenshot Popup")
    desktop.popup.wait_gone()
    show(desktop, width=900, height=200)
    check_edges()
    lower = windows.card()
    taller = captures.save(desktop.folder, width=400, height=230)
    wait_until("another one waits", lambda: desktop.popup.waiting_count == 1)
    desktop.popup.press("Dismiss Screenshot Popup")
    desktop.popup.wait_for(taller)
    wait_until("the card grows upwards", lambda: windows.card()[1] < lower[1])
    check_edges()
    left, top, _, _ = windows.card()
    open_terminal(desktop, "Below", "60x16", (left - 200, top - 60))
    windows.activate(TYPING)

    def click_margin():
        # Again until it counts: a window manager that is told to activate a window takes a moment to hear clicks on the
        # others.
        desktop.run("xdotool", "mousemove", str(left - 6), str(top + 60), "click", "1", check=True)
        return has_keyboard(desktop, "Below")()

    wait_until("the window below the margin was clicked", click_margin)
    windows.close("Below")
    windows.activate(TYPING)


def a_button_leaves_the_keyboard(desktop, windows):
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    hold_for("a button leaves the keyboard where it was", has_keyboard(desktop, TYPING), 0.2)


def the_name_takes_the_keyboard(desktop, windows):
    shot = show(desktop)
    desktop.click(desktop.popup.find("Filename", ("text", "entry")))
    wait_until("a click in the name takes the keyboard", has_keyboard(desktop, POPUP_TITLE))
    desktop.key("ctrl+a")
    desktop.type("named")
    wait_until("what is typed arrives", lambda: desktop.popup.stem == "named")
    time.sleep(CLICK_GATE)
    desktop.key("Return")
    desktop.popup.wait_gone()
    wait_until("the screenshot has its name",
               lambda: os.path.exists(os.path.join(os.path.dirname(shot), "named.png")))
    wait_until("the keyboard is back", has_keyboard(desktop, TYPING))


def the_review_gives_the_keyboard_back(desktop, windows):
    first = captures.save(desktop.folder)
    desktop.popup.wait_for(first)
    second = captures.save(desktop.folder)
    wait_until("another one waits", lambda: desktop.popup.waiting_count == 1)
    desktop.popup.take_keyboard()
    desktop.key("Return")
    desktop.popup.wait_for(second)
    expect("between two decisions the popup keeps the keyboard", desktop.active_title() == POPUP_TITLE)
    time.sleep(CLICK_GATE)
    desktop.key("Return")
    desktop.popup.wait_gone()
    wait_until("after the last the keyboard is back", has_keyboard(desktop, TYPING))


def whoever_clicked_away_stays_there(desktop, windows):
    show(desktop)
    desktop.popup.take_keyboard()
    windows.click(OTHER)
    wait_until("the other window was clicked", has_keyboard(desktop, OTHER))
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    hold_for("no one is pulled back", has_keyboard(desktop, OTHER), 0.3)


def lies_over_full_screen(desktop, windows):
    """Both a popup that comes while something fills the screen, and one that is there before."""
    windows.activate(TYPING)
    windows.set_full_screen(TYPING, True)
    show(desktop)
    wait_until("the popup lies over the full screen", lambda: windows.is_on_top(POPUP_TITLE))
    expect("which keeps the keyboard", desktop.active_title() == TYPING)
    windows.set_full_screen(TYPING, False)
    windows.set_full_screen(TYPING, True)
    wait_until("and when it comes later", lambda: windows.is_on_top(POPUP_TITLE))
    desktop.popup.take_keyboard()
    expect("the popup with the keyboard lies there too", windows.is_on_top(POPUP_TITLE))
    time.sleep(CLICK_GATE)
    desktop.key("Return")
    desktop.popup.wait_gone()
    wait_until("the keyboard is back", has_keyboard(desktop, TYPING))


def stays_when_full_screen_goes(desktop, windows):
    show(desktop)
    wait_until("the popup lies over the full screen", lambda: windows.is_on_top(POPUP_TITLE))
    windows.minimize(TYPING)
    wait_until("the popup stays when that is put away", lambda: windows.is_on_top(POPUP_TITLE))
    windows.activate(TYPING)
    wait_until("and when it is back", lambda: windows.is_on_top(POPUP_TITLE))
    windows.close(TYPING)
    wait_until("and when it is closed", lambda: windows.is_on_top(POPUP_TITLE))
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()


window_manager, _, scale = sys.argv[1].partition("@")
scale = float(scale or 1)
run_journey(f"popup-on-{sys.argv[1]}", journey, window_manager=window_manager, scale=scale,
            size="1280x800" if scale == 1 else "1920x1200")
