#!/usr/bin/env python3
"""Turns a folder of messages into a table, as CSV on standard output.

    table.py FOLDER [FIELD...]      for example: table.py messages ARCID ADEP ADES EOBT

The table has a row for each file: its name, the title of the message, the data of the first field of
each name, and the reports about the message.
"""
import csv
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

import adexp

DEFAULT_FIELDS = ["ARCID", "ADEP", "ADES", "EOBD", "EOBT"]


def row(converter: adexp.Converter, message: bytes, fields: list) -> list:
    try:
        document = ElementTree.fromstring(converter.convert(message))
    except adexp.NoDocumentError:
        return [""] * (1 + len(fields)) + ["; ".join(converter.diagnostics)]
    data = [document.findtext(f".//{field}", default="") for field in fields]
    return [document.get("rule"), *data, "; ".join(converter.diagnostics)]


def main() -> None:
    folder, *fields = sys.argv[1:]
    fields = fields or DEFAULT_FIELDS
    table = csv.writer(sys.stdout, lineterminator="\n")
    table.writerow(["file", "title", *fields, "reports"])
    with adexp.Converter() as converter:
        for path in sorted(Path(folder).glob("*.adexp")):
            table.writerow([path.name, *row(converter, path.read_bytes(), fields)])


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main()
