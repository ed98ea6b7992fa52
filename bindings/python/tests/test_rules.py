"""Rule sets and results."""
import copy
import gc
import os
import pickle
import resource
import signal
import subprocess
import sys
import threading
import xml.etree.ElementTree as ElementTree

import pytest

import adexp
from adexp._library import load

GOOD = "-TITLE RFI -ARCID OAL271 -IFPLID AA40221877"
ROUTE = ("-TITLE IFPL -ARCID EIN604 -NOSUCH X\r\n-BEGIN RTEPTS -PT -PTID BEPAN -FL F350 "
         "-PT -PTID LIFFY -END RTEPTS -ADEP ?")


# Results

def test_result_of_a_message(built_in):
    result = built_in.convert(GOOD)
    assert result.status == adexp.Status.OK
    assert result.title == "RFI"
    assert b"<ARCID valid=\"true\"" in result.document
    assert result.findings == []
    assert [(field.name, field.data) for field in result.fields] == [
        ("ARCID", "OAL271"), ("IFPLID", "AA40221877")]


def test_fields_are_found_by_name_at_any_depth(built_in):
    result = built_in.convert(ROUTE)
    assert result["ARCID"].data == "EIN604"
    assert str(result["PTID"]) == "BEPAN"
    assert [item["PTID"].data for item in result["RTEPTS"]] == ["BEPAN", "LIFFY"]
    assert [("FL" in item) for item in result["RTEPTS"].items] == [True, False]
    assert list(result["ARCID"]) == []
    assert result.get("ADES") is None
    with pytest.raises(KeyError, match="ADES"):
        result["ADES"]


def test_result_is_gone_through_field_by_field_and_shown_in_short(built_in):
    result = built_in.convert(GOOD)
    assert [f"{field.name:>8}={field:<7}|" for field in result] == [
        "   ARCID=OAL271 |", "  IFPLID=AA40221877|"]
    assert repr(result) == "<Result OK of 'RFI'>"


def test_field_tells_what_it_is_and_where(built_in):
    result = built_in.convert(ROUTE)
    assert result["RTEPTS"].is_list and not result["ARCID"].is_list
    assert result["ARCID"].known and not result["NOSUCH"].known
    second = result["RTEPTS"].fields[1]
    assert (second.name, second.item, second.line, second.column) == ("PT", 2, 2, 40)
    arcid = result["ARCID"]
    assert ROUTE.encode()[arcid.byte_begin:arcid.byte_end].strip() == b"-ARCID EIN604"
    assert ROUTE[arcid.begin:arcid.end].strip() == "-ARCID EIN604"


def test_fields_are_those_of_the_document(built_in, samples):
    def tree_of(element):
        children = []
        for child in element:
            children += list(child) if child.tag == "item" else [child]
        return (element.tag, element.get("valid"), element.get("field_begin"),
                element.get("field_end"), [tree_of(child) for child in children])

    def tree(field):
        return (field.name, str(field.known).lower(), str(field.begin), str(field.end),
                [tree(child) for child in field.fields if child.name])

    compared = 0
    for sample in samples:
        result = built_in.convert(sample.read_bytes())
        if result.document is not None:
            root = ElementTree.fromstring(result.document)[0]
            assert [tree(field) for field in result.fields if field.name] == [
                tree_of(child) for child in root], sample
            compared += 1
    assert compared > 30


def test_finding_tells_what_is_wrong_and_where(built_in):
    finding, _ = findings = built_in.convert(ROUTE).findings
    assert [found.code for found in findings] == ["unknown-field", "incorrect-data"]
    assert finding.severity == adexp.Severity.ERROR
    assert (finding.text, finding.detail) == ("rule NOSUCH for IFPL not found", "")
    assert finding.report == '"rule NOSUCH for IFPL not found"'
    assert (finding.line, finding.column, finding.begin) == (1, 27, 26)
    assert (finding.path, finding.field.name) == ("NOSUCH", "NOSUCH")


@pytest.mark.parametrize("message, status, title", [
    ("nothing", adexp.Status.NO_TITLE, ""),
    ("-TITLE NOSUCH -ARCID A", adexp.Status.NO_RULE, "NOSUCH"),
])
def test_without_a_document_the_status_tells_why(built_in, message, status, title):
    result = built_in.convert(message)
    assert (result.status, result.title) == (status, title)
    assert (result.document, result.fields) == (None, ())


def test_message_of_2_gib_is_too_large(built_in):
    result = built_in.convert(bytes(2**31))
    assert result.status == adexp.Status.TOO_LARGE
    assert (result.document, result.title, result.fields, result.findings) == (None, "", (), [])


def test_what_is_not_asked_for_is_not_there(built_in):
    message = "X Y " + GOOD
    assert built_in.convert(message, document=False).document is None
    assert built_in.convert(message, document=False).status == adexp.Status.OK
    assert built_in.convert(message, fields=False).fields == ()
    assert built_in.convert(message, fields=False).findings[0].field is None
    assert built_in.convert(message, findings=False).findings == []
    result = built_in.convert(message, max_findings=1)
    assert (len(result.findings), result.findings_left_out) == (1, 1)


@pytest.mark.parametrize("most", [-1, 1 << 32])
def test_number_of_findings_that_is_none_is_refused(built_in, most):
    with pytest.raises(ValueError, match="max_findings"):
        built_in.convert(GOOD, max_findings=most)


@pytest.mark.parametrize("message", [None, 5, ["-TITLE"]])
def test_message_of_another_type_is_refused(built_in, message):
    with pytest.raises(TypeError, match=f"a message is str or bytes, not {type(message).__name__}"):
        built_in.convert(message)


def test_result_outlives_its_rule_set_and_its_message(rule_files):
    result = adexp.RuleSet("set.ini").convert("-TITLE HELLO -WHO ABC")
    gc.collect()
    assert result["WHO"].data == "ABC"
    assert b"ABC" in result.document


def test_fields_and_findings_outlive_their_result_and_can_be_pickled(built_in):
    result = built_in.convert(ROUTE)
    field, findings = result["RTEPTS"], result.findings
    del result
    assert pickle.loads(pickle.dumps((field, findings))) == (field, findings)


@pytest.mark.parametrize("duplicate", [copy.copy, copy.deepcopy, pickle.dumps])
def test_rule_sets_and_results_cannot_be_copied(built_in, duplicate):
    for value in (built_in, built_in.convert(GOOD)):
        with pytest.raises(TypeError, match="neither copied nor pickled"):
            duplicate(value)


# Many messages

def test_many_messages_give_what_each_gives(built_in, samples):
    messages = [sample.read_bytes() for sample in samples]
    for message, result in zip(messages, built_in.convert_many(messages)):
        alone = built_in.convert(message)
        assert result.document == alone.document
        assert result.findings == alone.findings
        assert result.fields == alone.fields


def test_many_messages_may_be_none_or_come_from_anywhere(built_in):
    assert built_in.convert_many([]) == []
    titles = [result.title for result in built_in.convert_many(GOOD for _ in range(3))]
    assert titles == ["RFI"] * 3


@pytest.mark.parametrize("messages", [GOOD, GOOD.encode(), 5, [5], None])
def test_many_messages_are_no_single_one(built_in, messages):
    with pytest.raises(TypeError):
        built_in.convert_many(messages)


def test_other_threads_run_during_a_conversion(built_in):
    def run():
        begun.wait()
        ran.append(True)

    begun, ran = threading.Event(), []
    thread = threading.Thread(target=run)
    thread.start()
    before = sys.getswitchinterval()
    sys.setswitchinterval(1000)  # a thread gives way only when it lets go of the lock
    try:
        begun.set()
        built_in.convert_many(["X " * 100_000 + GOOD], fields=False)
        assert ran
    finally:
        sys.setswitchinterval(before)
        thread.join()


def test_threads_with_two_rule_sets_convert_at_the_same_time(built_in, rule_files, samples):
    messages = [sample.read_bytes() for sample in samples] + [b"-TITLE HELLO -WHO ABC"]
    sets = [built_in, adexp.RuleSet("set.ini")]
    expected = [[rules.convert(message).document for message in messages] for rules in sets]
    wrong = []

    def convert(rules, documents):
        for _ in range(3):
            found = [result.document for result in rules.convert_many(messages)]
            if found != documents:
                wrong.append(found)

    threads = [threading.Thread(target=convert, args=pair) for pair in [*zip(sets, expected)] * 2]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert wrong == []


# Rule sets

def test_finding_of_a_rule_set_names_its_place(rule_files):
    (rule_files / "primary.xml").write_text(
        "<a>\n<PrimaryField name='WHO'><term>NOSUCH</term></PrimaryField></a>")
    findings = adexp.RuleSet("set.ini").findings
    finding = next(found for found in findings if found.code == "unknown-name")
    assert (finding.file, finding.path, finding.line) == ("primary.xml", "WHO", 2)


def test_settings_that_are_no_ini_file_are_an_error_each_time(rule_files):
    (rule_files / "set.ini").write_text("[rules\n")
    for _ in range(2):
        with pytest.raises(adexp.RuleSetError, match="not an ini file"):
            adexp.RuleSet("set.ini")


@pytest.mark.parametrize("path, error", [("no.ini", FileNotFoundError), (".", IsADirectoryError)])
def test_settings_that_cannot_be_opened_are_an_error_of_the_system(rule_files, path, error):
    with pytest.raises(error):
        adexp.RuleSet(path)


def test_rule_set_that_was_never_made_is_dropped_in_silence(monkeypatch):
    errors = []
    monkeypatch.setattr(sys, "unraisablehook", errors.append)
    with pytest.raises(TypeError):
        adexp.RuleSet(foo=1)
    with pytest.raises(FileNotFoundError):
        adexp.RuleSet("no.ini")
    gc.collect()
    assert errors == []


# Memory

def test_no_memory_is_a_memory_error(built_in, monkeypatch):
    monkeypatch.setattr(load(), "result_new", lambda: None)
    with pytest.raises(MemoryError):
        built_in.convert(GOOD)


def test_results_are_given_back_to_the_library(built_in):
    message = GOOD + " X" * 500_000
    built_in.convert(message)
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    for _ in range(20):
        built_in.convert(message, fields=False, findings=False)
    # Each document has a megabyte.
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 10_000  # KiB


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


def test_child_process_converts_while_another_thread_of_its_parent_does(built_in):
    result = built_in.convert(GOOD)
    done = threading.Event()

    def convert():
        while not done.is_set():
            built_in.convert_many(["X " * 10_000 + GOOD] * 3)[0].findings

    thread = threading.Thread(target=convert)
    thread.start()
    try:
        for _ in range(5):
            child = in_child(lambda: (result.title, built_in.convert(GOOD).document))
            assert child == repr(("RFI", built_in.convert(GOOD).document))
    finally:
        done.set()
        thread.join()


def test_interrupt_is_raised_when_the_message_is_converted(built_in):
    before = signal.signal(signal.SIGALRM, signal.default_int_handler)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.01)
        with pytest.raises(KeyboardInterrupt):
            while True:
                built_in.convert("X " * 100_000 + GOOD)
    finally:
        signal.signal(signal.SIGALRM, before)
    assert built_in.convert(GOOD).document


@pytest.mark.parametrize("end", ["", "sys.exit(3)", "import threading; threading.Thread("
                                 "target=lambda: [r.convert('-TITLE RFI') for _ in range(99)]).start()"])
def test_process_ends_in_silence_whatever_is_left(end):
    code = (f"import adexp, sys; r = adexp.RuleSet(); result = r.convert('{GOOD}');"
            f"r.itself = r; c = adexp.Converter(); result.title; {end}")
    result = subprocess.run([sys.executable, "-c", code], capture_output=True, check=False)
    assert (result.returncode, result.stderr) == (3 if "3" in end else 0, b"")


@pytest.mark.parametrize("library, reason", [("/no/such/libadexp.so", "libadexp cannot be loaded"),
                                             ("libc.so.6", "older than this module")])
def test_missing_library_is_explained(library, reason):
    result = subprocess.run([sys.executable, "-c", "import adexp; adexp.RuleSet()"],
                            env={**os.environ, "ADEXP_LIBRARY": library}, capture_output=True,
                            text=True, check=False)
    assert result.returncode == 1
    assert f"OSError: {library}" in result.stderr or "ADEXP_LIBRARY" in result.stderr
    assert reason in result.stderr
