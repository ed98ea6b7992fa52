"""The converter of version 1.0."""
import os
from types import TracebackType
from typing import List, Optional, Type, Union

from ._errors import NoDocumentError
from ._library import Uncopied
from ._result import Status
from ._rules import BUILT_IN_SETTINGS, Message, RuleSet


class Converter(Uncopied):
    """Gives documents and the lines reported about them; a context manager. RuleSet gives more.

    settings  as for RuleSet, and so are the exceptions
    """

    diagnostics: List[str]
    """The lines reported about the last message, or after __init__ about the rule set, oldest
    first."""

    def __init__(self, settings: Union[str, "os.PathLike[str]"] = BUILT_IN_SETTINGS) -> None:
        self._rules: Optional[RuleSet] = RuleSet(settings)
        self.diagnostics = [finding.report for finding in self._rules.findings]

    def convert(self, message: Message) -> bytes:
        """The XML document of a message, as UTF-8.

        message  the text, or its UTF-8 bytes (invalid ones become U+FFFD); at most 2 GiB

        What is wrong with the message is in `diagnostics` afterwards; it gives a document all the
        same. Raises NoDocumentError if it does not, ValueError if the converter is closed, the
        message is too long or its text holds surrogates.
        """
        rules = self._rules
        if rules is None:
            raise ValueError("the converter is closed")
        result = rules.convert(message, fields=False)
        if result.status == Status.TOO_LARGE:
            raise ValueError("the message, or what is reported about it, is longer than 2 GiB")
        self.diagnostics = diagnostics = [finding.report for finding in result.findings]
        if result.document is None:
            raise NoDocumentError("the message gives no document: it has no -TITLE, or the rule set "
                                  "has no rule for its title", diagnostics)
        return result.document

    def close(self) -> None:
        """Lets go of the rule set. May be called again."""
        self._rules = None

    def __enter__(self) -> "Converter":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 traceback: Optional[TracebackType]) -> None:
        self.close()
