"""What the tests of the scripts share: a copy of the scripts in a folder with an odd name, where every
program that a script calls is a stand-in which keeps a record of its calls, or one of a few real ones.

Usage of every test file: FILE.py [arguments of unittest]
"""

import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SAMPLE = "samples/rfi-ready-for-improvement.adexp"
# The programs of a Debian system where nothing is installed that the scripts ask for.
BASE = ("awk", "cat", "dirname", "env", "find", "mktemp", "nproc", "realpath", "rm", "sed", "sh", "sort",
        "xargs")


class ScriptTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.outside = Path(folder.name)
        self.root = self.outside / "adexp (1) [ж]"
        for name in ("run", "test", SAMPLE):
            self.copy(name)
        shutil.copytree(ROOT / "scripts", self.root / "scripts")
        self.programs = self.outside / "programs"
        self.programs.mkdir()
        for name in BASE:
            (self.programs / name).symlink_to(shutil.which(name))
        self.stand_in("dpkg-query", "echo installed")
        self.stand_in("id", "echo 0")

    def copy(self, name):
        (self.root / name).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(ROOT / name, self.root / name)

    def write(self, name, text, mode=0o644):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        path.chmod(mode)

    def stand_in(self, program, body="", path=None):
        """Makes a program that notes its name and arguments and then does what the shell code says."""
        path = path or self.programs / program
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(f'#!/bin/sh\necho "{program} $*" >>"$CALLS"\n{body}\n', encoding="utf-8")
        path.chmod(0o755)

    def environment(self, **variables):
        return {"PATH": str(self.programs), "LC_ALL": "C.UTF-8",
                "CALLS": str(self.outside / "calls"), **variables}

    def run_script(self, name, *arguments, cwd=None):
        return subprocess.run([self.root / name, *arguments], cwd=cwd or self.outside,
                              env=self.environment(), encoding="utf-8", stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60, check=False)

    def calls(self, *without):
        """The calls of the stand-ins, those left out that say nothing."""
        try:
            lines = (self.outside / "calls").read_text(encoding="utf-8").splitlines()
        except FileNotFoundError:
            return []
        return [line for line in lines if line.split()[0] not in ("dpkg-query", "id", *without)]

    def assert_refused(self, result, status, text):
        """The script ended with the status, named the reason, and had done nothing."""
        self.assertEqual((result.returncode, result.stdout), (status, ""))
        self.assertIn(text, result.stderr)
        self.assertFalse((self.outside / "calls").exists())
