#!/usr/bin/env python3
"""Looks at the reference that the build made from the rule files.

    reference_test.py REFERENCE
"""
import re
import sys
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def records():
    """The names and titles in the rule files."""
    return [record.get("name") or record.get("title")
            for path in ROOT.glob("rules/*.xml") for record in ElementTree.parse(path).getroot()]


class Reference(unittest.TestCase):

    def test_each_record_has_an_entry_and_a_row_of_the_index(self):
        names = sorted(name.upper() for name in records())
        self.assertEqual(sorted(re.findall(r"^#### <a id=.*></a>(.*)$", TEXT, re.MULTILINE)), names)
        self.assertEqual(sorted(re.findall(r"^\| \[(.*?)\]", TEXT, re.MULTILINE)), names)

    def test_links_lead_to_entries(self):
        anchors = re.findall(r'<a id="(.*?)">', TEXT)
        self.assertEqual(len(set(anchors)), len(anchors))
        links = re.findall(r"\]\(#(.*?)\)", TEXT)
        self.assertTrue(links)
        self.assertEqual(set(links) - set(anchors), set())

    def test_other_links_lead_to_files_beside_it(self):
        files = re.findall(r"\]\(([^#)]+)\)", re.sub("`.*?`", "", TEXT))
        self.assertTrue(files)
        for file in files:
            self.assertTrue((ROOT / "docs" / file).is_file(), file)


if __name__ == "__main__":
    with open(sys.argv[1], encoding="utf-8") as reference:
        TEXT = reference.read()
    unittest.main(argv=sys.argv[:1] + sys.argv[2:])
