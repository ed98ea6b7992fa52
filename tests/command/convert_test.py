"""Tests of "adexp convert": inputs, outputs, reports and exit status."""

import os
import resource
import shutil
import signal
import socket
import subprocess
import time
import xml.etree.ElementTree as ElementTree

from commandtest import DATA, GOOD, NO_RULE, NO_TITLE, REPORTED, TIMEOUT, CommandTest, main


def title_of(document):
    return ElementTree.fromstring(document).get("rule")


class Inputs(CommandTest):

    def test_message_comes_from_standard_input_without_file_and_for_hyphen(self):
        for arguments in ([], ["-"]):
            with self.subTest(arguments=arguments):
                result = self.convert(*arguments, stdin=GOOD)
                self.assert_ends(result, 0)
                self.assertEqual("PLAN", title_of(result.stdout))

    def test_file_gives_the_document_of_its_message(self):
        result = self.convert(self.write("good.adexp", GOOD))
        self.assert_ends(result, 0)
        root = ElementTree.fromstring(result.stdout)
        self.assertEqual("ABC123", root.findtext("PLAN/ARCID"))
        self.assertEqual(GOOD, root.findtext("ORIGINAL_TEXT"))

    def test_documents_of_several_files_follow_one_another(self):
        result = self.convert(self.write("a", GOOD), self.write("b", GOOD))
        self.assert_ends(result, 0)
        self.assertEqual(2, result.stdout.count("<ADEXP_XML "))

    def test_every_file_name_is_taken_as_it_is(self):
        for name in ("two words.adexp", "line\nbreak.adexp", "[a,b]", "[a", "tree", "Überflug.adexp"):
            with self.subTest(name=name):
                self.assert_ends(self.convert(self.write(name, GOOD)), 0)

    def test_name_with_leading_hyphen_stands_behind_two_hyphens(self):
        self.assert_ends(self.convert("--", self.write("-x.adexp", GOOD)), 0)

    def test_name_that_is_no_unicode_text_is_read(self):
        name = os.path.join(os.fsencode(self.folder), b"\xff.adexp")
        with open(name, "w", encoding="utf-8") as file:
            file.write(GOOD)
        self.assert_ends(self.convert(b"\xff.adexp"), 0)

    def test_large_message_is_converted_whole(self):
        message = "-TITLE PLAN -ARCID ABC123\n" + "-POINT -LEVEL F370\n" * 20000
        result = self.convert(stdin=message)
        self.assertEqual(0, result.returncode, result.stderr[:500])
        self.assertEqual(20000, result.stdout.count("<LEVEL "))


class Reports(CommandTest):

    def test_no_settings_for_logging_hide_reports(self):
        name = self.write("reported.adexp", REPORTED)
        expected = self.convert(name).stderr
        environment = dict(os.environ, QT_LOGGING_RULES="*=false")
        self.assert_ends(self.convert(name, env=environment), 1, expected)

    def test_reports_stand_behind_the_name_of_the_file(self):
        result = self.convert(self.write("reported.adexp", REPORTED))
        self.assertEqual((1, 'reported.adexp: "ignore word" "stray" \n'),
                         (result.returncode, result.stderr))

    def test_reports_about_standard_input_stand_behind_its_sign(self):
        result = self.convert(stdin=REPORTED)
        self.assertEqual((1, '<stdin>: "ignore word" "stray" \n'),
                         (result.returncode, result.stderr))

    def test_control_characters_are_escaped(self):
        name = self.write("line\nbreak\x1b\r\t.adexp", REPORTED.replace("stray", "str\x07a\x7fy"))
        self.assert_ends(self.convert(name), 1,
                         'line\\nbreak\\x1B\\r\\t.adexp: "ignore word" "str\\x07a\\x7Fy" \n')

    def test_reports_about_the_rule_set_stand_behind_its_settings_one_per_line(self):
        settings = self.settings("other.ini", msgrules="msgrules-reported.xml")
        result = self.run_command("convert", "--settings", settings, stdin=GOOD)
        self.assert_ends(result, 1, "NOWHERE")
        self.assertEqual("PLAN", title_of(result.stdout))
        for line in result.stderr.splitlines():
            self.assertTrue(line.startswith("other.ini: "), line)


class NotConverted(CommandTest):

    def test_reason_and_remedy_are_told(self):
        os.mkdir(self.path("folder"))
        cases = [
            ([], NO_TITLE, '<stdin>: not converted: there is no "-TITLE" in it'),
            ([], "-TITLE", '<stdin>: not converted: it ends behind "-TITLE"'),
            ([], NO_RULE, 'no rule for the title "OTHER"'),
            ([], "- TITLE\r\nOTHER -X", 'no rule for the title "OTHER"'),
            ([], "- TITEL OTHER", 'there is no "-TITLE" in it'),
            ([], "", 'there is no "-TITLE" in it'),
            (["folder"], "", "folder: not converted: is a folder, not a message; give -r"),
            (["gone"], "", "gone: not converted: cannot be read: No such file or directory; check"),
            ([""], "", ": not converted: cannot be read: No such file"),
        ]
        for arguments, stdin, text in cases:
            with self.subTest(text=text):
                result = self.convert(*arguments, stdin=stdin)
                self.assert_ends(result, 2, text)
                self.assertEqual("", result.stdout)

    def test_others_of_the_batch_are_converted(self):
        self.write("a", GOOD)
        self.write("c", REPORTED)
        result = self.convert("a", "gone", "c")
        self.assert_ends(result, 2, "gone: not converted", 'c: "ignore word"')
        self.assertEqual(2, result.stdout.count("<ADEXP_XML "))

    def test_file_larger_than_a_message_can_be_is_refused_unread(self):
        with open(self.path("large"), "wb") as file:
            file.truncate(2 ** 31)
        self.assert_ends(self.convert("large"), 2, "large: not converted: is larger than 2147483647")

    def test_unreadable_file(self):
        os.chmod(self.path(self.write("closed", GOOD)), 0)
        self.assert_ends(self.convert_with_ordinary_permissions("closed"), 2, "closed: not converted: cannot be read: Perm")


class Settings(CommandTest):

    def test_rule_set_that_cannot_be_loaded(self):
        os.mkdir(self.path("folder"))
        self.write("norules.ini", "[rules]\n")
        self.write("broken.ini", "[rules\n")
        self.settings("nofile.ini", msgrules="nowhere.xml")
        cases = [
            ("gone.ini", "gone.ini: the settings file cannot be read: No such file"),
            ("norules.ini", "norules.ini: the rule set cannot be loaded"),
            ("nofile.ini", "nofile.ini: the rule set cannot be loaded"),
            ("broken.ini", "broken.ini: the settings file is not an ini file"),
            ("folder", "folder: "),
            (":/nothing.ini", ":/nothing.ini: "),
        ]
        for settings, text in cases:
            with self.subTest(settings=settings):
                result = self.run_command("convert", "--settings", settings, stdin=GOOD)
                self.assert_ends(result, 2, text)
                self.assertEqual("", result.stdout)

    def test_without_settings_the_rule_set_in_the_library_is_used(self):
        result = self.run_command("convert", stdin="-TITLE NONSENSE")
        self.assertEqual(2, result.returncode)
        self.assertIn('no rule for the title "NONSENSE"', result.stderr)


class OutputFile(CommandTest):

    def test_document_goes_to_the_file(self):
        result = self.convert("-o", "out.xml", stdin=GOOD)
        self.assert_ends(result, 0)
        self.assertEqual("", result.stdout)
        self.assertEqual("PLAN", title_of(self.read("out.xml")))

    def test_same_bytes_as_on_standard_output(self):
        self.convert("-o", "out.xml", stdin=GOOD)
        self.assertEqual(self.convert(stdin=GOOD).stdout, self.read("out.xml"))

    def test_file_that_is_there_is_replaced(self):
        self.write("out.xml", "old")
        self.assert_ends(self.convert("-o", "out.xml", stdin=GOOD), 0)
        self.assertNotIn("old", self.read("out.xml"))

    def test_file_that_is_there_stays_if_there_is_no_document(self):
        self.write("out.xml", "old")
        self.assert_ends(self.convert("-o", "out.xml", stdin=NO_RULE), 2, "not converted")
        self.assertEqual("old", self.read("out.xml"))

    def test_message_is_never_replaced_by_its_document(self):
        self.write("a", GOOD)
        self.write("a.xml", GOOD)
        os.symlink("a", self.path("link"))
        for arguments in (["-o", "a", "a"], ["-o", "link", "a"], ["-o", "./a", "a"],
                          ["-o", ".", "a", "a.xml"]):
            with self.subTest(arguments=arguments):
                self.assert_ends(self.convert(*arguments), 2, "would replace the input")
                self.assertEqual((GOOD, GOOD), (self.read("a"), self.read("a.xml")))

    def test_message_on_standard_input_is_never_replaced_by_its_document(self):
        self.write("stdin.xml", GOOD)
        for output in ("stdin.xml", "."):
            with self.subTest(output=output), open(self.path("stdin.xml"), "rb") as message:
                self.assert_ends(self.convert("-o", output, stdin=message), 2,
                                 "would replace the input")
                self.assertEqual(GOOD, self.read("stdin.xml"))

    def test_rule_set_is_never_replaced_by_a_document(self):
        shutil.copytree(DATA, self.path("rules"))
        self.write("rules.ini", self.read("rules.ini").replace(DATA, "rules"))
        for output in ("rules.ini", "rules/simpleterms.xml", "rules/subfields.xml",
                       "rules/primaryfields.xml", "rules/msgrules.xml"):
            before = self.read(output)
            with self.subTest(output=output):
                self.assert_ends(self.convert("-o", output, stdin=GOOD), 2,
                                 "its document would replace the input " + output)
                self.assertEqual(before, self.read(output))

    def test_one_file_for_several_messages_is_a_wrong_argument(self):
        result = self.convert("-o", "out.xml", "a", "b")
        self.assert_ends(result, 64, "out.xml: -o names one file, but there are 2 messages; name")

    def test_device_is_written_directly(self):
        self.assert_ends(self.convert("-o", "/dev/null", stdin=GOOD), 0)
        self.assertFalse(os.path.isfile("/dev/null"))

    def test_output_that_cannot_be_written(self):
        for output in ("gone/out.xml", "/dev/full", "/proc/out.xml", "rules.ini/out.xml"):
            with self.subTest(output=output):
                self.assert_ends(self.convert("-o", output, stdin=GOOD), 2,
                                 output + ": cannot be written: ", "; check the name")

    def test_nothing_half_written_stays_when_room_runs_out(self):
        self.write("large", GOOD + "-POINT -LEVEL F370\n" * 5000)
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100000, 100000))
        before = self.files()
        self.assert_ends(self.convert("-o", "out.xml", "large", preexec_fn=limit), 2,
                         "out.xml: cannot be written: File too large")
        self.assertEqual(before, self.files())


class OutputFolder(CommandTest):

    def setUp(self):
        super().setUp()
        os.mkdir(self.path("out"))

    def test_documents_are_named_after_their_messages(self):
        for output in ("out", "out/"):
            with self.subTest(output=output):
                self.write("in/a.adexp", GOOD)
                self.write("two words", GOOD)
                self.assert_ends(self.convert("-o", output, "in/a.adexp", "two words"), 0)
                self.assertEqual(["a.adexp.xml", "two words.xml"], self.files("out"))

    def test_document_of_standard_input_is_named_stdin(self):
        self.assert_ends(self.convert("-o", "out", stdin=GOOD), 0)
        self.assertEqual(["stdin.xml"], self.files("out"))

    def test_second_message_of_the_same_name_is_refused(self):
        self.write("in/a", GOOD)
        self.write("other/a", "-TITLE NOTE -ARCID XYZ\n")
        result = self.convert("-o", "out", "in/a", "other/a")
        self.assert_ends(result, 2, "other/a: not converted: another message of the same file name")
        self.assertEqual("PLAN", title_of(self.read("out/a.xml")))

    def test_link_in_the_place_of_a_document_loses_no_other(self):
        self.write("x", "-TITLE NOTE -ARCID XYZ\n")
        self.write("y", GOOD)
        for target in ("y.xml", "../out/y.xml", self.path("out/y.xml"), "z.xml"):
            with self.subTest(target=target):
                os.symlink("y.xml", self.path("out/z.xml"))
                os.symlink(target, self.path("out/x.xml"))
                self.assert_ends(self.convert("-o", "out", "y", "x"), 2,
                                 "x: not converted: another message of the same file name")
                self.assertEqual("PLAN", title_of(self.read("out/y.xml")))
                for name in self.files("out"):
                    os.remove(self.path("out/" + name))

    def test_only_what_was_converted_gets_a_document(self):
        self.write("a", NO_RULE)
        self.write("b", GOOD)
        self.assert_ends(self.convert("-o", "out", "a", "gone", "b"), 2, "a: not", "gone: not")
        self.assertEqual(["b.xml"], self.files("out"))

    def test_missing_folder(self):
        self.assert_ends(self.convert("-o", "gone/", stdin=GOOD), 2,
                         "gone/: there is no such folder for the documents; make it first")

    def test_folder_that_takes_no_files(self):
        self.assert_ends(self.convert("-o", "/proc", stdin=GOOD), 2,
                         "/proc/stdin.xml: cannot be written: ")

    def test_document_in_whose_place_a_folder_or_a_socket_stands(self):
        os.mkdir(self.path("out/a.xml"))
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(self.path("out/b.xml"))
        result = self.convert("-o", "out", self.write("a", GOOD), self.write("b", GOOD))
        self.assert_ends(result, 2, "out/a.xml: cannot be written: ", "out/b.xml: cannot be written: ")
        self.assertEqual(["a.xml", "b.xml"], self.files("out"))

    def test_name_that_is_no_unicode_text_is_refused(self):
        with open(os.path.join(os.fsencode(self.folder), b"\xff"), "w", encoding="utf-8") as file:
            file.write(GOOD)
        result = subprocess.run([self.command, "convert", "--settings", "rules.ini", "-o", "out",
                                 b"\xff"], cwd=self.folder, stderr=subprocess.PIPE, timeout=TIMEOUT)
        self.assertEqual(2, result.returncode)
        self.assertIn(b"the name is not in the encoding", result.stderr)
        self.assertEqual([], self.files("out"))


class StandardOutput(CommandTest):

    def test_hyphen_as_output(self):
        result = self.convert("-o", "-", stdin=GOOD)
        self.assert_ends(result, 0)
        self.assertEqual(("PLAN", ["rules.ini"]), (title_of(result.stdout), self.files()))

    def test_full_device_is_told(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.convert(self.write("a", GOOD), stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written: No space left on device; ")
        self.assertEqual(1, len(result.stderr.splitlines()))

    def test_full_device_is_told_once_for_a_document_larger_than_the_buffer(self):
        self.write("a", GOOD + "-POINT -LEVEL F370\n" * 5000)
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = self.convert("a", "a", stdout=full)
        self.assert_ends(result, 2, "standard output cannot be written: No space left on device; ")
        self.assertEqual(1, len(result.stderr.splitlines()))

    def test_closed_pipe_ends_quietly(self):
        reader, writer = os.pipe()
        os.close(reader)
        try:
            result = self.convert(self.write("a", GOOD), stdout=writer)
        finally:
            os.close(writer)
        self.assertEqual((2, ""), (result.returncode, result.stderr))

    def test_closed_standard_output_is_told(self):
        result = self.convert(self.write("a", GOOD), stdout=None, preexec_fn=lambda: os.close(1))
        self.assert_ends(result, 2, "standard output cannot be written: Bad file descriptor")

    def test_closed_standard_error_does_not_reach_the_document(self):
        self.write("a", REPORTED)
        result = self.convert("-o", "out.xml", "a", preexec_fn=lambda: os.close(2))
        self.assertEqual(1, result.returncode)
        self.assertEqual("PLAN", title_of(self.read("out.xml")))

    def test_closed_standard_input_is_told(self):
        result = subprocess.run([self.command, "convert", "--settings", "rules.ini"],
                                cwd=self.folder, stderr=subprocess.PIPE, timeout=TIMEOUT,
                                preexec_fn=lambda: os.close(0))
        self.assertEqual(2, result.returncode)
        self.assertIn(b"<stdin>: not converted: cannot be read: Bad file descriptor", result.stderr)


class Interruption(CommandTest):

    def test_what_was_done_stays_and_the_status_tells_the_signal(self):
        """The second message is a pipe that nobody writes to: there the command stands still."""
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(signal=number):
                self.interrupt(number)

    def interrupt(self, number):
        out = "out%d" % number
        os.mkdir(self.path(out))
        self.write("a", GOOD)
        self.write("c", GOOD)
        if not os.path.exists(self.path("b")):
            os.mkfifo(self.path("b"))
        process = subprocess.Popen([self.command, "convert", "--settings", "rules.ini",
                                    "-o", out, "a", "b", "c"], cwd=self.folder)
        try:
            deadline = time.monotonic() + TIMEOUT
            while self.files(out) != ["a.xml"] and time.monotonic() < deadline:
                time.sleep(0.01)
            process.send_signal(number)
            # Popen shows the end by signal n as -n, a shell as 128+n.
            self.assertEqual(-number, process.wait(TIMEOUT))
        finally:
            process.kill()
            process.wait()
        self.assertEqual(["a.xml"], self.files(out))
        self.assertEqual("PLAN", title_of(self.read(out + "/a.xml")))

    def test_signal_while_writing_leaves_no_half_written_file(self):
        """Signals come at ever later points; the document is there whole or not at all."""
        self.write("large", GOOD + "-POINT -LEVEL F370\n" * 20000)
        os.mkdir(self.path("out"))
        for delay in range(0, 60, 4):
            process = subprocess.Popen([self.command, "convert", "--settings", "rules.ini",
                                        "-o", "out", "large"], cwd=self.folder)
            time.sleep(delay / 1000)
            process.terminate()
            self.assertIn(process.wait(TIMEOUT), (0, -signal.SIGTERM))
            self.assertIn(self.files("out"), ([], ["large.xml"]))
            if self.files("out"):
                self.assertEqual("PLAN", title_of(self.read("out/large.xml")))
                os.remove(self.path("out/large.xml"))


if __name__ == "__main__":
    main()
