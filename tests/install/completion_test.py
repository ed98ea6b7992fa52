#!/usr/bin/env python3
"""Completes command lines of adexp in bash and zsh.

    completion_test.py ADEXP FOLDER

FOLDER has the scripts, as bash/adexp and zsh/_adexp.
"""
import os
import pty
import re
import select
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

DATA = Path(__file__).resolve().parents[1] / "command" / "data"
TIMEOUT = 60

# Sources the script $1 and completes the last of the words that follow.
BASH = """\
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_adexp
((${#COMPREPLY[@]} == 0)) || printf '%s\\n' "${COMPREPLY[@]}"
"""

# Control-X writes down the line as it is.
ZSH = """\
PS1= RPS1=
fpath=({scripts} $fpath)
autoload -U compinit && compinit -u -d {folder}/dump
record() {{ print -r -- "$BUFFER" > {folder}/partial; mv {folder}/partial {folder}/line }}
zle -N record
bindkey '^X' record
bindkey '^I' complete-word
setopt no_auto_list no_beep
touch {folder}/ready
"""


class Completion(unittest.TestCase):

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        (self.folder / "work").mkdir()
        for name in ("plan one.adexp", "plant.adexp", "rules.ini"):
            (self.folder / "work" / name).touch()
        (self.folder / "work" / "plans").mkdir()
        self.environment = dict(os.environ, PATH=f"{ADEXP.parent}{os.pathsep}{os.environ['PATH']}")

    def settings_of_the_tests(self):
        files = {"simpleTermsFile": "simpleterms.xml", "subFieldsFile": "subfields.xml",
                 "primaryFieldsFile": "primaryfields.xml", "msgRulesFile": "msgrules.xml"}
        settings = self.folder / "work" / "own.ini"
        settings.write_text("[rules]\n" + "".join(f'{key}="{DATA / name}"\n'
                                                  for key, name in files.items()), encoding="utf-8")


class Bash(Completion):

    def complete(self, *words):
        result = subprocess.run(["bash", "--norc", "-c", BASH, "bash", SCRIPTS / "bash" / "adexp",
                                 "adexp", *words], cwd=self.folder / "work", env=self.environment,
                                capture_output=True, text=True, timeout=TIMEOUT, check=True)
        self.assertEqual(result.stderr, "")
        return result.stdout.splitlines()

    def test_subcommands(self):
        help = subprocess.run([ADEXP, "--help"], capture_output=True, text=True, check=True).stdout
        section = re.search(r"^subcommands:\n((?: .*\n)+)", help, re.MULTILINE | re.IGNORECASE)[1]
        self.assertEqual(self.complete(""), re.findall(r"^  (\S+)", section, re.MULTILINE))
        self.assertEqual(self.complete("con"), ["convert"])

    def test_options(self):
        self.assertEqual(self.complete("--"), ["--help", "--version"])
        self.assertEqual(self.complete("tree", "--"), ["--help", "--settings"])
        self.assertEqual(self.complete("convert", "plant.adexp", "--s"), ["--settings", "--summary"])

    def test_files(self):
        self.assertEqual(sorted(self.complete("convert", "pl")),
                         ["plan one.adexp", "plans", "plant.adexp"])
        self.assertEqual(self.complete("convert", "a", "b", "plant"), ["plant.adexp"])
        self.assertEqual(self.complete("tree", "plant"), ["plant.adexp"])
        self.assertEqual(self.complete("tree", "plant.adexp", "pl"), [])

    def test_values_of_options(self):
        self.assertEqual(self.complete("convert", "--settings", "ru"), ["rules.ini"])
        self.assertEqual(self.complete("convert", "--settings", "=", "ru"), ["rules.ini"])
        self.assertIn("rules.ini", self.complete("convert", "--settings", "="))
        self.assertEqual(self.complete("convert", "--settings", "x", "--settings", "y", "plant"),
                         ["plant.adexp"])

    def test_words(self):
        self.assertEqual(self.complete("check", "--format", ""), ["text", "json"])
        self.assertEqual(self.complete("check", "--format", "=", "j"), ["json"])

    def test_definitions(self):
        self.assertEqual(self.complete("dump", "ARCIDK"), ["ARCIDK"])
        self.assertEqual(self.complete("dump", "arcidk"), ["ARCIDK"])
        self.assertEqual(self.complete("dump", "ARCIDK", "A"), [])
        self.assertEqual(self.complete("match", "ARCIDK"), ["ARCIDK"])
        self.assertEqual(self.complete("match", "ARCIDK", "A"), [])

    def test_definitions_of_another_rule_set(self):
        self.settings_of_the_tests()
        for settings in (["--settings", "own.ini"], ["--settings", "=", "own.ini"]):
            self.assertEqual(self.complete("dump", *settings, "P"), ["POINT", "PLAN"])
        self.assertEqual(self.complete("dump", "--settings", "missing.ini", "A"), [])

    def test_unknown_subcommand(self):
        self.assertEqual(self.complete("nosuch", ""), [])


class Zsh(Completion):

    def start(self):
        """An interactive shell on a terminal of its own."""
        setup = self.folder / "setup"
        setup.write_text(ZSH.format(scripts=SCRIPTS / "zsh", folder=self.folder), encoding="utf-8")
        self.master, slave = pty.openpty()
        self.addCleanup(os.close, self.master)
        shell = subprocess.Popen(["zsh", "-f", "-i"], cwd=self.folder / "work", stdin=slave,
                                 stdout=slave, stderr=slave, start_new_session=True,
                                 env=dict(self.environment, TERM="dumb"))
        os.close(slave)
        self.addCleanup(shell.wait)
        self.addCleanup(shell.kill)
        self.send(f"source {setup}\n")
        self.wait_for("ready")

    def send(self, keys):
        os.write(self.master, keys.encode())

    def wait_for(self, name):
        end = time.monotonic() + TIMEOUT
        while not (self.folder / name).exists():
            self.assertLess(time.monotonic(), end, f"zsh makes no {name}")
            if select.select([self.master], [], [], 0.02)[0]:
                os.read(self.master, 4096)

    def complete(self, line):
        """The line after the tabulator key."""
        self.send(f"{line}\t\x18")
        self.wait_for("line")
        result = (self.folder / "line").read_text(encoding="utf-8").rstrip("\n")
        (self.folder / "line").unlink()
        self.send("\x15")  # deletes the line
        return result

    def test_syntax(self):
        result = subprocess.run(["zsh", "-n", SCRIPTS / "zsh" / "_adexp"], capture_output=True,
                                text=True, check=False)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_lines(self):
        self.settings_of_the_tests()
        self.start()
        for line, expected in [
                ("adexp con", "adexp convert "),
                ("adexp --v", "adexp --version "),
                ("adexp convert --su", "adexp convert --summary "),
                ("adexp convert --settings ru", "adexp convert --settings rules.ini "),
                ("adexp convert --settings=ru", "adexp convert --settings=rules.ini "),
                ("adexp convert plant", "adexp convert plant.adexp "),
                ("adexp convert x plant", "adexp convert x plant.adexp "),
                ("adexp tree x plant", "adexp tree x plant"),
                ("adexp convert --summary --out", "adexp convert --summary --output="),
                ("adexp dump arcidk", "adexp dump ARCIDK "),
                ("adexp match ARCIDK arcidk", "adexp match ARCIDK arcidk"),
                ("adexp check --format j", "adexp check --format json "),
                ("adexp dump --settings own.ini PL", "adexp dump --settings own.ini PLAN "),
        ]:
            with self.subTest(line):
                self.assertEqual(self.complete(line), expected)


if __name__ == "__main__":
    ADEXP = Path(sys.argv[1]).resolve()
    SCRIPTS = Path(sys.argv[2]).resolve()
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
