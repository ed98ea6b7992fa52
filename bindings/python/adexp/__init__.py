"""Converts ATS messages in ADEXP into XML documents.

    import adexp

    with adexp.Converter() as converter:
        document = converter.convert("-TITLE RFI -ARCID OAL271 ...")
        for line in converter.diagnostics:
            print(line)

A front for the shared library libadexp, which is found by the system's loader, or at the path in the
environment variable ADEXP_LIBRARY.
"""
from ._converter import BUILT_IN_SETTINGS, Converter
from ._errors import AdexpError, InUseError, NoDocumentError, RuleSetError

__all__ = [
    "AdexpError",
    "BUILT_IN_SETTINGS",
    "Converter",
    "InUseError",
    "NoDocumentError",
    "RuleSetError",
]
