#!/usr/bin/env python3
"""Holds the schemas against the rule files and documents that there are, and against wrong ones.

    schemas_test.py ADEXP XMLLINT
"""
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
SCHEMAS = ROOT / "schemas"
RULES = ROOT / "rules"
GOLDEN = ROOT / "tests" / "golden"
DOCUMENT = GOLDEN / "samples" / "ifpl-dublin-madrid.xml"
# The rule of this case has no title; so its document has no element of the message.
WITHOUT_MESSAGE = GOLDEN / "cases" / "rule-without-title" / "expected.xml"

# A correct file of each kind of rules, without a declared schema.
TERM = "<term>2{ALPHA}7</term>"
CORRECT = {
    "simpleterms": f'<simpleTerms><simpleTerm name="A">{TERM}</simpleTerm></simpleTerms>',
    "subfields": f'<subFields><SubField name="A">{TERM}</SubField></subFields>',
    "primaryfields": f'<primaryFields><PrimaryField name="A">{TERM}</PrimaryField></primaryFields>',
    "msgrules": '<msgRules><msgRule title="A"><fields>B [C]</fields></msgRule></msgRules>',
}


def validate(schema, files):
    """What xmllint says about the files that are not valid; empty if all are."""
    result = subprocess.run([XMLLINT, "--noout", "--schema", SCHEMAS / f"{schema}.xsd", *files],
                            capture_output=True, text=True, encoding="utf-8", check=False)
    wrong = [line for line in result.stderr.splitlines() if not line.endswith(" validates")]
    assert bool(wrong) == (result.returncode != 0), result
    return "\n".join(wrong)


class Schemas(unittest.TestCase):
    maxDiff = None

    def validate_text(self, schema, text):
        with tempfile.NamedTemporaryFile("w", suffix=".xml", encoding="utf-8") as file:
            file.write(text)
            file.flush()
            return validate(schema, [file.name])

    def check_refused(self, schema, text, changes):
        """Each (old, new, expected) makes a valid text one that is refused with what is expected."""
        self.assertEqual(self.validate_text(schema, text), "")
        for old, new, expected in changes:
            with self.subTest(schema=schema, old=old, new=new):
                self.assertEqual(text.count(old), 1)
                self.assertIn(expected, self.validate_text(schema, text.replace(old, new)))

    def test_shipped_rules_are_valid(self):
        for schema in CORRECT:
            with self.subTest(schema):
                self.assertEqual(validate(schema, [RULES / f"{schema}.xml"]), "")

    def test_shipped_rules_name_their_schemas(self):
        for schema in CORRECT:
            with self.subTest(schema):
                text = (RULES / f"{schema}.xml").read_text(encoding="utf-8")
                named = re.search(r'xsi:noNamespaceSchemaLocation="(.*?)"', text)[1]
                self.assertEqual((RULES / named).resolve(), SCHEMAS / f"{schema}.xsd")

    def test_rule_files_in_the_documents_are_valid(self):
        schemas = {re.match(r"<(\w+)>", text)[1]: schema for schema, text in CORRECT.items()}
        for page in ("docs/guide.md", "docs/command.md"):
            text = (ROOT / page).read_text(encoding="utf-8")
            files = re.findall(r"^```xml\n((?:<\?.*\n)?<(\w+)>\n.*?)^```$", text,
                               re.MULTILINE | re.DOTALL)
            self.assertTrue(files)
            for file, root in files:
                with self.subTest(page=page, root=root):
                    self.assertEqual(self.validate_text(schemas[root], file), "")

    def test_golden_documents_are_valid(self):
        documents = [*GOLDEN.glob("cases/*/expected.xml"), *GOLDEN.glob("samples/**/*.xml")]
        documents.remove(WITHOUT_MESSAGE)
        self.assertGreater(len(documents), 100)
        self.assertEqual(validate("document", documents), "")

    def test_document_without_message_is_refused(self):
        self.assertIn("Missing child element(s)", validate("document", [WITHOUT_MESSAGE]))

    def test_documents_of_the_samples_are_valid(self):
        samples = sorted((ROOT / "samples").glob("**/*.adexp"))
        self.assertTrue(samples)
        with tempfile.TemporaryDirectory() as folder:
            result = subprocess.run([ADEXP, "convert", "-o", folder, *samples],
                                    capture_output=True, check=False)
            self.assertLess(result.returncode, 2)
            documents = sorted(Path(folder).iterdir())
            self.assertEqual(len(documents), len(samples))
            self.assertEqual(validate("document", documents), "")

    def test_fields_with_names_of_the_frame(self):
        message = b"-TITLE ACK -item X -ORIGINAL_TEXT Y"
        document = subprocess.run([ADEXP, "convert"], input=message, capture_output=True, check=False)
        self.assertEqual(self.validate_text("document", document.stdout.decode("utf-8")), "")

    def test_mistakes_in_definitions_are_refused(self):
        changes = [
            ('name="A"', "", "'name' is required"),
            ('name="A"', 'nam="A"', "'nam' is not allowed"),
            ('name="A"', 'name=""', "pattern"),
            ('name="A"', 'name="A B"', "pattern"),
            ('name="A"', 'name="A" active="FALSE"', "enumeration"),
            ('name="A"', 'name="A" unused="yes"', "enumeration"),
            (TERM, "", "Missing child element(s)"),
            (TERM, "<term> </term>", "minLength"),
            (TERM, TERM + TERM, "not expected"),
            (TERM, TERM + "<exampel>X</exampel>", "not expected"),
        ]
        for schema in ("simpleterms", "subfields", "primaryfields"):
            self.check_refused(schema, CORRECT[schema], changes)

    def test_records_of_another_file_are_refused(self):
        for schema in CORRECT:
            for other in CORRECT.keys() - {schema}:
                with self.subTest(schema=schema, other=other):
                    record = re.search(r"<\w+>(.*)</\w+>$", CORRECT[other])[1]
                    text = re.sub(r"(<\w+>).*(</\w+>)$", rf"\1{record}\2", CORRECT[schema])
                    self.assertIn("not expected", self.validate_text(schema, text))

    def test_two_definitions_of_a_name_are_refused(self):
        for schema, text in CORRECT.items():
            with self.subTest(schema):
                record = re.search(r"<\w+>(.*)</\w+>$", text)[1]
                self.assertIn("Duplicate key-sequence",
                              self.validate_text(schema, text.replace(record, record + record)))

    def test_mistakes_in_message_rules_are_refused(self):
        self.check_refused("msgrules", CORRECT["msgrules"], [
            ('title="A"', "", "'title' is required"),
            ('title="A"', 'name="A"', "'name' is not allowed"),
            ('title="A"', 'title="A B"', "pattern"),
            ('title="A"', 'title="A" active="no"', "enumeration"),
            ("B [C]", "", "minLength"),
            ("<fields>B [C]</fields>", "<term>B [C]</term>", "not expected"),
        ])

    def test_mistakes_in_documents_are_refused(self):
        document = DOCUMENT.read_text(encoding="utf-8")
        first_item = re.search(r'<item field_begin="\d+" field_end="\d+">', document)[0]
        self.check_refused("document", document, [
            ('version="0.3"', 'version="0.4"', "fixed value"),
            ('parser_ver="0.2.1"', 'parser_ver="1"', "fixed value"),
            (" datatime=", " datetime=", "'datetime' is not allowed"),
            (' rule="IFPL"', "", "'rule' is required"),
            (first_item, first_item.replace("field_end", "end"), "'end' is not allowed"),
            (first_item, re.sub(r"\d+", "A", first_item), "not a valid value"),
            (first_item, first_item + '<ADDR><item field_begin="0"/></ADDR>', "'field_end' is required"),
            ("</ADEXP_XML>", "<IFPL/></ADEXP_XML>", "not expected"),
        ])


if __name__ == "__main__":
    ADEXP, XMLLINT = sys.argv[1:3]
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
