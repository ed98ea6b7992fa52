#!/usr/bin/env python3
"""Holds the tables of CONTRIBUTING.md against CMake and the folders."""
import json
import re
import unittest

import pages

PAGE = pages.read(pages.ROOT / "CONTRIBUTING.md")


class Contributing(unittest.TestCase):

    def test_folders_exist_and_none_is_missing(self):
        named = re.findall(r"^\| `([\w/]+)/` \|", PAGE, re.MULTILINE)
        folders = [path.name for path in pages.ROOT.iterdir()
                   if path.is_dir() and not path.name.startswith(".") and path.name != "build"]
        self.assertEqual(sorted(named), sorted(folders))

    def test_build_options_are_those_of_cmake(self):
        shown = re.findall(r"^\| `-D(\w+)=\w+` \| (\w+) \|", PAGE, re.MULTILINE)
        cmake = (pages.ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
        options = re.findall(r'^option\((\w+) ".*" (\w+)\)$', cmake, re.MULTILINE)
        values = re.findall(r'^set\((ADEXP_\w+) (\S+) CACHE', cmake, re.MULTILINE)
        values = [(name, "none" if value == '""' else value) for name, value in values]
        self.assertEqual(sorted(shown), sorted(options + values))

    def test_presets_are_those_of_cmake(self):
        presets = json.loads((pages.ROOT / "CMakePresets.json").read_text(encoding="utf-8"))
        shown = re.findall(r"^\| `(\w+)` \| `build/\w+` \|", PAGE, re.MULTILINE)
        self.assertEqual(shown, [preset["name"] for preset in presets["configurePresets"]])


if __name__ == "__main__":
    unittest.main()
