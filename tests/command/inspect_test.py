"""Tests of "adexp tree" and "adexp dump"."""

import os

from commandtest import GOOD, NO_RULE, NO_TITLE, REPORTED, CommandTest, main

ARCID = "CALLSIGN<simpleTerm>CALLSIGN</simpleTerm>2{ALPHANUM}7</simpleTerm>"


class Tree(CommandTest):

    def tree(self, *arguments, **options):
        return self.run_command("tree", "--settings", "rules.ini", *arguments, **options)

    def test_lines_are_those_of_the_library(self):
        result = self.tree(self.write("good", GOOD))
        self.assert_ends(result, 0)
        self.assertEqual("PLAN  \n"
                         "++ Begin sub fields for PLAN ++ \n"
                         "   ARCID ABC123 \n"
                         "   POINT  \n"
                         "   ++ Begin sub fields for POINT ++ \n"
                         "      LEVEL F370 \n"
                         "   ++ End sub fields for POINT ++ \n"
                         "++ End sub fields for PLAN ++ \n", result.stdout)

    def test_unknown_field_is_marked_and_reported(self):
        result = self.tree("-", stdin="-TITLE NOTE -ARCID ABC -WHAT 1\n")
        self.assert_ends(result, 1, '<stdin>: "rule WHAT for NOTE not found" \n')
        self.assertIn("   WHAT 1 : -- <NOTE> Unknown field -- \n", result.stdout)

    def test_reports_go_to_standard_error(self):
        result = self.tree(self.write("reported", REPORTED))
        self.assert_ends(result, 1, 'reported: "ignore word" "stray" \n')
        self.assertNotIn("ignore word", result.stdout)

    def test_reason_and_remedy_are_told(self):
        os.mkdir(self.path("folder"))
        cases = [
            ("-", NO_TITLE, 'no fields: there is no "-TITLE" in it'),
            ("-", NO_RULE, 'no fields: the rule set has no rule for the title "OTHER"'),
            ("gone", "", "gone: no fields: cannot be read: No such file"),
            ("folder", "", "folder: no fields: is a folder"),
        ]
        for file, stdin, text in cases:
            with self.subTest(text=text):
                self.assert_ends(self.tree(file, stdin=stdin), 2, text)

    def test_rule_set_that_is_not_there(self):
        result = self.run_command("tree", "--settings", "gone.ini", "-", stdin=GOOD)
        self.assert_ends(result, 2, "gone.ini: the settings file cannot be read")

    def test_full_standard_output_is_told(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.tree("-", stdin=GOOD, stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written: No space left on device")


class Dump(CommandTest):

    def dump(self, *arguments, **options):
        return self.run_command("dump", "--settings", "rules.ini", *arguments, **options)

    def test_terms_and_rules_by_name(self):
        cases = [
            ("NUMBER", "1{DIGIT}4"),
            ("number", "1{DIGIT}4"),
            ("ARCID", ARCID),
            ("NOTE", "<TermExpression>ARCID<simpleTerm>ARCID</simpleTerm>" + ARCID +
             "</simpleTerm></TermExpression>"),
        ]
        for name, form in cases:
            with self.subTest(name=name):
                result = self.dump(name)
                self.assert_ends(result, 0)
                self.assertEqual(form + "\n", result.stdout)

    def test_all_in_the_order_of_loading_the_message_rules_last(self):
        result = self.dump()
        self.assert_ends(result, 0)
        lines = result.stdout.splitlines()
        self.assertEqual(["NUMBER", "CALLSIGN", "LEVEL", "ARCID", "POINT", "PLAN", "NOTE"],
                         [line.split(" = ")[0] for line in lines])
        self.assertEqual("ARCID = " + ARCID, lines[3])

    def test_unknown_name_is_told_with_the_nearest(self):
        for name, nearest in (("ARCIDD", "ARCID"), ("PLAM", "PLAN"), ("x", "NUMBER")):
            with self.subTest(name=name):
                result = self.dump(name)
                self.assert_ends(result, 2, name.upper() + ": there is no term and no message rule")
                if name != "x":
                    self.assertIn("the nearest one is " + nearest, result.stderr)
                self.assertEqual("", result.stdout)

    def test_rule_set_without_definitions_knows_no_nearest_name(self):
        self.write("empty.xml", "<terms/>")
        self.write("empty.ini", "[rules]\n" + "".join(
            key + "File=empty.xml\n" for key in ("simpleTerms", "subFields", "primaryFields",
                                                 "msgRules")))
        result = self.run_command("dump", "--settings", "empty.ini", "ARCID")
        self.assert_ends(result, 2, "ARCID: there is no term and no message rule of that name\n")
        self.assertEqual("", self.run_command("dump", "--settings", "empty.ini").stdout)

    def test_rule_set_with_reports_ends_with_1(self):
        settings = self.settings("other.ini", msgrules="msgrules-reported.xml")
        result = self.run_command("dump", "--settings", settings, "PLAN")
        self.assert_ends(result, 1, "other.ini: ")
        self.assertIn("<TermExpression>", result.stdout)

    def test_rule_set_that_is_not_there(self):
        result = self.run_command("dump", "--settings", "gone.ini")
        self.assert_ends(result, 2, "gone.ini: the settings file cannot be read")

    def test_full_standard_output_is_told(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.dump(stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written: No space left on device")


class BuiltIn(CommandTest):
    """The rule set that is compiled into the library."""

    def test_dump_shows_its_definitions(self):
        result = self.run_command("dump", "IFPL")
        self.assert_ends(result, 0)
        self.assertIn("ARCID", result.stdout)


if __name__ == "__main__":
    main()
