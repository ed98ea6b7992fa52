"""The shared library: the functions and structures of its C header that this module uses."""
import ctypes
import functools
import os
from typing import Any, Callable, NoReturn, Optional

# The number is that of the library's binary interface, which this module is written for.
_NAME = "libadexp.so.1"

DOCUMENT, FIELDS, FINDINGS = 1, 2, 4


class Options(ctypes.Structure):
    """adexp_options"""
    _fields_ = [("size", ctypes.c_size_t), ("want", ctypes.c_uint32),
                ("max_findings", ctypes.c_uint32)]


class Text(ctypes.Structure):
    """adexp_text"""
    _fields_ = [("at", ctypes.c_uint32), ("size", ctypes.c_uint32)]


class View(ctypes.Structure):
    """adexp_view"""
    _fields_ = [("size", ctypes.c_size_t), ("status", ctypes.c_int32),
                ("left_out", ctypes.c_uint32),
                ("document", ctypes.c_void_p), ("document_size", ctypes.c_size_t),
                ("strings", ctypes.c_void_p), ("strings_size", ctypes.c_size_t),
                ("fields", ctypes.c_void_p), ("field_count", ctypes.c_size_t),
                ("field_stride", ctypes.c_size_t),
                ("findings", ctypes.c_void_p), ("finding_count", ctypes.c_size_t),
                ("finding_stride", ctypes.c_size_t), ("title", Text)]


# adexp_field and adexp_finding, for the module struct; an adexp_place is "2i2q2i".
FIELD = "4I3iI2i2q2i"
FINDING = "2i10I2i2i2q2i"


class Library:
    """libadexp. Raises OSError if it cannot be found or is another one."""

    def __init__(self) -> None:
        path = os.environ.get("ADEXP_LIBRARY", _NAME)
        try:
            # The functions that take long run without the lock of the interpreter; for the others
            # it would cost more to give it back and to get it again.
            long, short = ctypes.CDLL(path), ctypes.PyDLL(path)
        except OSError as error:
            raise OSError(
                f"libadexp cannot be loaded: {error}; install the package libadexp1, or set the "
                "environment variable ADEXP_LIBRARY to the path of libadexp.so") from error
        pointer, size, status = ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int
        try:
            self.rules_load = _function(long.adexp_rules_load, status,
                                        ctypes.c_char_p, size, pointer)
            self.rules_release = _function(long.adexp_rules_release, None, pointer)
            self.convert_many = _function(long.adexp_convert_many, status,
                                          pointer, pointer, pointer, size, pointer, pointer)
            self.rules_view = _function(short.adexp_rules_view, None, pointer, pointer)
            self.result_new = _function(short.adexp_result_new, pointer)
            self.result_view = _function(short.adexp_result_view, None, pointer, pointer)
            self.result_release = _function(short.adexp_result_release, None, pointer)
            self.code_name = _function(short.adexp_code_name, ctypes.c_char_p, ctypes.c_int)
        except AttributeError as error:
            raise OSError(f"{path} is older than this module: {error}") from error


def _function(function: Any, result: Any, *arguments: Any) -> Callable[..., Any]:
    function.restype = result
    function.argtypes = arguments
    return function  # type: ignore[no-any-return]


@functools.lru_cache(maxsize=None)
def load() -> Library:
    """The library, loaded at the first call."""
    return Library()


class Handle:
    """An object of the library, released when nobody refers to it any more."""

    def __init__(self, release: Callable[..., Any], address: Optional[int] = None) -> None:
        self._release = release
        self.pointer = ctypes.c_void_p(address)

    def __del__(self) -> None:
        self._release(self.pointer)


class Uncopied:
    """What stands on objects of the library."""

    def __reduce__(self) -> NoReturn:
        raise TypeError(f"a {type(self).__name__} can be neither copied nor pickled")
