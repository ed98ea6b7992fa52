#!/usr/bin/env python3
"""Runs the Python example. PYTHONPATH and ADEXP_LIBRARY name the module and the library."""
import csv
import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

EXAMPLE = Path(__file__).resolve().parents[2] / "examples" / "table.py"


class Table(unittest.TestCase):

    def run_on(self, messages, *fields):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in messages.items():
                Path(folder, name).write_text(text, encoding="utf-8")
            result = subprocess.run([sys.executable, "-B", EXAMPLE, folder, *fields],
                                    capture_output=True, text=True, check=True)
        self.assertEqual(result.stderr, "")
        return list(csv.reader(result.stdout.splitlines()))

    def test_row_for_each_message_in_order_of_names(self):
        self.assertEqual(
            self.run_on({"b.adexp": "-TITLE RFI -ARCID OAL271 -ADEP LGAV",
                         "a.adexp": "-TITLE RFI -ARCID \"A,B\" -NOTE C",
                         "c.adexp": "nothing",
                         "other.txt": "-TITLE RFI"}, "ARCID", "ADEP"),
            [["file", "title", "ARCID", "ADEP", "reports"],
             ["a.adexp", "RFI", '"A,B"', "",
              '"ARCID field contains incorrect data" ""A,B""; "rule NOTE for RFI not found"'],
             ["b.adexp", "RFI", "OAL271", "LGAV", ""],
             ["c.adexp", "", "", "", '"ignore word" "nothing"; "begin message (-TITLE) not found"']])

    def test_fields_of_a_flight_without_a_choice(self):
        self.assertEqual(self.run_on({}),
                         [["file", "title", "ARCID", "ADEP", "ADES", "EOBD", "EOBT", "reports"]])

    def test_without_a_folder_it_shows_its_use(self):
        result = subprocess.run([sys.executable, "-B", EXAMPLE], capture_output=True, text=True,
                                env=os.environ, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("table.py FOLDER", result.stderr)


if __name__ == "__main__":
    unittest.main()
