"""The converter."""
import ctypes
import os
import threading
from types import TracebackType
from typing import ClassVar, List, Optional, Type, Union

from ._diagnostics import Collector, MessageOutput
from ._errors import InUseError, NoDocumentError, RuleSetError
from ._library import load

BUILT_IN_SETTINGS = ":/adexp/adexp.ini"
"""The settings of the rule set that is part of the library."""

# A longer text would be read up to its first NUL only.
_LONGEST_MESSAGE = 2**31 - 1


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

    _process_lock: ClassVar[threading.Lock] = threading.Lock()  # held by the open converter

    def __init__(self, settings: Union[str, "os.PathLike[str]"] = BUILT_IN_SETTINGS) -> None:
        # A signal handler may call into the midst of a call of its own thread, and is told so.
        self._calls = threading.RLock()
        self._is_converting = False
        self._is_open = False
        path = os.fsencode(settings)
        if not path.startswith(b":"):
            # The library would take a file that is not there for an empty one.
            with open(path, "rb"):
                pass
        self._library = load()
        self._output = MessageOutput(self._library)
        if not Converter._process_lock.acquire(blocking=False):
            raise InUseError("there is a converter already; close it first")
        self._is_open = True
        try:
            self._load(path)
        except BaseException:
            self.close()
            raise

    def _load(self, path: bytes) -> None:
        with Collector(self._output) as reports:
            status = self._library.init_adexp(path, len(path))
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
        with self._calls:
            self._refuse_if_converting()
            self._is_converting = True
            try:
                if not self._is_open:
                    raise ValueError("the converter is closed")
                with Collector(self._output) as reports:
                    document = self._convert(data)
                self.diagnostics = reports.lines
            finally:
                self._is_converting = False
        if document is None:
            raise NoDocumentError("the message gives no document: it has no -TITLE, or the rule set "
                                  "has no rule for its title", reports.lines)
        return document

    def _convert(self, data: bytes) -> Optional[bytes]:
        length = ctypes.c_uint(0)
        document = self._library.convert_from_adexp(data, len(data), ctypes.byref(length))
        if document is None:
            return None
        try:
            return ctypes.string_at(document, length.value)
        finally:
            self._library.free_adexp(document)

    def _refuse_if_converting(self) -> None:
        if self._is_converting:
            raise InUseError("the converter is converting a message; close it or convert with it "
                             "after that, not in a signal handler")

    def close(self) -> None:
        """Lets go of the rule set. May be called again. Raises InUseError in a signal handler that
        came into the midst of a conversion."""
        with self._calls:
            self._refuse_if_converting()
            if self._is_open:
                self._is_open = False
                self._library.clear_adexp()
                Converter._process_lock.release()

    def __del__(self) -> None:
        self.close()

    def __enter__(self) -> "Converter":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 traceback: Optional[TracebackType]) -> None:
        self.close()
