#!/usr/bin/env python3
"""Presses TAB behind command lines of adexp in bash, zsh and fish, each on a terminal of its own.

    completion_test.py ADEXP FOLDER

FOLDER has the scripts, as bash/adexp, zsh/_adexp and fish/adexp.fish.
"""
import fcntl
import os
import pty
import re
import select
import shlex
import shutil
import subprocess
import sys
import tempfile
import termios
import time
import unittest
from pathlib import Path
from xml.sax.saxutils import quoteattr

DATA = Path(__file__).resolve().parents[1] / "command" / "data"
TIMEOUT = 60
# Keys: completes; writes down the line as it is; deletes it.
TAB, RECORD, DELETE = "\t", "\x14", "\x15"

# What makes a shell ready. The key RECORD writes the line to a file.
BASH = """\
PS1= HISTFILE=
source {scripts}/bash/adexp
record() {{ printf '%s' "$READLINE_LINE" > {folder}/partial; mv {folder}/partial {folder}/line; }}
bind -x '"\\C-t": record'
bind 'set bell-style none'
bind 'set enable-bracketed-paste off'
bind 'set page-completions off'
bind 'set completion-query-items 0'
touch {folder}/ready
"""
ZSH = """\
PS1= RPS1=
fpath=({scripts}/zsh $fpath)
autoload -U compinit && compinit -u -d {folder}/dump
record() {{ print -rn -- "$BUFFER" > {folder}/partial; mv {folder}/partial {folder}/line }}
zle -N record
bindkey '^T' record
bindkey '^I' complete-word
setopt no_auto_list no_beep
touch {folder}/ready
"""
FISH = """\
function fish_prompt; end
source {scripts}/fish/adexp.fish
set fish_autosuggestion_enabled 0
bind \\ct 'commandline | string collect > {folder}/partial; mv {folder}/partial {folder}/line'
touch {folder}/ready
"""

# Names that run TOUCH, which makes a file RAN, where a shell takes them for code. They are in capitals
# since the names of definitions are.
HOSTILE = [
    "$(>RAN)",
    "`>RAN`",
    "$(TOUCH RAN)",
    "`TOUCH RAN`",
    "(TOUCH RAN)",
    "<(TOUCH RAN)",
    "A;TOUCH RAN;",
    "A&TOUCH RAN&",
    "A|TOUCH RAN",
    "A' ;TOUCH RAN; '",
    "A\" ;TOUCH RAN; \"",
    "\"$(TOUCH RAN)\"",
    "'$(TOUCH RAN)'",
    "A\\$(TOUCH RAN)",
    "${A:=$(TOUCH RAN)}",
    "$((A[$(TOUCH RAN)]))",
    "A[$(TOUCH RAN)]",
    "A\nTOUCH RAN\n",
    "A\n$(TOUCH RAN)\n",
    " A B  C ",
    "*",
    "[A-Z]?{A,B}",
    "~ROOT",
    "#A",
    "!A",
    "=A",
    "A:B=C",
    "Ä ö",
]


class Shell(unittest.TestCase):
    """The tests, which each of the shells below goes through."""

    command = []
    setup = ""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.work = self.folder / "work"
        self.work.mkdir()
        programs = self.folder / "programs"
        programs.mkdir()
        (programs / "adexp").symlink_to(ADEXP)
        (programs / "TOUCH").symlink_to(shutil.which("touch"))
        self.environment = dict(os.environ, TERM="dumb", HOME=str(self.folder), LC_ALL="C.UTF-8",
                                PATH=f"{programs}{os.pathsep}{os.environ['PATH']}")
        self.environment.pop("XDG_CONFIG_HOME", None)

    def start(self):
        """An interactive shell, ready for a command line."""
        setup = self.folder / "setup"
        setup.write_text(self.setup.format(scripts=shlex.quote(str(SCRIPTS)), folder=self.folder),
                         encoding="utf-8")
        self.master, slave = pty.openpty()
        self.addCleanup(os.close, self.master)
        shell = subprocess.Popen(
            [*self.command, "-i"], cwd=self.work, env=self.environment,
            stdin=slave, stdout=slave, stderr=slave, start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
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
            self.assertLess(time.monotonic(), end, f"the shell makes no {name}")
            if select.select([self.master], [], [], 0.02)[0]:
                os.read(self.master, 65536)

    def complete(self, line, keys=TAB):
        """The line after the keys."""
        self.send(line + keys + RECORD)
        self.wait_for("line")
        result = (self.folder / "line").read_text(encoding="utf-8")
        (self.folder / "line").unlink()
        self.send(DELETE)
        # Without the line feed of a shell that ends the line with one.
        return re.sub(r"(?<! )\n\Z", "", result)

    def assert_nothing_ran(self):
        found = list(self.folder.rglob("RAN"))
        for path in found:
            path.unlink()  # which is no fault of the next name
        self.assertEqual(found, [])

    def assert_lines(self, table):
        self.start()
        for line, expected in table:
            with self.subTest(line):
                self.assertEqual(self.complete(line), expected)

    def words_of(self, line):
        """The words that the shell makes of the arguments of a line, as they reach a program."""
        printed = subprocess.run([*self.command, "-c", re.sub("^adexp ", r"printf '%s\\0' ", line)],
                                 cwd=self.work, env=self.environment, capture_output=True, check=True)
        return printed.stdout.decode().split("\0")[:-1]

    def make_files(self):
        for name in ("plan one.adexp", "plant.adexp", "rules.ini"):
            (self.work / name).touch()
        (self.work / "plans").mkdir()

    def write_rule_set(self, names, settings="own.ini"):
        """The rule set of the tests of the command, with more definitions."""
        (self.work / "terms.xml").write_text(
            "<simpleTerms>\n" + "".join(
                f"<simpleTerm name={quoteattr(name, {chr(10): '&#10;'})}><term>'A'</term></simpleTerm>\n"
                for name in names) + "</simpleTerms>\n", encoding="utf-8")
        files = {"simpleTermsFile": self.work / "terms.xml", "subFieldsFile": DATA / "subfields.xml",
                 "primaryFieldsFile": DATA / "primaryfields.xml",
                 "msgRulesFile": DATA / "msgrules.xml"}
        (self.work / settings).write_text("[rules]\n" + "".join(
            f'{key}="{name}"\n' for key, name in files.items()), encoding="utf-8")

    def test_subcommands(self):
        help = subprocess.run([ADEXP, "--help"], capture_output=True, text=True, check=True).stdout
        section = re.search(r"^subcommands:\n((?: .*\n)+)", help, re.MULTILINE | re.IGNORECASE)[1]
        names = re.findall(r"^  (\S+)", section, re.MULTILINE)
        self.assertTrue(names)
        self.assert_lines((f"adexp {name[:2]}", f"adexp {name} ") for name in names)

    def test_options(self):
        self.assert_lines([
            ("adexp --v", "adexp --version "),
            ("adexp tree --s", f"adexp tree --settings{self.behind_option}"),
            ("adexp tree --v", "adexp tree --v"),
            ("adexp convert plant.adexp --su", "adexp convert plant.adexp --summary "),
            ("adexp convert --summary --out", f"adexp convert --summary --output{self.behind_option}"),
        ])

    def test_values_of_options(self):
        self.make_files()
        self.assert_lines([
            ("adexp convert --settings ru", "adexp convert --settings rules.ini "),
            ("adexp convert --settings=ru", "adexp convert --settings=rules.ini "),
            ("adexp convert --settings x --settings ru", "adexp convert --settings x --settings rules.ini "),
            ("adexp check --format j", "adexp check --format json "),
            ("adexp check --format=j", "adexp check --format=json "),
            ("adexp convert --jobs ru", "adexp convert --jobs ru"),
        ])

    def test_files(self):
        self.make_files()
        self.assert_lines([
            ("adexp convert plant", "adexp convert plant.adexp "),
            ("adexp convert x plant", "adexp convert x plant.adexp "),
            ("adexp convert --settings x plant", "adexp convert --settings x plant.adexp "),
            ("adexp convert plans", "adexp convert plans/"),
            ("adexp tree plant", "adexp tree plant.adexp "),
            ("adexp tree x plant", "adexp tree x plant"),
            ("adexp nosuch plant", "adexp nosuch plant"),
        ])

    def test_definitions(self):
        self.write_rule_set(["PLAIN", "ТЕРМ"])
        self.assert_lines([
            ("adexp dump ARCIDK", "adexp dump ARCIDK "),
            ("adexp dump arcidk", "adexp dump ARCIDK "),
            ("adexp explain arcidk", "adexp explain ARCIDK "),
            ("adexp dump ARCIDK arcidk", "adexp dump ARCIDK arcidk"),
            ("adexp match arcidk", "adexp match ARCIDK "),
            ("adexp match ARCIDK arcidk", "adexp match ARCIDK arcidk"),
            ("adexp dump --settings own.ini PLAI", "adexp dump --settings own.ini PLAIN "),
            ("adexp dump --settings=own.ini PLAI", "adexp dump --settings=own.ini PLAIN "),
            ("adexp dump --settings ~/work/own.ini PLAI", "adexp dump --settings ~/work/own.ini PLAIN "),
            ("adexp dump --settings own.ini ТЕ", "adexp dump --settings own.ini ТЕРМ "),
            ("adexp dump --settings missing.ini ARCIDK", "adexp dump --settings missing.ini ARCIDK"),
        ])

    def test_a_settings_file_that_never_ends_holds_nobody_up(self):
        os.mkfifo(self.work / "pipe.ini")
        self.start()
        begin = time.monotonic()
        self.complete("adexp dump --settings pipe.ini A")
        self.assertLess(time.monotonic() - begin, TIMEOUT / 2)

    def test_no_name_of_a_definition_is_run(self):
        self.start()
        for number, name in enumerate(HOSTILE):
            with self.subTest(name):
                settings = f"{number}.ini"
                self.write_rule_set([name, "PLAIN"], settings)
                dump = subprocess.run([ADEXP, "dump", "--settings", settings], cwd=self.work, text=True,
                                      capture_output=True, encoding="utf-8", check=False).stdout
                self.assertIn(f"{name.upper()} = ", dump)  # the rule set has it
                self.complete(f"adexp dump --settings {settings} ", TAB + TAB)
                self.assert_nothing_ran()
                self.assertEqual(self.complete(f"adexp dump --settings {settings} PLAI"),
                                 f"adexp dump --settings {settings} PLAIN ")

    def test_no_name_of_a_file_is_run(self):
        self.start()
        for number, name in enumerate(HOSTILE):
            with self.subTest(name):
                (self.work / str(number)).mkdir()
                (self.work / str(number) / name).touch()
                line = self.complete(f"adexp convert {number}/")
                self.assert_nothing_ran()
                self.assertEqual(self.words_of(line), ["convert", f"{number}/{name}"])
                self.assert_nothing_ran()

    def test_no_name_of_a_folder_is_run(self):
        self.start()
        for number, name in enumerate(HOSTILE):
            with self.subTest(name):
                (self.work / str(number) / name).mkdir(parents=True)
                (self.work / str(number) / name / "plan.adexp").touch()
                line = self.complete(f"adexp convert {number}/", TAB + TAB)
                self.assert_nothing_ran()
                # Not every shell looks into every folder.
                path = self.words_of(line)[1]
                self.assertEqual(f"{number}/{name}/plan.adexp"[:len(path)], path)
                self.assertIn(name, path)
                self.assert_nothing_ran()

    def test_no_name_of_a_settings_file_is_run(self):
        self.start()
        for number, name in enumerate(HOSTILE):
            with self.subTest(name):
                (self.work / str(number)).mkdir()
                self.write_rule_set(["PLAIN"], f"{number}/{name}.ini")
                settings = self.complete(f"adexp dump --settings {number}/")
                line = self.complete(f"adexp dump --settings {number}/", f"{TAB}PLAI{TAB}")
                self.assert_nothing_ran()
                if "\n" not in name:  # bash and zsh have other quotes for it
                    self.assertEqual(line, f"{settings}PLAIN ")

    def test_no_word_of_the_line_is_run(self):
        self.start()
        for word in ("'$(TOUCH RAN)'", "'-$(TOUCH RAN)'", "'--settings=$(TOUCH RAN)'", "'`TOUCH RAN`'",
                     "'A[$(TOUCH RAN)]'"):
            for subcommand in ("", "convert ", "dump "):
                with self.subTest(word=word, subcommand=subcommand):
                    self.complete(f"adexp {subcommand}{word} ")
                    self.complete(f"adexp {subcommand}--settings {word} ")
                    self.complete(f"adexp {subcommand}{word[:-1]}")
                    self.assert_nothing_ran()


class Bash(Shell):
    command = ["bash", "--norc", "--noprofile"]
    setup = BASH
    behind_option = " "


class Zsh(Shell):
    command = ["zsh", "-f"]
    setup = ZSH
    behind_option = "="


class Fish(Shell):
    command = ["fish", "--no-config"]
    setup = FISH
    behind_option = " "


del Shell  # has no shell of its own


if __name__ == "__main__":
    ADEXP = Path(sys.argv[1]).resolve()
    SCRIPTS = Path(sys.argv[2]).resolve()
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
