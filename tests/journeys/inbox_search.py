#!/usr/bin/python3
"""A screenshot is found by a word that stands only in its picture, and looked at, with the keyboard alone; the keys of
the list and of Quick Look go through it row by row."""

import captures
from harness import expect, hold_for, run_journey, wait_until
from inbox import TITLE, file_names, open_inbox, pending, rows, saved, selected, wait_for_selection

TEXT = "Invoice 4711 paid by card"
WORD = "invoice"


def settled(desktop, shots):
    for shot in shots:
        wait_until(f"the text of {shot} is read", lambda shot=shot: "recognizedText" in (desktop.record_of(shot) or {}), 60)


def search(desktop, found, everything):
    desktop.key("ctrl+f")
    wait_until("the search field has the keyboard", lambda: desktop.find("Search", "text", TITLE).is_focused)
    desktop.type(WORD)
    wait_until("the list narrows to it", lambda: rows(desktop) == [found])
    desktop.key("Return")
    wait_for_selection(desktop, [found], "Return chooses it")
    wait_until("its row has the keyboard", lambda: desktop.find(found, "list item", TITLE).is_focused)
    desktop.wait_for(found, "label", TITLE)
    desktop.key("space")
    wait_until("Space shows it", lambda: desktop.active_title() == found)
    desktop.key("Escape")
    wait_until("Escape puts it away", lambda: not desktop.window_ids(found))
    wait_until("the list has the keyboard again", lambda: desktop.active_title() == TITLE)
    expect("the search stays", rows(desktop) == [found])
    desktop.key("Escape")
    wait_until("the next Escape brings the whole list back", lambda: rows(desktop) == everything)
    expect("the screenshot stays selected", selected(desktop) == [found])
    desktop.key("Escape")
    wait_for_selection(desktop, [], "one more selects nothing")


def nothing_found(desktop, everything):
    desktop.key("ctrl+f")
    desktop.type("nowhere")
    desktop.wait_for("No Results for “nowhere”", "label", TITLE)
    desktop.key("Return")
    desktop.key("Escape")
    wait_until("Escape brings the whole list back", lambda: rows(desktop) == everything)
    desktop.key("Escape")
    wait_until("the list has the keyboard", lambda: not desktop.find("Search", "text", TITLE).is_focused)


def go_through_the_list(desktop, names):
    for key, name in (("Home", names[0]), ("Down", names[1]), ("End", names[-1]), ("Up", names[-2])):
        desktop.key(key)
        wait_for_selection(desktop, [name], f"{key} goes to {name}")
    # Both begin alike.
    for text, name in (("train", "Train to Bern.png"), ("trainers", "Trainers.png"), ("car", "Car.png")):
        hold_for("what was typed before is over", lambda: True, 1)
        desktop.type(text)
        wait_for_selection(desktop, [name], f"“{text}” goes to {name}")
    expect("nothing is sought", desktop.find("Search", "text", TITLE).text == "")


def go_through_quick_look(desktop, names):
    desktop.key("Home")
    wait_for_selection(desktop, [names[0]])
    desktop.key("ctrl+y")
    wait_until("Quick Look shows the first", lambda: desktop.active_title() == names[0])
    for key, place in (("Up", 0), ("Down", 1), ("Right", 2), ("Left", 1)):
        desktop.key(key)
        wait_until(f"{key} shows {names[place]}", lambda place=place: desktop.active_title() == names[place])
        wait_for_selection(desktop, [names[place]], "the list goes with it")
    desktop.key("space")
    wait_until("Space puts it away", lambda: desktop.active_title() == TITLE)
    expect("the list stays where it led", selected(desktop) == [names[1]])


def journey(desktop):
    desktop.choose_folder()
    desktop.launch("--autostart")
    read = captures.text(desktop, TEXT)
    desktop.popup.wait_for(read)
    # What is found in a picture may change the height of its card, and so the place of what is pressed.
    settled(desktop, [read])
    desktop.popup.press("Dismiss Screenshot Popup")
    desktop.popup.wait_gone()
    shots = [saved(desktop, name) for name in ("Trainers.png", "Train to Bern.png", "Car.png")] + [pending(desktop)]
    settled(desktop, [read, *shots])
    names = file_names([read, *shots])[::-1]
    open_inbox(desktop)
    wait_until("all are listed", lambda: rows(desktop) == names)
    search(desktop, file_names([read])[0], names)
    nothing_found(desktop, names)
    go_through_the_list(desktop, names)
    go_through_quick_look(desktop, names)


if __name__ == "__main__":
    run_journey("inbox-search", journey)
