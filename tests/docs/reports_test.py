#!/usr/bin/env python3
"""Holds the tables of docs/reports.md against the reports in the sources."""
import re
import unittest

import pages

PAGE = pages.ROOT / "docs/reports.md"
# What heads of reports are made of; it says nothing about a cause.
HEAD_TEXTS = {"element", "file", "line", ", column", ":"}


def table_reports():
    """The first columns of the tables."""
    return [text.replace(r"\|", "|")
            for text in re.findall(r"^\| `(.*?)` \|", pages.read(PAGE), re.MULTILINE)]


def pieces(text, placeholder):
    """The fixed texts between the placeholders, without the blanks around them."""
    return [piece.strip() for piece in re.split(placeholder, text) if piece.strip()]


def reports_in_sources():
    """The texts of all reports: what goes through tr(), and the texts about the settings file."""
    texts = []
    for path in sorted((pages.ROOT / "src").rglob("*.cpp")):
        source = re.sub(r"//.*", "", path.read_text(encoding="utf-8"))
        for literals in re.findall(r'\btr\(((?:\s*"(?:\\.|[^"\\])*")+)', source):
            text = "".join(re.findall(r'"((?:\\.|[^"\\])*)"', literals))
            texts.append(text.replace('\\"', '"'))
        texts += re.findall(r'"(QSettings: .*?)"', source)
    return texts


class Reports(unittest.TestCase):

    def test_every_report_is_in_a_table(self):
        rows = table_reports()
        self.assertTrue(reports_in_sources())
        for text in reports_in_sources():
            for piece in pieces(text, r"%\d"):
                if piece not in HEAD_TEXTS:
                    with self.subTest(piece):
                        self.assertTrue(any(piece in row for row in rows))

    def test_tables_have_only_reports_that_exist(self):
        texts = reports_in_sources()
        self.assertTrue(table_reports())
        for row in table_reports():
            for piece in pieces(row, "…"):
                with self.subTest(piece):
                    self.assertTrue(any(piece in text for text in texts))


if __name__ == "__main__":
    unittest.main()
