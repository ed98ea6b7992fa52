"""Reads a page that "adexp view" made, strictly: what a browser would put up with is an error here."""

import base64
import hashlib
import html.parser

VOID = {"meta"}


class Element:
    def __init__(self, name, attributes, parent):
        self.name = name
        self.attributes = attributes
        self.parent = parent
        self.children = []  # elements and texts

    def __getitem__(self, attribute):
        return self.attributes.get(attribute)

    def all(self, **wanted):
        """The elements inside with these attributes; "kind" is a name, "of" a class."""
        kind, of = wanted.pop("kind", None), wanted.pop("of", None)
        found = []
        for child in self.children:
            if isinstance(child, str):
                continue
            if ((kind is None or child.name == kind) and (of is None or of in child.classes())
                    and all(child[name.replace("_", "-")] == value
                            for name, value in wanted.items())):
                found.append(child)
            found += child.all(kind=kind, of=of, **wanted)
        return found

    def one(self, **wanted):
        (element,) = self.all(**wanted)
        return element

    def classes(self):
        return (self["class"] or "").split()

    def text(self):
        return "".join(child if isinstance(child, str) else child.text() for child in self.children)

    def ancestors(self):
        return [self.parent] + self.parent.ancestors() if self.parent else []


class _Reader(html.parser.HTMLParser):

    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.root = self.open = Element("", {}, None)
        self.ids = set()

    def error(self, message):
        raise ValueError(message)

    def handle_starttag(self, tag, attrs):
        names = [name for name, _ in attrs]
        if len(names) != len(set(names)) or any(value is None for _, value in attrs):
            self.error(f"<{tag}> has attributes twice or without value: {names}")
        attributes = dict(attrs)
        if attributes.get("id") in self.ids:
            self.error("id twice: " + attributes["id"])
        if "id" in attributes:
            self.ids.add(attributes["id"])
        element = Element(tag, attributes, self.open)
        self.open.children.append(element)
        if tag not in VOID:
            self.open = element

    def handle_endtag(self, tag):
        if tag != self.open.name:
            self.error(f"</{tag}> inside <{self.open.name}>")
        self.open = self.open.parent

    def handle_data(self, data):
        self.open.children.append(data)

    def handle_comment(self, data):
        self.error("comment: " + data)

    def handle_pi(self, data):
        self.error("processing instruction: " + data)

    def unknown_decl(self, data):
        self.error("declaration: " + data)


class Page:
    """The page as its parts. Raises ValueError if it is not well-formed or its parts do not match."""

    def __init__(self, text):
        reader = _Reader()
        reader.feed(text)
        reader.close()
        if reader.open is not reader.root:
            raise ValueError(f"<{reader.open.name}> is not closed")
        self.root = reader.root
        self.ids = reader.ids
        self.pre = self.root.one(id="text")
        trees = self.root.all(id="tree")
        self.tree = trees[0] if trees else None
        lists = self.root.all(id="list")
        self.findings = lists[0].all(kind="li") if lists else []
        self._check()

    def _check(self):
        for link in self.root.all(kind="a"):
            if link["href"][1:] not in self.ids:
                raise ValueError("leads nowhere: " + link["href"])
        fields = [span["data-i"] for span in self.pre.all(of="field")]
        items = [item["data-i"] for item in self.items()]
        if fields != items or fields != [str(i) for i in range(len(fields))]:
            raise ValueError(f"text and tree differ: {fields} {items}")
        for finding in self.findings:
            if finding["data-i"] and "n" + finding["data-i"] not in self.ids:
                raise ValueError("finding in no field: " + finding["data-i"])

    def message(self):
        """The text that is shown. A parser drops the line feed behind <pre>."""
        return self.pre.text().removeprefix("\n")

    def message_parts(self):
        """The parts of the text that are shown, and between them what is said of what is left out."""
        for gap in self.pre.all(of="gap"):
            gap.children = ["\0" + gap.text() + "\0"]
        return self.message().split("\0")

    def lines(self):
        """The line numbers, each with the text behind it up to the next."""
        for line in self.pre.all(of="line"):
            line.children = ["\0" + line["data-n"] + ":"]
        return self.message().split("\0")[1:]

    def items(self):
        return self.tree.all(role="treeitem") if self.tree else []

    def row(self, index):
        """What the row of a field says: (item number, name, data, state)."""
        row = self.root.one(id=f"n{index}").children[0]
        texts = {part: "".join(span.text() for span in row.all(of=part))
                 for part in ("item", "name", "data", "state")}
        return tuple(texts.values())

    def field_text(self, index):
        """The text of the stretch of a field."""
        return self.root.one(id=f"t{index}").text()

    def field_path(self, index):
        """The numbers of the fields around a stretch, the innermost first."""
        return [int(element["data-i"]) for element in self.root.one(id=f"t{index}").ancestors()
                if element["data-i"]]

    def marked(self, finding):
        """The text that a finding marks."""
        return "".join(mark.text() for mark in self.pre.all(kind="mark", data_f=str(finding)))

    def finding(self, number):
        """What the list says of a finding: (text, detail, where)."""
        entry = self.root.one(id=f"f{number}")
        (what,) = entry.all(of="what")
        detail = "".join(span.text() for span in what.all(of="detail"))
        return (what.text().removesuffix(" " + detail) if detail else what.text(), detail,
                entry.one(of="where").text())

    def policy(self):
        """The Content-Security-Policy as {directive: value}."""
        meta = self.root.one(kind="meta", http_equiv="Content-Security-Policy")
        return dict(directive.strip().split(" ", 1) for directive in meta["content"].split(";"))

    def hash_of(self, kind):
        """What the policy has to say to allow the only element of that kind."""
        text = self.root.one(kind=kind).text().encode()
        return "'sha256-" + base64.b64encode(hashlib.sha256(text).digest()).decode() + "'"
