"""What the tests of the module share. ADEXP_LIBRARY names the library, ADEXP_COMMAND the command."""
from pathlib import Path

import pytest

import adexp


@pytest.fixture(scope="session")
def samples():
    """The messages of the folder of samples, the faulty ones last."""
    folder = Path(__file__).resolve().parents[3] / "samples"
    found = sorted(folder.glob("*.adexp")) + sorted(folder.glob("faulty/*.adexp"))
    assert len(found) >= 30
    return found


@pytest.fixture(scope="session")
def built_in():
    return adexp.RuleSet()


@pytest.fixture
def rule_files(tmp_path, monkeypatch):
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
