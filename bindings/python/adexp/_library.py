"""The shared library and the functions of its C header."""
import ctypes
import os

# The number is that of the library's binary interface, which this module is written for.
_NAME = "libadexp.so.1"


def load() -> ctypes.CDLL:
    """The library with its functions declared. OSError if it cannot be found or is another one."""
    path = os.environ.get("ADEXP_LIBRARY", _NAME)
    try:
        library = ctypes.CDLL(path)
    except OSError as error:
        raise OSError(
            f"libadexp cannot be loaded: {error}; install the package libadexp1, or set the "
            "environment variable ADEXP_LIBRARY to the path of libadexp.so") from error

    library.init_adexp.argtypes = [ctypes.c_char_p, ctypes.c_int]
    library.init_adexp.restype = ctypes.c_int
    library.clear_adexp.argtypes = []
    library.clear_adexp.restype = None
    library.convert_from_adexp.argtypes = [
        ctypes.c_char_p, ctypes.c_uint, ctypes.POINTER(ctypes.c_uint)]
    # An address, not c_char_p: that would be copied up to the first NUL, and then be lost.
    library.convert_from_adexp.restype = ctypes.c_void_p
    library.free_adexp.argtypes = [ctypes.c_void_p]
    library.free_adexp.restype = None
    return library
