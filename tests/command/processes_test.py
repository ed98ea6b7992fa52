"""Tests of "adexp convert -j": several processes, how they end, and the progress on a terminal."""

import errno
import os
import pty
import re
import resource
import signal
import subprocess
import time

from commandtest import GOOD, NO_RULE, REPORTED, TIMEOUT, CommandTest, main


def children(pid):
    with open("/proc/%d/task/%d/children" % (pid, pid), encoding="ascii") as file:
        return [int(child) for child in file.read().split()]


def is_alive(pid):
    """A process that nobody has waited for yet (state Z) has ended."""
    try:
        with open("/proc/%d/stat" % pid, encoding="ascii", errors="replace") as file:
            return file.read().rsplit(")", 1)[1].split()[0] != "Z"
    except (FileNotFoundError, ProcessLookupError): # the latter between opening and reading
        return False


def has_open(pid, path):
    try:
        folder = "/proc/%d/fd" % pid
        return path in [os.readlink(os.path.join(folder, fd)) for fd in os.listdir(folder)]
    except OSError: # a descriptor or the process has gone meanwhile
        return False


class ProcessesTest(CommandTest):

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

    def reader_of(self, process, name):
        """The process that reads a named pipe which is open for writing."""
        path = os.path.realpath(self.path(name))
        readers = lambda: [pid for pid in children(process.pid)
                           if is_alive(pid) and has_open(pid, path)]
        self.wait_for(readers)
        return readers()[0]

    def setUp(self):
        super().setUp()
        self.writers = []
        self.addCleanup(self.close_writers)

    def close_writers(self):
        while self.writers:
            os.close(self.writers.pop())


class Order(ProcessesTest):

    def test_same_bytes_for_every_number_of_processes(self):
        texts = [GOOD, REPORTED, NO_RULE, "", GOOD + "-POINT -LEVEL F370\n" * 3000]
        for number in range(300):
            self.write("in/%03d" % number, texts[number % 7 % 5])
        self.write("archive", "".join(texts[number % 7 % 5].replace("\n", " ") + "\n"
                                      for number in range(300)))
        for arguments in (["-r", "in"], ["--lines", "archive"], ["-r", "-0", "in"],
                          ["-r", "--summary", "in"], ["-r", "--format", "json", "in"]):
            one = self.convert(*arguments)
            self.assertEqual(2, one.returncode)
            for jobs in ("2", "5", "0"):
                with self.subTest(arguments=arguments, jobs=jobs):
                    several = self.convert("-j", jobs, *arguments)
                    self.assertEqual((one.returncode, one.stderr), (several.returncode,
                                                                    several.stderr))
                    self.assertEqual(one.stdout, several.stdout)

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

    def test_number_out_of_range_is_a_wrong_argument(self):
        for number in ("-1", "257", "x"):
            self.assert_ends(self.convert("-j", number), 64, "--jobs")

    def test_small_stack_suffices(self):
        limit = lambda: resource.setrlimit(resource.RLIMIT_STACK, (256 * 1024, 256 * 1024))
        result = self.convert("-j", "2", stdin=GOOD, preexec_fn=limit)
        self.assert_ends(result, 0)
        self.assertEqual(self.convert(stdin=GOOD).stdout, result.stdout)

    def test_process_that_cannot_be_started_is_told(self):
        """There is one descriptor too few for the pipes of all."""
        limit = lambda: resource.setrlimit(resource.RLIMIT_NOFILE, (20, 20))
        self.assert_ends(self.convert("-j", "20", stdin=GOOD, preexec_fn=limit), 2,
                         "adexp: cannot start a process: Too many open files; what is missing was "
                         "not converted, give a smaller -j")


class Death(ProcessesTest):

    def setUp(self):
        super().setUp()
        for name in "ac":
            self.write(name, GOOD)
        os.mkfifo(self.path("b"))

    def kill_reader(self, process, pid):
        """Kills the process at the pipe; the result is the one that then takes its place."""
        os.kill(pid, signal.SIGKILL)
        self.wait_for(lambda: not is_alive(pid))
        return self.reader_of(process, "b")

    def test_message_whose_process_dies_twice_is_told_and_the_others_go_on(self):
        process = self.start("-j", "2", "-q", "a", "b", "c", stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE)
        self.open_for_reader("b")
        os.kill(self.kill_reader(process, self.reader_of(process, "b")), signal.SIGKILL)
        out, err = process.communicate(timeout=TIMEOUT)
        self.assertEqual(b"b: not converted: the process that converted it ended by signal 9 "
                         b"(Killed), twice; report it to us with the message, or give it more "
                         b"memory\n", err)
        self.assertEqual((2, 2), (process.returncode, out.count(b"<ADEXP_XML ")))

    def test_message_whose_process_dies_once_is_tried_again(self):
        process = self.start("-j", "2", "a", "b", "c", stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE)
        writer = self.open_for_reader("b")
        self.kill_reader(process, self.reader_of(process, "b"))
        os.write(writer, GOOD.encode())
        self.close_writers()
        out, err = process.communicate(timeout=TIMEOUT)
        self.assertEqual((0, b"", 3), (process.returncode, err, out.count(b"<ADEXP_XML ")))

    def test_process_without_work_that_dies_is_replaced(self):
        process = self.start("-j", "2", "-0", stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.wait_for(lambda: len(children(process.pid)) == 2)
        for pid in children(process.pid):
            os.kill(pid, signal.SIGKILL)
        out, _ = process.communicate((GOOD + "\0").encode(), timeout=TIMEOUT)
        self.assertEqual((0, 1), (process.returncode, out.count(b"<ADEXP_XML ")))


class Signals(ProcessesTest):

    def test_signal_ends_all_processes(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number):
                process, workers = self.start_at_a_pipe("pipe%d" % number)
                process.send_signal(number)
                self.assertEqual(-number, process.wait(TIMEOUT))
                # Not only soon: nobody shall see a document appear behind the end.
                self.assertEqual([], [pid for pid in workers if is_alive(pid)])
                self.close_writers()

    def test_killed_command_leaves_no_processes(self):
        process, workers = self.start_at_a_pipe("pipe")
        process.kill()
        process.wait()
        self.wait_for(lambda: not any(map(is_alive, workers)))

    def test_signal_that_the_caller_ignores_stays_ignored(self):
        os.mkfifo(self.path("pipe"))
        process = self.start("-j", "2", "pipe", stdout=subprocess.PIPE,
                             preexec_fn=lambda: signal.signal(signal.SIGHUP, signal.SIG_IGN))
        self.wait_for(lambda: len(children(process.pid)) == 2)
        process.send_signal(signal.SIGHUP)
        with open(self.path("pipe"), "w", encoding="utf-8") as pipe:
            pipe.write(GOOD)
        process.communicate(timeout=TIMEOUT)
        self.assertEqual(0, process.returncode)

    def start_at_a_pipe(self, name):
        os.mkfifo(self.path(name))
        process = self.start("-j", "2", name)
        self.open_for_reader(name)
        return process, children(process.pid)

    def test_reader_that_goes_away_ends_processes_that_wait(self):
        """One process waits at the pipe, the other has more to tell than its pipe takes."""
        os.mkfifo(self.path("pipe"))
        large = self.write("large", GOOD + "-POINT -LEVEL F370\n" * 20000)
        process = self.start("-j", "2", *[large] * 8, "pipe", stdout=subprocess.PIPE)
        self.open_for_reader("pipe")
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


class Progress(ProcessesTest):
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
