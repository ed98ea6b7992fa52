"""Tests of "adexp convert" in several threads: order, number, signals, and the progress on a terminal."""

import errno
import os
import pty
import re
import resource
import signal
import subprocess
import time

from commandtest import GOOD, NO_RULE, NO_TITLE, REPORTED, TIMEOUT, CommandTest, main

# What one thread takes at once holds fewer bytes.
MANY = GOOD.strip() + " -POINT -LEVEL F370" * 8000


NOBODY = 65534


def threads(process):
    """The number of threads that a process has."""
    return len(os.listdir("/proc/%d/task" % process.pid))


class ThreadsTest(CommandTest):

    def start(self, *arguments, **options):
        process = subprocess.Popen([self.command, "convert", "--settings", "rules.ini", *arguments],
                                   cwd=self.folder, **options)
        self.addCleanup(self.end, process)
        return process

    def end(self, process):
        process.kill()
        process.wait()
        for stream in (process.stdin, process.stdout, process.stderr):
            if stream:
                stream.close()

    def wait_for(self, condition):
        deadline = time.monotonic() + TIMEOUT
        while not condition():
            if time.monotonic() > deadline:
                self.fail("it did not come")
            time.sleep(0.01)

    def open_for_reader(self, name):
        """Opens a named pipe for writing as soon as somebody reads it. Closed by close_writers()."""
        def is_read():
            try:
                self.writers.append(os.open(self.path(name), os.O_WRONLY | os.O_NONBLOCK))
            except OSError as error: # nobody reads it yet
                self.assertEqual(errno.ENXIO, error.errno)
            return self.writers
        self.wait_for(is_read)
        return self.writers[-1]

    def setUp(self):
        super().setUp()
        self.writers = []
        self.addCleanup(self.close_writers)

    def close_writers(self):
        while self.writers:
            os.close(self.writers.pop())


class Order(ThreadsTest):

    def setUp(self):
        super().setUp()
        self.texts = [GOOD, REPORTED, NO_RULE, "", NO_TITLE, "-TITLE PLAN -ARCID a -WHAT 1 -POINT -LEVEL 7",
                      GOOD + "-POINT -LEVEL F370\n" * 3000]

    def text(self, number):
        return self.texts[number * number % 13 % len(self.texts)]

    def assert_same_with_all_numbers(self, *arguments):
        one = self.convert("-j", "1", *arguments)
        self.assertEqual(2, one.returncode)
        for jobs in (["-j", "2"], ["-j", "8"], []):
            with self.subTest(arguments=arguments, jobs=jobs):
                several = self.convert(*jobs, *arguments)
                self.assertEqual((one.returncode, one.stderr), (several.returncode, several.stderr))
                self.assertEqual(one.stdout, several.stdout)

    def test_files_give_the_same_bytes_for_every_number_of_threads(self):
        for number in range(300):
            self.write("in/%03d" % number, self.text(number))
        for arguments in (["-0"], ["--summary"], ["--format", "json"]):
            self.assert_same_with_all_numbers("-r", "in", *arguments)

    def test_stream_gives_the_same_bytes_for_every_number_of_threads(self):
        """Small messages and large ones, good and bad, in an order without a pattern."""
        self.write("archive", "".join(self.text(number * 7919).replace("\n", " ") + "\n"
                                      for number in range(20000) if number % 100 == 0 or
                                      len(self.text(number * 7919)) < 1000))
        for arguments in ([], ["-0"], ["--summary"], ["--format", "json"], ["-q"]):
            self.assert_same_with_all_numbers("--lines", "archive", *arguments)

    def test_documents_go_to_the_folder(self):
        for number in range(100):
            self.write("in/%d/a" % number, GOOD)
        os.mkdir(self.path("out"))
        self.assert_ends(self.convert("-j", "3", "-r", "-o", "out", "in"), 0)
        self.assertEqual(self.convert("in/0/a").stdout, self.read("out/99/a.xml"))
        self.assertEqual(100, len(self.files("out")))

    def test_documents_on_standard_output_do_not_wait_for_the_names_that_follow(self):
        for name in "ab":
            self.write(name, GOOD)
        document = self.convert("a").stdout
        with open(self.path("out"), "wb") as out:
            process = self.start("-j", "2", "--files-from", "-", stdin=subprocess.PIPE, stdout=out)
        process.stdin.write(b"a\n")
        process.stdin.flush()
        self.wait_for(lambda: self.read("out") == document)
        process.stdin.write(b"b\n")
        process.stdin.close()
        self.assertEqual(0, process.wait(TIMEOUT))
        self.assertEqual(2 * document, self.read("out"))

    def test_results_wait_for_an_earlier_message_and_no_longer(self):
        """The first message is in a pipe that has no writer yet; the others are converted."""
        os.mkfifo(self.path("pipe"))
        self.write("many", MANY)
        names = ["pipe"] + ["many"] * 20
        with open(self.path("out"), "wb") as out:
            process = self.start("-j", "2", *names, stdout=out)
        writer = self.open_for_reader("pipe")
        time.sleep(0.2)
        self.assertEqual("", self.read("out"))
        os.write(writer, GOOD.encode())
        self.close_writers()
        self.assertEqual(0, process.wait(TIMEOUT))
        self.write("pipe2", GOOD)
        self.assertEqual(self.convert("-j", "1", "pipe2", *names[1:]).stdout, self.read("out"))


class Number(ThreadsTest):

    def setUp(self):
        super().setUp()
        os.mkfifo(self.path("pipe"))
        self.write("many", MANY)

    def threads_at_work(self, *arguments, **options):
        """The number of threads while one waits at a pipe and the others have had work."""
        process = self.start(*arguments, *["many"] * 8, "pipe", *["many"] * 8,
                             stdout=subprocess.DEVNULL, **options)
        self.open_for_reader("pipe")
        time.sleep(0.2)
        count = threads(process)
        self.close_writers()
        self.end(process)
        return count

    def test_it_is_that_of_the_option_and_one_that_reads_and_writes(self):
        self.assertEqual([1, 3, 5], [self.threads_at_work("-j", jobs) for jobs in "124"])

    def test_without_the_option_it_is_that_of_the_processors_that_may_be_used(self):
        processors = os.sched_getaffinity(0)
        one = lambda: os.sched_setaffinity(0, {min(processors)})
        for arguments in ([], ["-j", "0"]):
            self.assertEqual(1, self.threads_at_work(*arguments, preexec_fn=one))
            if len(processors) > 1:
                self.assertLess(1, self.threads_at_work(*arguments))

    def test_one_message_needs_no_other_thread(self):
        process = self.start("-j", "4", "pipe")
        self.open_for_reader("pipe")
        self.assertEqual(1, threads(process))

    def test_number_out_of_range_is_a_wrong_argument(self):
        for number in ("-1", "257", "x"):
            self.assert_ends(self.convert("-j", number), 64, "--jobs")

    def test_small_stack_suffices(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_STACK, (256 * 1024, 256 * 1024))
        names = ["many"] * 4
        result = self.convert("-j", "2", *names, preexec_fn=limit)
        self.assert_ends(result, 0)
        self.assertEqual(self.convert("-j", "1", *names).stdout, result.stdout)

    def test_threads_that_cannot_be_started_leave_the_work_to_the_others(self):
        """Somebody who may have no further thread; root may have any number."""
        names = ["many"] * 8
        expected = self.convert("-j", "1", *names).stdout
        os.chmod(self.folder, 0o755)
        # LeakSanitizer would look for leaks in a thread of its own.
        options = {"preexec_fn": lambda: resource.setrlimit(resource.RLIMIT_NPROC, (1, 1)),
                   "env": {**os.environ, "ASAN_OPTIONS": "detect_leaks=0"}}
        if os.geteuid() == 0:
            options.update(user=NOBODY, group=NOBODY, extra_groups=[])
        try:
            result = self.convert("-j", "4", *names, **options)
        except PermissionError as error:
            self.skipTest("nobody cannot run the command: %s" % error)
        self.assert_ends(result, 0)
        self.assertEqual(expected, result.stdout)


class Signals(ThreadsTest):

    def start_at_a_pipe(self, name):
        os.mkfifo(self.path(name))
        self.write("many", MANY)
        process = self.start("-j", "2", "many", "many", name, "many", stdout=subprocess.DEVNULL)
        self.open_for_reader(name)
        return process

    def test_signal_ends_the_command_with_a_thread_at_a_pipe(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number):
                process = self.start_at_a_pipe("pipe%d" % number)
                process.send_signal(number)
                self.assertEqual(-number, process.wait(TIMEOUT))
                self.close_writers()

    def test_signal_that_the_caller_ignores_stays_ignored(self):
        os.mkfifo(self.path("pipe"))
        self.write("many", MANY)
        process = self.start("-j", "2", "many", "many", "pipe", stdout=subprocess.DEVNULL,
                             preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        writer = self.open_for_reader("pipe")
        process.send_signal(signal.SIGHUP)
        os.write(writer, GOOD.encode())
        self.close_writers()
        self.assertEqual(0, process.wait(TIMEOUT))

    def test_reader_that_goes_away_ends_a_command_with_a_thread_at_a_pipe(self):
        """One thread waits at the pipe, the other has more to tell than the reader takes."""
        os.mkfifo(self.path("pipe"))
        large = self.write("large", GOOD + "-POINT -LEVEL F370\n" * 20000)
        process = self.start("-j", "2", *[large] * 8, "pipe", stdout=subprocess.PIPE)
        process.stdout.close()
        self.assertEqual(2, process.wait(TIMEOUT))

    def test_no_half_written_file_stays(self):
        self.write("large", GOOD + "-POINT -LEVEL F370\n" * 20000)
        for name in "bcdefgh":
            os.link(self.path("large"), self.path(name))
        os.mkdir(self.path("out"))
        for delay in range(0, 200, 20):
            process = self.start("-j", "2", "-o", "out", *"bcdefgh")
            time.sleep(delay / 1000)
            process.terminate()
            self.assertIn(process.wait(TIMEOUT), (0, -signal.SIGTERM))
            for name in self.files("out"):
                self.assertRegex(name, r"^[b-h]\.xml$")
                self.assertTrue(self.read("out/" + name).endswith("</ADEXP_XML>\n"))
                os.remove(self.path("out/" + name))


class Progress(ThreadsTest):
    """The line on a terminal, which appears after half a second."""

    def on_terminal(self, *arguments, terminal="xterm", end=None, message=REPORTED, **options):
        """What the command writes to a terminal while messages come for a second."""
        master, slave = pty.openpty()
        process = self.start("--lines", *arguments, stdin=subprocess.PIPE, stderr=slave,
                             env=dict(os.environ, TERM=terminal), **options)
        os.close(slave)
        for _ in range(15):
            process.stdin.write((message.strip() + "\n").encode())
            process.stdin.flush()
            time.sleep(0.07)
        if end:
            process.send_signal(end)
        process.stdin.close()
        process.wait(TIMEOUT)
        written = b""
        try:
            while True:
                written += os.read(master, 65536)
        except OSError: # the other side is closed
            pass
        os.close(master)
        return written.decode()

    def test_tells_count_and_rate_and_goes_at_the_end(self):
        for jobs in ("1", "2"):
            with self.subTest(jobs=jobs):
                shown = self.on_terminal("-j", jobs, "-q", "--no-progress", stdout=subprocess.DEVNULL)
                self.assertEqual("", shown)
                shown = self.on_terminal("-j", jobs, message=GOOD,
                                         stdout=subprocess.DEVNULL)
                self.assertRegex(shown, r"\r\d+ messages, \d+/s\x1b\[K")
                self.assertTrue(shown.endswith("\r\x1b[K"), repr(shown[-80:]))

    def test_reports_stand_on_lines_of_their_own(self):
        shown = self.on_terminal(stdout=subprocess.DEVNULL)
        erased = re.sub(r"\r[^\r]*\x1b\[K(?=\r\x1b\[K)", "", shown).replace("\r\x1b[K", "")
        self.assertEqual(['<stdin>:%d: "ignore word" "stray" ' % (number + 1) for number in range(15)],
                         erased.splitlines())

    def test_there_is_none_where_nobody_wants_it(self):
        for arguments, options in ((["--no-progress"], {}), (["-q"], {}), ([], {"terminal": "dumb"})):
            with self.subTest(arguments=arguments, options=options):
                shown = self.on_terminal(*arguments, stdout=subprocess.DEVNULL, **options)
                self.assertNotIn("messages,", shown)

    def test_signal_erases_it(self):
        for jobs in ("1", "2"):
            shown = self.on_terminal("-j", jobs, stdout=subprocess.DEVNULL, message=GOOD,
                                     end=signal.SIGTERM)
            self.assertIn(" messages, ", shown)
            self.assertTrue(shown.endswith("\r\x1b[K"), repr(shown[-80:]))

    def test_known_number_of_messages_gives_a_bar_and_the_time_left(self):
        os.mkfifo(self.path("b"))
        self.write("a", GOOD)
        master, slave = pty.openpty()
        process = self.start("a", "b", "a", "a", stderr=slave, stdout=subprocess.DEVNULL,
                             env=dict(os.environ, TERM="xterm"))
        os.close(slave)
        time.sleep(0.7)
        with open(self.path("b"), "w", encoding="utf-8") as pipe:
            pipe.write(GOOD)
        process.wait(TIMEOUT)
        shown = os.read(master, 65536).decode()
        os.close(master)
        self.assertRegex(shown, r"\r\[##########\.{10}\] 50 % 2 messages, \d/s, 0:0\d left\x1b\[K")


if __name__ == "__main__":
    main()
