"""Files of messages."""
import os
from typing import Dict, Iterator, List, Optional, Union

_BLOCK_SIZE = 1 << 16
_SEPARATORS: Dict[str, Optional[bytes]] = {"one": None, "lines": b"\n", "null": b"\0"}


def read(path: Union[str, "os.PathLike[str]"], split: str = "one") -> Iterator[bytes]:
    """The messages of a file, one after the other; only the one at hand is in memory.

    split  "one": all of the file is one message; "lines": each line is one; "null": each ends with
           a NUL byte. The end of the last one may be missing.
    """
    if split not in _SEPARATORS:
        raise ValueError(f'split is one of {", ".join(_SEPARATORS)}')
    return _messages(path, _SEPARATORS[split])


def _messages(path: Union[str, "os.PathLike[str]"], separator: Optional[bytes]) -> Iterator[bytes]:
    with open(path, "rb") as file:
        if separator is None:
            yield file.read()
            return
        parts: List[bytes] = []  # of the message at hand
        while block := file.read(_BLOCK_SIZE):
            first, *more = block.split(separator)
            parts.append(first)
            if more:
                yield b"".join(parts)
                yield from more[:-1]
                parts = more[-1:]
        rest = b"".join(parts)
        if rest:
            yield rest
