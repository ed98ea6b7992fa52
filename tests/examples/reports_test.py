#!/usr/bin/env python3
"""Runs the C++ example.    reports_test.py EXAMPLE ADEXP"""
import subprocess
import sys
import unittest

GOOD = b"-TITLE RFI -ARCID OAL271"
FAULTY = b"X -TITLE RFI -NOTE A"


def run(*command, message):
    return subprocess.run(command, input=message, capture_output=True, check=False)


class Reports(unittest.TestCase):

    def test_good_message(self):
        result = run(EXAMPLE, message=GOOD)
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, run(ADEXP, "convert", message=GOOD).stdout)
        self.assertEqual(result.stderr, b"0 reports\n")

    def test_faulty_message(self):
        result = run(EXAMPLE, message=FAULTY)
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, run(ADEXP, "convert", message=FAULTY).stdout)
        self.assertEqual(result.stderr.decode().splitlines(), [
            "2 reports", '  "ignore word" "X"', '  "rule NOTE for RFI not found"'])

    def test_no_document(self):
        result = run(EXAMPLE, message=b"X")
        self.assertEqual((result.returncode, result.stdout), (1, b""))


if __name__ == "__main__":
    ADEXP = sys.argv.pop()
    EXAMPLE = sys.argv.pop()
    unittest.main()
