#!/usr/bin/env python3
"""Holds the table of promises in SECURITY.md against the tests that there are.

    security_test.py CTEST BUILD_FOLDER
"""
import re
import subprocess
import sys
import unittest
from fnmatch import fnmatchcase
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def promises():
    """The rows of the table, as (promise, limit, kept by)."""
    text = (ROOT / "SECURITY.md").read_text(encoding="utf-8")
    table = re.search(r"^\| Promise \|.*\n\|[-|]+\n((?:\|.*\n)+)", text, re.MULTILINE).group(1)
    return [tuple(cell.strip() for cell in row.strip("|").split("|")) for row in table.splitlines()]


def test_names():
    listing = subprocess.run([CTEST, "-N", "--test-dir", BUILD], capture_output=True, text=True,
                             check=True).stdout
    # CMake shows the value of a parameter behind the name.
    return re.findall(r"^ *Test +#\d+: (.*?)(?:  # GetParam.*)?$", listing, re.MULTILINE)


def steps():
    """The steps that run before a change lands, as .ci/run and its name, and those of .ci/nightly."""
    return [f"{script} {name}" for script in (".ci/run", ".ci/nightly")
            for name in re.findall(r'^step "(.*?)" ', (ROOT / script).read_text(encoding="utf-8"),
                                   re.MULTILINE)]


class Promises(unittest.TestCase):

    def test_each_has_what_keeps_it_and_all_of_that_exists(self):
        names = test_names()
        self.assertTrue(promises())
        for promise, _, kept_by in promises():
            tests = re.findall(r"`([^`]+)`", kept_by)
            with self.subTest(promise):
                self.assertTrue(tests)
            for test in tests:
                with self.subTest(promise, test=test):
                    if test.startswith(".ci/"):
                        self.assertIn(test, steps())
                    else:
                        self.assertTrue(any(fnmatchcase(name, test) for name in names))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    CTEST, BUILD = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
