"""Reads the pages of the project: their blocks, the files that they show, headings and links."""
import re
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
README = ROOT / "README.md"
GUIDE = ROOT / "docs/guide.md"
REFERENCE = ROOT / "docs/reference.md"  # made when adexp is installed
ALL = [README, *sorted(set((ROOT / "docs").glob("*.md")) - {REFERENCE}),
       *(ROOT / page for page in ("CHANGELOG.md", "CONTRIBUTING.md", "SECURITY.md",
                                  "bindings/python/README.md", "fuzz/README.md",
                                  "tests/golden/README.md"))]


def read(page):
    return page.read_text(encoding="utf-8")


def name(page):
    return str(page.relative_to(ROOT))


def blocks(text, kind=None):
    """The (kind, content) pairs of all blocks, or the contents of those of a kind."""
    found = re.findall(r"^```(.*)\n((?:(?!```).*\n)*)```$", text, re.MULTILINE)
    return found if kind is None else [content for its_kind, content in found if its_kind == kind]


def section(text, heading):
    """What stands under a heading of the second level."""
    return text.split(f"\n## {heading}\n")[1].split("\n## ")[0]


def named_files(text):
    """The files that a page shows: blocks after a paragraph that begins with the name of the file."""
    pattern = r"\n\n`([\w.-]+)`.*\n(?:.+\n)*\n```(?:ini|xml|text|cmake)\n((?:(?!```).*\n)*)```"
    return dict(re.findall(pattern, text))


def anchors(page):
    """The anchors that the headings of a page get."""
    headings = re.findall(r"^#+ (.*)$", read(page), re.MULTILINE)
    return [re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-") for heading in headings]


def links(page):
    """The (file, anchor) pairs of the links that stay in the project."""
    return re.findall(r"\]\((?!https:)([^)#]*)#?([^)]*)\)", read(page))
