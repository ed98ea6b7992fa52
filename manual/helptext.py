"""Reads what `adexp --help` and `adexp SUBCOMMAND --help` print. Manual pages and completions are made
from it, so that everything about a command is written in one place."""
import re
import statistics
import subprocess
from dataclasses import dataclass, field

# The sections of a help. Any other line that does not begin with a blank is description.
POSITIONALS = "positionals"
OPTIONS = "options"
SUBCOMMANDS = "subcommands"
EXAMPLES = "examples"
EXIT_STATUS = "exit status"
SECTIONS = {POSITIONALS, OPTIONS, SUBCOMMANDS, EXAMPLES, EXIT_STATUS}


@dataclass
class Entry:
    """An option, an argument by position, a subcommand, or an exit status, with its explanation."""
    names: list               # "-o" and "--output"; otherwise one name
    text: str
    value: str = ""           # what the option takes, "FILE"; empty: nothing
    default: str = ""         # the value without the option; empty: none
    check: str = ""           # which values are allowed, "INT in [0 - 9]"; empty: any
    choices: list = field(default_factory=list)   # the values that are allowed; empty: any
    needs: list = field(default_factory=list)     # what has to stand beside it
    excludes: list = field(default_factory=list)  # what cannot stand beside it
    repeated: bool = False    # takes any number of values


@dataclass
class Help:
    """The help of the command or of one subcommand."""
    name: str                 # "adexp" or "adexp convert"
    summary: str
    usage: str
    description: list         # lines
    sections: dict            # heading in lower case: lines

    def entries(self, section):
        return [parsed_entry(head, text) for head, text in heads(self.sections.get(section, []))]

    def arguments(self):
        """The (placeholder, is repeated) pairs of the arguments by position, in their order."""
        words = self.usage.removeprefix(self.name).replace("[OPTIONS]", "").split()
        return [(word.strip("[]."), "..." in word) for word in words]


def heads(lines):
    """The (head, text) pairs of a section: "  HEAD   text", or the text indented on the next line.

    All texts begin in one column. A head that reaches almost up to it has only one blank behind it;
    where such a head ends in a list of options, it goes on behind the blank, and its text is below.
    """
    begins = [match.start(1) for line in lines if (match := re.match(r" {2}\S.*? {2,}(\S)", line))]
    column = statistics.mode(begins) if begins else None
    pairs = []
    for line in lines:
        if re.match(r" {2}\S", line):
            has_text = column and line[column - 1:column] == " " and \
                not re.search(r"(Needs|Excludes):.*(?<! ) $", line[:column])
            pairs.append((line[:column].strip(), line[column:]) if has_text else (line.strip(), ""))
        elif pairs and line.strip():
            pairs[-1] = (pairs[-1][0], f"{pairs[-1][1]} {line.strip()}".strip())
    return pairs


def parsed_entry(head, text):
    """An entry from a head: NAMES [VALUE[:CHECK][=DEFAULT]] [...] [REQUIRED] [Needs: ...] [Excludes: ...]"""
    head, _, excludes = head.partition("Excludes:")
    head, _, needs = head.partition("Needs:")
    names, _, value = re.sub(r" REQUIRED\b", "", head).strip().partition(" ")
    entry = Entry(names.split(","), text, needs=needs.split(), excludes=excludes.split())
    entry.repeated = value.endswith("...")
    value, _, entry.default = value.removesuffix("...").strip().partition("=")
    entry.value, _, entry.check = value.partition(":")
    if re.fullmatch(r"\{.*\}", entry.check):
        entry.choices = entry.check[1:-1].split(",")
        entry.check = ""
    return entry


def parsed_help(name, text):
    """The parts of what --help prints."""
    lines = text.rstrip("\n").split("\n")
    usage = next(number for number, line in enumerate(lines) if line.startswith("Usage: "))
    result = Help(name, " ".join(lines[:usage]).strip(), lines[usage].removeprefix("Usage: "), [], {})
    current = result.description
    for line in lines[usage + 1:]:
        heading = line[:-1].lower() if line.endswith(":") else ""
        heading = EXAMPLES if heading == "example" else heading
        if heading in SECTIONS:
            current = result.sections.setdefault(heading, [])
        elif line and not line.startswith(" ") and current is not result.description:
            current = result.description
            current.extend(["", line])
        else:
            current.append(line)
    return result


def all_helps(command):
    """The help of the program @p command, and those of its subcommands."""
    def ask(name, *arguments):
        shown = subprocess.run([command, *arguments, "--help"], check=True, text=True,
                               encoding="utf-8", stdout=subprocess.PIPE).stdout
        return parsed_help(name, shown)

    main = ask("adexp")
    names = [entry.names[0] for entry in main.entries(SUBCOMMANDS)]
    return main, [ask(f"adexp {name}", name) for name in names]
