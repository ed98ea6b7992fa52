"""The library's reports, which go to the message output of Qt.

Qt hands each line to one handler for the whole process. Its functions are found through the handle
of libadexp, so they are those of the Qt that the library itself uses, 5 or 6.
"""
import ctypes
import threading
from types import TracebackType
from typing import Any, List, Optional, Type

_Handler = ctypes.CFUNCTYPE(None, ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)

# qInstallMessageHandler(QtMessageHandler) and QString::utf16() const
_INSTALL = "_Z22qInstallMessageHandlerPFv9QtMsgTypeRK18QMessageLogContextRK7QStringE"
_UTF16 = "_ZNK7QString5utf16Ev"


class _QString6(ctypes.Structure):
    _fields_ = [("header", ctypes.c_void_p), ("data", ctypes.c_void_p), ("size", ctypes.c_ssize_t)]


class _QString5Data(ctypes.Structure):
    _fields_ = [("references", ctypes.c_int), ("size", ctypes.c_int)]


class _QString5(ctypes.Structure):
    _fields_ = [("data", ctypes.POINTER(_QString5Data))]


class MessageOutput:
    """The message output of the Qt below a library."""

    def __init__(self, library: ctypes.CDLL) -> None:
        self._install = library[_INSTALL]
        self._install.argtypes = [ctypes.c_void_p]
        self._install.restype = ctypes.c_void_p
        self._utf16 = library[_UTF16]
        self._utf16.argtypes = [ctypes.c_void_p]
        self._utf16.restype = ctypes.c_void_p
        library.qVersion.argtypes = []
        library.qVersion.restype = ctypes.c_char_p
        self._is_qt5 = library.qVersion().startswith(b"5.")

    def install(self, handler: Any) -> Optional[int]:
        """Makes the address or callback the handler; returns the address of the one before."""
        previous: Optional[int] = self._install(handler)
        return previous

    def text(self, string: int) -> str:
        """The QString at an address. A line may hold NUL characters, so the size counts."""
        if self._is_qt5:
            size = _QString5.from_address(string).data.contents.size
        else:
            size = _QString6.from_address(string).size
        return ctypes.string_at(self._utf16(string), 2 * size).decode("utf-16-le", "surrogatepass")


class Collector:
    """Takes the lines that this thread causes, from `with` to its end, into `lines`. Those of other
    threads go on to the handler that was there before."""

    def __init__(self, output: MessageOutput) -> None:
        self.lines: List[str] = []
        self._output = output
        self._thread = threading.get_ident()
        self._previous: Optional[int] = None
        self._handler: Any = None  # Qt holds only its address

    def __enter__(self) -> "Collector":
        self._handler = _Handler(self._handle)
        self._previous = self._output.install(self._handler)
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 traceback: Optional[TracebackType]) -> None:
        self._output.install(self._previous)
        # It refers to this object: without the cycle the lines go as soon as they are not used.
        self._handler = None

    def _handle(self, severity: int, context: int, string: int) -> None:
        if threading.get_ident() == self._thread:
            # Each item of a line is followed by a blank, the last one too.
            self.lines.append(self._output.text(string).rstrip(" "))
        elif self._previous:
            _Handler(self._previous)(severity, context, string)
