#!/usr/bin/python3
"""The catalogues of texts against each other and against the texts that the program asks for."""

import difflib
import json
import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
# What another desktop calls its facilities. Here each of these would be untrue.
OTHER_DESKTOP = re.compile(r"macOS|Finder|\bMac\b|iCloud|Shift-Command|⌘|System Settings|menu bar")
# As English distinguishes them.
PLURAL_FORMS = {"one", "other"}

TOKEN = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)+\'|\w+|\s+|.', re.DOTALL)
ESCAPES = {"n": "\n", "t": "\t", "0": "\0"}
PLACEHOLDER = re.compile(r"%(?:(\d+)\$)?(@|lld)")


def tokens(source):
    """Without blanks and comments; a literal that is written in parts is one token."""
    found = []
    for token in TOKEN.findall(source):
        if token.isspace() or token.startswith(("//", "/*")):
            continue
        if token.startswith('"') and found and found[-1].startswith('"'):
            found[-1] = found[-1][:-1] + token[1:]
        else:
            found.append(token)
    return found


def text(literal):
    return re.sub(r"\\(.)", lambda escape: ESCAPES.get(escape[1], escape[1]), literal[1:-1])


def arguments(call):
    """The tokens of each argument, from those behind the opening bracket of a call or a list."""
    found, depth = [[]], 0
    for token in call:
        if token in ")]}":
            if depth == 0:
                break
            depth -= 1
        if token in "([{":
            depth += 1
        if token == "," and depth == 0:
            found.append([])
        else:
            found[-1].append(token)
    return [argument for argument in found if argument]


class Call:
    """One `localized(…)`. Two keys stand in one that chooses between them."""

    def __init__(self, place, call):
        key, *rest = arguments(call)
        self.place = place
        self.keys = [text(token) for token in key if token.startswith('"')]
        is_list = bool(rest) and rest[0][0] == "{"
        # A list that is made elsewhere can't be counted.
        self.count = len(arguments(rest[0][1:])) if is_list else None if rest else 0


def calls():
    found = []
    for path in sorted(ROOT.glob("src/**/*.cpp")) + sorted(ROOT.glob("src/**/*.h")):
        if path.stem == "Localized":
            continue
        all_tokens = tokens(path.read_text())
        for i, token in enumerate(all_tokens[:-1]):
            if token == "localized" and all_tokens[i + 1] == "(":
                found.append(Call(path.relative_to(ROOT), all_tokens[i + 2 :]))
    return found


def placeholders(words):
    """Each argument's place, counted from 1, with its kind."""
    found, following = set(), 1
    for position, kind in PLACEHOLDER.findall(words):
        found.add((int(position) if position else following, kind))
        following += not position
    return found


def forms(entry):
    return entry if isinstance(entry, dict) else {"other": entry}


def without_repeats(pairs):
    keys = [key for key, _ in pairs]
    repeated = {key for key in keys if keys.count(key) > 1}
    if repeated:
        raise ValueError(f"more than once: {repeated}")
    return dict(pairs)


def catalogue(name):
    return json.loads((ROOT / "translations" / name).read_text(), object_pairs_hook=without_repeats)


class Catalogues(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.english = catalogue("en.json")
        cls.desktop = catalogue("linux.json")
        cls.entries = {**cls.english, **cls.desktop}
        cls.calls = calls()
        cls.keys = {key for call in cls.calls for key in call.keys}

    def test_texts_are_found_in_the_source(self):
        self.assertGreater(len(self.keys), 100)

    def test_each_call_names_its_key(self):
        for call in self.calls:
            self.assertTrue(call.keys, f"{call.place}: a key that isn't written out can't be checked")

    def test_each_entry_is_asked_for(self):
        for key in self.entries:
            self.assertIn(key, self.keys)

    def test_no_key_is_nearly_that_of_an_entry(self):
        for key in self.keys - self.entries.keys():
            near = difflib.get_close_matches(key, self.entries, n=1, cutoff=0.95)
            self.assertFalse(near, f"is “{key}” misspelt?")

    def test_a_text_stands_in_one_catalogue(self):
        # An entry of the desktop's replaces the other one, and its plural forms with it.
        self.assertEqual(self.english.keys() & self.desktop.keys(), set())

    def test_a_key_that_is_no_text_has_one(self):
        for key in self.keys:
            if re.fullmatch(r"[a-z-]+(\.[a-z-]+)+", key):
                self.assertIn(key, self.entries)

    def test_facilities_of_another_desktop_are_replaced(self):
        for key in self.keys:
            if OTHER_DESKTOP.search(key):
                self.assertIn(key, self.desktop)
        for key, entry in self.desktop.items():
            for words in forms(entry).values():
                self.assertIsNone(OTHER_DESKTOP.search(words), words)
                self.assertNotEqual(words, key, "says nothing else")

    def test_each_number_has_its_plural_forms(self):
        for key in self.keys:
            if "lld" in {kind for _, kind in placeholders(key)}:
                self.assertEqual(forms(self.entries.get(key, key)).keys(), PLURAL_FORMS, key)

    def test_no_text_without_a_number_has_plural_forms(self):
        for key, entry in self.entries.items():
            if isinstance(entry, dict):
                self.assertIn("lld", {kind for _, kind in placeholders(key)}, key)

    def test_each_form_takes_the_arguments_of_its_key(self):
        for key, entry in self.entries.items():
            for form, words in forms(entry).items():
                self.assertEqual(placeholders(words), placeholders(key), f"{form} of “{key}”")

    def test_each_call_gives_the_arguments_of_its_key(self):
        for call in self.calls:
            for key in call.keys:
                if call.count is not None:
                    wanted = max((position for position, _ in placeholders(key)), default=0)
                    self.assertEqual(call.count, wanted, f"{call.place}: “{key}”")


if __name__ == "__main__":
    unittest.main()
