"""Reads what `adexp --help` and `adexp SUBCOMMAND --help` print: what manual pages and completions say
about a command is taken from there, so that it is written in one place."""
import re
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
    choices: list = field(default_factory=list)   # the values that are allowed; empty: any
    excludes: list = field(default_factory=list)  # options that cannot stand beside this one
    required: bool = False
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


def heads(lines):
    """The (head, text) pairs of a section: "  HEAD   text", or the text indented on the next line."""
    pairs = []
    for line in lines:
        match = re.fullmatch(r" {2}(\S.*?)(?: {2,}(\S.*))?", line)
        if match:
            pairs.append((match[1], match[2] or ""))
        elif pairs and line.strip():
            pairs[-1] = (pairs[-1][0], f"{pairs[-1][1]} {line.strip()}".strip())
    return pairs


def parsed_entry(head, text):
    """An entry from a head such as "-o,--output FILE Excludes: --summary"."""
    names, _, rest = head.partition(" ")
    entry = Entry(names.split(","), text)
    excludes = re.search(r"Excludes:((?: -\S+)+)", rest)
    if excludes:
        entry.excludes = excludes[1].split()
        rest = rest.replace(excludes[0], "")
    choices = re.search(r":?\{([^}]*)\}", rest)
    if choices:
        entry.choices = choices[1].split(",")
        rest = rest.replace(choices[0], "")
    words = rest.split()
    entry.required = "REQUIRED" in words
    entry.repeated = "..." in words
    entry.value = " ".join(word for word in words if word not in ("REQUIRED", "..."))
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
