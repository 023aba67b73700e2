#!/usr/bin/python3
"""A compositor comes and goes while the popup shows: without one the window is cut to the card, corners and all."""

import captures
from harness import POPUP_TITLE, expect, run_journey, wait_until
from windows import Windows, open_terminal

GROUND = (255, 240, 200)


def journey(desktop):
    windows = Windows(desktop)
    open_terminal(desktop, "Ground", "200x60", (0, 0), "#%02x%02x%02x" % GROUND)
    desktop.choose_folder()
    desktop.launch("--autostart")
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    is_cut_to_the_card(windows)
    compositor = desktop.start_compositor()
    lies_in_its_shadow(windows)
    compositor.kill()
    is_cut_to_the_card(windows)

    # And so for a popup that is hidden meanwhile.
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    desktop.start_compositor()
    desktop.popup.wait_for(captures.save(desktop.folder))
    lies_in_its_shadow(windows)


def beside_the_card(windows):
    """In the margin on all sides, and what the corner leaves of the card's square."""
    left, top, right, bottom = windows.card()
    middle_x, middle_y = (left + right) // 2, (top + bottom) // 2
    return ((left - 2, middle_y), (right + 2, middle_y), (middle_x, top - 2), (middle_x, bottom + 2),
            (left + 2, top + 2), (right - 2, bottom - 2))


def is_cut_to_the_card(windows):
    wait_until("the window is cut to the card", lambda: windows.is_shaped(POPUP_TITLE))
    # The card may still be growing to what it says.
    wait_until("the ground shows beside the card",
               lambda: all(windows.pixel(place) == GROUND for place in beside_the_card(windows)))


def lies_in_its_shadow(windows):
    wait_until("the window is whole", lambda: not windows.is_shaped(POPUP_TITLE))

    def is_shaded(place):
        # Black at 0.3 at most: the ground's colours, each a little darker.
        seen = windows.pixel(place)
        return all(0.65 * ground < shade < ground for shade, ground in zip(seen, GROUND))

    wait_until("the ground shines through beside the card",
               lambda: all(is_shaded(place) for place in beside_the_card(windows)))
    left, top, _, _ = windows.card()
    far = (left - 23, top - 23)
    wait_until("the shadow ends before the window does", lambda: windows.pixel(far) == GROUND)
    expect("the card itself is in no shadow", min(windows.pixel((left + 60, top + 4))) > 245)


run_journey("popup-without-compositor", journey)
