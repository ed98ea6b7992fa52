#!/usr/bin/env python3
"""Holds what README.md and docs/command.md show against the files, the command and the C example.

    readme_test.py ADEXP CONVERT_EXAMPLE

In a block of the kind "console" the lines behind "$ " are run and what they print is compared; a line
"..." stands for any lines, "..." in a line for anything.
"""
import json
import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
README = (ROOT / "README.md").read_text(encoding="utf-8")
# The pages whose console blocks are run, with the files that they show.
PAGES = README + (ROOT / "docs/command.md").read_text(encoding="utf-8")
SAMPLE = ROOT / "samples" / "rfi-ready-for-improvement.adexp"
# Scripts that build: they do not belong into a test.
BUILDING = ("./run", "./test")


def blocks(kind):
    return re.findall(rf"^```{kind}\n(.*?)^```$", PAGES, re.MULTILINE | re.DOTALL)


def named_files():
    """The blocks whose paragraph in front begins or goes on, after a comma, with the name of a file."""
    pattern = r"^(?:[^\n]*, )?`(\w+\.\w+)`[^\n]*(?:\n[^\n]+)*\n\n```(?:ini|xml|text)\n(.*?)^```$"
    return dict(re.findall(pattern, PAGES, re.MULTILINE | re.DOTALL))


def console_steps(block):
    """The (command, output) pairs of a block."""
    parts = re.split(r"^\$ (.*)\n", block, flags=re.MULTILINE)[1:]
    return list(zip(parts[::2], parts[1::2]))


def steps():
    return [step for block in blocks("console") for step in console_steps(block)]


def output_pattern(expected):
    def line_pattern(line):
        if line == "...\n":
            return "(?:.*\n)*"
        return re.escape(line).replace(re.escape("..."), ".*")
    return "".join(map(line_pattern, expected.splitlines(keepends=True)))


def table_reports():
    """The first columns of the tables of reports."""
    tables = README.split("## Reading the diagnostics")[1].split("\n## ")[0]
    return [text.replace(r"\|", "|") for text in re.findall(r"^\| `(.*?)` \|", tables, re.MULTILINE)]


def pieces(text, placeholder):
    """The fixed texts between the placeholders, without the blanks around them."""
    return [piece.strip() for piece in re.split(placeholder, text) if piece.strip()]


def reports_in_sources():
    """The texts of all reports: what goes through tr(), and the texts about the settings file."""
    texts = []
    for path in sorted((ROOT / "src").glob("*.cpp")):
        source = re.sub(r"//.*", "", path.read_text(encoding="utf-8"))
        for literals in re.findall(r'\btr\(((?:\s*"(?:\\.|[^"\\])*")+)', source):
            text = "".join(re.findall(r'"((?:\\.|[^"\\])*)"', literals))
            texts.append(text.replace('\\"', '"'))
        texts += re.findall(r'"(QSettings: .*?)"', source)
    return texts


def anchors(page):
    """The anchors that the headings of a page get."""
    headings = re.findall(r"^#+ (.*)$", page.read_text(encoding="utf-8"), re.MULTILINE)
    return [re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings]


# What heads of reports are made of; it says nothing about a cause.
HEAD_TEXTS = {"element", "file", "line", ", column", ":"}


class Readme(unittest.TestCase):
    maxDiff = None

    def run_command(self, command, folder):
        environment = dict(os.environ, PATH=f"{ADEXP.parent}{os.pathsep}{os.environ['PATH']}")
        return subprocess.run(["sh", "-c", command], cwd=folder, env=environment, text=True,
                              encoding="utf-8", stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False).stdout

    def folder_of_examples(self):
        """A folder with the files of the first rule set and the samples."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        for name, content in named_files().items():
            (Path(folder.name) / name).write_text(content, encoding="utf-8")
        (Path(folder.name) / "samples").symlink_to(ROOT / "samples")
        return folder.name

    def test_first_rule_set_is_complete(self):
        self.assertEqual(sorted(named_files()), ["adexp.ini", "faulty.ini", "faulty.xml",
                                                 "plan.adexp", "primary.xml", "rules.xml",
                                                 "simple.xml", "sub.xml"])

    def test_commands_print_what_is_shown(self):
        folder = self.folder_of_examples()
        commands = [step for step in steps() if not step[0].startswith(BUILDING)]
        self.assertTrue(commands)
        for command, expected in commands:
            with self.subTest(command):
                output = self.run_command(command, folder)
                if not re.fullmatch(output_pattern(expected), output):
                    self.assertEqual(output, expected)

    def test_run_shows_the_message_and_its_document(self):
        (shown,) = [output for command, output in steps() if command.startswith("./run")]
        _, message, document = re.split(r"^== .*\n", shown, flags=re.MULTILINE)
        self.assertEqual(message, SAMPLE.read_text(encoding="utf-8") + "\n")
        self.assertEqual(document, self.run_command(f"adexp convert '{SAMPLE}'", ROOT))

    def test_c_example_is_the_file(self):
        self.assertEqual(blocks("c"), [(ROOT / "examples/convert.c").read_text(encoding="utf-8")])

    def test_c_example_converts(self):
        with open(SAMPLE, "rb") as message:
            result = subprocess.run([EXAMPLE], stdin=message, capture_output=True, check=False)
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stderr, b"")
        self.assertEqual(result.stdout.decode("utf-8"),
                         self.run_command(f"adexp convert '{SAMPLE}'", ROOT))

    def test_c_example_fails_without_a_document(self):
        result = subprocess.run([EXAMPLE], input=b"", capture_output=True, check=False)
        self.assertEqual((result.returncode, result.stdout), (1, b""))

    def test_every_report_is_in_a_table(self):
        rows = table_reports()
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

    def test_links_lead_somewhere(self):
        for name in ("README.md", "CONTRIBUTING.md", "CHANGELOG.md", "docs/guide.md", "docs/command.md"):
            page = ROOT / name
            text = page.read_text(encoding="utf-8")
            for file, anchor in re.findall(r"\]\((?!https:)([^)#]*)#?([^)]*)\)", text):
                target = page.parent / file if file else page
                with self.subTest(page=page.name, file=file, anchor=anchor):
                    self.assertTrue(target.exists())
                    if anchor:
                        self.assertIn(anchor, anchors(target))

    def test_folders_exist(self):
        for name in re.findall(r"^\| `([\w/]+/)` \|", README, re.MULTILINE):
            with self.subTest(name):
                self.assertTrue((ROOT / name).is_dir())

    def test_build_options_are_those_of_cmake(self):
        shown = re.findall(r"^\| `-D(\w+)=\w+` \| (\w+) \|", README, re.MULTILINE)
        cmake = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
        options = re.findall(r'^option\((\w+) ".*" (\w+)\)$', cmake, re.MULTILINE)
        values = re.findall(r'^set\((ADEXP_\w+) (\S+) CACHE', cmake, re.MULTILINE)
        values = [(name, "none" if value == '""' else value) for name, value in values]
        self.assertEqual(sorted(shown), sorted(options + values))

    def test_presets_are_those_of_cmake(self):
        presets = json.loads((ROOT / "CMakePresets.json").read_text(encoding="utf-8"))
        shown = re.findall(r"^\| `(\w+)` \| `build/\w+` \|", README, re.MULTILINE)
        self.assertEqual(shown, [preset["name"] for preset in presets["configurePresets"]])


if __name__ == "__main__":
    ADEXP = Path(sys.argv[1])
    EXAMPLE = sys.argv[2]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
