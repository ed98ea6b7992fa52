"""Tests of "adexp convert -o FOLDER" when something goes wrong on the way. Always: no half-written
document under its name, no other file left, what was done stays, and the exit status tells."""

import os
import resource
import shutil
import signal
import subprocess
import time
import xml.etree.ElementTree as ElementTree

from commandtest import GOOD, TIMEOUT, CommandTest, main

LARGE = GOOD + "-POINT -LEVEL F370\n" * 5000


class FaultsTest(CommandTest):

    def setUp(self):
        super().setUp()
        os.mkdir(self.path("out"))

    def start(self, *arguments, **options):
        """Starts "convert -o out" with the arguments; it ends with the test at the latest."""
        process = subprocess.Popen([self.command, "convert", "--settings", "rules.ini", "-o", "out",
                                    *arguments], cwd=self.folder, encoding="utf-8",
                                   stderr=subprocess.PIPE, **options)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def wait_for(self, condition):
        deadline = time.monotonic() + TIMEOUT
        while not condition():
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.01)

    def start_and_wait_at(self, pipe, *names):
        """Starts converting the messages and the pipe "pipe", which has no writer, among them. Waits
        until the document before the pipe is there."""
        os.mkfifo(self.path(pipe))
        process = self.start(*names)
        before = names[names.index(pipe) - 1]
        self.wait_for(lambda: before + ".xml" in self.files("out"))
        return process

    def end(self, process):
        """Waits for the end; the result is like that of convert()."""
        _, errors = process.communicate(timeout=TIMEOUT)
        return subprocess.CompletedProcess(process.args, process.returncode, "", errors)

    def assert_documents(self, *names):
        """These documents stand in "out", whole, and nothing else does."""
        self.assertEqual(sorted(name + ".xml" for name in names), self.files("out"))
        for name in names:
            root = ElementTree.fromstring(self.read("out/" + name + ".xml"))
            self.assertEqual(self.read(name), root.findtext("ORIGINAL_TEXT"))


class Permissions(FaultsTest):

    def test_read_only_folder(self):
        os.chmod(self.path("out"), 0o555)
        self.write("a", GOOD)
        self.assert_ends(self.convert_with_ordinary_permissions("-o", "out", "a"), 2,
                         "out/a.xml: cannot be written: Permission denied")
        self.assertEqual([], self.files("out"))

    def test_read_only_document_in_a_read_only_folder_stays(self):
        self.write("out/a.xml", "old")
        os.chmod(self.path("out/a.xml"), 0o444)
        os.chmod(self.path("out"), 0o555)
        self.write("a", GOOD)
        self.assert_ends(self.convert_with_ordinary_permissions("-o", "out", "a"), 2,
                         "out/a.xml: cannot be written: ", "not writable")
        self.assertEqual(["a.xml"], self.files("out"))
        self.assertEqual("old", self.read("out/a.xml"))

    def test_message_that_must_not_be_read_spares_the_others(self):
        for name in ("a", "b", "c"):
            self.write(name, GOOD)
        os.chmod(self.path("b"), 0)
        self.assert_ends(self.convert_with_ordinary_permissions("-o", "out", "a", "b", "c"), 2,
                         "b: not converted: cannot be read: Permission denied")
        self.assert_documents("a", "c")


class Names(FaultsTest):

    def test_every_name_gets_its_document(self):
        names = ["two words", " ", "line\nbreak", "-x", "--help", "[a,b]", "ж", "a.xml", "'\"$(x)"]
        for name in names:
            self.write(name, GOOD)
        self.assert_ends(self.convert("-o", "out", "--", *names), 0)
        self.assert_documents(*names)

    def test_name_too_long_for_its_document_spares_the_others(self):
        for name in ("a", "x" * 254, "c"):
            self.write(name, GOOD)
        self.assert_ends(self.convert("-o", "out", "a", "x" * 254, "c"), 2,
                         "x.xml: cannot be written: File name too long")
        self.assert_documents("a", "c")


class Vanishing(FaultsTest):
    """The command stands still at a pipe until the test has done its mischief."""

    def setUp(self):
        super().setUp()
        for name in ("a", "c", "d"):
            self.write(name, GOOD)

    def test_message_that_is_gone_when_its_turn_comes(self):
        process = self.start_and_wait_at("pipe", "a", "pipe", "c", "d")
        os.remove(self.path("c"))
        self.write("pipe", GOOD)
        self.assert_ends(self.end(process), 2, "c: not converted: cannot be read: No such file")
        os.remove(self.path("pipe"))
        self.write("pipe", GOOD) # to be compared with
        self.assert_documents("a", "pipe", "d")

    def test_message_that_has_become_a_folder(self):
        process = self.start_and_wait_at("pipe", "a", "pipe", "c", "d")
        os.remove(self.path("c"))
        os.mkdir(self.path("c"))
        self.write("pipe", "")
        self.assert_ends(self.end(process), 2, "c: not converted: is a folder", "pipe: not")
        self.assert_documents("a", "d")

    def test_folder_of_the_documents_that_is_gone(self):
        process = self.start_and_wait_at("pipe", "a", "pipe", "c")
        shutil.rmtree(self.path("out"))
        self.write("pipe", GOOD)
        self.assert_ends(self.end(process), 2, "out/pipe.xml: cannot be written: No such file",
                         "out/c.xml: cannot be written: No such file")
        self.assertNotIn("out", self.files())

    def test_folder_of_the_documents_that_goes_before_the_first_becomes_no_file(self):
        """The command has looked at the folder before it waits for the list."""
        os.mkfifo(self.path("list"))
        process = self.start("--files-from", "list")
        with open(self.path("list"), "w", encoding="utf-8") as names: # when it reads the list
            shutil.rmtree(self.path("out"))
            names.write("a\n")
        self.assert_ends(self.end(process), 2, "out/a.xml: cannot be written: No such file")
        self.assertNotIn("out", self.files())

    def test_reader_that_goes_away_ends_the_batch_quietly(self):
        self.write("large", LARGE)
        with subprocess.Popen([self.command, "convert", "--settings", "rules.ini",
                               *["large"] * 50], cwd=self.folder, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            self.assertTrue(process.stdout.read(1000).startswith(b"<ADEXP_XML "))
            process.stdout.close()
            self.assertEqual(b"", process.stderr.read())
            self.assertEqual(2, process.wait(TIMEOUT))


class Signals(FaultsTest):

    COUNT = 100

    def setUp(self):
        super().setUp()
        self.names = ["m%03d" % i for i in range(self.COUNT)]
        for name in self.names:
            self.write(name, GOOD + "-POINT -LEVEL F370\n" * 2500)

    def test_batch_ends_with_whole_documents_only(self):
        """With one thread they are those of the first messages."""
        for number, jobs in ((signal.SIGINT, "1"), (signal.SIGTERM, "2"), (signal.SIGHUP, "1"),
                             (signal.SIGINT, "4")):
            for seen in (0, 1, 3, 10):
                with self.subTest(signal=number, jobs=jobs, seen=seen):
                    process = self.start("-j", jobs, *self.names)
                    self.wait_for(lambda: len(self.files("out")) >= seen)
                    process.send_signal(number)
                    self.assertEqual(-number, self.end(process).returncode)
                    done = [name[:-len(".xml")] for name in self.files("out")]
                    self.assertGreaterEqual(len(done), seen)
                    self.assert_documents(*(self.names[:len(done)] if jobs == "1" else done))
                    for name in self.files("out"):
                        os.remove(self.path("out/" + name))

    def test_killed_batch_leaves_no_half_written_document(self):
        """What cannot be held back may leave a file, but not under the name of a document."""
        for _ in range(5):
            process = self.start(*self.names)
            self.wait_for(lambda: len(self.files("out")) >= 3)
            process.kill()
            self.assertEqual(-signal.SIGKILL, self.end(process).returncode)
            for name in self.files("out"):
                if name.endswith(".xml"):
                    ElementTree.fromstring(self.read("out/" + name))

    def test_batch_can_be_done_again_after_an_interruption(self):
        process = self.start(*self.names)
        self.wait_for(lambda: self.files("out"))
        process.terminate()
        self.end(process)
        self.assert_ends(self.convert("-o", "out", *self.names), 0)
        self.assert_documents(*self.names)


class Resources(FaultsTest):

    def test_reached_file_size_limit_spares_the_others(self):
        for name, text in (("a", GOOD), ("large", LARGE), ("c", GOOD)):
            self.write(name, text)
        limit = lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (100000, 100000))
        self.assert_ends(self.convert("-o", "out", "a", "large", "c", preexec_fn=limit), 2,
                         "out/large.xml: cannot be written: File too large")
        self.assert_documents("a", "c")

    def limited(self, what, limit, *arguments):
        """Converts with a limit; skipped where not even the version can be shown with it."""
        options = {"preexec_fn": lambda: resource.setrlimit(what, (limit, limit))}
        if self.run_command("--version", **options).returncode != 0:
            self.skipTest("the command does not start with this limit")
        return self.convert(*arguments, **options)

    def test_message_too_large_for_the_memory(self):
        self.write("a", GOOD)
        self.write("huge", GOOD + "-POINT -LEVEL F370\n" * 2000000)
        result = self.limited(resource.RLIMIT_AS, 300 * 2 ** 20, "-o", "out", "a", "huge")
        self.assert_ends(result, 2, "memory ran out")
        self.assert_documents("a")

    def test_no_memory_for_the_rule_set(self):
        """From a limit that is too low to one that suffices, nothing else than the two ends."""
        self.write("a", GOOD)
        ends = set()
        for megabytes in range(20, 200, 2):
            limit = lambda size=megabytes * 2 ** 20: resource.setrlimit(resource.RLIMIT_AS,
                                                                        (size, size))
            if self.run_command("--version", preexec_fn=limit).returncode != 0:
                continue
            result = self.run_command("convert", "-o", "out", "a", preexec_fn=limit)
            ends.add(result.returncode)
        if not ends:
            self.skipTest("the command does not start with these limits")
        self.assertLessEqual(ends, {0, 1, 2})

    def test_no_open_files_left(self):
        self.assert_ends(self.limited(resource.RLIMIT_NOFILE, 4, "-o", "out", "a"), 2, "")
        self.assertEqual([], self.files("out"))


if __name__ == "__main__":
    main()
