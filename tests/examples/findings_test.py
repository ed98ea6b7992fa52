#!/usr/bin/env python3
"""Runs the C++ example.    findings_test.py EXAMPLE"""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path


class Findings(unittest.TestCase):

    def run_example(self, *messages):
        with tempfile.TemporaryDirectory() as folder:
            names = [f"{number}.adexp" for number in range(len(messages))]
            for name, message in zip(names, messages):
                (Path(folder) / name).write_text(message, encoding="utf-8")
            return subprocess.run([EXAMPLE, *names], cwd=folder, capture_output=True, check=False,
                                  text=True, encoding="utf-8")

    def test_good_messages_give_nothing(self):
        result = self.run_example("-TITLE RFI -ARCID OAL271", "-TITLE RFI\r\n-ARCID OAL271")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))

    def test_findings_are_listed_with_their_places(self):
        result = self.run_example("-TITLE RFI -ARCID OAL271", "X -TITLE RFI\n  -NOTE A\n")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout.splitlines(), [
            "1.adexp:1:1: warning: ignore word: X [stray-word]",
            "1.adexp:2:3: error: rule NOTE for RFI not found [unknown-field]"])

    def test_a_title_without_a_rule_is_named(self):
        result = self.run_example("-TITLE NOSUCH -ARCID A")
        self.assertEqual((result.returncode, result.stdout),
                         (1, '0.adexp: no rule for the title "NOSUCH"\n'))


if __name__ == "__main__":
    EXAMPLE = sys.argv.pop()
    unittest.main()
