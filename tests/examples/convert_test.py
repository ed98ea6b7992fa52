#!/usr/bin/env python3
"""Runs the C example.    convert_test.py EXAMPLE ADEXP"""
import subprocess
import sys
import unittest
from pathlib import Path

SAMPLE = Path(__file__).resolve().parents[2] / "samples" / "rfi-ready-for-improvement.adexp"


def run(*command, message):
    return subprocess.run(command, input=message, capture_output=True, check=False)


class Convert(unittest.TestCase):

    def test_message(self):
        result = run(EXAMPLE, message=SAMPLE.read_bytes())
        self.assertEqual((result.returncode, result.stderr), (0, b""))
        self.assertEqual(result.stdout, run(ADEXP, "convert", message=SAMPLE.read_bytes()).stdout)

    def test_no_document(self):
        result = run(EXAMPLE, message=b"")
        self.assertEqual((result.returncode, result.stdout), (1, b""))


if __name__ == "__main__":
    ADEXP = sys.argv.pop()
    EXAMPLE = sys.argv.pop()
    unittest.main()
