#!/usr/bin/python3
"""What happens is told to the screen reader, once, in the form that it hears; and to nobody while none runs."""

import os
import re
import signal

import captures
from harness import expect, hold_for, run_journey, wait_until
from speech import AccessibilityListener, SpeechDispatcher, set_screen_reader_enabled
from steps import quit_program

KEPT, READY = "Screenshot kept.", "Screenshot ready for a decision. Press Ctrl+Shift+Super+B to review it."
NOTHING = "No screenshots are waiting for a decision."
# Each is said whole before the next, at about 14 letters a second; a few of them wait for each other.
TELLING = 40
IMPORTANT, MESSAGE = 1, 2
POLITE, ASSERTIVE = 1, 2


def keep_one(desktop):
    shot = captures.save(desktop.folder)
    desktop.popup.wait_for(shot)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("it is kept", lambda: desktop.state_of(shot) == "permanent")


def review_nothing(desktop):
    desktop.action("review", wait=True)


def nobody_listens(desktop, speech):
    keep_one(desktop)
    review_nothing(desktop)
    hold_for("nothing is spoken", lambda: not speech.has_clients(), 1)


def orca_listens(desktop, speech):
    """Of Debian 12, started by hand and after the program."""
    log = os.path.join(desktop.home, "orca.log")

    def spoken():
        with open(log, encoding="utf-8", errors="replace") as file:
            return re.findall(r"SPEECH OUTPUT: '(.*?)'", file.read())

    orca = desktop.start(["orca", f"--debug-file={log}"], stdout=desktop.errors, stderr=desktop.errors)
    wait_until("Orca speaks", lambda: speech.spoken(), 30)
    # Its listeners are registered by then, and the program hears of them in a moment.
    wait_until("Orca hears of the program", lambda: (review_nothing(desktop), said(speech, NOTHING))[1], 30)
    keep_one(desktop)
    wait_until("Orca says that it is kept", lambda: said(speech, KEPT), TELLING)
    for text in (KEPT, READY):
        expect(f"“{text}” is spoken once, not {said(speech, text)}", len(said(speech, text)) == 1)
    each_is_heard(desktop, speech)
    orca.terminate()
    orca.wait()
    # Its log is whole only now.
    by_orca = [line for line in spoken() if KEPT in line or READY in line]
    by_service = [text for text, _ in speech.spoken() if KEPT in text or READY in text]
    expect(f"all of it was said by Orca: {by_orca}, {by_service}", by_orca == by_service)
    return len(speech.spoken())


def each_is_heard(desktop, speech):
    """What is told in one turn: the first is kept, and the second is ready."""
    first, second = captures.save(desktop.folder), captures.save(desktop.folder)
    desktop.popup.wait_for(first)
    wait_until("another waits", lambda: desktop.popup.waiting_count == 1)
    wait_until("the first is told of", lambda: len(said(speech, READY)) == 2, TELLING)
    desktop.popup.press("Keep")
    desktop.popup.wait_for(second)
    wait_until("that the first is kept is heard, and that the second is ready",
               lambda: (len(said(speech, KEPT)), len(said(speech, READY))) == (2, 3), TELLING)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    wait_until("that the second is kept is heard too", lambda: len(said(speech, KEPT)) == 3, TELLING)


def said(speech, text):
    return [priority for words, priority in speech.spoken() if text in words]


def reader_of_announcements_listens(desktop):
    """As Orca does from version 45."""
    reader = AccessibilityListener(desktop, ["object:announcement", "object:state-changed:showing"])
    wait_until("the reader hears", lambda: (review_nothing(desktop), reader.announced())[1])
    keep_one(desktop)
    wait_until("it hears that it is kept", lambda: (KEPT, POLITE) in reader.announced())
    announced = reader.announced()
    expect("what matters interrupts", announced[0] == (NOTHING, ASSERTIVE))
    expect("once", [text for text, _ in announced].count(KEPT) == 1)
    wanted = two_in_one_turn(desktop)
    heard = wait_until("it hears all four", lambda: len(said := reader.announced()[len(announced):]) >= 4 and said)
    wanted = [(text, ASSERTIVE if matters else POLITE) for text, matters in wanted]
    expect(f"whole and in order: {heard}", heard == wanted)
    reader.stop()


def two_in_one_turn(desktop):
    """One press tells of two things: the second is ready, and the first is kept. What is to be heard, in this order, and
    whether it matters."""
    first, second = captures.save(desktop.folder), captures.save(desktop.folder)
    desktop.popup.wait_for(first)
    wait_until("another waits", lambda: desktop.popup.waiting_count == 1)
    desktop.popup.press("Keep")
    desktop.popup.wait_for(second)
    desktop.popup.press("Keep")
    desktop.popup.wait_gone()
    return [(READY, True), (READY, True), (KEPT, False), (KEPT, False)]


def desktop_says_that_one_runs(desktop, speech):
    """One that listens to nothing of this."""
    before = len(speech.spoken())
    set_screen_reader_enabled(desktop, True)
    wait_until("it is spoken", lambda: (review_nothing(desktop), (NOTHING, IMPORTANT) in speech.spoken()[before:])[1])
    keep_one(desktop)
    wait_until("the rest too", lambda: (KEPT, MESSAGE) in speech.spoken()[before:])
    before = len(speech.spoken())
    wanted = two_in_one_turn(desktop)
    heard = wait_until("all four are spoken", lambda: len(said := speech.spoken()[before:]) >= 4 and said)
    wanted = [(text, IMPORTANT if matters else MESSAGE) for text, matters in wanted]
    expect(f"whole and in order: {heard}", heard == wanted)


def speech_service_hangs(desktop, speech):
    speech.process.send_signal(signal.SIGSTOP)
    for _ in range(3):
        keep_one(desktop)
    speech.process.send_signal(signal.SIGCONT)
    wait_until("all is spoken then", lambda: len(said(speech, KEPT)) >= 5)
    speech.process.send_signal(signal.SIGSTOP)
    keep_one(desktop)
    quit_program(desktop)


def journey(desktop):
    # As in most sessions: nothing forces Qt to serve screen readers.
    del desktop.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"]
    speech = SpeechDispatcher(desktop)
    desktop.choose_folder()
    desktop.launch("--autostart")
    nobody_listens(desktop, speech)
    count = orca_listens(desktop, speech)
    keep_one(desktop)
    reader_of_announcements_listens(desktop)
    keep_one(desktop)
    expect("without Orca nothing more is spoken", len(speech.spoken()) == count)
    desktop_says_that_one_runs(desktop, speech)
    speech_service_hangs(desktop, speech)


if __name__ == "__main__":
    run_journey("announcements", journey)
