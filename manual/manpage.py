"""Writes the help of a command as a manual page, in the man macros."""
import itertools
import re
import textwrap

from helptext import EXAMPLES, EXIT_STATUS, OPTIONS, POSITIONALS, SUBCOMMANDS

# Characters that would be read as markup, or printed as a different character.
SPECIAL = {"\\": r"\e", "-": r"\-", "'": r"\(aq", "`": r"\(ga", "^": r"\(ha", "~": r"\(ti"}


def escaped(text):
    text = "".join(SPECIAL.get(character, character) for character in text)
    return r"\&" + text if text.startswith(".") else text


def prose(text):
    """Text to be filled, as lines of the page."""
    return list(map(escaped, textwrap.wrap(text, 72, break_long_words=False,
                                           break_on_hyphens=False)))


def bold(text):
    return rf"\fB{escaped(text)}\fP"


def italic(text):
    return rf"\fI{escaped(text)}\fP"


def page_name(help):
    return help.name.replace(" ", "-")


def code(lines):
    return [".EX", *map(escaped, lines), ".EE"]


def is_indented(line):
    return line.startswith("  ")


def paragraphs(lines):
    """Text in paragraphs; indented lines stay as they are."""
    result = []
    for is_text, group in itertools.groupby(lines, key=bool):
        if not is_text:
            continue
        result.append(".PP")
        for indented, part in itertools.groupby(group, key=is_indented):
            result += code(part) if indented else prose(" ".join(part))
    return result


def synopsis(help):
    """The usage with placeholders in italics: what is in capitals."""
    arguments = help.usage.removeprefix(help.name)
    marked = re.sub(r"[A-Z][A-Z]+", r"\\fI\g<0>\\fP", escaped(arguments))
    return [bold(help.name) + marked]


def entry_head(entry):
    mark = bold if entry.names[0].startswith("-") else italic
    names = ", ".join(map(mark, entry.names))
    return names + (" " + italic(entry.value) if entry.value else "") + " ..." * entry.repeated


def sentence(text):
    return text.rstrip(".") + "." if text else ""


def entry_text(entry):
    sentences = [sentence(text) for text in (entry.text, entry.check)]
    for beginning, values in (("One of", entry.choices), ("Only with", entry.needs),
                              ("Not together with", entry.excludes)):
        if values:
            sentences.append(f"{beginning} {', '.join(values)}.")
    if entry.default:
        sentences.append(f"Without it {entry.default}.")
    return prose(" ".join(filter(None, sentences)))


def entries(list_of_entries):
    return [line for entry in list_of_entries
            for line in (".TP", entry_head(entry), *entry_text(entry))]


def exit_status(list_of_entries):
    return [line for entry in list_of_entries
            for line in (".TP", bold(entry.names[0]), *prose(entry.text))]


def subcommands(list_of_entries):
    return [line for entry in list_of_entries
            for line in (".TP", bold(f"adexp-{entry.names[0]}") + "(1)",
                         *prose(sentence(entry.text)))]


def see_also(help, helps):
    pages = [page_name(other) + "(1)" for other in helps if other is not help] + ["libadexp(3)"]
    lines = [".BR " + escaped(page.replace("(", " (")) for page in pages]
    return [line + " ," for line in lines[:-1]] + lines[-1:]


def manual_page(help, helps, version, date):
    """The page of @p help; @p helps are all there are, for the references between them."""
    name = page_name(help)
    summary = help.summary.rstrip(".")
    examples = filter(None, help.sections.get(EXAMPLES, []))
    parts = [
        ("SYNOPSIS", synopsis(help)),
        ("DESCRIPTION", paragraphs([sentence(summary), "", *help.description])),
        ("SUBCOMMANDS", subcommands(help.entries(SUBCOMMANDS))),
        ("ARGUMENTS", entries(help.entries(POSITIONALS))),
        ("OPTIONS", entries(help.entries(OPTIONS))),
        ("EXIT STATUS", exit_status(help.entries(EXIT_STATUS))),
        ("EXAMPLES", code(textwrap.dedent("\n".join(examples)).split("\n"))),
        ("SEE ALSO", see_also(help, helps)),
    ]
    lines = [
        f'.TH {escaped(name.upper())} 1 "{date}" "adexp {version}" "adexp manual"',
        ".SH NAME", rf"{escaped(name)} \- {escaped(summary[0].lower() + summary[1:])}",
    ]
    for heading, body in parts:
        if body:
            lines += [f'.SH "{heading}"', *body[body[0] == ".PP":]]
    return "\n".join(lines) + "\n"
