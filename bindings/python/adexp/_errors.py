"""What can go wrong."""
from typing import List


class AdexpError(Exception):
    """Base of the errors of this module.

    diagnostics  the lines that the library reported on the way, oldest first
    """

    def __init__(self, text: str, diagnostics: List[str]) -> None:
        super().__init__("\n  ".join([text, *diagnostics]))
        self.diagnostics = diagnostics


class RuleSetError(AdexpError):
    """The rule set cannot be loaded: the settings file is not an ini file, or names no rule files
    that can be read."""


class NoDocumentError(AdexpError):
    """The message gives no document: it has no -TITLE, or there is no rule for its title."""


class InUseError(RuntimeError):
    """Was raised by version 1.0, which had one converter in a process. Now nothing raises it."""
