"""Converts ATS messages in ADEXP into XML documents and fields.

    import adexp

    rules = adexp.RuleSet()
    result = rules.convert("-TITLE RFI -ARCID OAL271 ...")
    print(result["ARCID"].data, result.document)
    for finding in result.findings:
        print(finding.line, finding.text)

A front for the shared library libadexp, which is found by the system's loader, or at the path in the
environment variable ADEXP_LIBRARY.
"""
from ._converter import Converter
from ._errors import AdexpError, InUseError, NoDocumentError, RuleSetError
from ._read import read
from ._result import Field, Finding, Group, Item, Result, Severity, Status
from ._rules import BUILT_IN_SETTINGS, RuleSet

__all__ = [
    "AdexpError",
    "BUILT_IN_SETTINGS",
    "Converter",
    "Field",
    "Finding",
    "Group",
    "InUseError",
    "Item",
    "NoDocumentError",
    "Result",
    "RuleSet",
    "RuleSetError",
    "Severity",
    "Status",
    "read",
]
