"""Tests of "adexp check".

Each file in check/ is a case: behind a line that tells what it is about, the rule files, each under a
line "--- NAME", and what is printed under "--- expected". With ADEXP_UPDATE_GOLDEN=1 in the environment
the latter is written anew.
"""

import json
import os
import re
import time
from pathlib import Path

from commandtest import CommandTest, main

HERE = Path(__file__).resolve().parent
CASES = sorted((HERE / "check").glob("*.txt"))
SOURCES = HERE.parents[1] / "src"
FILES = {"simpleTermsFile": "simple.xml", "subFieldsFile": "sub.xml",
         "primaryFieldsFile": "primary.xml", "msgRulesFile": "rules.xml"}
EXPECTED = "expected"

# Texts that only say what follows from another finding, and what heads of reports are made of.
NOT_SHOWN = {"term  no valid, entry is removed", 'rule "', '" no valid, record ignored', "can not read ",
             " records", " was found, but variable not valid", "element", "file ", " line ",
             ", column ", ": "}
# The column of an error in XML is the library's text for a place; check shows the place.
SHOWN_AS_PLACE = {"Parse error at line "}
# No rule set causes it.
INTERNAL = {"termsList = 0"}
# Of a message.
MESSAGE_SOURCES = {"adexpdoc.cpp", "adexpfield.cpp"}


def simple_term(name, expression):
    return '<simpleTerm name="%s"><term>%s</term></simpleTerm>' % (name, expression)


def config_texts():
    """The texts of all findings about rule sets: what goes through tr()."""
    texts = set()
    for path in SOURCES.glob("*/*.cpp"):
        if path.name in MESSAGE_SOURCES:
            continue
        source = re.sub(r"//.*", "", path.read_text(encoding="utf-8"))
        for literals in re.findall(r'\btr\(((?:\s*"(?:\\.|[^"\\])*")+)', source):
            text = "".join(re.findall(r'"((?:\\.|[^"\\])*)"', literals))
            texts.update(piece for piece in re.split(r"%\d", text.replace('\\"', '"')) if piece)
    return texts


def read_case(path):
    """The head and the sections of a case, by name."""
    with open(path, encoding="utf-8") as file:
        head, *parts = re.split(r"^--- (.*)\n", file.read(), flags=re.MULTILINE)
    return head, dict(zip(parts[::2], parts[1::2]))


class Check(CommandTest):
    maxDiff = None

    def write_rules(self, files):
        """Writes a rule set of these files; those that are missing are empty ones."""
        for name in FILES.values():
            self.write(name, files.get(name, "<terms/>\n"))
        lines = ["%s=%s\n" % item for item in FILES.items()]
        return self.write("my.ini", "[rules]\n" + "".join(lines))

    def check(self, *arguments, settings="my.ini"):
        result = self.run_command("check", "--settings", settings, *arguments)
        self.assertEqual("", result.stderr)
        return result

    def check_simple(self, content):
        self.write_rules({"simple.xml": content})
        return self.check().stdout

    def output_of_case(self, sections):
        self.write_rules(sections)
        result = self.check()
        self.assertEqual(result.stdout.startswith("0 errors, 0 warnings"), result.returncode == 0)
        return result.stdout

    def test_cases(self):
        self.assertTrue(CASES)
        for path in CASES:
            with self.subTest(path.name):
                head, sections = read_case(path)
                output = self.output_of_case(sections)
                if "ADEXP_UPDATE_GOLDEN" in os.environ:
                    sections[EXPECTED] = output
                    with open(path, "w", encoding="utf-8") as file:
                        file.write(head + "".join("--- %s\n%s" % item for item in sections.items()))
                self.assertEqual(sections[EXPECTED], output)

    def test_every_line_has_its_form(self):
        for path in CASES:
            for line in read_case(path)[1][EXPECTED].splitlines()[:-1]:
                with self.subTest(line):
                    self.assertRegex(line, r"^\w+\.xml:\d+:\d+: (error|warning): .*")

    def test_lines_are_sorted(self):
        for path in CASES:
            places = [line.split(":")[:3] for line in
                      read_case(path)[1][EXPECTED].splitlines()[:-1]]
            order = [(list(FILES.values()).index(file), int(line), int(column))
                     for file, line, column in places]
            self.assertEqual(sorted(order), order, path)

    def nested(self):
        return self.check_simple("<t>%s</t>" % simple_term("A", "(" * 130 + "ALPHA | DIGIT" + ")" * 130))

    def tangled(self):
        names = ["N%d" % i for i in range(30)]
        return self.check_simple("<t>%s</t>" % "".join(
            simple_term(name, " ".join(other for other in names if other != name)) for name in names))

    def costly_xml(self):
        attributes = "".join(" a%d=''" % i for i in range(300))
        entity = "<!ENTITY e '%s'>" % ("A" * 4000)
        return [self.check_simple(content) for content in (
            "<t>" * 300 + "</t>" * 300,
            "<t%s/>" % attributes,
            "<?xml version='1.0' encoding='none'?><t/>",
            "<!DOCTYPE t [%s]><t/>" % (entity * 3),
            "<!DOCTYPE t [%s]><t>%s</t>" % (entity, "&e;" * 2000))]

    def not_there(self):
        self.write_rules({})
        os.remove(self.path("sub.xml"))
        return self.check().stdout

    def not_named(self):
        self.write("my.ini", "[rules]\nsimpleTermsFile=simple.xml\n")
        return self.check().stdout

    def test_nesting_is_reported_once(self):
        line, _ = self.nested().splitlines()
        self.assertRegex(line, r"^simple.xml:1:\d+: error: brackets and references are nested "
                               r"deeper than 128 levels \[A\]$")

    def test_file_that_is_not_there(self):
        self.assertEqual("sub.xml: error: can not open file sub.xml for read: No such file or "
                         "directory; a relative path starts from the working directory\n1 error, 0 warnings; 0 definitions, 0 message rules; the files "
                         "behind the one that cannot be read were not looked at\n", self.not_there())

    def test_file_that_is_not_named(self):
        self.write_rules({})
        line, _ = self.not_named().splitlines()
        self.assertTrue(line.endswith("my.ini: error: file path is empty; give it behind the key "
                                      "subFieldsFile of the group [rules]"), line)

    def test_file_that_is_not_xml(self):
        for content, place in (("<t>\n  <a></b></t>", "2:"), ("<t>" * 300, "1:")):
            line, summary = self.check_simple(content).splitlines()
            self.assertTrue(line.startswith("simple.xml:" + place), line)
            self.assertIn("were not looked at", summary)

    def test_settings_that_cannot_be_read(self):
        for name, text in (("gone.ini", "cannot be read: No such file"),
                           (self.write("no.ini", "[rules\nx"), "is not an ini file")):
            with self.subTest(name):
                result = self.run_command("check", "--settings", name)
                self.assert_ends(result, 2, name + ": the settings file " + text)
                self.assertEqual("", result.stdout)

    def test_every_finding_is_shown_or_follows_from_another(self):
        outputs = [self.output_of_case(read_case(path)[1]) for path in CASES]
        outputs += [self.nested(), self.tangled(), self.not_there(), self.not_named(),
                    *self.costly_xml()]
        output = "".join(outputs)
        texts = config_texts()
        self.assertTrue(NOT_SHOWN | SHOWN_AS_PLACE | INTERNAL <= texts)
        for text in texts - NOT_SHOWN - SHOWN_AS_PLACE - INTERNAL:
            with self.subTest(text):
                self.assertIn(text, output)
        for text in ("no valid", "can not read", "was found, but"):
            self.assertNotIn(text, output)

    def test_json_has_a_line_for_each_finding(self):
        _, sections = read_case(os.path.join(os.path.dirname(CASES[0]), "warnings.txt"))
        lines = self.output_of_case(sections).splitlines()[:-1]
        objects = [json.loads(line) for line in self.check("--format", "json").stdout.splitlines()]
        self.assertEqual(lines, ["%(file)s:%(line)d:%(column)d: %(severity)s: %(text)s [%(name)s]" % one
                                 for one in objects])

    def test_unknown_format_is_refused(self):
        result = self.run_command("check", "--format", "xml")
        self.assert_ends(result, 64, "--format")

    def test_full_standard_output_is_told(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.run_command("check", stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written: No space left on device")

    def test_built_in_rule_set_has_no_finding(self):
        result = self.run_command("check")
        self.assert_ends(result, 0)
        self.assertRegex(result.stdout, r"^0 errors, 0 warnings; \d+ definitions, \d+ message rules\n$")

    def test_many_wrong_names_take_no_time(self):
        begin = time.process_time()
        self.check_simple("<t>%s</t>" % "".join(
            simple_term("NAME%d" % i, "WRONG%d" % i) for i in range(5000)))
        self.assertLess(time.process_time() - begin, 30)


if __name__ == "__main__":
    main()
