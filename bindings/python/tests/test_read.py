"""Files of messages."""
import pytest

import adexp
from adexp import _read


@pytest.fixture(params=[1, 3, 1 << 16])
def block_size(request, monkeypatch):
    monkeypatch.setattr(_read, "_BLOCK_SIZE", request.param)


@pytest.mark.usefixtures("block_size")
@pytest.mark.parametrize("split, content, messages", [
    ("one", b"A\nB\0", [b"A\nB\0"]),
    ("one", b"", [b""]),
    ("lines", b"ABCD\nE\n", [b"ABCD", b"E"]),
    ("lines", b"ABCD\n\nE\0F", [b"ABCD", b"", b"E\0F"]),
    ("null", b"A\nB\0CDEF\0", [b"A\nB", b"CDEF"]),
    ("null", b"\0A", [b"", b"A"]),
    ("null", b"", []),
])
def test_messages_of_a_file(tmp_path, split, content, messages):
    (tmp_path / "file").write_bytes(content)
    assert list(adexp.read(tmp_path / "file", split=split)) == messages


def test_a_file_is_one_message_unless_told_otherwise(tmp_path):
    (tmp_path / "file").write_bytes(b"A\n\0B")
    assert list(adexp.read(str(tmp_path / "file"))) == [b"A\n\0B"]


def test_another_way_to_split_is_refused_at_once():
    with pytest.raises(ValueError, match="one, lines, null"):
        adexp.read("file", split="words")


def test_file_that_is_not_there_is_an_error_of_the_system(tmp_path):
    with pytest.raises(FileNotFoundError):
        list(adexp.read(tmp_path / "none"))
