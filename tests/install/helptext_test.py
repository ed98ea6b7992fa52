#!/usr/bin/env python3
"""Reads help texts, also of forms that the command does not have yet."""
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "manual"))

from completion import bash_completion, fish_completion, zsh_completion  # noqa: E402
from helptext import Entry, heads, parsed_entry, parsed_help  # noqa: E402
from manpage import manual_page  # noqa: E402

HELP = """\
Does it
Usage: adexp do [OPTIONS] NAME [FILE...]

Positionals:
  NAME FILE ... Excludes: --list
                              What to do

OPTIONS:
  -h,--help                   Print this help message and exit
  -j,--jobs N:INT in [0 - 9]=1
                              How often:
                              [again]
  --form TEXT:{a,b} Needs: --list
                              How it's done
  --list FILE Excludes: FILE -h
                              Where to look

First line
second line.

  .table  1

Last paragraph.

Example:
  adexp do 'it'

Exit status:
  0      done
"""


class HelpText(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.help = parsed_help("adexp do", HELP)

    def test_heads_of_entries(self):
        for head, expected in [
                ("-a", Entry(["-a"], "")),
                ("-a,--all", Entry(["-a", "--all"], "")),
                ("--out FILE", Entry(["--out"], "", "FILE")),
                ("--out FILE REQUIRED", Entry(["--out"], "", "FILE")),
                ("--out FILE ... REQUIRED", Entry(["--out"], "", "FILE", repeated=True)),
                ("NAME REQUIRED", Entry(["NAME"], "")),
                ("NAME ...", Entry(["NAME"], "", repeated=True)),
                ("--jobs N=4", Entry(["--jobs"], "", "N", default="4")),
                ("--jobs N:POSITIVE=4", Entry(["--jobs"], "", "N", default="4", check="POSITIVE")),
                ("--form TEXT:{a,b}=a", Entry(["--form"], "", "TEXT", default="a", choices=["a", "b"])),
                ("-a Needs: -b --c Excludes: -d E",
                 Entry(["-a"], "", needs=["-b", "--c"], excludes=["-d", "E"])),
        ]:
            with self.subTest(head):
                self.assertEqual(parsed_entry(head, ""), expected)

    def test_texts_beside_and_below(self):
        self.assertEqual(heads(["  -a      A b", "  -b", "          C", "          d", "  -c      E",
                                "  --a b c F g  h", "  --ab c d", "          I j", ""]),
                         [("-a", "A b"), ("-b", "C d"), ("-c", "E"), ("--a b c", "F g  h"),
                          ("--ab c d", "I j")])
        self.assertEqual(heads(["  -a               A", "  --ab F Excludes: G", " " * 19 + "B"]),
                         [("-a", "A"), ("--ab F Excludes: G", "B")])
        self.assertEqual(heads([" ", "  -b", "          C"]), [("-b", "C")])

    def test_sections(self):
        self.assertEqual((self.help.summary, self.help.usage),
                         ("Does it", "adexp do [OPTIONS] NAME [FILE...]"))
        self.assertEqual([line for line in self.help.description if line],
                         ["First line", "second line.", "  .table  1", "Last paragraph."])
        self.assertEqual(self.help.arguments(), [("NAME", False), ("FILE", True)])
        self.assertEqual([entry.names for entry in self.help.entries("options")],
                         [["-h", "--help"], ["-j", "--jobs"], ["--form"], ["--list"]])

    def test_page(self):
        page = manual_page(self.help, [self.help], "1.2.3", "2026-01-02")
        for part in (
                '.TH ADEXP\\-DO 1 "2026-01-02" "adexp 1.2.3"',
                ".SH NAME\nadexp\\-do \\- does it\n",
                ".PP\nFirst line second line.\n.PP\n.EX\n  .table  1\n.EE\n.PP\nLast paragraph.\n",
                "How often: [again]. INT in [0 \\- 9]. Without it 1.\n",
                "How it\\(aqs done. One of a, b. Only with \\-\\-list.\n",
                "\\fINAME\\fP \\fIFILE\\fP ...\nWhat to do. Not together with \\-\\-list.\n",
                ".EX\nadexp do \\(aqit\\(aq\n.EE\n",
                '.SH "EXIT STATUS"\n.TP\n\\fB0\\fP\ndone\n'):
            with self.subTest(part):
                self.assertIn(part, page)

    def test_a_line_of_text_is_no_macro(self):
        help = parsed_help("adexp", "Does\nUsage: adexp\n\n.PP is text\n")
        self.assertIn("\n\\&.PP is text\n", manual_page(help, [help], "1", "2026-01-02"))

    def test_completions(self):
        main = parsed_help("adexp", "Does\nUsage: adexp\n\nSubcommands:\n  do    It's: done\n")
        bash = bash_completion(main, [self.help])
        for row in ("[do]='definition file...'", "[do --form]='a,b'", "[do -j]='none'", "[do --list]='file'"):
            with self.subTest(row):
                self.assertIn(f"        {row}\n", bash)
        zsh = zsh_completion(main, [self.help])
        for row in (r"'do:It'\''s\: done'", "'(-j --jobs)--jobs=[How often: \\[again\\]]:N: '",
                    r"'(--form)--form=[How it'\''s done]:TEXT:(a b)'",
                    "'(--list -h)--list=[Where to look]:FILE:_files'", "'1:NAME:_adexp_definitions'",
                    "'*:FILE:_files'"):
            with self.subTest(row):
                self.assertIn(f"        {row}", zsh)
        fish = fish_completion(main, [self.help])
        for row in ("            set options h/help j/jobs=+ form=+ list=+",
                    r"complete -c adexp -n '__adexp_in adexp' -a do -d 'It\'s: done'",
                    r"complete -c adexp -n '__adexp_in do' -l form -r -f -a 'a b' -d 'How it\'s done'",
                    "complete -c adexp -n '__adexp_at do -eq 0' -f -a '(__adexp_definitions)'",
                    "complete -c adexp -n '__adexp_at do -ge 1' -F"):
            with self.subTest(row):
                self.assertIn(f"{row}\n", fish)


if __name__ == "__main__":
    unittest.main()
