"""The library has no data that changes but the default rule set and its locks.

Usage: staticdata_test.py NM OBJECT...
The objects are those that the library is linked from.
"""

import re
import subprocess
import sys

ALLOWED = {
    "mc",  # the default rule set
    "(anonymous namespace)::mcLock",
    "(anonymous namespace)::loadingLock",
}

# What is not ours: pointers to exceptions and marks of AddressSanitizer by the compiler, what moc and rcc write (the description of
# MainClass, and the registration of the built-in rule set when the library is loaded).
GENERATED = re.compile(r"^DW\.ref\.|^__odr_asan\.|^QtPrivate::QMetaTypeInterfaceWrapper<|::dummy$")


def writable(nm, path):
    """The names in sections that can be written to at run time, of one object."""
    text = subprocess.run([nm, "-C", "--defined-only", "--format=sysv", path],
                          capture_output=True, text=True, check=True).stdout
    for line in text.splitlines():
        columns = [column.strip() for column in line.split("|")]
        if len(columns) < 7:
            continue
        name, kind, section = columns[0], columns[3], columns[6]
        if kind == "SECTION" or name.startswith("."):
            continue
        # What is only relocated when the library is loaded is read-only from then on.
        if re.match(r"\.(data|bss|tdata|tbss)(\.|$)", section) and ".rel.ro" not in section:
            yield name


def main(nm, *objects):
    found = {(name, path) for path in objects for name in writable(nm, path)}
    if "mc" not in {name for name, _ in found}:
        return "mc was not found: is this the library?"
    wrong = [f"{path}: {name}" for name, path in sorted(found)
             if name not in ALLOWED and not GENERATED.search(name)]
    return "data that changes:\n" + "\n".join(wrong) if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]) if len(sys.argv) > 2 else __doc__)
