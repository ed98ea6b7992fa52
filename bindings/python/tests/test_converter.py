"""The module against the built library: ADEXP_LIBRARY names it, ADEXP_COMMAND the command."""
import copy
import ctypes
import gc
import itertools
import os
import pickle
import resource
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

import pytest

import adexp
from adexp import _diagnostics
from adexp._diagnostics import Collector, MessageOutput
from adexp._library import load

ROOT = Path(__file__).resolve().parents[3]
GOOD = "-TITLE RFI -ARCID OAL271 -IFPLID AA40221877"


@pytest.fixture
def converter():
    with adexp.Converter() as opened:
        yield opened


@pytest.fixture
def rules(tmp_path, monkeypatch):
    """A folder, which is the working directory, with a small rule set; its files may be replaced."""
    monkeypatch.chdir(tmp_path)
    files = {
        "simple.xml": "<a><simpleTerm name='CODE'><term>2{ALPHA}3</term></simpleTerm></a>",
        "sub.xml": "<a/>",
        "primary.xml": "<a><PrimaryField name='WHO'><term>CODE</term></PrimaryField></a>",
        "messages.xml": "<a><msgRule title='HELLO'><fields>WHO</fields></msgRule></a>",
        "set.ini": "[rules]\nsimpleTermsFile=simple.xml\nsubFieldsFile=sub.xml\n"
                   "primaryFieldsFile=primary.xml\nmsgRulesFile=messages.xml\n",
    }
    for name, content in files.items():
        (tmp_path / name).write_text(content)
    return tmp_path


# Documents

@pytest.mark.parametrize("folder", ["samples", "samples/faulty"])
def test_gives_the_documents_and_the_reports_of_the_command(converter, folder, tmp_path):
    samples = sorted((ROOT / folder).glob("*.adexp"))
    command = subprocess.run([os.environ["ADEXP_COMMAND"], "convert", "-o", tmp_path, *samples],
                             capture_output=True, check=False, encoding="utf-8")
    reports = []
    for sample in samples:
        result = tmp_path / (sample.name + ".xml")
        if result.exists():
            assert converter.convert(sample.read_bytes()) == result.read_bytes()
        else:
            with pytest.raises(adexp.NoDocumentError):
                converter.convert(sample.read_bytes())
        reports += [f"{sample}: {line} " for line in converter.diagnostics]
    assert len(samples) >= 15
    assert [line for line in command.stderr.splitlines() if "not converted" not in line] == reports


def test_takes_text_and_bytes_alike(converter):
    text = "-TITLE RFI -ARCID ÄÖ🙂"
    assert converter.convert(text) == converter.convert(text.encode())


def test_reads_a_message_beyond_a_nul(converter):
    assert b"OAL271" in converter.convert(b"-TITLE RFI \0 -ARCID OAL271")


def test_rejects_surrogates(converter):
    with pytest.raises(ValueError):
        converter.convert("-TITLE RFI \ud800")


@pytest.mark.parametrize("message", [[1, 2], 5, None])
def test_rejects_what_is_no_text(converter, message):
    with pytest.raises(TypeError):
        converter.convert(message)


@pytest.mark.parametrize("length", [0, 20, 10**6])
def test_reads_what_is_there_whatever_a_class_says(converter, length):
    class Text(str):
        def encode(self, *_):
            return Bytes(str.encode(self))

    class Bytes(bytes):
        def __len__(self):
            return length

        def __bytes__(self):
            return self

    assert converter.convert(Bytes(GOOD.encode())) == converter.convert(GOOD)
    assert converter.convert(Text(GOOD)) == converter.convert(GOOD)


def test_rejects_a_message_longer_than_the_library_counts(converter, monkeypatch):
    monkeypatch.setattr("adexp._converter._LONGEST_MESSAGE", len(GOOD) - 1)
    with pytest.raises(ValueError, match="longer than"):
        converter.convert(GOOD)


# Diagnostics

def test_diagnostics_are_those_of_the_last_message(converter):
    assert converter.diagnostics == []
    converter.convert(GOOD + " -NOTE A")
    assert converter.diagnostics == ['"rule NOTE for RFI not found"']
    converter.convert(GOOD)
    assert converter.diagnostics == []


@pytest.mark.parametrize("word", ["A\0B", "Ж", "🙂", '"'])
def test_diagnostics_hold_any_character(converter, word):
    converter.convert(f"{word} -TITLE RFI")
    assert converter.diagnostics == [f'"ignore word" "{word}"']


def test_nothing_is_written_to_standard_error(converter, capfd):
    converter.convert("X " + GOOD)
    assert capfd.readouterr().err == ""


def test_settings_for_logging_hide_no_reports():
    code = f"import adexp; c = adexp.Converter(); c.convert('X {GOOD}'); print(c.diagnostics)"
    result = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True,
                            env={**os.environ, "QT_LOGGING_RULES": "*=false"})
    assert result.stdout == "['\"ignore word\" \"X\"']\n"


def test_messages_that_the_application_has_switched_off_stay_off(converter, capfd):
    library = load()
    output = MessageOutput(library)
    output.switch((0,), False)
    try:
        converter.convert("X " + GOOD)
        assert converter.diagnostics == ['"ignore word" "X"']
        Collector(output).run(lambda: log_in_thread(library, b"other"))
        log(library, b"after")
        assert capfd.readouterr().err == ""
    finally:
        output.switch((0,), True)
    log(library, b"on again")
    assert "on again" in capfd.readouterr().err


def test_the_handler_before_is_back_after_a_call(capfd):
    library = load()
    Collector(MessageOutput(library)).run(lambda: None)
    log(library, b"after")
    assert "after" in capfd.readouterr().err


def test_messages_of_other_threads_go_to_the_handler_before(capfd):
    library = load()
    collector = Collector(MessageOutput(library))
    collector.run(lambda: [log(library, b"own"), log_in_thread(library, b"other")])
    assert collector.lines == ["own"]
    written = capfd.readouterr().err
    assert "other" in written
    assert "own" not in written


def log_in_thread(library, text):
    thread = threading.Thread(target=log, args=(library, text))
    thread.start()
    thread.join()


def log(library, text):
    """What qDebug(text) does in a C++ program."""
    context = ctypes.create_string_buffer(64)
    ctypes.c_int.from_buffer(context).value = 2  # version of the context
    library["_ZNK14QMessageLogger5debugEPKcz"](context, text)


# Signals

@pytest.fixture
def alarm():
    """Has a function called by a signal soon."""
    def set_alarm(function):
        signal.signal(signal.SIGALRM, lambda *_: function())
        signal.setitimer(signal.ITIMER_REAL, 0.05)

    before = signal.getsignal(signal.SIGALRM)
    yield set_alarm
    signal.setitimer(signal.ITIMER_REAL, 0)
    signal.signal(signal.SIGALRM, before)


# While it is converted, Python runs for its reports only.
LONG = "X " * 100_000 + GOOD


@pytest.mark.parametrize("interrupt", [KeyboardInterrupt, ZeroDivisionError])
def test_what_a_signal_handler_raises_reaches_the_caller(converter, alarm, capfd, interrupt):
    def raise_it():
        raise interrupt

    alarm(raise_it)
    with pytest.raises(interrupt):
        converter.convert(LONG)
    assert capfd.readouterr().err == ""
    assert converter.convert(GOOD)
    assert converter.diagnostics == []


@pytest.mark.parametrize("call", [lambda converter: converter.close(),
                                  lambda converter: converter.convert(GOOD)])
def test_signal_handler_cannot_use_the_converter_that_it_interrupts(converter, alarm, call):
    alarm(lambda: call(converter))
    with pytest.raises(adexp.InUseError, match="signal handler"):
        converter.convert(LONG)
    assert converter.convert(GOOD)


class Interrupt(BaseException):
    pass


@pytest.fixture
def interrupted(monkeypatch):
    """Runs a function with an interrupt at each of the points where a signal handler may run: first
    at the first one, and so on until it comes to its end. Gives way after each."""
    def run(function):
        module = str(Path(adexp.__file__).parent)
        for point in itertools.count():
            passed = 0

            def profile(frame, event, _):
                nonlocal passed
                if frame.f_code.co_filename.startswith(module) and event != "c_call":
                    passed += 1
                    if passed == point + 1:
                        sys.setprofile(None)
                        raise Interrupt

            monkeypatch.setattr(sys, "unraisablehook", lambda _: None)
            hook = sys.unraisablehook
            sys.setprofile(profile)
            try:
                function()
            except Interrupt:
                pass
            finally:
                sys.setprofile(None)
            assert sys.unraisablehook is hook
            assert Collector.current is None
            assert len(_diagnostics._replaced) == 1
            yield
            if passed <= point:
                assert point > 30
                return

    return run


def handler_of_messages():
    output = MessageOutput(load())
    handlers = []
    output.replace(None, handlers)
    output.install(handlers[0])
    return handlers[0]


def test_interrupt_at_any_point_of_a_conversion_leaves_nothing_behind(converter, interrupted):
    before = handler_of_messages()
    for _ in interrupted(lambda: converter.convert("X " + GOOD)):
        assert handler_of_messages() == before
        converter.convert("Y " + GOOD)
        assert converter.diagnostics == ['"ignore word" "Y"']


def test_interrupt_at_any_point_of_a_life_leaves_the_library_free(interrupted):
    def live():
        with adexp.Converter() as converter:
            converter.convert(GOOD)

    before = handler_of_messages()
    for _ in interrupted(live):
        assert handler_of_messages() == before
        with adexp.Converter() as second:
            assert second.convert(GOOD)


def test_interrupt_of_the_closing_of_a_dropped_converter_leaves_the_library_free(interrupted):
    def drop():
        adexp.Converter()

    for _ in interrupted(drop):
        adexp.Converter().close()


def test_interrupt_behind_the_clearing_leaves_the_library_free(converter, monkeypatch):
    def clear():
        load().clear_adexp()
        raise Interrupt

    with monkeypatch.context() as patch:
        patch.setattr(converter._library, "clear_adexp", clear)
        with pytest.raises(Interrupt):
            converter.close()
    adexp.Converter().close()


def test_signal_handler_in_the_midst_of_closing_finds_it_closed(converter, monkeypatch):
    def clear():
        cleared.append(True)
        converter.close()
        errors.append(call_error(adexp.Converter))
        real()

    cleared = []
    errors = []
    real = converter._library.clear_adexp
    monkeypatch.setattr(converter._library, "clear_adexp", clear)
    converter.close()
    assert cleared == [True]
    assert errors == ["InUseError"]


def test_interrupt_while_the_library_converts_loses_no_document(converter, alarm, monkeypatch):
    def interrupt():
        raise Interrupt

    freed = []
    real = converter._library.free_adexp
    monkeypatch.setattr(converter._library, "free_adexp",
                        lambda document: (freed.append(document), real(document)))
    # Python does not run before it is converted: nothing is reported.
    message = (GOOD + " " * 10**8).encode()
    alarm(interrupt)
    with pytest.raises(Interrupt):
        converter.convert(message)
    assert len(freed) == 1


def test_other_errors_that_nobody_can_catch_go_where_they_went(monkeypatch):
    class Failing:
        def __del__(self):
            raise ValueError("lost")

    @ctypes.CFUNCTYPE(None)
    def fail():
        raise IndexError("lost")

    def hook(unraisable):
        seen.append(unraisable.exc_type)

    def fail_twice():
        Failing()
        other = threading.Thread(target=fail)
        other.start()
        other.join()

    seen = []
    monkeypatch.setattr(sys, "unraisablehook", hook)
    Collector(MessageOutput(load())).run(fail_twice)
    assert seen == [ValueError, IndexError]
    assert sys.unraisablehook is hook


# Processes

def in_child(function):
    """What a function prints in a child process. It is killed if it does not come to an end."""
    reading, writing = os.pipe()
    child = os.fork()
    if child == 0:
        signal.alarm(10)
        try:
            os.write(writing, repr(function()).encode())
        finally:
            os._exit(0)
    os.close(writing)
    with os.fdopen(reading) as result:
        text = result.read()
    os.waitpid(child, 0)
    return text


def test_child_process_converts_while_another_thread_of_its_parent_does(converter):
    expected = converter.convert(GOOD)
    thread = threading.Thread(target=converter.convert, args=(LONG,))
    hook = sys.unraisablehook
    before = handler_of_messages()
    thread.start()
    while sys.unraisablehook is hook:
        time.sleep(0.001)
    child = in_child(lambda: (converter.convert(GOOD), handler_of_messages() == before,
                              sys.unraisablehook is hook))
    assert thread.is_alive()
    thread.join()
    assert child == repr((expected, True, True))


def test_signal_handler_may_start_a_process(converter, alarm):
    def fork():
        children.append(in_child(lambda: call_error(converter.close)))

    children = []
    alarm(fork)
    converter.convert(LONG)
    assert children == ["'InUseError'"]


def test_child_process_of_a_thread_that_is_closing_cannot_use_the_library(converter, monkeypatch):
    def clear():
        clearing.set()
        done.wait()
        real()

    clearing = threading.Event()
    done = threading.Event()
    real = converter._library.clear_adexp
    monkeypatch.setattr(converter._library, "clear_adexp", clear)
    thread = threading.Thread(target=converter.close)
    thread.start()
    clearing.wait()
    child = in_child(lambda: (call_error(converter.close), call_error(adexp.Converter)))
    done.set()
    thread.join()
    assert child == "(None, 'InUseError')"


def call_error(function):
    try:
        function()
    except Exception as error:
        return type(error).__name__
    return None


# Rule sets

def test_takes_a_rule_set_of_files(rules):
    with adexp.Converter(rules / "set.ini") as converter:
        assert b"<WHO valid=\"true\"" in converter.convert("-TITLE HELLO -WHO ABC")


def test_reports_about_a_rule_set_are_there_after_loading(rules):
    (rules / "simple.xml").write_text("<a><wrong/></a>")
    with adexp.Converter("set.ini") as converter:
        assert any("bad tag name wrong" in line for line in converter.diagnostics)


def test_rule_file_that_cannot_be_read_is_an_error_with_reports(rules):
    (rules / "sub.xml").unlink()
    with pytest.raises(adexp.RuleSetError, match="can not open file sub.xml") as caught:
        adexp.Converter("set.ini")
    assert len(caught.value.diagnostics) == 2


def test_settings_that_are_no_ini_file_are_an_error(rules):
    (rules / "set.ini").write_text("[rules\n")
    with pytest.raises(adexp.RuleSetError, match="not an ini file"):
        adexp.Converter("set.ini")


@pytest.mark.parametrize("path, error", [("no.ini", FileNotFoundError), (".", IsADirectoryError)])
def test_settings_that_cannot_be_opened_are_an_error_of_the_system(rules, path, error):
    with pytest.raises(error):
        adexp.Converter(path)


def test_after_a_failure_another_rule_set_can_be_loaded(rules):
    (rules / "sub.xml").unlink()
    with pytest.raises(adexp.RuleSetError):
        adexp.Converter("set.ini")
    with adexp.Converter() as converter:
        assert converter.convert(GOOD)


# Life

def test_closed_converter_converts_no_more():
    converter = adexp.Converter()
    converter.close()
    converter.close()
    with pytest.raises(ValueError, match="closed"):
        converter.convert(GOOD)


def test_second_converter_is_refused_until_the_first_is_closed(converter):
    with pytest.raises(adexp.InUseError):
        adexp.Converter()
    assert converter.convert(GOOD)
    converter.close()
    with adexp.Converter() as second:
        assert second.convert(GOOD)


def test_converter_that_is_dropped_is_closed():
    adexp.Converter().convert(GOOD)
    with adexp.Converter() as second:
        assert second.convert(GOOD)


@pytest.mark.parametrize("duplicate", [copy.copy, copy.deepcopy, pickle.dumps])
def test_converter_cannot_be_copied(converter, duplicate):
    with pytest.raises(TypeError, match="neither copied nor pickled"):
        duplicate(converter)
    assert converter.convert(GOOD)


def test_converter_is_made_once(converter):
    with pytest.raises(RuntimeError, match="made already"):
        converter.__init__()
    assert converter.convert(GOOD)


def test_converter_that_was_never_made_is_dropped_in_silence(monkeypatch):
    errors = []
    monkeypatch.setattr(sys, "unraisablehook", errors.append)
    with pytest.raises(TypeError):
        adexp.Converter(foo=1)
    with pytest.raises(FileNotFoundError):
        adexp.Converter("no.ini")
    gc.collect()
    assert errors == []


def test_converter_in_a_cycle_is_closed_when_it_is_collected():
    converter = adexp.Converter()
    converter.itself = converter
    del converter
    gc.collect()
    assert adexp.Converter._claims == {}


def test_without_a_document_it_goes_on(converter):
    with pytest.raises(adexp.NoDocumentError) as caught:
        converter.convert("nothing")
    assert caught.value.diagnostics[-1] == '"begin message (-TITLE) not found"'
    assert converter.convert(GOOD)


def test_threads_take_turns(converter):
    messages = [f"-TITLE RFI -ARCID OAL{number}" for number in range(200)]
    expected = [converter.convert(message) for message in messages]
    results = {}

    def convert_all(name):
        results[name] = [converter.convert(message) for message in messages]

    threads = [threading.Thread(target=convert_all, args=(name,)) for name in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert list(results.values()) == [expected] * 4


def test_threads_are_never_in_the_library_at_once(converter, monkeypatch):
    inside = []
    highest = []
    real = converter._convert

    def convert(data):
        inside.append(data)
        time.sleep(0.01)
        highest.append(len(inside))
        inside.pop()
        return real(data)

    monkeypatch.setattr(converter, "_convert", convert)
    threads = [threading.Thread(target=converter.convert, args=(GOOD,)) for _ in range(5)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert highest == [1] * 5


def test_documents_are_given_back_to_the_library(converter):
    message = GOOD + " X" * 500_000
    converter.convert(message)
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    for _ in range(50):
        converter.convert(message)
    # Each document has a megabyte.
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 10_000  # KiB


def test_missing_library_is_explained():
    environment = {**os.environ, "ADEXP_LIBRARY": "/no/such/libadexp.so"}
    result = subprocess.run([sys.executable, "-c", "import adexp; adexp.Converter()"],
                            env=environment, capture_output=True, text=True, check=False)
    assert result.returncode == 1
    assert "OSError: libadexp cannot be loaded" in result.stderr
    assert "ADEXP_LIBRARY" in result.stderr
