#!/usr/bin/python3
"""The pages of the help: whole without a network, each reachable from the first, and in the words that the program shows."""

import html.parser
import pathlib
import re
import unittest

import catalogues

ROOT = pathlib.Path(__file__).resolve().parents[2]
HELP = ROOT / "docs" / "help"
PAGES = sorted(HELP.glob("*.html"))
STYLE = HELP / "help.css"
INDEX = HELP / "index.html"
# Where the program says which page an anchor of its own is.
ANCHORS = ROOT / "src" / "platform" / "linux" / "informing" / "HelpPages.cpp"
# Elements without an end.
VOID = {"meta", "link", "img", "br"}
ALLOWED = {"html", "head", "meta", "title", "link", "body", "nav", "h1", "h2", "p", "ul", "li", "a", "b", "kbd", "img",
           "table", "tr", "td", "th"}


class Page(html.parser.HTMLParser):
    """What a page shows, and the files that it names: other pages, its style and its pictures."""

    def __init__(self, path):
        super().__init__()
        self.path, self.elements, self.links, self.pictures, self.commands, self.problems = path, [], [], {}, [], []
        self._open = []
        self._texts = {}
        self.feed(path.read_text(encoding="utf-8"))
        self.close()
        if self._open:
            self.problems.append(f"never closed: {self._open}")

    def handle_starttag(self, tag, attributes):
        named = dict(attributes)
        self.elements.append((tag, named))
        if tag == "a":
            self.links.append(named["href"])
        if tag == "img":
            self.pictures[named["src"]] = named.get("alt", "")
        if tag not in VOID:
            self._open.append(tag)
            self._texts[len(self._open)] = ""

    def handle_endtag(self, tag):
        if not self._open or self._open[-1] != tag:
            self.problems.append(f"</{tag}> within {self._open}")
            return
        if tag == "b":
            self.commands.append(self._texts[len(self._open)])
        if tag in ("title", "h1"):
            setattr(self, tag, self._texts[len(self._open)])
        self._open.pop()

    def handle_data(self, data):
        for depth in range(1, len(self._open) + 1):
            self._texts[depth] += data

    @property
    def styles(self):
        return [named["href"] for tag, named in self.elements if tag == "link"]

    @property
    def files(self):
        return [link.partition("#")[0] for link in self.links] + self.styles + list(self.pictures)


def shown_pictures():
    return sorted(path.name for path in (ROOT / "docs" / "pictures").glob("*.png"))


def shown_texts():
    """Every text of the program, in the words of this desktop."""
    entries = {**catalogues.catalogue("en.json"), **catalogues.catalogue("linux.json")}
    texts = set()
    for call in catalogues.calls():
        for key in call.keys:
            texts.update(catalogues.forms(entries.get(key, key)).values())
    return texts


class Help(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.pages = [Page(path) for path in PAGES]
        cls.texts = shown_texts()

    def test_the_pages_were_found(self):
        self.assertIn(INDEX, PAGES)
        self.assertGreater(len(PAGES), 5)

    def test_each_page_is_whole(self):
        for page in self.pages:
            self.assertEqual(page.problems, [], page.path.name)
            self.assertEqual(page.title, page.h1, page.path.name)
            self.assertIn(("meta", {"charset": "utf-8"}), page.elements)
            self.assertIn(("html", {"lang": "en"}), page.elements)
            self.assertEqual(page.styles, [STYLE.name])

    def test_a_page_is_text_and_pictures_alone(self):
        for page in self.pages:
            self.assertLessEqual({tag for tag, _ in page.elements}, ALLOWED, page.path.name)
            for tag, named in page.elements:
                self.assertFalse([name for name in named if name.startswith("on") or name == "style"], tag)

    def test_nothing_comes_from_the_network(self):
        for path in [*PAGES, STYLE]:
            self.assertIsNone(re.search(r"//|@import|url\(|javascript:", path.read_text(encoding="utf-8").replace(
                "<!DOCTYPE html>", "")), path.name)

    def test_all_that_a_page_names_is_there(self):
        for page in self.pages:
            for target in page.files:
                self.assertTrue((HELP / target).is_file(), f"{page.path.name} names {target}")
            for link in page.links:
                target, _, anchor = link.partition("#")
                ids = [named.get("id") for _, named in Page(HELP / target).elements]
                self.assertTrue(not anchor or anchor in ids, f"{page.path.name} links to {link}")

    def test_each_picture_is_told_in_words(self):
        for page in self.pages:
            for picture, words in page.pictures.items():
                self.assertGreater(len(words), 20, f"{picture} in {page.path.name}")

    def test_each_page_is_reached_from_the_first_and_leads_back(self):
        links = {page.path.name: set(page.links) for page in self.pages}
        self.assertEqual(links["index.html"], links.keys() - {"index.html"})
        for name in links.keys() - {"index.html"}:
            self.assertIn("index.html", links[name], name)

    def test_the_pages_that_the_program_opens_are_there(self):
        named = set(re.findall(r'"([\w-]+\.html)"', ANCHORS.read_text(encoding="utf-8")))
        self.assertEqual(named, {"index.html", "qm-troubleshooting.html", "qm-folder-mismatch.html"})
        self.assertLessEqual(named, {path.name for path in PAGES})

    def test_commands_have_the_names_that_the_program_shows(self):
        for page in self.pages:
            for command in page.commands:
                self.assertIn(" ".join(command.split()), self.texts, page.path.name)

    def test_no_page_speaks_of_another_desktop(self):
        for path in PAGES:
            self.assertIsNone(catalogues.OTHER_DESKTOP.search(path.read_text(encoding="utf-8")), path.name)

    def test_the_style_has_colours_for_light_and_dark(self):
        style = STYLE.read_text(encoding="utf-8")
        self.assertIn("prefers-color-scheme: dark", style)
        self.assertIn("color-scheme: light dark", style)


if __name__ == "__main__":
    unittest.main()
