"""Waiting on a condition with a deadline; nothing else in the journeys waits for a fixed time."""

import time


class JourneyFailed(Exception):
    """What was expected and did not come true."""


def wait_until(what, condition, timeout=10.0):
    """Polls until `condition` gives something true, and returns that. `what` says in the report what was missed."""
    deadline = time.monotonic() + timeout
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise JourneyFailed(f"not within {timeout:g} s: {what}")
        time.sleep(0.02)


def hold_for(what, condition, seconds):
    """Checks that `condition` stays true for all of the time."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        if not condition():
            raise JourneyFailed(f"did not stay true: {what}")
        time.sleep(0.02)


def expect(what, condition):
    if not condition:
        raise JourneyFailed(what)
