"""docs/codes.md lists each code of adexp.h, with its number, and no other.

Usage: codes_test.py HEADER PAGE
"""

import re
import sys


def main(header, page):
    with open(header, encoding="utf-8") as file:
        codes = {(name.lower().replace("_", "-"), number)
                 for name, number in re.findall(r"\bADEXP_CODE_(\w+) = (\d+)", file.read())}
    with open(page, encoding="utf-8") as file:
        listed = re.findall(r"^\| `([a-z-]+)` \| (\d+) \|", file.read(), re.MULTILINE)
    wrong = (codes - {("none", "0")}) ^ set(listed)
    if wrong or len(listed) != len(set(listed)) or not listed:
        return f"not in both, or listed twice: {sorted(wrong)}"
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) if len(sys.argv) == 3 else __doc__)
