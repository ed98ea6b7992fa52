"""Tests of "adexp explain" and "adexp match"."""

import json

from commandtest import CommandTest, main

SIMPLE = """<terms>
  <simpleTerm name="LEVEL">
    <description>Flight
      level</description>
    <term>('F' | 'A') ! 3{DIGIT}3</term>
  </simpleTerm>
  <simpleTerm name="WORDS"><term>1{ALPHA} [{DIGIT} ! {ALPHA}2] 1{DIGIT}1 (2{DIGIT}) 2{ALPHA}3</term></simpleTerm>
  <simpleTerm name="PAIR"><term>2{ALPHA}3 4{DIGIT}4 '&#10;' [SEP]</term></simpleTerm>
  <simpleTerm name="ALL"><term>{CHARACTER}</term></simpleTerm>
</terms>"""
PRIMARY = """<terms>
  <PrimaryField name="FL"><term>LEVEL</term></PrimaryField>
  <PrimaryField name="ACK"><term>FL [ALL]</term></PrimaryField>
</terms>"""
RULES = """<rules>
  <msgRule title="ACK"><fields>FL</fields></msgRule>
  <msgRule title="REJ"><fields>FL [ACK]</fields></msgRule>
</rules>"""


class OwnRules(CommandTest):

    def setUp(self):
        super().setUp()
        self.write("simple.xml", SIMPLE.replace("'&#10;' ", ""))
        self.write("sub.xml", "<terms/>")
        self.write("primary.xml", PRIMARY)
        self.write("rules.xml", RULES)
        self.write("my.ini", "[rules]\nsimpleTermsFile=simple.xml\nsubFieldsFile=sub.xml\n"
                             "primaryFieldsFile=primary.xml\nmsgRulesFile=rules.xml\n")

    def run_own(self, subcommand, *arguments, **options):
        return self.run_command(subcommand, "--settings", "my.ini", *arguments, **options)


class Circles(OwnRules):
    """Of definitions in a circle one stays in the list, without what it refers to."""

    def test_definition_that_refers_to_nothing_is_told_about(self):
        self.write("simple.xml", "<terms><simpleTerm name='B'><term>C</term></simpleTerm>"
                                 "<simpleTerm name='C'><term>B</term></simpleTerm></terms>")
        self.write("primary.xml", "<terms/>")
        self.write("rules.xml", "<rules/>")
        self.assert_ends(self.run_own("explain", "C"), 1, "loop detected")
        result = self.run_own("match", "C", "AX")
        self.assert_ends(result, 1, "loop detected")
        self.assertEqual("AX\n^\nmatched 0 of 2 characters; at ^ B is wanted\n", result.stdout)


class Explain(OwnRules):
    maxDiff = None

    def explain(self, *arguments, **options):
        return self.run_own("explain", *arguments, **options)

    def test_definition(self):
        result = self.explain("level")
        self.assert_ends(result, 0)
        self.assertEqual("LEVEL: simpleTerm in simple.xml:2:3\n"
                         "Description:    Flight level\n"
                         "Definition:     ('F' | 'A') ! 3{DIGIT}3\n"
                         "Longest data:   4\n"
                         "Refers to:      -\n"
                         "Referred to by: FL\n"
                         "Compiled form:\n"
                         "  in sequence\n"
                         "  |- one of\n"
                         "  |  |- 'F'\n"
                         "  |  `- 'A'\n"
                         "  `- DIGIT, 3 times\n", result.stdout)

    def test_without_a_name_the_names_of_all_are_shown_each_once(self):
        result = self.explain()
        self.assert_ends(result, 0)
        self.assertEqual("LEVEL\nWORDS\nPAIR\nALL\nFL\nACK\nREJ\n", result.stdout)

    def test_names_do_no_more_than_be_shown(self):
        self.write("simple.xml", "<terms><simpleTerm name='A&#10;B&#x9b;C'><term>'A'</term></simpleTerm></terms>")
        self.write("primary.xml", "<terms/>")
        self.write("rules.xml", "<rules/>")
        self.assertEqual(self.explain().stdout, "A\\nB\\u009BC\n")

    def test_field_and_message_rule_of_one_name(self):
        result = self.explain("ACK")
        self.assert_ends(result, 0)
        self.assertEqual("ACK: PrimaryField in primary.xml:3:3\n"
                         "Definition:     FL [ALL]\n"
                         "Longest data:   is made of fields\n"
                         "Refers to:      FL, ALL\n"
                         "Referred to by: REJ\n"
                         "Compiled form:\n"
                         "  in sequence\n"
                         "  |- FL\n"
                         "  |- SEP\n"
                         "  `- ALL, optional\n"
                         "\n"
                         "ACK: msgRule in rules.xml:2:3\n"
                         "Definition:     FL\n"
                         "Longest data:   is made of fields\n"
                         "Refers to:      FL\n"
                         "Compiled form:\n"
                         "  in sequence\n"
                         "  `- FL\n", result.stdout)

    def test_counts_and_lengths_in_words(self):
        words = self.explain("WORDS").stdout
        for text in ("ALPHA, at least 1 time\n", "in sequence, optional\n", "|- DIGIT, any number of times\n",
                     "`- ALPHA, up to 2 times\n", "DIGIT, 1 time\n", "DIGIT, at least 2 times\n",
                     "ALPHA, 2 to 3 times\n", "Longest data:   no limit\n"):
            with self.subTest(text):
                self.assertIn(text, words)
        self.assertIn("Longest data:   9, white space counted as one\n", self.explain("PAIR").stdout)

    def test_unknown_name_is_told_with_the_nearest(self):
        self.assert_ends(self.explain("LEVL"), 2, "LEVL: there is no term", "the nearest one is LEVEL")

    def test_exchanged_letters_are_one_mistake(self):
        self.assert_ends(self.run_command("explain", "EOTB"), 2, "the nearest one is EOBT")

    def test_full_standard_output_is_told(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.explain("FL", stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written")


class Match(OwnRules):
    maxDiff = None

    def match(self, *arguments, **options):
        return self.run_own("match", *arguments, **options)

    def test_whole_text(self):
        result = self.match("fl", "F350")
        self.assert_ends(result, 0)
        self.assertEqual("F350\n~~~~\nmatched 4 of 4 characters\n", result.stdout)

    def test_what_stopped_the_match(self):
        cases = [
            (("FL", "F35A"), "F35A\n   ^\nmatched 0 of 4 characters; at ^ a digit is wanted, "
                             "in LEVEL\n"),
            (("FL", "S350"), "S350\n^\nmatched 0 of 4 characters; at ^ 'F' or 'A' is wanted, in LEVEL\n"),
            (("FL", "F3500"), "F3500\n~~~~^\nmatched 4 of 5 characters; at ^ nothing more is wanted\n"),
            (("--expr", "alpha ! [fl ! '/' ! 'XY']", "AF350/XZ"),
             "AF350/XZ\n~      ^\nmatched 1 of 8 characters; at ^ 'XY' is wanted\n"),
            (("--expr", "{ALPHA | SEP | '\u00c4'}", "A\n\u00c4 \tb"),
             "A\\n\u00c4 \\tb\n~~~~~~~^\nmatched 5 of 6 characters; at ^ an upper-case letter, white "
             "space or '\u00c4' is wanted\n"),
            (("ALL", "--", "-*"), "-*\n~^\nmatched 1 of 2 characters; at ^ a character of CHARACTER is "
                                  "wanted\n"),
        ]
        for arguments, output in cases:
            with self.subTest(arguments):
                result = self.match(*arguments)
                self.assert_ends(result, 1)
                self.assertEqual(output, result.stdout)

    def test_json(self):
        result = self.match("--format", "json", "FL", "F35A")
        self.assert_ends(result, 1)
        self.assertEqual({"text": "F35A", "length": 4, "matched": 0, "stopped": 3, "wanted": ["a digit"],
                          "path": ["LEVEL"]}, json.loads(result.stdout))
        result = self.match("--format", "json", "FL", "F350")
        self.assert_ends(result, 0)
        self.assertEqual({"text": "F350", "length": 4, "matched": 4}, json.loads(result.stdout))

    def test_expression_that_is_wrong(self):
        cases = [
            ("alpha  ! (digit", "--expr: ALPHA ! (DIGIT\n--expr:         ^ no clossing character ) DIGIT\n"),
            ("alpha ! nme", "--expr: ALPHA ! NME\n--expr:         ^ variable NME not found\n"),
            ("(" * 130 + "A | B" + ")" * 130, "nested deeper than 128 levels"),
            ("(" * 120 + "1{[D1]}" + ")" * 120, "^ brackets and references are nested deeper"),
        ]
        deep = "".join('<simpleTerm name="D%d"><term>[D%d] ! ALPHA</term></simpleTerm>' % (i, i + 1)
                       for i in range(1, 30)) + '<simpleTerm name="D30"><term>DIGIT</term></simpleTerm>'
        self.write("simple.xml", SIMPLE.replace("</terms>", deep + "</terms>"))
        for expression, text in cases:
            with self.subTest(expression):
                result = self.match("--expr", expression.replace("(" * 120, "([ALPHA] ! " * 120), "A")
                self.assert_ends(result, 2, text)
                self.assertEqual("", result.stdout)

    def test_what_cannot_be_matched(self):
        self.assert_ends(self.match("LEVL", "A"), 2, "the nearest one is LEVEL")
        self.assert_ends(self.match("ACK", "A"), 2, "ACK: is made of fields")

    def test_wrong_number_of_arguments(self):
        for arguments in (("FL",), ("FL", "A", "B"), ("--expr", "ALPHA", "FL", "A"), ("--expr", "ALPHA")):
            with self.subTest(arguments):
                result = self.match(*arguments)
                self.assertEqual(64, result.returncode)
                self.assertIn("adexp match --help", result.stderr)

    def test_full_standard_output_is_told(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.match("FL", "A", stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written")


if __name__ == "__main__":
    main()
