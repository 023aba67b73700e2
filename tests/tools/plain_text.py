#!/usr/bin/python3
"""No widget of the program reads text from outside as markup: labels, tool tips with names and alerts are made by
controls/PlainText alone, and Qt's own message boxes are not used."""
import pathlib
import re
import unittest

SOURCES = pathlib.Path(__file__).resolve().parents[2] / "src"
MADE_HERE = {"controls/PlainText.h", "controls/PlainText.cpp"}
FORBIDDEN = re.compile(
    r"new QLabel\b|\bQLabel\s*[({]|public QLabel\b|make_unique<QLabel>|\bQLabel \w+[;({]|setInformativeText|setHtml|"
    r"\bQTextEdit\b|\bQTextBrowser\b|Qt::(?:Rich|Auto|Markdown)Text|QMessageBox\b|"
    r"setToolTip\((?!\{\}|QString\(\)|localized|\w+\.toolTip|help\)|action(?:->|\.)help\)|traits\.|thumbnail_->|is\w+ \? (?:localized|QString|adviceFor)|"
    r"content\.deletesChosen)")


def offences(text):
    return [line.strip() for line in text.splitlines() if FORBIDDEN.search(line)]


class PlainText(unittest.TestCase):
    def test_no_source_makes_a_label_that_reads_markup(self):
        found = {}
        for path in sorted(SOURCES.rglob("*")):
            name = path.relative_to(SOURCES).as_posix()
            if path.suffix not in {".cpp", ".h"} or name in MADE_HERE:
                continue
            if lines := offences(path.read_text(encoding="utf-8")):
                found[name] = lines
        self.assertEqual(found, {})

    def test_what_is_forbidden_is_found(self):
        for line in ("auto* name = new QLabel(text, this);", "text_(new QLabel(this)),", "box.setInformativeText(name);",
                     "setToolTip(folder->displayPath());", "QLabel label(text);", "class Name : public QLabel {",
                     "label->setTextFormat(Qt::AutoText);", "QMessageBox::warning(this, title, name);", "QMessageBox box(parent);"):
            self.assertTrue(offences(line), line)
        for line in ("QLabel* text_;", "#include <QtWidgets/QLabel>", "setToolTip(localized(\"Keep\"));",
                     "text_(new PlainLabel(this)),", "box.findChildren<QLabel*>()"):
            self.assertFalse(offences(line), line)


if __name__ == "__main__":
    unittest.main()
