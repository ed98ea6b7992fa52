"""Results: what is known of a message, or of the loading of a rule set."""
import ctypes
import enum
import itertools
import struct
from dataclasses import dataclass
from typing import Any, Callable, Generic, Iterator, List, Optional, Tuple, TypeVar

from ._library import FIELD, FINDING, Handle, Library, Text, Uncopied, View

_Value = TypeVar("_Value")


class Status(enum.IntEnum):
    """How a load or a conversion went."""
    OK = 0
    SETTINGS_UNREADABLE = 1
    RULES_UNREADABLE = 2
    NO_MEMORY = 3
    BAD_ARGUMENT = 4
    NO_TITLE = 5
    NO_RULE = 6
    TOO_LARGE = 7


class Severity(enum.IntEnum):
    """How bad a finding is."""
    WARNING = 1
    ERROR = 2
    INTERNAL = 3


class Group:
    """Fields, which are found by name at any depth."""

    fields: Tuple["Field", ...]

    def walk(self) -> Iterator["Field"]:
        """All fields, each before those inside it."""
        for field in self.fields:
            yield field
            yield from field.walk()

    def get(self, name: str) -> Optional["Field"]:
        """The first field of that name; None if there is none."""
        return next((field for field in self.walk() if field.name == name), None)

    def __getitem__(self, name: str) -> "Field":
        field = self.get(name)
        if field is None:
            raise KeyError(name)
        return field

    def __contains__(self, name: str) -> bool:
        return self.get(name) is not None


@dataclass
class Item(Group):
    """An item of a list."""

    fields: Tuple["Field", ...]


@dataclass
class Field(Group):
    """A field of a message. A list can be iterated over: its items are groups of fields."""

    name: str
    data: str
    """Its own data, without the fields inside it."""
    known: bool
    """Whether it has a definition at its place in the message."""
    is_list: bool
    """Whether it is written between -BEGIN and -END."""
    item: int
    """The number of its item, from 1, if it stands right inside a list; else 0."""
    fields: Tuple["Field", ...]
    """The fields right inside it."""
    begin: int
    """From here to `end` it stands in the text of the document, in UTF-16 units from 0; -1: not
    set."""
    end: int
    byte_begin: int
    """From here to `byte_end` it stands in the UTF-8 of the message."""
    byte_end: int
    line: int
    """Line and column of its begin, from 1."""
    column: int

    @property
    def items(self) -> List[Item]:
        """The items of a list."""
        fields = self.fields if self.is_list else ()
        return [Item(tuple(group))
                for _, group in itertools.groupby(fields, key=lambda field: field.item)]

    def __iter__(self) -> Iterator[Item]:
        return iter(self.items)

    def __str__(self) -> str:
        return self.data

    def __format__(self, form: str) -> str:
        return format(self.data, form)


@dataclass
class Finding:
    """What is wrong with a message or a rule set."""

    code: str
    """The stable name of the kind of finding, "missing-end" for example."""
    severity: Severity
    text: str
    """What was found."""
    detail: str
    """The text that it was found in; may be empty."""
    path: str
    """The names down to the field, "RTEPTS/PT/FL"; of a rule set: the name of the definition."""
    file: str
    """Of a rule set: the rule file, or the settings file."""
    report: str
    """The line that init_adexp() or convert_from_adexp() would write about it."""
    field: Optional[Field]
    """The field, if there is one and fields were asked for."""
    begin: int
    """Where it is: the six numbers are those of a Field. Of a rule set, begin is the place in the
    expression, line and column are those of the record in the file."""
    end: int
    byte_begin: int
    byte_end: int
    line: int
    column: int


class _lazy(Generic[_Value]):
    """An attribute that is worked out at its first use, without a lock (functools.cached_property
    has one for all objects before Python 3.12, which a fork may find taken)."""

    def __init__(self, function: Callable[[Any], _Value]) -> None:
        self._function = function
        self.__doc__ = function.__doc__

    def __set_name__(self, owner: Any, name: str) -> None:
        self._name = name

    def __get__(self, instance: Any, owner: Any) -> _Value:
        value = self._function(instance)
        instance.__dict__[self._name] = value
        return value


class Result(Group, Uncopied):
    """What a conversion gave. Its attributes are read from the library at their first use."""

    def __init__(self, library: Library, handle: Handle, view_function: Callable[..., Any]) -> None:
        self._library = library
        self._handle = handle
        self._view_function = view_function

    def __iter__(self) -> Iterator[Field]:
        return iter(self.fields)

    def __repr__(self) -> str:
        return f"<Result {self.status.name} of {self.title!r}>"

    @_lazy
    def status(self) -> Status:
        """OK: a document can be made; NO_TITLE, NO_RULE, TOO_LARGE: it cannot."""
        return Status(self._view.status)

    @_lazy
    def document(self) -> Optional[bytes]:
        """The XML document as UTF-8; None if there is none."""
        view = self._view
        return ctypes.string_at(view.document, view.document_size) if view.document else None

    @_lazy
    def title(self) -> str:
        """The word after -TITLE; empty if there is none."""
        title: Text = self._view.title
        return self._text(title.at, title.size)

    @_lazy
    def fields(self) -> Tuple[Field, ...]:  # type: ignore[override]
        """The outermost fields, in the order of the text; each holds those inside it."""
        return self._all_fields[0].fields if self._all_fields else ()

    @_lazy
    def findings(self) -> List[Finding]:
        """What is wrong, in the order in which it was found."""
        view = self._view
        return [self._finding(*values) for values in
                _records(FINDING, view.findings, view.finding_count, view.finding_stride)]

    @_lazy
    def findings_left_out(self) -> int:
        """The number of findings beyond max_findings."""
        return int(self._view.left_out)

    @_lazy
    def _view(self) -> View:
        view = View(size=ctypes.sizeof(View))
        self._view_function(self._handle.pointer, ctypes.byref(view))
        return view

    @_lazy
    def _strings(self) -> bytes:
        return ctypes.string_at(self._view.strings, self._view.strings_size)

    def _text(self, at: int, size: int) -> str:
        return self._strings[at:at + size].decode("utf-8", "surrogatepass")

    @_lazy
    def _all_fields(self) -> List[Field]:
        """All fields by their index in the library: the first is the message itself."""
        view = self._view
        records = list(_records(FIELD, view.fields, view.field_count, view.field_stride))
        inside: List[List[Field]] = [[] for _ in records]
        fields: List[Field] = []
        for values in reversed(records):  # what is inside a field comes before it
            (name, name_size, data, data_size, parent, _, item, flags, *place) = values
            children = tuple(reversed(inside[len(records) - 1 - len(fields)]))
            field = Field(self._text(name, name_size), self._text(data, data_size),
                          bool(flags & 1), bool(flags & 2), item, children, *place)
            fields.append(field)
            if parent >= 0:
                inside[parent].append(field)
        fields.reverse()
        return fields

    def _finding(self, code: int, severity: int, *values: int) -> Finding:
        text, detail, path, file, report = (
            self._text(at, size) for at, size in zip(values[0:10:2], values[1:10:2]))
        index, _, *place = values[10:]
        field = self._all_fields[index] if 0 <= index < self._view.field_count else None
        # Each part of a report is followed by a blank, the last one too.
        return Finding(self._library.code_name(code).decode(), Severity(severity), text, detail,
                       path, file, report.rstrip(" "), field, *place)


def _records(layout: str, address: Optional[int], count: int,
             stride: int) -> Iterator[Tuple[Any, ...]]:
    """The structures of an array; later libraries may have larger ones."""
    later = stride - struct.calcsize(layout)
    return struct.iter_unpack(f"{layout}{later}x", ctypes.string_at(address or 0, count * stride))
