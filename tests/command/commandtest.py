"""What the tests of the command share: a working folder with a rule set, and running the command.

Usage of every test file: FILE.py PATH-OF-THE-COMMAND [arguments of unittest]
"""

import ctypes
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "data")

GOOD = "-TITLE PLAN -ARCID ABC123 -POINT -LEVEL F370\n"
REPORTED = "-TITLE PLAN stray -ARCID ABC123\n"
NO_TITLE = "-ARCID ABC123\n"
NO_RULE = "-TITLE OTHER -ARCID ABC123\n"

# Long enough for a machine that is busy with other things; nothing here takes a second.
TIMEOUT = 60

# From linux/capability.h and linux/prctl.h
CAP_DAC_OVERRIDE = 1
CAP_DAC_READ_SEARCH = 2
PR_CAPBSET_DROP = 24


class CommandTest(unittest.TestCase):
    """Each test has a folder of its own, the working folder of the command."""

    command = None

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="adexp-command-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.settings("rules.ini")

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        """Writes a file, with the folders it is in."""
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "w", encoding="utf-8", newline="") as file:
            file.write(text)
        return name

    def read(self, name):
        with open(self.path(name), encoding="utf-8", newline="") as file:
            return file.read()

    def files(self, name="."):
        return sorted(os.listdir(self.path(name)))

    def settings(self, name, msgrules="msgrules.xml"):
        files = {"simpleTermsFile": "simpleterms.xml", "subFieldsFile": "subfields.xml",
                 "primaryFieldsFile": "primaryfields.xml", "msgRulesFile": msgrules}
        lines = ['%s="%s"\n' % (key, os.path.join(DATA, file)) for key, file in files.items()]
        return self.write(name, "[rules]\n" + "".join(lines))

    def run_command(self, *arguments, stdin="", **options):
        """Runs the command as it is. The result has returncode, stdout and stderr as text."""
        options.setdefault("stdout", subprocess.PIPE)
        if not hasattr(stdin, "fileno"):
            options["input"] = stdin
        else:
            options["stdin"] = stdin
        return subprocess.run([self.command, *arguments], cwd=self.folder, encoding="utf-8",
                              stderr=subprocess.PIPE, timeout=TIMEOUT, **options)

    def convert(self, *arguments, **options):
        """Runs "convert" with the rule set of the tests."""
        return self.run_command("convert", "--settings", "rules.ini", *arguments, **options)

    def convert_with_ordinary_permissions(self, *arguments, **options):
        """Like convert(), but the permissions of files hold for root as well: root reads and writes all
        files by two capabilities, which the command does not get."""
        def drop():
            for capability in (CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH):
                ctypes.CDLL(None).prctl(PR_CAPBSET_DROP, capability, 0, 0, 0)
        return self.convert(*arguments, preexec_fn=drop, **options)

    def skip_with_sanitizers(self):
        """They keep freed memory for a while, and need address space without a limit."""
        with open(self.command, "rb") as program:
            if re.search(b"__[at]san_init", program.read()):
                self.skipTest("the command is built with a sanitizer")

    def assert_ends(self, result, status, *error_texts):
        """The exit status, and what must stand on standard error: nothing without texts."""
        self.assertEqual(status, result.returncode, result.stderr)
        if not error_texts:
            self.assertEqual("", result.stderr)
        for text in error_texts:
            self.assertIn(text, result.stderr)


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    CommandTest.command = os.path.abspath(sys.argv.pop(1))
    unittest.main()
