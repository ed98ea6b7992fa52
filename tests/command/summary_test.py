"""Tests of "adexp convert --summary"."""

import os

from commandtest import GOOD, NO_RULE, NO_TITLE, REPORTED, CommandTest, main

HEAD = "title         messages      fields   unknown  diagnostics\n"


class Summary(CommandTest):

    def summary(self, *arguments, **options):
        return self.convert("-r", "--summary", *arguments, **options)

    def test_counts_by_title_and_in_all(self):
        self.write("in/a", GOOD)
        self.write("in/deeper/b", REPORTED)
        self.write("in/deeper/c", "-TITLE PLAN -ARCID ABC123 stray -POINT -LEVEL F1 -WHAT 1\n")
        self.write("in/d", "-TITLE NOTE -ARCID XYZ\n")
        result = self.summary("in")
        self.assert_ends(result, 1)
        self.assertEqual(
            HEAD +
            "NOTE                 1           1         0            0\n"
            "PLAN                 3           8         1            3\n"
            '    1 x "ARCID field contains the extra data is not described in Rule" " stray" \n'
            '    1 x "ignore word" "stray" \n'
            '    1 x "rule WHAT for PLAN not found" \n'
            "total                4           9         1            3\n"
            "not converted: 0\n", result.stdout)

    def test_equal_reports_are_counted_the_most_frequent_first(self):
        self.write("in/a", "-TITLE PLAN alpha zulu zulu -ARCID ABC123\n")
        self.write("in/b", "-TITLE PLAN zulu -ARCID ABC123\n")
        self.assertIn('    3 x "ignore word" "zulu" \n    1 x "ignore word" "alpha" \n',
                      self.summary("in").stdout)

    def test_text_that_looks_like_a_field_is_none(self):
        self.write("in/a", '-TITLE PLAN -ARCID ABC123 -POINT <A valid="false"> -POINT < valid="f\n')
        self.assertIn("\ntotal                1           3         0 ", self.summary("in").stdout)

    def test_title_with_characters_that_xml_escapes(self):
        self.settings("rules.ini", self.path("rules.xml"))
        self.write("rules.xml", '<msgRules><msgRule title="A&amp;&quot;&gt;"><fields>ARCID</fields>'
                                '</msgRule></msgRules>')
        self.write("in/a", '-TITLE A&"> -ARCID ABC123\n')
        self.assertIn('\nA&">                 1           1         0            0\n',
                      self.summary("in").stdout)

    def test_nothing_reported_ends_with_0(self):
        self.assert_ends(self.summary(self.write("a", GOOD)), 0)

    def test_standard_input(self):
        result = self.summary(stdin=GOOD)
        self.assert_ends(result, 0)
        self.assertIn("total                1           3 ", result.stdout)

    def test_what_was_not_converted_is_listed_with_the_reason_sorted_by_name(self):
        self.write("in/z", NO_RULE)
        self.write("in/b/x", NO_TITLE)
        self.write("in/a\n", NO_TITLE)
        result = self.summary("in", "gone", self.write("good", GOOD))
        self.assert_ends(result, 2, "adexp: 4 not converted; the end of the report says which")
        self.assertIn("not converted: 4\n    in/a\\n: there is no", result.stdout)
        lines = result.stdout.splitlines()
        self.assertEqual(["in/a\\n", "in/b/x", "in/z", "gone"],
                         [line.split(":")[0].strip() for line in lines[-4:]])
        self.assertIn("total                1           3 ", result.stdout)

    def test_links_to_files_count_and_links_to_folders_are_not_followed(self):
        self.write("in/a", GOOD)
        os.symlink("a", self.path("in/link"))
        os.symlink(".", self.path("in/folder"))
        os.symlink("nowhere", self.path("in/dangling"))
        os.mkfifo(self.path("in/pipe"))
        result = self.summary("in")
        self.assert_ends(result, 0)
        self.assertIn("total                2 ", result.stdout)

    def test_folders_that_cannot_be_listed_are_told(self):
        for name in ("in/one", "in/two"):
            self.write(name + "/a", GOOD)
            os.chmod(self.path(name), 0)
            self.addCleanup(os.chmod, self.path(name), 0o755)
        self.write("in/b", GOOD)
        result = self.convert_with_ordinary_permissions("-r", "--summary", "in")
        self.assert_ends(result, 2, "adexp: 2 not converted")
        for name in ("in/one", "in/two"):
            self.assertIn(name + ": the folder cannot be listed: Permission denied", result.stdout)
        self.assertIn("total                1 ", result.stdout)

    def test_folder_deeper_than_a_path_can_name_is_told(self):
        """Even root cannot list it."""
        self.write("in/a", GOOD)
        deeper = os.open(self.path("in"), os.O_RDONLY)
        for _ in range(20):
            os.mkdir("d" * 250, dir_fd=deeper)
            inside = os.open("d" * 250, os.O_RDONLY, dir_fd=deeper)
            os.close(deeper)
            deeper = inside
        os.close(deeper)
        result = self.summary("in")
        self.assert_ends(result, 2, "adexp: 1 not converted")
        self.assertIn("d: the folder cannot be listed: File name too long; check", result.stdout)
        self.assertIn("total                1 ", result.stdout)

    def test_empty_folder(self):
        os.mkdir(self.path("in"))
        result = self.summary("in")
        self.assert_ends(result, 0)
        self.assertIn("total                0           0         0            0\n", result.stdout)

    def test_no_documents_are_written(self):
        self.write("in/a", GOOD)
        before = self.files("in")
        self.assertNotIn("<ADEXP_XML", self.summary("in").stdout)
        self.assertEqual(before, self.files("in"))

    def test_rule_set_with_reports_ends_with_1(self):
        settings = self.settings("other.ini", msgrules="msgrules-reported.xml")
        result = self.run_command("convert", "--summary", "--settings", settings, stdin=GOOD)
        self.assert_ends(result, 1, "other.ini: ")

    def test_rule_set_that_is_not_there(self):
        result = self.run_command("convert", "--summary", "--settings", "gone.ini", stdin=GOOD)
        self.assert_ends(result, 2, "gone.ini: the settings file cannot be read")
        self.assertEqual("", result.stdout)

    def test_full_standard_output_is_told(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.summary(self.write("a", GOOD), stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written: No space left on device")


if __name__ == "__main__":
    main()
