"""The converter of version 1.0, which is kept."""
import copy
import os
import pickle
import signal
import subprocess
import sys
import threading

import pytest

import adexp

GOOD = "-TITLE RFI -ARCID OAL271 -IFPLID AA40221877"


@pytest.fixture(scope="module")
def converter():
    with adexp.Converter() as opened:
        yield opened


# Documents

def test_gives_the_documents_and_the_reports_of_the_command(converter, samples, tmp_path):
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
    assert reports
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


def test_rejects_a_message_of_2_gib(converter):
    error = error_of(converter, bytes(2**31))
    assert error is ValueError
    assert converter.convert(GOOD)


def error_of(converter, message):
    # pytest would show the message, of 2 GiB, if there is another error.
    try:
        converter.convert(message)
    except Exception as error:
        return type(error)
    return None


# Diagnostics

def test_diagnostics_are_those_of_the_last_message(converter):
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


def test_reports_about_a_rule_set_are_there_after_loading(rule_files):
    (rule_files / "simple.xml").write_text("<a><wrong/></a>")
    with adexp.Converter("set.ini") as converter:
        assert converter.diagnostics == lines_of_the_library("set.ini")
    assert any("bad tag name wrong" in line for line in converter.diagnostics)


def lines_of_the_library(settings):
    """What init_adexp() writes, in a process of its own."""
    code = ("import ctypes, os, sys; path = sys.argv[1].encode();"
            "ctypes.CDLL(os.environ['ADEXP_LIBRARY']).init_adexp(path, len(path))")
    result = subprocess.run([sys.executable, "-c", code, settings], capture_output=True, text=True,
                            check=True)
    return [line.rstrip(" ") for line in result.stderr.splitlines()]


# Rule sets

def test_takes_a_rule_set_of_files(rule_files):
    with adexp.Converter(rule_files / "set.ini") as converter:
        assert b"<WHO valid=\"true\"" in converter.convert("-TITLE HELLO -WHO ABC")


def test_rule_file_that_cannot_be_read_is_an_error_with_reports(rule_files):
    (rule_files / "sub.xml").unlink()
    with pytest.raises(adexp.RuleSetError, match="can not open file sub.xml") as caught:
        adexp.Converter("set.ini")
    assert len(caught.value.diagnostics) == 2


# Life

def test_closed_converter_converts_no_more():
    converter = adexp.Converter()
    converter.close()
    converter.close()
    with pytest.raises(ValueError, match="closed"):
        converter.convert(GOOD)


def test_there_may_be_several_converters(converter, rule_files):
    with adexp.Converter("set.ini") as second:
        assert b"HELLO" in second.convert("-TITLE HELLO -WHO ABC")
        assert converter.convert(GOOD)
    assert converter.convert(GOOD)


@pytest.mark.parametrize("duplicate", [copy.copy, copy.deepcopy, pickle.dumps])
def test_converter_cannot_be_copied(converter, duplicate):
    with pytest.raises(TypeError, match="neither copied nor pickled"):
        duplicate(converter)
    assert converter.convert(GOOD)


def test_without_a_document_it_goes_on(converter):
    with pytest.raises(adexp.NoDocumentError) as caught:
        converter.convert("nothing")
    assert caught.value.diagnostics[-1] == '"begin message (-TITLE) not found"'
    assert converter.convert(GOOD)


def test_closing_in_another_thread_does_not_disturb_a_conversion():
    converter = adexp.Converter()
    results = []
    thread = threading.Thread(target=lambda: results.append(converter.convert("X " * 5000 + GOOD)))
    thread.start()
    converter.close()
    thread.join()
    assert results and b"OAL271" in results[0]


def test_signal_handler_may_use_the_converter_that_it_interrupts(converter):
    documents = []
    before = signal.signal(signal.SIGALRM, lambda *_: documents.append(converter.convert(GOOD)))
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.01)
        while not documents:
            converter.convert("X " * 1000 + GOOD)
    finally:
        signal.signal(signal.SIGALRM, before)
    assert documents == [converter.convert(GOOD)]
