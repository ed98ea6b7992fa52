"""Tests of "adexp view": the page as a file. What it does in a browser is tested in tests/browser."""

import os
import random
import shutil
import unicodedata

from commandtest import DATA, GOOD, NO_RULE, NO_TITLE, REPORTED, CommandTest, main
from htmlpage import Page

SAMPLES = os.path.join(os.path.dirname(__file__), "..", "..", "samples")

# Text that would do something if it were not written as text.
HOSTILE = ["<script>document.title='run'</script>", "</style><script>run()</script>", "</pre></script>",
           "\"onpointermove=\"run()", "'onload='run()", "<img src=x onerror=run()>", "]]>", "<!--", "-->",
           "&lt;b&gt;", "@TITLE@", "@SCRIPT@", "{{x}}", "javascript:run()", "\x00", "\x1b[31m", "\x7f",
           "\u202e\u2066\u200f", "\u200b\u2060\ufeff\u00ad", "\u2028\u2029", "\ufffe", "\ud7ff",
           "\U0001f6eb", "\u00e9"]


class ViewTest(CommandTest):

    def view(self, *arguments, **options):
        return self.run_command("view", "--settings", "rules.ini", *arguments, **options)

    def page(self, message, status=1):
        """The page of a message."""
        result = self.view("-", stdin=message)
        self.assertEqual(status, result.returncode, result.stderr)
        return Page(result.stdout)


class Message(ViewTest):

    def test_fields_nest_in_text_and_tree(self):
        page = self.page(GOOD, 0)
        self.assertEqual(GOOD, page.message())
        self.assertEqual(["-TITLE PLAN", "-ARCID ABC123", "-POINT -LEVEL F370", "-LEVEL F370"],
                         [page.field_text(i) for i in range(4)])
        self.assertEqual([[], [], [], [2]], [page.field_path(i) for i in range(4)])
        self.assertEqual([("", "PLAN", "", "\u2713"), ("", "ARCID", "ABC123", "\u2713"),
                          ("", "POINT", "", "\u2713"), ("", "LEVEL", "F370", "\u2713")],
                         [page.row(i) for i in range(4)])
        self.assertEqual(["1", "2", "2", "3"], [item["aria-level"] for item in page.items()])
        self.assertEqual(["true", None, "true", None],
                         [item["aria-expanded"] for item in page.items()])
        self.assertEqual([], page.findings)

    def test_keywords_are_told_from_data(self):
        page = self.page(GOOD, 0)
        self.assertEqual(["-TITLE PLAN", "-ARCID", "-POINT", "-LEVEL"],
                         [b.text() for b in page.pre.all(kind="b")])

    def test_findings_are_marked_and_listed(self):
        page = self.page(REPORTED)
        self.assertEqual("stray", page.marked(1))
        self.assertEqual(("ignore word", "stray", "warning, line 1, column 13"), page.finding(1))
        self.assertEqual("0", page.findings[0]["data-i"])

    def test_findings_stand_in_text_order_with_their_lines(self):
        page = self.page("-TITLE PLAN\r\n -ARCID ABC+1\r\nstray -WHAT 1\r\n")
        self.assertEqual(["+1\nstray", "-WHAT"], [page.marked(i) for i in (1, 2)])
        self.assertEqual(["line 2, column 12", "line 3, column 7"],
                         [page.finding(i)[2].split(", ", 1)[1] for i in (1, 2)])

    def test_unknown_field_is_told_in_words(self):
        page = self.page("-TITLE PLAN -WHAT 1 2 -ARCID ABC\n")
        self.assertEqual(("", "WHAT", "1 2", "unknown"), page.row(1))
        self.assertEqual("-WHAT 1 2", page.field_text(1))
        self.assertIn("unknown", page.root.one(id="t1").classes())
        self.assertEqual("-WHAT", page.marked(1))
        self.assertIn("1 unknown", page.root.one(of="counts").text())

    def test_summary_counts(self):
        def counts(message, status):
            return [chip.text() for chip in self.page(message, status).root.all(of="chip")]

        self.assertEqual(["2 fields", "1 unknown", "1 error", "1 warning"],
                         counts("-TITLE PLAN stray -WHAT 1 -ARCID ABC\n", 1))
        self.assertEqual(["1 field", "2 warnings"], counts("-TITLE PLAN a b -ARCID ABC\n", 1))
        self.assertEqual(["3 fields", "nothing reported"], counts(GOOD, 0))
        self.assertEqual(["1 error", "2 warnings"], counts(NO_TITLE, 2))

    def test_only_a_message_that_was_read_is_fine_without_findings(self):
        for message, status, classes, text in ((GOOD, 0, ["none", "fine"], "Nothing was reported."),
                                               (NO_RULE, 2, ["none"], "Nothing else was reported.")):
            (none,) = self.page(message, status).root.all(of="none")
            self.assertEqual((classes, text), (none.classes(), none.text()))

    def test_finding_that_is_reported_again_is_counted(self):
        message = "-TITLE PLAN -BEGIN A -BEGIN B - -X\n"
        page = self.page(message)
        self.assertEqual("-", page.marked(3))
        self.assertEqual("warning, line 1, column 31, reported 3 times", page.finding(3)[2])


class WithoutFields(ViewTest):

    def test_page_has_text_findings_and_reason(self):
        cases = [(NO_TITLE, 'there is no "-TITLE" in it', "No title"),
                 ("", 'there is no "-TITLE" in it', "No title"),
                 (NO_RULE, 'the rule set has no rule for the title "OTHER"', "OTHER")]
        for message, reason, heading in cases:
            with self.subTest(message=message):
                result = self.view("-", stdin=message)
                self.assert_ends(result, 2, "<stdin>: no fields: " + reason)
                page = Page(result.stdout)
                self.assertEqual(message, page.message())
                self.assertEqual([], page.items())
                self.assertIn(reason, page.root.one(of="failure").text())
                self.assertEqual(heading, page.root.one(kind="h1").text())

    def test_missing_title_is_marked_where_it_is_due(self):
        page = self.page(NO_TITLE, 2)
        texts = [page.finding(i)[0] for i in range(1, len(page.findings) + 1)]
        number = texts.index("begin message (-TITLE) not found") + 1
        self.assertEqual("-ARCID", page.marked(number))

    def test_finding_without_a_place(self):
        page = self.page("", 2)
        self.assertEqual(("begin message (-TITLE) not found", "", "error"), page.finding(1))


class Inert(ViewTest):
    """Whatever is in a message, the page stays what it is."""

    def test_policy_allows_its_own_style_and_script_and_nothing_else(self):
        page = self.page(GOOD, 0)
        self.assertEqual({"default-src": "'none'", "style-src": page.hash_of("style"),
                          "script-src": page.hash_of("script"), "base-uri": "'none'",
                          "form-action": "'none'"}, page.policy())

    def test_page_refers_to_itself_alone(self):
        page = self.page(REPORTED)
        attributes = {name for element in page.root.all() for name in element.attributes
                      if not name.startswith(("aria-", "data-"))}
        self.assertEqual({"charset", "class", "content", "href", "http-equiv", "id", "lang", "name",
                          "role", "tabindex", "title"}, attributes)
        self.assertEqual({"#m1"}, {link["href"] for link in page.root.all(kind="a")})
        for word in ("url(", "@import", "//"):
            with self.subTest(word=word):
                self.assertNotIn(word, page.root.one(kind="style").text())

    def test_hostile_text_is_shown_as_text(self):
        plain = self.page(GOOD, 0)
        kinds = {element.name for element in plain.root.all()} | {"a", "i", "mark", "ol", "strong"}
        messages = [f"{text} -TITLE PLAN {text} -ARCID {text} -{text} {text} -BEGIN {text} -END {text}\n"
                    for text in HOSTILE]
        everything = "".join(HOSTILE)
        messages += [f"-TITLE {everything}", f"-BEGIN {everything}", everything]
        for message in messages:
            with self.subTest(message=message):
                page = self.page(message, 1 if "PLAN" in message else 2)
                self.assertLessEqual({element.name for element in page.root.all()}, kinds)
                self.assertEqual(plain.hash_of("script"), page.hash_of("script"))
                self.assertEqual(plain.hash_of("style"), page.hash_of("style"))
                if message[:-1].isprintable():
                    self.assertEqual(message, page.message())

    def test_characters_that_cannot_be_seen_are_shown(self):
        cases = [("\x00", "NUL"), ("\x02", "STX"), ("\x1b", "ESC"), ("\x7f", "DEL"), ("\x85", "U+0085"),
                 ("\xa0", "U+00A0"), ("\xad", "U+00AD"), ("\u200b", "U+200B"), ("\u202e", "U+202E"),
                 ("\u2067", "U+2067"), ("\u2028", "U+2028"), ("\u3164", "U+3164"),
                 ("\ufe0f", "U+FE0F"), ("\ufeff", "U+FEFF"), ("\ufffe", "U+FFFE"),
                 ("\U000e0041", "U+E0041"), ("\U000e0100", "U+E0100"), ("\ufffd", "\ufffd")]
        for character, symbol in cases:
            with self.subTest(symbol=symbol):
                page = self.page(f"-TITLE PLAN -WHAT a{character}b -ARCID ABC")
                shown = page.pre.one(of="symbol")
                self.assertEqual((symbol, f"U+{ord(character):04X}"), (shown.text(), shown["title"]))
                self.assertEqual(f"-WHAT a{symbol}b", page.field_text(1))
                self.assertEqual(f"a{symbol}b", page.row(1)[2])

    def test_other_characters_are_shown_as_they_are(self):
        text = "\u00c4\u0416\u05d0\u4e2d\U0001f6eb \u00b0&\u20ac"
        self.assertIn(text, self.page(f"-TITLE PLAN -WHAT {text}\n-ARCID ABC").field_text(1))

    def test_bytes_that_are_no_text(self):
        with open(self.path("bytes"), "wb") as file:
            file.write(b"-TITLE PLAN -ARCID A\xff\xc0\x80\xed\xa0\x80B")
        page = Page(self.view("bytes").stdout)
        self.assertIn("\ufffd", page.field_text(1))
        self.assertFalse([c for c in page.message() if unicodedata.category(c) == "Cs"])

    def test_pair_of_units_is_never_cut(self):
        page = self.page("-TITLE PLAN -ARCID ABC\U0001f6eb\n")
        self.assertEqual("-ARCID ABC\U0001f6eb", page.field_text(1))

    def test_names_are_text_as_well(self):
        name = self.write("<b>\u202e&.adexp", GOOD)
        page = Page(self.view(name).stdout)
        self.assertEqual("<b>U+202E&.adexp", page.root.one(kind="p", of="name").text())

    def test_mangled_messages_give_whole_pages(self):
        pieces = random.Random(7)
        originals = []
        for folder in (SAMPLES, os.path.join(SAMPLES, "faulty")):
            for name in sorted(os.listdir(folder)):
                if name.endswith(".adexp"):
                    with open(os.path.join(folder, name), encoding="utf-8") as file:
                        originals.append(file.read())
        for _ in range(50):
            words = pieces.choice(originals).split(" ")
            for _ in range(pieces.randrange(1, 12)):
                change = pieces.choice(("-", "-BEGIN", "-END", "- -", "\n", "-END RTEPTS", "", *HOSTILE))
                words[pieces.randrange(len(words))] = change
            message = " ".join(words)
            with self.subTest(message=message):
                result = self.run_command("view", "-", stdin=message)
                self.assertIn(result.returncode, (0, 1, 2))
                page = Page(result.stdout)
                if message.replace("\n", "").isprintable():
                    self.assertEqual(message, page.message())

    def test_control_characters_are_named_in_all_parts(self):
        page = self.page("-TITLE PLAN -ARCID A\x02+\x1b\n-X\x02 \x01\n")
        self.assertEqual("X" + "STX", page.row(2)[1])
        self.assertEqual("SOH", page.row(2)[2])
        self.assertIn("ESC", page.finding(1)[1])
        for element in (page.tree, page.findings[0]):
            self.assertIn("STX", [symbol.text() for symbol in element.all(of="symbol")])

    def test_control_characters_in_the_heading(self):
        root = self.page("-TITLE A\x02B", 2).root
        self.assertEqual("STX", root.one(kind="h1").one(of="symbol").text())
        self.assertEqual("A\u2402B \u2013 <stdin>", root.one(kind="title").text())


class Lines(ViewTest):

    def test_each_line_has_its_number(self):
        page = self.page("-TITLE PLAN\r\n\n -ARCID ABC\nstray\n-WHAT 1\n 2\n")
        self.assertEqual(["1:-TITLE PLAN\n", "2:\n", "3: -ARCID ABC\n", "4:stray\n", "5:-WHAT 1\n", "6: 2\n"],
                         page.lines())

    def test_words_with_a_hyphen_in_front_stay_together(self):
        page = self.page("-TITLE PLAN -ARCID A-B - -" + "X" * 30 + " -WHAT\n1")
        self.assertEqual(["-TITLE", "-ARCID", "-WHAT"], [word.text() for word in page.pre.all(of="word")])


class States(ViewTest):
    """What the rows of the tree say of their fields."""

    def states(self, message):
        page = self.page(message)
        return [(page.row(i)[1], page.row(i)[3]) for i in range(len(page.items()))]

    def test_field_with_a_finding_in_it_is_not_fine(self):
        self.assertEqual([("PLAN", ""), ("ARCID", ""), ("POINT", ""), ("LEVEL", "")],
                         self.states("-TITLE PLAN -ARCID ABC+ -POINT -LEVEL F370 1\n"))
        self.assertEqual([("PLAN", ""), ("ARCID", "\u2713"), ("WHAT", "unknown")],
                         self.states("-TITLE PLAN -ARCID ABC -WHAT 1\n"))

    def test_findings_further_inside_are_counted(self):
        page = self.page("-TITLE PLAN -ARCID ABC+ -POINT -LEVEL F370 1\n")
        more = [[span.text() for span in item.children[0].all(of="more")] for item in page.items()]
        self.assertEqual([["2 findings"], [], ["1 finding"], []], more)


class LargeMessages(ViewTest):
    """A page shows of a message what a browser carries, and tells what it leaves out."""

    SIZE = 2**18  # tests/browser has larger ones

    def filled(self, unit, begin="", end=""):
        return begin + unit * ((self.SIZE - len(begin) - len(end)) // len(unit)) + end

    def shapes(self):
        head = "-TITLE PLAN -ARCID ABC "
        return {"word": self.filled("A", head), "words": self.filled("word ", head),
                "reported words": self.filled("word ", "", head), "lines": self.filled("\n", head),
                "control": self.filled("\x02", head), "fields": self.filled("-ARCID A ", head),
                "shortest fields": self.filled("-A ", head), "unknown": self.filled("-WHAT 1\n", head),
                "wrong": self.filled("-ARCID A+\n", head), "lists": self.filled("-BEGIN A -X -END A\n", head),
                "nested": self.filled("-BEGIN A\n", head), "hyphens": self.filled("- ", head),
                "ends": self.filled("-END A ", head), "title": self.filled("A", "-TITLE "),
                "keyword": self.filled("A", head + " -"), "markup": self.filled("<&>", head)}

    def test_page_is_small(self):
        for name, message in self.shapes().items():
            with self.subTest(shape=name):
                result = self.view("-", stdin=message)
                page = Page(result.stdout)
                self.assertLess(len(result.stdout.encode()), 2500000)
                self.assertLess(len(page.root.all()), 60000)
                self.assertLess(len(page.message()), 200000)
                self.assertTrue(page.root.all(of="left-out"))
                if "class=\"none" not in result.stdout:
                    self.assertTrue(page.findings)

    def test_message_of_usual_size_is_shown_whole(self):
        for message, status in ((GOOD, 0), ("-TITLE PLAN\n" + "-ARCID ABC\n" * 3000, 0),
                                ("-TITLE PLAN -ARCID ABC " + "-WHAT 1 " * 1000, 1)):
            page = self.page(message, status)
            self.assertEqual(message, page.message())
            self.assertEqual([], page.root.all(of="left-out") + page.root.all(of="gap"))

    def test_what_is_left_out_is_counted(self):
        message = "-TITLE PLAN -ARCID ABC\n" + "-WHAT 1\n" * 100000
        page = self.page(message)
        self.assertEqual(1000, len(page.findings))
        shown, gap, behind = page.message_parts()
        self.assertEqual(("", True), (behind, message.startswith(shown)))
        left = len(message) - len(shown)
        line = shown.count("\n") + 1
        self.assertTrue(gap.startswith(f"{left:,} characters left out, line {line:,}, column "), gap)
        self.assertTrue(gap.endswith("to line 100,001, column 8"), gap)
        fields = len(page.items()) - 1
        told = page.root.one(of="left-out").text()
        for text in (f"{len(shown):,} of {len(message):,} characters", f"{fields:,} of 100,001 fields",
                     "1,000 of 100,000 findings", "adexp tree", "adexp convert"):
            self.assertIn(text, told)
        self.assertIn(f"{100001 - fields:,} fields left out", page.tree.text())
        self.assertIn("99,000 findings left out", page.root.one(of="findings").text())
        self.assertIn("100,000 findings", page.root.one(id="n0").text())
        self.assertEqual("100,000 errors", [chip.text() for chip in page.root.all(of="chip")][-1])

    def test_finding_far_away_is_shown_with_its_context(self):
        lines = ["-TITLE PLAN"] + [f"-ARCID A{i}" for i in range(90000)]
        lines[80000] += "+"
        message = "\n".join(lines)
        page = self.page(message)
        head, gap, around, end_gap, _ = page.message_parts()
        self.assertTrue(message.startswith(head))
        self.assertGreater(len(head), 20000)
        self.assertEqual("\n".join(lines[79997:80004]) + "\n", around)
        self.assertIn("to line 79,997", gap)
        self.assertIn("line 80,005, column 1, to line 90,001", end_gap)
        (mark,) = page.pre.all(id="m1")
        self.assertEqual("+", mark.text())
        number = int(page.findings[0]["data-i"])
        self.assertEqual(("ARCID", "A79999"), page.row(number)[1:3])
        self.assertEqual("80004", page.pre.all(of="line")[-1]["data-n"])

    def test_long_texts_are_shortened_outside_of_the_message(self):
        page = self.page("-TITLE PLAN -ARCID ABC -WHAT " + "A" * 1000)
        self.assertEqual("A" * 200 + "\u2026 (800 characters more)", page.row(2)[2])
        heading = self.page("-TITLE " + "\U0001f6eb" * 1000, 2).root.one(kind="h1").text()
        self.assertEqual("\U0001f6eb" * 250 + "\u2026 (1,500 characters more)", heading)

    def test_page_is_the_same_each_time(self):
        message = self.shapes()["unknown"]
        self.assertEqual(self.view("-", stdin=message).stdout, self.view("-", stdin=message).stdout)


class Blocks(ViewTest):
    """With the rule set in the library, which has blocks."""

    def page(self, message, status=1):
        result = self.run_command("view", "-", stdin=message)
        self.assertEqual(status, result.returncode, result.stderr)
        return Page(result.stdout)

    def test_items_of_a_list_are_numbered(self):
        page = self.page("-TITLE IFPL\n-BEGIN RTEPTS\n-PT -PTID AAA -FL F100\n-PT -PTID BBB\n"
                         "-END RTEPTS\n-ARCID ABC", 0)
        self.assertEqual([("", "RTEPTS"), ("1", "PT"), ("", "PTID"), ("", "FL"), ("2", "PT"),
                          ("", "PTID"), ("", "ARCID")], [page.row(i)[:2] for i in range(1, 8)])
        self.assertEqual("-BEGIN RTEPTS\n-PT -PTID AAA -FL F100\n-PT -PTID BBB\n-END RTEPTS",
                         page.field_text(1))
        self.assertEqual(["-TITLE IFPL", "-BEGIN RTEPTS", "-PT", "-PTID", "-FL", "-PT", "-PTID",
                          "-END RTEPTS", "-ARCID"], [b.text() for b in page.pre.all(kind="b")])

    def test_compound_field_that_nothing_follows(self):
        page = self.page("-TITLE IFPL -ORIGIN -NETWORKTYPE AFTN -FAC ABC\n\n", 0)
        self.assertEqual("-ORIGIN -NETWORKTYPE AFTN -FAC ABC", page.field_text(1))

    def test_keyword_alone_at_the_end(self):
        self.assertEqual("-ORIGIN", self.page("-TITLE IFPL -ORIGIN\n", 0).field_text(1))

    def test_block_without_end_inside_a_block(self):
        page = self.page("-TITLE IFPL -BEGIN RTEPTS -BEGIN ADDR A B -END RTEPTS -ARCID ABC")
        self.assertEqual("-BEGIN ADDR", page.marked(1))
        self.assertEqual(("1", "ADDR", "unknown"), page.row(2)[:2] + page.row(2)[3:])
        self.assertEqual([1], page.field_path(2))


    def test_long_list_is_closed_and_counted(self):
        for points, expanded, more in ((20, "true", []), (21, "false", ["21 fields"])):
            page = self.page("-TITLE IFPL -ARCID ABC\n-BEGIN RTEPTS\n" + "-PT -PTID AAA\n" * points
                             + "-END RTEPTS\n", 0)
            item = page.root.one(id="n2")
            self.assertEqual(expanded, item["aria-expanded"])
            self.assertEqual(more, [span.text() for span in item.children[0].all(of="more")])


class Output(ViewTest):

    def test_page_goes_to_the_file(self):
        message = self.write("plan", GOOD)
        result = self.view(message, "-o", "plan.html")
        self.assert_ends(result, 0)
        self.assertEqual("", result.stdout)
        self.assertEqual(self.view(message).stdout, self.read("plan.html"))
        self.assertEqual(self.read("plan.html"), self.view(message, "-o", "-").stdout)

    def test_message_is_never_replaced(self):
        os.symlink(self.write("plan", GOOD), self.path("link"))
        for output in ("plan", "./plan", "link"):
            with self.subTest(output=output):
                self.assert_ends(self.view("plan", "-o", output), 2, "would replace an input")
                self.assertEqual(GOOD, self.read("plan"))

    def test_no_other_input_is_replaced(self):
        shutil.copytree(DATA, self.path("rules"))
        settings = self.read("rules.ini").replace(DATA, "rules")
        self.write("rules.ini", settings)
        self.write("plan", GOOD)
        for output in ("rules.ini", "rules/simpleterms.xml", "rules/subfields.xml",
                       "rules/primaryfields.xml", "rules/msgrules.xml", "plan"):
            before = self.read(output)
            with self.subTest(output=output), open(self.path("plan"), "rb") as message:
                self.assert_ends(self.view("-", "-o", output, stdin=message), 2,
                                 output + ": cannot be written: the page would replace an input")
                self.assertEqual(before, self.read(output))

    def test_reports_go_to_standard_error_as_well(self):
        result = self.view(self.write("plan", REPORTED), "-o", "plan.html")
        self.assert_ends(result, 1, 'plan: "ignore word" "stray"')

    def test_failures_are_told_with_a_remedy(self):
        self.write("plan", GOOD)
        os.mkdir(self.path("folder"))
        cases = [
            (("gone",), "gone: no page: cannot be read: No such file"),
            (("folder",), "folder: no page: is a folder"),
            (("plan", "-o", "gone/plan.html"), "gone/plan.html: cannot be written: "),
            (("plan", "-o", "folder"), "folder: cannot be written: "),
        ]
        for arguments, text in cases:
            with self.subTest(text=text):
                result = self.view(*arguments)
                self.assert_ends(result, 2, text)
                self.assertEqual("", result.stdout)

    def test_rule_set_that_is_not_there(self):
        result = self.run_command("view", "--settings", "gone.ini", "-", stdin=GOOD)
        self.assert_ends(result, 2, "gone.ini: the settings file cannot be read")
        self.assertEqual("", result.stdout)

    def test_full_standard_output_is_told(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.view("-", stdin=GOOD, stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written: No space left on device")

    def test_help_has_an_example_and_the_exit_status(self):
        result = self.run_command("view", "--help")
        self.assert_ends(result, 0)
        self.assertIn("adexp view plan.adexp -o plan.html", result.stdout)
        self.assertIn("Exit status:", result.stdout)


if __name__ == "__main__":
    main()
