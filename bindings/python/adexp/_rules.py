"""Rule sets."""
import ctypes
import os
from typing import Iterable, List, Union

from ._errors import RuleSetError
from ._library import DOCUMENT, FIELDS, FINDINGS, Handle, Options, Uncopied, load
from ._result import Finding, Result, Status

BUILT_IN_SETTINGS = ":/adexp/adexp.ini"
"""The settings of the rule set that is part of the library."""

Message = Union[str, bytes]


def _bytes_of(message: Message) -> bytes:
    # What a class derived from them says of itself may not be so: the library would read on.
    if isinstance(message, str):
        return str.encode(message, "utf-8")
    try:
        return message if type(message) is bytes else memoryview(message).tobytes()
    except TypeError:
        raise TypeError(f"a message is str or bytes, not {type(message).__name__}") from None


class RuleSet(Uncopied):
    """A rule set. It never changes, and any number of threads may use it at the same time.

    settings  path of the settings file (ini) that names the four rule files; without it the rule
              set in the library. It and the paths in it are taken from the working directory.

    Raises OSError (the library or the settings file is not there) or RuleSetError.
    """

    findings: List[Finding]
    """What is wrong with the rule set, although it is loaded."""

    def __init__(self, settings: Union[None, str, "os.PathLike[str]"] = None) -> None:
        path = os.fsencode(BUILT_IN_SETTINGS if settings is None else settings)
        if not path.startswith(b":"):
            # The library would take a file that is not there for an empty one.
            with open(os.fsdecode(path), "rb"):
                pass
        library = self._library = load()
        rules = self._rules = Handle(library.rules_release)
        status = library.rules_load(path, len(path), ctypes.byref(rules.pointer))
        if status == Status.NO_MEMORY:
            raise MemoryError
        self.findings = Result(library, rules, library.rules_view).findings
        if status != Status.OK:
            reason = ("is not an ini file" if status == Status.SETTINGS_UNREADABLE
                      else "names rule files that cannot be read")
            raise RuleSetError(f"{os.fsdecode(path)} {reason}",
                               [finding.report for finding in self.findings])

    def convert(self, message: Message, *, document: bool = True, fields: bool = True,
                findings: bool = True, max_findings: int = 0) -> Result:
        """The result of a message, whatever is wrong with it.

        message       the text, or its UTF-8 bytes (invalid ones become U+FFFD)
        document, fields, findings
                      whether the result has them; what is left out costs nothing, and is empty
        max_findings  further ones are counted only; 0: no limit

        Raises ValueError if the text holds surrogates.
        """
        return self.convert_many([message], document=document, fields=fields, findings=findings,
                                 max_findings=max_findings)[0]

    def convert_many(self, messages: Iterable[Message], *, document: bool = True,
                     fields: bool = True, findings: bool = True,
                     max_findings: int = 0) -> List[Result]:
        """The results of messages, in their order. Other threads run meanwhile. The arguments are
        those of convert()."""
        if isinstance(messages, (str, bytes)):
            raise TypeError("convert_many() takes several messages; convert() takes one")
        if not 0 <= max_findings < 1 << 32:
            raise ValueError("max_findings is not between 0 and 4294967295")
        library, rules = self._library, self._rules
        texts = [_bytes_of(message) for message in messages]
        count = len(texts)
        want = DOCUMENT * bool(document) + FIELDS * bool(fields) + FINDINGS * bool(findings)
        handles = [Handle(library.result_release, library.result_new()) for _ in texts]
        status = library.convert_many(
            rules.pointer, (ctypes.c_char_p * count)(*texts),
            (ctypes.c_size_t * count)(*map(len, texts)), count,
            ctypes.byref(Options(ctypes.sizeof(Options), want, max_findings)),
            (ctypes.c_void_p * count)(*[handle.pointer.value for handle in handles]))
        if status != Status.OK:
            raise MemoryError
        return [Result(library, handle, library.result_view) for handle in handles]
