"""The library's reports, which go to the message output of Qt.

Qt hands each line to one handler for the whole process. Its functions are found through the handle
of libadexp, so they are those of the Qt that the library itself uses, 5 or 6.
"""
import ctypes
import sys
import threading
from typing import Any, Callable, ClassVar, List, Optional, Tuple, TypeVar

_Result = TypeVar("_Result")
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

    def install(self, handler: Optional[int]) -> None:
        """Makes the handler at an address, or Qt's own (None), the handler."""
        self._install(handler)

    def replace(self, handler: Any, replaced: List[Optional[int]]) -> None:
        """Makes a callback the handler, and appends the address of the one before to a list."""
        # One call for both: no signal handler runs between them, and the address is never lost.
        replaced.extend(map(self._install, (handler,)))

    def switched_off(self) -> Tuple[int, ...]:
        """The severities of the library's reports that the environment (QT_LOGGING_RULES), a
        qtlogging.ini or the application has switched off."""
        category = self._category()
        return tuple(s for s in _SEVERITIES if not self._is_enabled(category, s))

    def switch(self, severities: Tuple[int, ...], on: bool) -> None:
        """Switches severities on or off."""
        for severity in severities:
            self._set_enabled(self._category(), severity, on)

    def text(self, string: int) -> str:
        """The QString at an address. A line may hold NUL characters, so the size counts."""
        if self._is_qt5:
            size = _QString5.from_address(string).data.contents.size
        else:
            size = _QString6.from_address(string).size
        return ctypes.string_at(self._utf16(string), 2 * size).decode("utf-16-le", "surrogatepass")


# The handlers that `_handle` stands for: the last is the one before it. More than one while it is
# installed.
_replaced: List[Optional[int]] = [None]


def _handler_before() -> Optional[int]:
    # It finds itself there if something kept it from being taken back.
    own = ctypes.cast(_handle, ctypes.c_void_p).value
    return next((address for address in reversed(_replaced) if address != own), None)


def _take_or_pass_on(severity: int, context: int, string: int) -> None:
    collector = Collector.current
    if collector is not None and collector.is_own_thread():
        collector.take_line(string)
    elif collector is None or not collector.was_off(severity, context):
        before = _handler_before()
        if before is not None:
            _Handler(before)(severity, context, string)


# The one handler of the process. It is never freed: a thread may be on its way into it when it is
# taken back.
_handle = _Handler(_take_or_pass_on)


class Collector:
    """Takes the lines that this thread causes during a call into `lines`. Those of other threads go
    on to the handler that was there before, if they would have gone there. There is at most one
    call at a time.

    What a signal handler raises meanwhile, KeyboardInterrupt for one, cannot pass through the
    library: it is raised at the end of the call. Whatever it interrupts, all is put back.
    """

    current: ClassVar[Optional["Collector"]] = None

    def __init__(self, output: MessageOutput) -> None:
        self.lines: List[str] = []
        self._output = output
        self._thread = threading.get_ident()
        self._off: Tuple[int, ...] = ()
        self._raised: Optional[BaseException] = None
        self._previous_hook = sys.unraisablehook

    def run(self, call: Callable[[], _Result]) -> _Result:
        """What the call returns. A signal handler may raise at the first statement of any function:
        only a `finally` in this one is never passed over."""
        try:
            self._begin()
            result = call()
        finally:
            try:
                self._end()
            except BaseException:
                self._end()  # that was a signal handler, which does not come twice
                raise
        raised, self._raised = self._raised, None  # which refers to this object
        if raised is not None:
            raise raised
        return result

    def is_own_thread(self) -> bool:
        """Whether it is this thread whose lines are taken."""
        return threading.get_ident() == self._thread

    def take_line(self, string: int) -> None:
        """Takes the QString at an address."""
        # Each item of a line is followed by a blank, the last one too.
        self.lines.append(self._output.text(string).rstrip(" "))

    def was_off(self, severity: int, context: int) -> bool:
        """Whether a message comes only because the reports are let through."""
        return (severity in self._off
                and _Context.from_address(context).category in (None, b"default"))

    @staticmethod
    def after_fork() -> None:
        """Puts all back in a child process if the call is one of a thread that is not there."""
        collector = Collector.current
        if collector is not None and not collector.is_own_thread():
            collector._end()

    def _begin(self) -> None:
        self._off = self._output.switched_off()
        Collector.current = self
        self._output.replace(_handle, _replaced)
        self._output.switch(self._off, True)
        # A handler of signals runs before the first statement of a callback, where no `try` is.
        sys.unraisablehook = self._take

    def _end(self) -> None:
        # Does no harm where only a part of _begin() or of itself has been run.
        sys.unraisablehook = self._previous_hook
        self._output.switch(self._off, False)
        if len(_replaced) > 1:
            before = _handler_before()
            self._output.install(before)
            _replaced[:] = [before]
        Collector.current = None

    def _take(self, unraisable: "sys.UnraisableHookArgs") -> None:
        if not self.is_own_thread() or "ctypes callback" not in (unraisable.err_msg or ""):
            self._previous_hook(unraisable)
        elif self._raised is None:
            self._raised = unraisable.exc_value
