"""The memory that a conversion takes, at the most, for each byte of message, document and reports.

Usage: memory_test.py CONVERTFILES
CONVERTFILES loads the built-in rule set and converts the files that it is given.
"""

import os
import subprocess
import sys
import tempfile

ALLOWED = 24  # measured: up to 21, for words of one letter in a message that gives no document
SIZE = 2_000_000

# Messages of one thing again and again. Behind the names what is repeated, behind a beginning.
MESSAGES = {
    "fields": ("-TITLE IFPL ", "-ARCID EIN21K "),
    "unknown fields": ("-TITLE IFPL ", "-NOBODY KNOWS "),
    "short unknown fields": ("-TITLE IFPL ", "-X "),
    "list": ("-TITLE IFPL -BEGIN RTEPTS ", "-PT -PTID BEPAN -FL F350 "),
    "blocks without end": ("-TITLE IFPL ", "-BEGIN ADDR "),
    "words": ("-TITLE IFPL -ARCID ", "A "),
    "a long word": ("-TITLE IFPL -ARCID ", "A"),
    "words in front of the title": ("", "A "),
    "words of a comment": ("-TITLE IFPL -COMMENT ", "A "),
    "words behind a title without rule": ("-TITLE NOBODY ", "A "),
    "fields behind a title without rule": ("-TITLE NOBODY ", "-X "),
    "lone hyphens": ("-TITLE IFPL ", "- "),
    "characters to escape": ("-TITLE IFPL -RMK ", "<&>"),
    "characters of two bytes": ("-TITLE IFPL -RMK ", "\u0416"),
}


def peak_and_output(program, *files):
    """The most memory that the program had at a time, and what it wrote, both in bytes. A program that
    failed says nothing about that."""
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen([program, *files], stdout=output, stderr=output)
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            output.seek(0)
            sys.exit(f"{program} ended with {process.returncode}: {output.read()[-2000:]!r}")
        return usage.ru_maxrss * 1024, output.seek(0, os.SEEK_END)


def main(program):
    failed = False
    base, _ = peak_and_output(program)
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "message")
        for name, (beginning, repeated) in MESSAGES.items():
            count = SIZE // len(repeated.encode("utf-8"))
            with open(path, "w", encoding="utf-8") as file:
                file.write(beginning + repeated * count)
            peak, output = peak_and_output(program, path)
            per_byte = (peak - base) / (os.path.getsize(path) + output)
            print(f"{name}: {per_byte:.1f} bytes for each of {os.path.getsize(path)} + {output}")
            failed = failed or per_byte > ALLOWED
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]) if len(sys.argv) == 2 else __doc__)
