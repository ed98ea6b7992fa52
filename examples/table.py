#!/usr/bin/env python3
"""Turns a folder of messages into a table, as CSV on standard output.

    table.py FOLDER [FIELD...]      for example: table.py messages ARCID ADEP ADES EOBT

The table has a row for each file: its name, the title of the message, the data of the first field of
each name, and the reports about the message.
"""
import csv
import sys
from pathlib import Path

import adexp

DEFAULT_FIELDS = ["ARCID", "ADEP", "ADES", "EOBD", "EOBT"]


def main() -> None:
    folder, *names = sys.argv[1:]
    names = names or DEFAULT_FIELDS
    table = csv.writer(sys.stdout, lineterminator="\n")
    table.writerow(["file", "title", *names, "reports"])
    rules = adexp.RuleSet()
    for path in sorted(Path(folder).glob("*.adexp")):
        result = rules.convert(path.read_bytes(), document=False)
        reports = "; ".join(finding.report for finding in result.findings)
        data = [result.get(name) or "" for name in names]
        table.writerow([path.name, result.title, *data, reports])


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main()
