#!/usr/bin/env python3
"""Types the commands that the pages show, and compares what they print.

    commands_test.py ADEXP

In a block of the kind "console" the lines after "$ " are run and what they print is compared; a line
"..." stands for any lines, "..." in a line for anything.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import pages

SHORT_SAMPLE = pages.ROOT / "samples" / "rfi-ready-for-improvement.adexp"
COMMAND_PAGE = pages.ROOT / "docs/command.md"
# Kinds of blocks and where they are tested.
TESTED = {"console": "here", "drawing": "check-layers", "sh": "programs_test.py", "c": "programs_test.py",
          "cpp": "programs_test.py", "output": "programs_test.py", "python": "programs_test.py"}
TESTED_IN_GUIDE = {"match", "compile", "report", "convert"}  # by guide_test.cpp
# Where the packages put what the sources have here.
INSTALLED = {"/usr/share/adexp/schemas": str(pages.ROOT / "schemas")}


def steps(page):
    """The (command, output) pairs of the console blocks of a page."""
    pairs = []
    for block in pages.blocks(pages.read(page), "console"):
        parts = re.split(r"^\$ (.*)\n", block, flags=re.MULTILINE)[1:]
        pairs += zip(parts[::2], parts[1::2])
    return pairs


def output_pattern(expected):
    def line_pattern(line):
        if line == "...\n":
            return "(?:.*\n)*"
        return re.escape(line).replace(re.escape("..."), ".*")
    return "".join(map(line_pattern, expected.splitlines(keepends=True)))


def run(command, folder="."):
    for place, here in INSTALLED.items():
        command = command.replace(place, f"'{here}'")
    environment = dict(os.environ, PATH=f"{ADEXP.parent}{os.pathsep}{os.environ['PATH']}")
    return subprocess.run(["sh", "-c", command], cwd=folder, env=environment, text=True,
                          encoding="utf-8", stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False)


def named_files():
    return {name: content for page in pages.ALL
            for name, content in pages.named_files(pages.read(page)).items()}


class Commands(unittest.TestCase):
    maxDiff = None

    def folder_of_examples(self):
        """A folder with the files that the pages show, the samples, the schemas and the command."""
        folder = Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, folder)
        for name, content in named_files().items():
            (folder / name).write_text(content, encoding="utf-8")
        for name in ("samples", "schemas"):
            (folder / name).symlink_to(pages.ROOT / name)
        (folder / "build").mkdir()
        (folder / "build/release").symlink_to(ADEXP.parent)
        return folder

    def test_files_of_the_pages_are_complete(self):
        self.assertEqual(sorted(named_files()),
                         ["CMakeLists.txt", "adexp.ini", "faulty.ini", "faulty.xml", "plan.adexp",
                          "primary.xml", "rules.xml", "simple.xml", "sub.xml"])

    def test_every_block_is_tested(self):
        for page in pages.ALL:
            text = pages.read(page)
            for kind, content in pages.blocks(text):
                with self.subTest(page=pages.name(page), block=content[:60]):
                    self.assertTrue(kind in TESTED or content in pages.named_files(text).values() or
                                    page == pages.GUIDE and (
                                        kind in TESTED_IN_GUIDE or "\n<simpleTerms" in f"\n{content}"))

    def test_commands_print_what_is_shown(self):
        for page in pages.ALL:
            folder = self.folder_of_examples()
            for command, expected in steps(page):
                with self.subTest(command, page=pages.name(page)):
                    output = run(command, folder).stdout
                    if not re.fullmatch(output_pattern(expected), output):
                        self.assertEqual(output, expected)

    def test_pages_have_commands(self):
        with_commands = [pages.name(page) for page in pages.ALL if steps(page)]
        self.assertEqual(with_commands, ["README.md", "docs/command.md", "docs/document.md",
                                         "docs/guide.md", "docs/reports.md"])

    def test_commands_of_the_table_in_the_guide_work(self):
        commands = re.findall(r"^\| `(adexp .*?)` \|", pages.read(pages.GUIDE), re.MULTILINE)
        self.assertTrue(commands)
        folder = self.folder_of_examples()
        for command in commands:
            with self.subTest(command):
                self.assertLess(run(command, folder).returncode, 2)

    def test_message_and_document_of_the_readme(self):
        rows = re.findall(r"^\| `(-.*)` \| `(<.*>)` \|$", pages.read(pages.README), re.MULTILINE)
        self.assertEqual("".join(f"{line}\n" for line, _ in rows),
                         SHORT_SAMPLE.read_text(encoding="utf-8"))
        document = run(f"adexp convert '{SHORT_SAMPLE}'").stdout.splitlines()
        self.assertEqual([element for _, element in rows],
                         [line.strip() for line in document[1:len(rows) + 1]])
        self.assertEqual(document[len(rows) + 1].strip(), "</RFI>")

    def test_every_subcommand_is_described(self):
        listing = run("adexp --help").stdout.split("\nSubcommands:\n")[1].split("\n\n")[0]
        subcommands = re.findall(r"^  (\w+)", listing, re.MULTILINE)
        page = pages.read(COMMAND_PAGE)
        self.assertTrue(subcommands)
        for subcommand in subcommands:
            with self.subTest(subcommand):
                self.assertRegex(page, rf"(?m)^\| `adexp {subcommand}[ `]")
                self.assertIn(f"adexp-{subcommand}", pages.anchors(COMMAND_PAGE))


if __name__ == "__main__":
    ADEXP = Path(sys.argv.pop())
    unittest.main()
