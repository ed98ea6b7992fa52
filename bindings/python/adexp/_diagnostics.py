"""The library's reports, which go to the message output of Qt.

Qt hands each line to one handler for the whole process. Its functions are found through the handle
of libadexp, so they are those of the Qt that the library itself uses, 5 or 6.
"""
import ctypes
import sys
import threading
from types import TracebackType
from typing import Any, List, Optional, Tuple, Type

_Handler = ctypes.CFUNCTYPE(None, ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)

# qInstallMessageHandler(QtMessageHandler) and QString::utf16() const
_INSTALL = "_Z22qInstallMessageHandlerPFv9QtMsgTypeRK18QMessageLogContextRK7QStringE"
_UTF16 = "_ZNK7QString5utf16Ev"
# QLoggingCategory::defaultCategory(), isEnabled(QtMsgType) const and setEnabled(QtMsgType, bool)
_CATEGORY = "_ZN16QLoggingCategory15defaultCategoryEv"
_IS_ENABLED = "_ZNK16QLoggingCategory9isEnabledE9QtMsgType"
_SET_ENABLED = "_ZN16QLoggingCategory10setEnabledE9QtMsgTypeb"

_SEVERITIES = (0, 2)  # QtDebugMsg and QtCriticalMsg, as which the library reports


class _Context(ctypes.Structure):  # QMessageLogContext
    _fields_ = [("version", ctypes.c_int), ("line", ctypes.c_int), ("file", ctypes.c_char_p),
                ("function", ctypes.c_char_p), ("category", ctypes.c_char_p)]


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
        self._category = library[_CATEGORY]
        self._category.argtypes = []
        self._category.restype = ctypes.c_void_p
        self._is_enabled = library[_IS_ENABLED]
        self._is_enabled.argtypes = [ctypes.c_void_p, ctypes.c_int]
        self._is_enabled.restype = ctypes.c_bool
        self._set_enabled = library[_SET_ENABLED]
        self._set_enabled.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_bool]
        self._set_enabled.restype = None
        library.qVersion.argtypes = []
        library.qVersion.restype = ctypes.c_char_p
        self._is_qt5 = library.qVersion().startswith(b"5.")

    def install(self, handler: Any) -> Optional[int]:
        """Makes the address or callback the handler; returns the address of the one before."""
        previous: Optional[int] = self._install(handler)
        return previous

    def let_through(self) -> Tuple[int, ...]:
        """Lets the reports of the library through, which the environment (QT_LOGGING_RULES), a
        qtlogging.ini or the application may have switched off. Returns the severities that were."""
        category = self._category()
        off = tuple(s for s in _SEVERITIES if not self._is_enabled(category, s))
        for severity in off:
            self._set_enabled(category, severity, True)
        return off

    def switch_off(self, severities: Tuple[int, ...]) -> None:
        """Takes let_through() back."""
        for severity in severities:
            self._set_enabled(self._category(), severity, False)

    def text(self, string: int) -> str:
        """The QString at an address. A line may hold NUL characters, so the size counts."""
        if self._is_qt5:
            size = _QString5.from_address(string).data.contents.size
        else:
            size = _QString6.from_address(string).size
        return ctypes.string_at(self._utf16(string), 2 * size).decode("utf-16-le", "surrogatepass")


class Collector:
    """Takes the lines that this thread causes, from `with` to its end, into `lines`. Those of other
    threads go on to the handler that was there before, if they would have gone there.

    What a signal handler raises meanwhile, KeyboardInterrupt for one, cannot pass through the
    library: it is raised at the end of `with`.
    """

    def __init__(self, output: MessageOutput) -> None:
        self.lines: List[str] = []
        self._output = output
        self._thread = threading.get_ident()
        self._previous: Optional[int] = None
        self._handler: Any = None  # Qt holds only its address
        self._off: Tuple[int, ...] = ()
        self._raised: Optional[BaseException] = None
        self._previous_hook = sys.unraisablehook

    def __enter__(self) -> "Collector":
        self._handler = _Handler(self._handle)
        self._previous = self._output.install(self._handler)
        self._off = self._output.let_through()
        # A handler of signals runs before the first statement of a callback, where no `try` is.
        self._previous_hook = sys.unraisablehook
        sys.unraisablehook = self._take
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 traceback: Optional[TracebackType]) -> None:
        sys.unraisablehook = self._previous_hook
        self._output.switch_off(self._off)
        self._output.install(self._previous)
        raised = self._raised
        # They refer to this object: without the cycles the lines go as soon as they are not used.
        self._handler = self._raised = None
        if raised is not None:
            raise raised

    def _take(self, unraisable: "sys.UnraisableHookArgs") -> None:
        is_own = threading.get_ident() == self._thread
        if not is_own or "ctypes callback" not in (unraisable.err_msg or ""):
            self._previous_hook(unraisable)
        elif self._raised is None:
            self._raised = unraisable.exc_value

    def _handle(self, severity: int, context: int, string: int) -> None:
        if threading.get_ident() == self._thread:
            # Each item of a line is followed by a blank, the last one too.
            self.lines.append(self._output.text(string).rstrip(" "))
        elif self._previous and not self._was_off(severity, context):
            _Handler(self._previous)(severity, context, string)

    def _was_off(self, severity: int, context: int) -> bool:
        return (severity in self._off
                and _Context.from_address(context).category in (None, b"default"))
