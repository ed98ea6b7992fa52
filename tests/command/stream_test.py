"""Tests of "adexp convert" with many messages: folders, lists of files, streams."""

import json
import os
import shutil
import resource
import subprocess
import threading
import time

from commandtest import GOOD, NO_RULE, NO_TITLE, REPORTED, TIMEOUT, CommandTest, main

MESSAGE = GOOD.strip()


def message(number):
    return "-TITLE PLAN -ARCID ABC%d" % number


class Folders(CommandTest):

    def setUp(self):
        super().setUp()
        os.mkdir(self.path("out"))

    def test_documents_keep_the_sub_folders(self):
        for name in ("in/a", "in/deep/er/a", "in/deep/b"):
            self.write(name, GOOD)
        self.assert_ends(self.convert("-r", "-o", "out", "in/"), 0)
        self.assertEqual(["a.xml", "deep"], self.files("out"))
        self.assertEqual(["b.xml", "er"], self.files("out/deep"))
        self.assertEqual(["a.xml"], self.files("out/deep/er"))

    def test_files_come_sorted_by_name(self):
        for name in ("c", "a", "b/z", "b/a"):
            self.write("in/" + name, NO_RULE)
        result = self.convert("-r", "in")
        self.assertEqual(["in/a", "in/b/a", "in/b/z", "in/c"],
                         [line.split(":")[0] for line in result.stderr.splitlines()])

    def test_folder_without_the_option_is_told(self):
        self.write("in/a", GOOD)
        for arguments in (["in"], ["--lines", "in"]):
            self.assert_ends(self.convert(*arguments), 2,
                             "in: not converted: is a folder, not a message; give -r to convert")

    def test_files_are_named_beside_folders(self):
        self.write("in/a", GOOD)
        self.assert_ends(self.convert("-r", "-o", "out", "in", self.write("b", GOOD)), 0)
        self.assertEqual(["a.xml", "b.xml"], self.files("out"))

    def test_same_name_in_two_folders_is_refused(self):
        self.write("one/a", GOOD)
        self.write("two/a", GOOD)
        self.assert_ends(self.convert("-r", "-o", "out", "one", "two"), 2,
                         "two/a: not converted: another message of the same file name was given")

    def test_links_in_the_folder_of_the_documents_lose_none(self):
        """Also if what they lead to comes to be in the same run."""
        for is_there in (True, False):
            with self.subTest(is_there=is_there):
                shutil.rmtree(self.path("out"))
                os.makedirs(self.path("out/a" if is_there else "out"))
                os.symlink("a", self.path("out/b"))
                self.write("in/a/x", message(1))
                self.write("in/b/x", message(2))
                self.write("in/b/y", message(3))
                self.assert_ends(self.convert("-r", "-o", "out", "in"), 2,
                                 "in/b/x: not converted: another message of the same file name")
                self.assertEqual(["x.xml", "y.xml"], self.files("out/a"))
                self.assertIn("ABC1", self.read("out/a/x.xml"))

    def test_documents_of_an_earlier_run_are_no_messages(self):
        self.write("in/a", GOOD)
        os.mkdir(self.path("in/out"))
        for _ in range(2):
            self.assert_ends(self.convert("-r", "-o", "in/out/", "in"), 0)
            self.assertEqual(["a.xml"], self.files("in/out"))

    def test_sub_folder_that_cannot_be_made_is_told(self):
        self.write("in/deep/a", GOOD)
        self.write("out/deep", "a file")
        self.assert_ends(self.convert("-r", "-o", "out", "in"), 2,
                         "out/deep/a.xml: cannot be written: ")

    def test_one_file_for_a_folder_is_a_wrong_argument(self):
        self.assert_ends(self.convert("-r", "-o", "out.xml", "in"), 64,
                         "out.xml: -o names one file, but there may be several messages; name a")


class FileLists(CommandTest):

    def test_names_stand_on_lines(self):
        self.write("a", GOOD)
        self.write("two words", REPORTED)
        self.write("list", "a\ntwo words")
        for arguments, stdin in ((["list"], ""), (["-"], "a\ntwo words\n")):
            result = self.convert("--files-from", *arguments, stdin=stdin)
            self.assert_ends(result, 1, "two words: ")
            self.assertEqual(2, result.stdout.count("<ADEXP_XML "))

    def test_names_are_ended_by_nul(self):
        self.write("line\nbreak", GOOD)
        result = self.convert("-0", "--files-from", "-", stdin="line\nbreak\0gone\0")
        self.assert_ends(result, 2, "gone: not converted: cannot be read")
        self.assertEqual(2, result.stdout.count("\0"))
        self.assertTrue(result.stdout.endswith("</ADEXP_XML>\n\0\0"), result.stdout)

    def test_documents_go_to_a_folder(self):
        os.mkdir(self.path("out"))
        self.write("in/a", GOOD)
        self.write("in/b", GOOD)
        self.assert_ends(self.convert("-o", "out", "--files-from", "-", stdin="in/a\nin/b\n"), 0)
        self.assertEqual(["a.xml", "b.xml"], self.files("out"))

    def test_later_message_is_not_replaced_by_the_document_of_an_earlier(self):
        self.write("a", GOOD)
        self.write("a.xml", GOOD)
        result = self.convert("-o", ".", "--files-from", "-", stdin="a\na.xml\n")
        self.assert_ends(result, 2, "a: not converted: its document would replace the input")
        self.assertEqual(GOOD, self.read("a.xml"))

    def test_list_is_not_replaced_by_a_document(self):
        self.write("in/list", GOOD)
        self.write("list.xml", "in/list\n")
        result = self.convert("-o", ".", "--files-from", "list.xml")
        self.assert_ends(result, 2, "in/list: not converted: its document would replace the input")
        with open(self.path("list.xml"), "rb") as names:
            result = self.convert("-o", ".", "--files-from", "-", stdin=names)
        self.assert_ends(result, 2, "in/list: not converted: its document would replace the input")
        self.assertEqual("in/list\n", self.read("list.xml"))

    def test_folder_in_the_list(self):
        self.write("in/a", GOOD)
        self.assert_ends(self.convert("--files-from", "-", stdin="in\n"), 2, "in: ", "give -r")
        self.assert_ends(self.convert("-r", "--files-from", "-", stdin="in\n"), 0)

    def test_hyphen_in_the_list_is_a_file(self):
        self.write("-", GOOD)
        self.assert_ends(self.convert("--files-from", "-", stdin="-\n"), 0)

    def test_list_that_cannot_be_read(self):
        self.assert_ends(self.convert("--files-from", "gone"), 2,
                         "gone: not converted: cannot be read: No such file")
        result = self.convert("--files-from", "/proc/self/mem")
        self.assert_ends(result, 2, "/proc/self/mem: not converted: cannot be read: Input/output")

    def test_list_and_files_exclude_each_other(self):
        self.assert_ends(self.convert("--files-from", "list", "a"), 64, "--files-from")

    def test_name_is_answered_before_the_next_one_comes(self):
        self.write("a", GOOD)
        Conversation(self, "--files-from", "-").ask("a\n", "</ADEXP_XML>\n")


class Lines(CommandTest):

    def test_each_line_is_a_message(self):
        result = self.convert("--lines", stdin=message(1) + "\n" + message(2) + "\r\n" + message(3))
        self.assert_ends(result, 0)
        self.assertEqual(["ABC1", "ABC2", "ABC3"],
                         [part[:4] for part in result.stdout.split('list="false">')
                          if part.startswith("ABC")])

    def test_messages_are_called_by_their_line(self):
        self.write("archive", "%s\n\n%s\n" % (MESSAGE, REPORTED.strip()))
        result = self.convert("--lines", "-q", "archive")
        self.assertEqual('archive:2: not converted: there is no "-TITLE" in it; check that it is an '
                         'ADEXP message\n', result.stderr)
        self.assert_ends(self.convert("--lines", "archive"), 2,
                         'archive:3: "ignore word" "stray" \n')

    def test_several_archives(self):
        self.write("a", message(1) + "\n")
        self.write("b", "")
        self.write("c", message(2) + "\n")
        result = self.convert("--lines", "a", "b", "gone", "c")
        self.assert_ends(result, 2, "gone: not converted")
        self.assertEqual(2, result.stdout.count("<ADEXP_XML "))

    def test_documents_in_a_folder_are_numbered(self):
        os.mkdir(self.path("out"))
        self.write("archive", "%s\n%s\n" % (MESSAGE, MESSAGE))
        self.assert_ends(self.convert("--lines", "-o", "out", "archive", "-", stdin=MESSAGE), 0)
        self.assertEqual(["archive.1.xml", "archive.2.xml", "stdin.1.xml"], self.files("out"))

    def test_second_archive_of_the_same_name_replaces_no_document(self):
        os.mkdir(self.path("out"))
        self.write("a/archive", "%s\n%s\n" % (message(1), message(2)))
        self.write("b/archive", "%s\n%s\n%s\n" % (message(3), message(4), message(5)))
        result = self.convert("--lines", "-o", "out", "a/archive", "b/archive")
        self.assert_ends(result, 2, *("b/archive:%d: not converted: another message of the same "
                                      "file name was given" % number for number in (1, 2)))
        self.assertEqual([">ABC%d<" % number in self.read("out/archive.%d.xml" % document)
                          for document, number in ((1, 1), (2, 2), (3, 5))], [True] * 3)

    def test_link_between_the_documents_of_an_archive_loses_none(self):
        for link, target, refused in ((1, 2, 2), (2, 1, 2), (3, 1, 3)):
            with self.subTest(link=link, target=target):
                shutil.rmtree(self.path("out"), ignore_errors=True)
                os.mkdir(self.path("out"))
                os.symlink("archive.%d.xml" % target, self.path("out/archive.%d.xml" % link))
                self.write("archive", "".join(message(number) + "\n" for number in range(1, 4)))
                self.assert_ends(self.convert("--lines", "-o", "out", "archive"), 2,
                                 "archive:%d: not converted: another message of" % refused)
                self.assertEqual(3, len(self.files("out")))
                for number in {1, 2, 3} - {refused}:
                    self.assertIn("ABC%d" % number, self.read("out/archive.%d.xml" % number))

    def test_one_file_for_lines_is_a_wrong_argument(self):
        self.assert_ends(self.convert("--lines", "-o", "out.xml"), 64, "may be several messages")

    def test_nothing_is_no_message(self):
        result = self.convert("--lines", stdin="")
        self.assert_ends(result, 0)
        self.assertEqual("", result.stdout)

    def test_lines_longer_than_a_block(self):
        points = " -POINT -LEVEL F370" * 20000
        result = self.convert("--lines", "-0", stdin=(message(1) + points + "\n") * 3)
        self.assertEqual(3, result.stdout.count("\0"))
        self.assertEqual(60000, result.stdout.count("<LEVEL "))


class Nul(CommandTest):

    def test_messages_and_documents_are_ended_by_nul(self):
        result = self.convert("-0", stdin="%s\n\0%s\0%s" % (message(1), message(2), message(3)))
        self.assert_ends(result, 0)
        documents = result.stdout.split("\0")
        self.assertEqual("", documents.pop())
        self.assertEqual([1, 2, 3], [1 + i for i, document in enumerate(documents)
                                     if ">ABC%d<" % (i + 1) in document])

    def test_message_without_document_gives_an_empty_one(self):
        result = self.convert("-0", stdin="\0".join([message(1), NO_RULE, "", message(4)]) + "\0")
        self.assert_ends(result, 2, "<stdin>:2: not converted", "<stdin>:3: not converted")
        self.assertEqual([True, False, False, True, False],
                         [bool(document) for document in result.stdout.split("\0")])

    def test_documents_of_files_are_ended_by_nul(self):
        result = self.convert("-0", self.write("a", GOOD), "gone", self.write("b", GOOD))
        self.assert_ends(result, 2, "gone: ")
        self.assertEqual([True, False, True, False],
                         [bool(document) for document in result.stdout.split("\0")])

    def test_same_bytes_as_one_by_one(self):
        messages = [message(1), GOOD, REPORTED, "-TITLE NOTE -ARCID \x01\n"]
        single = [self.convert(stdin=text).stdout for text in messages]
        self.assertEqual("".join(document + "\0" for document in single),
                         self.convert("-0", stdin="\0".join(messages)).stdout)

    def test_message_that_is_called_like_one_of_a_stream_replaces_no_document(self):
        self.write("stdin.2", message(9))
        self.write("stdin.02", message(9))
        self.write("stdin.3", message(9))
        for files, refused in ((["-", "stdin.2", "stdin.3", "stdin.02"], "stdin.2: "),
                               (["stdin.2", "-", "stdin.3", "stdin.02"], "<stdin>:2: ")):
            with self.subTest(files=files):
                os.mkdir(self.path("out"))
                result = self.convert("-0", "-o", "out", *files, stdin=message(1) + "\0" + message(2))
                self.assert_ends(result, 2, refused + "not converted: another message of the same")
                self.assertEqual(1, result.stderr.count("not converted"))
                self.assertEqual(["stdin.02.xml", "stdin.1.xml", "stdin.2.xml", "stdin.3.xml"],
                                 self.files("out"))
                expected = ">ABC2<" if files[0] == "-" else ">ABC9<"
                self.assertIn(expected, self.read("out/stdin.2.xml"))
                shutil.rmtree(self.path("out"))

    def test_one_file_for_the_documents_of_a_stream_is_a_wrong_argument(self):
        for arguments in ([], ["-"]):
            self.assert_ends(self.convert("-0", "-o", "out.xml", *arguments), 64,
                             "may be several messages")
        self.assert_ends(self.convert("-0", "-o", "out.xml", self.write("a", GOOD)), 0)


class Conversation:
    """The command as a filter: an answer has to come before the next question."""

    def __init__(self, test, *arguments):
        self.test = test
        self.process = subprocess.Popen(
            [test.command, "convert", "--settings", "rules.ini", *arguments], cwd=test.folder,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, bufsize=0)
        test.addCleanup(self.end)

    def ask(self, question, end):
        timer = threading.Timer(TIMEOUT, self.process.kill)
        timer.start()
        self.process.stdin.write(question.encode())
        answer = b""
        while not answer.endswith(end.encode()):
            byte = self.process.stdout.read(1)
            if not byte:
                self.test.fail("no answer, but " + repr(answer))
            answer += byte
        timer.cancel()
        return answer.decode()

    def end(self):
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.kill()
        self.process.wait()


class Filter(CommandTest):

    def test_each_message_is_answered_before_the_next_one_comes(self):
        for jobs in ("1", "2"):
            with self.subTest(jobs=jobs):
                conversation = Conversation(self, "-0", "-q", "-j", jobs)
                for number in range(50):
                    answer = conversation.ask(message(number) + "\0", "\0")
                    self.assertIn(">ABC%d<" % number, answer)
                self.assertEqual("\0", conversation.ask("\0", "\0"))

    def test_input_that_does_not_wait_is_waited_for(self):
        for arguments in ([], ["--lines"], ["-j", "2"], ["--files-from", "-"]):
            with self.subTest(arguments=arguments):
                reading, writing = os.pipe()
                os.set_blocking(reading, False)
                process = subprocess.Popen([self.command, "convert", "--settings", "rules.ini",
                                            *arguments], cwd=self.folder, stdin=reading,
                                           stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                os.close(reading)
                time.sleep(0.2) # it has found nothing; shorter, the test would see less
                name = self.write("a", GOOD)
                os.write(writing, (name + "\n" if "-" in arguments else GOOD).encode())
                os.close(writing)
                out, err = process.communicate(timeout=TIMEOUT)
                self.assertEqual((0, b"", 1), (process.returncode, err, out.count(b"<ADEXP_XML ")))

    def test_part_of_a_message_waits_for_the_rest(self):
        conversation = Conversation(self, "-0", "-j", "2")
        conversation.process.stdin.write(b"-TITLE PL")
        self.assertIn(">ABC1<", conversation.ask("AN -ARCID ABC1\0", "\0"))

    def test_reports_never_stand_before_the_documents_of_earlier_messages(self):
        result = self.convert("--lines", stdin="%s\n%s\n" % (MESSAGE, REPORTED.strip()),
                              stdout=subprocess.PIPE)
        both = subprocess.run([self.command, "convert", "--settings", "rules.ini", "--lines"],
                              cwd=self.folder, encoding="utf-8", timeout=TIMEOUT,
                              input="%s\n%s\n" % (MESSAGE, REPORTED.strip()),
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False).stdout
        end = len("</ADEXP_XML>\n") + both.index("</ADEXP_XML>\n")
        self.assertEqual(result.stderr, both[end:end + len(result.stderr)])

    def test_reader_that_goes_away_ends_the_command(self):
        for jobs in ("1", "2"):
            with self.subTest(jobs=jobs):
                self.write("archive", (message(1) + "\n") * 20000)
                process = subprocess.Popen([self.command, "convert", "--settings", "rules.ini", "-j",
                                            jobs, "--lines", "archive"], cwd=self.folder,
                                           stdout=subprocess.PIPE, stderr=subprocess.PIPE)
                process.stdout.read(10)
                process.stdout.close()
                self.assertEqual(b"", process.stderr.read())
                process.stderr.close()
                self.assertEqual(2, process.wait(TIMEOUT))

    def test_memory_does_not_grow_with_the_stream(self):
        """The peak over 30 times the messages stays within a tenth."""
        self.skip_with_sanitizers()
        peaks = {}
        for jobs in ("1", "2"):
            for count in (2000, 60000):
                self.write("archive", (REPORTED.strip() + " x%d\n") % count * count)
                code = ("import resource, subprocess, sys; "
                        "subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, "
                        "stderr=subprocess.DEVNULL); "
                        "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
                result = subprocess.run(
                    ["python3", "-c", code, self.command, "convert", "--settings", "rules.ini",
                     "--lines", "-j", jobs, "archive"], cwd=self.folder, stdout=subprocess.PIPE,
                    timeout=TIMEOUT, check=True)
                peaks[jobs, count] = int(result.stdout)
        for jobs in ("1", "2"):
            self.assertLess(peaks[jobs, 60000], 1.1 * peaks[jobs, 2000] + 2048, peaks)

    def test_message_for_which_memory_runs_out_is_told_and_the_others_go_on(self):
        """A message file beyond the limit of the address space, which is far above what starts."""
        self.skip_with_sanitizers()
        with open(self.path("large"), "wb") as file:
            file.truncate(2 ** 31 - 1)
        limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (2 ** 30, 2 ** 30))
        for jobs in ("1", "2"):
            result = self.convert("-j", jobs, "large", self.write("a", GOOD), preexec_fn=limit)
            self.assert_ends(result, 2, "large: not converted: memory ran out; convert it where")
            self.assertEqual(1, result.stdout.count("<ADEXP_XML "))

    def test_record_for_which_memory_runs_out_is_told_and_the_others_go_on(self):
        self.skip_with_sanitizers()
        limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (400 * 2 ** 20, 400 * 2 ** 20))
        for size in (300, 120):
            self.write("archive", "\n".join([message(1), "X" * (size * 10 ** 6), message(3)]))
            for jobs in ("1", "2"):
                with self.subTest(size=size, jobs=jobs):
                    result = self.convert("-j", jobs, "--lines", "archive", preexec_fn=limit)
                    self.assert_ends(result, 2, "archive:2: not converted: ")
                    self.assertRegex(result.stdout, "(?s)>ABC1<.*>ABC3<")
                    if size == 300:
                        self.assertIn("memory ran out; convert it where there", result.stderr)

    def test_messages_for_which_memory_runs_out_cost_no_others(self):
        """Several large ones at once, each of which may take what another one needs."""
        self.skip_with_sanitizers()
        large = message(2) + " -POINT -LEVEL F370" * 150000
        self.write("archive", "\n".join([message(1), *[large] * 6, message(8)]))
        reasons = ""
        for size in (120, 150, 190, 240):
            limit = lambda most=size * 2 ** 20: resource.setrlimit(resource.RLIMIT_AS, (most, most))
            result = self.convert("-j", "4", "--lines", "archive", preexec_fn=limit)
            not_converted = result.stderr.count(": not converted: memory ran out; convert it where")
            self.assertEqual(2 if not_converted else 0, result.returncode, result.stderr)
            self.assertRegex(result.stdout, "(?s)>ABC1<.*>ABC8<")
            self.assertEqual(not_converted, len(result.stderr.splitlines()), result.stderr)
            self.assertEqual(8, not_converted + result.stdout.count("<ADEXP_XML "))
            reasons += result.stderr
        self.assertIn("memory ran out", reasons)


class Summary(CommandTest):

    def test_with_documents_it_goes_to_standard_output_and_reports_stay(self):
        os.mkdir(self.path("out"))
        self.write("a", REPORTED)
        result = self.convert("--summary", "-o", "out", "a", "gone")
        self.assert_ends(result, 2, 'a: "ignore word" "stray" \n', "gone: not converted")
        self.assertIn("PLAN                 1 ", result.stdout)
        self.assertIn("    gone: cannot be read", result.stdout)
        self.assertNotIn("<ADEXP_XML ", result.stdout)
        self.assertEqual(["a.xml"], self.files("out"))

    def test_with_documents_on_standard_output_it_goes_to_standard_error(self):
        result = self.convert("--summary", "-o", "-", "--lines", stdin=MESSAGE)
        self.assert_ends(result, 0, "title         messages", "PLAN                 1 ")
        self.assertEqual(self.convert("--lines", stdin=MESSAGE).stdout, result.stdout)

    def test_document_that_cannot_be_written_is_not_converted(self):
        result = self.convert("--summary", "-o", "/dev/full", stdin=MESSAGE)
        self.assert_ends(result, 2, "/dev/full: cannot be written")
        self.assertIn("not converted: 1\n    <stdin>: /dev/full cannot be written", result.stdout)

    def test_no_more_than_a_thousand_different_lines_are_listed(self):
        lines = ["-TITLE PLAN word%d -ARCID ABC123" % number for number in range(1002)]
        result = self.convert("--summary", "--lines", stdin="\n".join(lines + [NO_TITLE] * 2000))
        self.assertIn(" 1 x \"ignore word\" \"word999\" \n    2 x (others)\n", result.stdout)
        self.assertNotIn("word1000", result.stdout)
        # Each of the 2000 has a blank line behind it.
        self.assertIn("not converted: 3999\n", result.stdout)
        self.assertTrue(result.stdout.endswith("    (2999 others)\n"))

    def test_as_json(self):
        result = self.convert("--summary", "--format", "json", "--lines",
                              stdin="\n".join([MESSAGE, REPORTED.strip(), "none"]))
        self.assertEqual(1, result.stdout.count("\n"))
        self.assertEqual(
            {"titles": [{"title": "PLAN", "messages": 2, "fields": 4, "unknown": 0, "diagnostics": 1,
                         "reports": [{"count": 1, "text": '"ignore word" "stray" '}]}],
             "total": {"messages": 2, "fields": 4, "unknown": 0, "diagnostics": 1,
                       "notConverted": 1},
             "notConverted": [{"file": "<stdin>:3", "text": 'there is no "-TITLE" in it; check that '
                               "it is an ADEXP message"}]},
            json.loads(result.stdout))


class Quiet(CommandTest):

    def test_leaves_out_reports_and_keeps_the_status(self):
        for option in ("-q", "--quiet"):
            self.assert_ends(self.convert(option, stdin=REPORTED), 1)

    def test_tells_what_was_not_done(self):
        self.assert_ends(self.convert("-q", stdin=NO_TITLE), 2, "<stdin>: not converted: ")


class Json(CommandTest):

    def lines(self, result):
        return [json.loads(line) for line in result.stderr.splitlines()]

    def test_each_finding_is_an_object(self):
        result = self.convert("--format", "json", self.write("a", REPORTED))
        self.assertEqual(1, result.returncode)
        (finding,) = self.lines(result)
        self.assertEqual(("a", "ignore word", "stray", 12, 17),
                         tuple(finding[key] for key in ("file", "text", "detail", "begin", "end")))
        self.assertIn(finding["severity"], ("warning", "error"))
        self.assertNotIn("message", finding)

    def test_a_byte_order_mark_in_a_finding_is_kept(self):
        result = self.convert("--format", "json", self.write("a", "X \ufeffY " + MESSAGE))
        self.assertEqual(["X", "\ufeffY"], [finding["detail"] for finding in self.lines(result)])

    def test_messages_of_a_stream_have_their_number(self):
        result = self.convert("--format", "json", "--lines", stdin="%s\n%s" % (MESSAGE, REPORTED))
        (finding,) = self.lines(result)
        self.assertEqual(("<stdin>", 2), (finding["file"], finding["message"]))

    def test_what_was_not_done_is_an_object(self):
        os.mkdir(self.path("out"))
        os.mkdir(self.path("out/a.xml"))
        result = self.convert("--format", "json", "-q", "-o", "out", self.write("a", GOOD),
                              self.write("b", NO_TITLE))
        written, converted = self.lines(result)
        self.assertEqual({"file": "out/a.xml", "severity": "error"},
                         {key: written[key] for key in ("file", "severity")})
        self.assertIn("cannot be written: ", written["text"])
        self.assertEqual({"file": "b", "severity": "error",
                          "text": 'not converted: there is no "-TITLE" in it; check that it is an '
                          "ADEXP message"}, converted)

    def test_reports_about_the_rule_set(self):
        settings = self.settings("other.ini", msgrules="msgrules-reported.xml")
        result = self.run_command("convert", "--format", "json", "--settings", settings, stdin=GOOD)
        self.assertEqual(1, result.returncode)
        self.assertTrue(self.lines(result))
        self.assertTrue(any("NOWHERE" in json.dumps(line) for line in self.lines(result)))

    def test_rule_set_that_cannot_be_loaded(self):
        self.write("norules.ini", "[rules]\n")
        self.write("broken.ini", "[rules\n")
        for settings in ("gone.ini", "norules.ini", "broken.ini"):
            with self.subTest(settings=settings):
                result = self.run_command("convert", "--format", "json", "--settings", settings)
                self.assertEqual(2, result.returncode)
                self.assertEqual((settings, "error"),
                                 tuple(self.lines(result)[-1][key] for key in ("file", "severity")))

    def test_unknown_format_is_a_wrong_argument(self):
        self.assert_ends(self.convert("--format", "xml"), 64, "--format")

    def test_quiet_leaves_out_findings(self):
        self.assert_ends(self.convert("--format", "json", "-q", stdin=REPORTED), 1)


if __name__ == "__main__":
    main()
