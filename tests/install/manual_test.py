#!/usr/bin/env python3
"""Holds the manual pages against the command and the library, and their form against two readers.

    manual_test.py ADEXP FOLDER

FOLDER has the pages, in man1 and man3.
"""
import os
import re
import subprocess
import sys
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def shown(page):
    """The page as a reader sees it, without line breaks and hyphenation, and the complaints."""
    result = subprocess.run(
        ["man", "--warnings", "--no-hyphenation", "--no-justification", "-l", page],
        env=dict(os.environ, LC_ALL="C.UTF-8", MANWIDTH="200", MANPAGER="cat"),
        capture_output=True, text=True, encoding="utf-8", check=False)
    return result.stdout, result.stderr


def subcommands():
    help = subprocess.run([ADEXP, "--help"], capture_output=True, text=True, check=True).stdout
    section = re.search(r"^subcommands:\n((?: .*\n)+)", help, re.MULTILINE | re.IGNORECASE)[1]
    return re.findall(r"^  (\S+)", section, re.MULTILINE)


def words(text):
    """The words without their punctuation, for texts that are laid out anew."""
    return set(re.findall(r"[\w/*<>=:.]*\w", text.lower()))


class Manual(unittest.TestCase):

    def test_pages_are_well_formed(self):
        for page in [*PAGES.glob("man1/*.1"), PAGES / "man3" / "libadexp.3"]:
            with self.subTest(page.name):
                lint = subprocess.run(["mandoc", "-T", "lint", "-W", "warning", page],
                                      capture_output=True, text=True, check=False)
                self.assertEqual(lint.stdout + lint.stderr, "")
                text, complaints = shown(page)
                self.assertEqual(complaints, "")
                self.assertIn("\nNAME\n", text)

    def test_there_is_a_page_for_each_subcommand_and_no_other(self):
        names = {path.name for path in PAGES.glob("man1/*")}
        self.assertEqual(names, {"adexp.1", *(f"adexp-{name}.1" for name in subcommands())})

    def test_the_pages_say_what_the_help_says(self):
        for name in ["", *subcommands()]:
            with self.subTest(name):
                arguments = [name] if name else []
                help = subprocess.run([ADEXP, *arguments, "--help"], capture_output=True, text=True,
                                      check=True).stdout
                # What belongs to the layout of the help.
                help = re.sub(r" REQUIRED\b|\b(Needs|Excludes|Usage|Positionals|Examples?):", " ", help,
                              flags=re.IGNORECASE)
                page = "-".join(["adexp", *arguments]) + ".1"
                text, _ = shown(PAGES / "man1" / page)
                self.assertEqual(words(help) - words(text), set())

    def test_the_page_of_the_library_has_all_functions(self):
        text, _ = shown(PAGES / "man3" / "libadexp.3")
        symbols = (ROOT / "tests/library/exported-symbols.txt").read_text(encoding="utf-8")
        functions = re.findall(r"^(\w+)@@", symbols, re.MULTILINE)
        self.assertTrue(functions)
        for function in functions:
            with self.subTest(function):
                self.assertIn(f"{function}(", text.split("\nDESCRIPTION")[0])
                self.assertEqual((PAGES / "man3" / f"{function}.3").read_text(encoding="utf-8"),
                                 ".so man3/libadexp.3\n")

    def test_the_page_of_the_library_has_the_signatures_of_the_header(self):
        header = (ROOT / "include/adexp.h").read_text(encoding="utf-8")
        text = re.sub(r"\s+", "", shown(PAGES / "man3" / "libadexp.3")[0])
        declarations = re.findall(r"^ADEXP_EXPORT (.*?;)", header, re.MULTILINE | re.DOTALL)
        self.assertGreater(len(declarations), 4)
        for declaration in declarations:
            with self.subTest(declaration):
                self.assertIn(re.sub(r"\s+", "", declaration), text)

    def test_the_page_of_the_library_has_the_example(self):
        text, _ = shown(PAGES / "man3" / "libadexp.3")
        lines = [line.strip() for line in text.splitlines()]
        for line in (ROOT / "examples/convert.c").read_text(encoding="utf-8").splitlines():
            with self.subTest(line):
                self.assertIn(line.strip(), lines)


if __name__ == "__main__":
    ADEXP = sys.argv[1]
    PAGES = Path(sys.argv[2]).resolve()
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
