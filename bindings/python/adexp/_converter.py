"""The converter."""
import ctypes
import os
import threading
import weakref
from types import TracebackType
from typing import Any, ClassVar, Dict, List, NoReturn, Optional, Type, Union

from ._diagnostics import Collector, MessageOutput
from ._errors import InUseError, NoDocumentError, RuleSetError
from ._library import load

BUILT_IN_SETTINGS = ":/adexp/adexp.ini"
"""The settings of the rule set that is part of the library."""

# A longer text would be read up to its first NUL only.
_LONGEST_MESSAGE = 2**31 - 1

_LIBRARY = "libadexp"  # the only key of Converter._claims


def _bytes_of(message: Union[str, bytes]) -> bytes:
    # What a class derived from them says of itself may not be so: the library would read on.
    if isinstance(message, str):
        return str.encode(message, "utf-8")
    return message if type(message) is bytes else memoryview(message).tobytes()


class Converter:
    """Converts messages by a rule set; a context manager.

    settings  path of the settings file (ini) that names the four rule files; without it the rule
              set in the library. It and the paths in it are taken from the working directory.

    There is at most one converter in a process at a time. It may be used from several threads: their
    calls wait for each other.

    Raises InUseError, OSError (the library or the settings file is not there) or RuleSetError.
    """

    diagnostics: List[str]
    """The lines reported about the last message, or after __init__ about the rule set, oldest
    first."""

    # A signal handler may call into the midst of a call of its own thread, and is told so.
    _calls: ClassVar[threading.RLock] = threading.RLock()
    # The converter that has the library. If it was dropped and a signal handler kept it from being
    # closed, the library is free.
    _claims: ClassVar[Dict[str, "weakref.ref[Any]"]] = {}
    _claim: Optional["weakref.ref[Converter]"] = None

    def __init__(self, settings: Union[str, "os.PathLike[str]"] = BUILT_IN_SETTINGS) -> None:
        if self._claim is not None:
            raise RuntimeError("the converter is made already")
        path = os.fsencode(settings)
        if not path.startswith(b":"):
            # The library would take a file that is not there for an empty one.
            with open(path, "rb"):
                pass
        self._library = load()
        self._output = MessageOutput(self._library)
        self._busy_thread: Optional[int] = threading.get_ident()
        self._is_open = False
        self._claim = weakref.ref(self)
        try:
            self._claim_library(self._claim)
            self._load(path)
        except BaseException:
            self._busy_thread = None
            self.close()
            raise
        self._busy_thread = None
        self._is_open = True

    @staticmethod
    def _claim_library(claim: "weakref.ref[Converter]") -> None:
        # One call that looks and takes: neither a thread nor a signal handler comes between.
        holder = Converter._claims.setdefault(_LIBRARY, claim)
        if holder() is None:
            with Converter._calls:  # it may be closing
                if Converter._claims.get(_LIBRARY) is holder:
                    del Converter._claims[_LIBRARY]
            holder = Converter._claims.setdefault(_LIBRARY, claim)
        if holder is not claim:
            raise InUseError("there is a converter already; close it first")

    def _load(self, path: bytes) -> None:
        reports = Collector(self._output)
        status = reports.run(lambda: int(self._library.init_adexp(path, len(path))))
        self.diagnostics = reports.lines
        if status == 1:
            raise RuleSetError(f"{os.fsdecode(path)} is not an ini file", reports.lines)
        if status != 0:
            raise RuleSetError(f"the rule set of {os.fsdecode(path)} cannot be loaded",
                               reports.lines)

    def convert(self, message: Union[str, bytes]) -> bytes:
        """The XML document of a message, as UTF-8.

        message  the text, or its UTF-8 bytes (invalid ones become U+FFFD); at most 2 GiB

        What a signal handler raises meanwhile (KeyboardInterrupt) is raised when the message is
        converted.

        What is wrong with the message is in `diagnostics` afterwards; it gives a document all the
        same. Raises NoDocumentError if it does not, ValueError if the converter is closed, the
        message is too long or its text holds surrogates, InUseError in a signal handler that came
        into the midst of a conversion.
        """
        data = _bytes_of(message)
        if len(data) > _LONGEST_MESSAGE:
            raise ValueError(f"the message is longer than {_LONGEST_MESSAGE} bytes")
        thread = threading.get_ident()
        with Converter._calls:
            self._refuse_if_converting()
            if not self._is_open:
                raise ValueError("the converter is closed")
            self._busy_thread = thread  # no call, so no signal handler, between the look and this
            try:
                reports = Collector(self._output)
                document = reports.run(lambda: self._convert(data))
                self.diagnostics = reports.lines
            finally:
                self._busy_thread = None
        if document is None:
            raise NoDocumentError("the message gives no document: it has no -TITLE, or the rule set "
                                  "has no rule for its title", reports.lines)
        return document

    def _convert(self, data: bytes) -> Optional[bytes]:
        length = ctypes.c_uint(0)
        documents: List[Optional[int]] = []
        try:
            # One call that converts and keeps the address: a signal handler does not come between.
            documents.extend(map(self._library.convert_from_adexp, (data,), (len(data),),
                                 (ctypes.byref(length),)))
            document, = documents
            return None if document is None else ctypes.string_at(document, length.value)
        finally:
            for document in documents:
                self._library.free_adexp(document)

    def _refuse_if_converting(self) -> None:
        if self._is_open and self._busy_thread is not None:
            raise InUseError("the converter is converting a message; close it or convert with it "
                             "after that, not in a signal handler")

    def close(self) -> None:
        """Lets go of the rule set. May be called again. Raises InUseError in a signal handler that
        came into the midst of a conversion."""
        if not self._has_library():
            return  # without waiting for the one that has it
        thread = threading.get_ident()
        with Converter._calls:
            self._refuse_if_converting()
            if self._busy_thread is not None or not self._has_library():
                return  # a signal handler came into the midst of this, or another thread was first
            self._busy_thread = thread
            self._is_open = False
            try:
                self._library.clear_adexp()
            finally:
                Converter._claims.clear()
                self._busy_thread = None

    def _has_library(self) -> bool:
        return self._claim is not None and Converter._claims.get(_LIBRARY) is self._claim

    def __del__(self) -> None:
        self.close()

    def __reduce__(self) -> NoReturn:
        raise TypeError("a converter can be neither copied nor pickled: the library has one rule set "
                        "for each process")

    @staticmethod
    def _after_fork() -> None:
        """In a child process, where other threads will never end what they were about."""
        Collector.after_fork()
        converter = Converter._claims[_LIBRARY]() if Converter._claims else None
        busy_thread = converter._busy_thread if converter else None
        if busy_thread == threading.get_ident():
            return
        Converter._calls = threading.RLock()
        if converter and busy_thread is not None:
            converter._busy_thread = None
            if not converter._is_open:
                # It is being loaded or cleared: nobody can use what there is of the rule set.
                Converter._claims[_LIBRARY] = weakref.ref(Converter)

    def __enter__(self) -> "Converter":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 traceback: Optional[TracebackType]) -> None:
        self.close()


os.register_at_fork(after_in_child=Converter._after_fork)
