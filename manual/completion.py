"""Writes completions for bash, zsh and fish from the help of a command.

A rule set and the names of files may come from strangers. Therefore no script expands such a text: the
shell itself completes and quotes the names of files, and of the names of definitions only those are
offered that mean nothing but themselves in every shell.
"""
from pathlib import Path

from helptext import OPTIONS, SUBCOMMANDS

FILE = "file"
DEFINITION = "definition"
NOTHING = "none"

# What the placeholders in the help mean. Others are not completed.
KINDS = {
    "FILE": FILE,
    "NAME": DEFINITION,
}

# What every script runs for the names of definitions, with the options for the rule set between the two.
# Neither a large rule set nor a settings file that is a pipe holds up who pressed TAB.
EXPLAIN = "timeout 2 adexp explain"
NAMES = """</dev/null 2>/dev/null |
        grep -m 20000 -xE '[[:alnum:]_][[:alnum:]_.-]*'"""


def kind(placeholder, choices=()):
    """What is completed for an argument or the value of an option."""
    return ",".join(choices) or KINDS.get(placeholder, NOTHING)


def subcommand(help):
    return help.name.split()[-1]


def bash_row(key, value):
    return f"        [{key}]='{value}'"


def bash_arguments(help):
    return " ".join(kind(name) + "..." * is_repeated for name, is_repeated in help.arguments())


def bash_completion(main, helps):
    options = [(subcommand(help), entry) for help in (main, *helps) for entry in help.entries(OPTIONS)]
    return filled("bash", {
        "@OPTIONS@": [bash_row(subcommand(help), ",".join(name for entry in help.entries(OPTIONS)
                                                          for name in entry.names))
                      for help in (main, *helps)],
        "@VALUES@": [bash_row(f"{key} {name}", kind(entry.value, entry.choices))
                     for key, entry in options if entry.value for name in entry.names],
        "@ARGUMENTS@": [bash_row("adexp", ",".join(map(subcommand, helps))),
                        *(bash_row(subcommand(help), bash_arguments(help)) for help in helps)],
    })


ZSH_ACTIONS = {FILE: "_files", DEFINITION: "_adexp_definitions", NOTHING: " "}


def zsh_quoted(text, special):
    """Text inside of apostrophes, in which the characters of @p special have a meaning."""
    for character in special:
        text = text.replace(character, "\\" + character)
    return text.replace("'", r"'\''")


def zsh_action(placeholder, choices=()):
    """The message and the action for an argument or the value of an option."""
    action = ZSH_ACTIONS.get(kind(placeholder, choices)) or f"({' '.join(choices)})"
    return f":{zsh_quoted(placeholder, ':')}:{action}"


def zsh_option(entry):
    excluded = " ".join(name for name in entry.names + entry.excludes if name.startswith("-"))
    text = f"[{zsh_quoted(entry.text, '[]')}]" + \
        (zsh_action(entry.value, entry.choices) if entry.value else "")
    # "+": the value may follow directly; "=": after an equals sign.
    names = [name + ("=" if name.startswith("--") else "+") * bool(entry.value)
             for name in entry.names]
    return [f"'({excluded}){name}{text}'" for name in names]


def zsh_arguments(help):
    return ["'" + ("*" if is_repeated else str(place)) + zsh_action(name) + "'"
            for place, (name, is_repeated) in enumerate(help.arguments(), start=1)]


def zsh_options(help):
    return [line for entry in help.entries(OPTIONS) for line in zsh_option(entry)]


def zsh_case(help):
    lines = [f"            {subcommand(help)})", "                _arguments \\"]
    specifications = zsh_options(help) + zsh_arguments(help)
    lines += [f"                    {line} \\" for line in specifications[:-1]]
    return [*lines, f"                    {specifications[-1]}", "                ;;"]


def zsh_completion(main, helps):
    return filled("zsh", {
        "@SUBCOMMANDS@": [f"        '{entry.names[0]}:{zsh_quoted(entry.text, ':')}'"
                          for entry in main.entries(SUBCOMMANDS)],
        "@OPTIONS@": [f"        {line} \\" for line in zsh_options(main)],
        "@CASES@": [line for help in helps for line in zsh_case(help)],
    })


# "-f": no files.
FISH_ACTIONS = {FILE: "-F", DEFINITION: "-f -a '(__adexp_definitions)'", NOTHING: "-f"}


def fish_quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def fish_action(placeholder, choices=()):
    return FISH_ACTIONS.get(kind(placeholder, choices), f"-f -a {fish_quoted(' '.join(choices))}")


def fish_row(condition, *words):
    return " ".join(filter(None, ("complete -c adexp -n", fish_quoted(condition), *words)))


def fish_option(help, entry):
    names = [f"-l {name[2:]}" if name.startswith("--") else f"-s {name[1:]}" for name in entry.names]
    value = ("-r", fish_action(entry.value, entry.choices)) if entry.value else ()
    return fish_row(f"__adexp_in {subcommand(help)}", *names, *value, "-d", fish_quoted(entry.text))


def fish_arguments(help):
    return [fish_row(f"__adexp_at {subcommand(help)} {'-ge' if is_repeated else '-eq'} {place}",
                     fish_action(name))
            for place, (name, is_repeated) in enumerate(help.arguments())]


def fish_specification(entry):
    """The option for the shell's parser of options; it may stand there again."""
    return "/".join(name.lstrip("-") for name in entry.names) + "=+" * bool(entry.value)


def fish_case(help):
    specifications = " ".join(map(fish_specification, help.entries(OPTIONS)))
    return [f"        case {subcommand(help)}", f"            set options {specifications}"]


def fish_completion(main, helps):
    return filled("fish", {
        "@CASES@": [line for help in helps for line in fish_case(help)],
        "@ROWS@": [*(fish_row("__adexp_in adexp", "-a", entry.names[0], "-d", fish_quoted(entry.text))
                     for entry in main.entries(SUBCOMMANDS)),
                   *(fish_option(help, entry) for help in (main, *helps)
                     for entry in help.entries(OPTIONS)),
                   *(line for help in helps for line in fish_arguments(help))],
    })


def filled(shell, rows):
    """The script of the shell, with the rows in place of the marks."""
    script = (Path(__file__).parent / f"completion.{shell}.in").read_text(encoding="utf-8")
    for mark, lines in {**rows, "@EXPLAIN@": [EXPLAIN], "@NAMES@": [NAMES]}.items():
        script = script.replace(mark, "\n".join(lines))
    return script
