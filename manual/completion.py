"""Writes completions for bash and zsh from the help of a command."""
from helptext import OPTIONS, SUBCOMMANDS

FILE = "file"
FOLDER = "folder"
DEFINITION = "definition"
NOTHING = "none"

# What the placeholders in the help mean. Others are not completed.
KINDS = {
    "FILE": FILE,
    "FOLDER": FOLDER,
    "NAME": DEFINITION,
}

BASH = """\
# Completion of the command adexp for bash. Made from what its --help says.

# Completes the word $1 as the name of a definition in the rule set of the command line.
_adexp_definitions()
{
    local names settings=() index
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if [[ ${COMP_WORDS[index]} == --settings ]]; then
            [[ ${COMP_WORDS[index + 1]} == = ]] && ((++index))
            settings=(--settings "${COMP_WORDS[index + 1]}")
        fi
    done
    names=$(adexp dump "${settings[@]}" 2>/dev/null | cut -d ' ' -f 1)
    mapfile -t COMPREPLY < <(compgen -W "$names" -- "${1^^}")
}

# Completes the word $1 as $2 says: a kind of names, or words with commas between them.
_adexp_value()
{
    case $2 in
        none) ;;
        file | folder)
            compopt -o filenames 2>/dev/null
            mapfile -t COMPREPLY < <(compgen -A "${2/folder/directory}" -- "$1")
            ;;
        definition) _adexp_definitions "$1" ;;
        *) mapfile -t COMPREPLY < <(compgen -W "${2//,/ }" -- "$1") ;;
    esac
}

_adexp()
{
    # By subcommand; "adexp" is the command without one.
    local -A options=(
@OPTIONS@
    )
    # What an option takes.
    local -A values=(
@VALUES@
    )
    # What the arguments are; "..." after the last one says that there may be more of them.
    local -A arguments=(
@ARGUMENTS@
    )
    local word=${COMP_WORDS[COMP_CWORD]} kinds subcommand=adexp value="" place=0 index
    COMPREPLY=()

    for ((index = 1; index < COMP_CWORD; ++index)); do
        case ${COMP_WORDS[index]} in
            =) ;; # "--option=value" comes as three words
            -?*) value=${values[$subcommand ${COMP_WORDS[index]}]} ;;
            *)
                if [[ -n $value ]]; then
                    value=
                elif [[ $subcommand == adexp ]]; then
                    subcommand=${COMP_WORDS[index]}
                else
                    ((++place))
                fi
                ;;
        esac
    done
    [[ $word == = ]] && word=

    if [[ -n $value ]]; then
        _adexp_value "$word" "$value"
    elif [[ $word == -* ]]; then
        _adexp_value "$word" "${options[$subcommand]:-none}"
    else
        read -ra kinds <<<"${arguments[$subcommand]}"
        local kind=${kinds[place]:-none}
        [[ ${kinds[*]} == *... ]] && ((place >= ${#kinds[@]})) && kind=${kinds[-1]}
        _adexp_value "$word" "${kind%...}"
    fi
}
complete -F _adexp adexp
"""

ZSH = """\
#compdef adexp
# Completion of the command adexp for zsh. Made from what its --help says.

# Completes the name of a definition in the rule set of the command line.
_adexp_definitions()
{
    local -a names settings
    [[ -n $opt_args[--settings] ]] && settings=(--settings ${(Q)opt_args[--settings]})
    names=(${(f)"$(adexp dump $settings 2>/dev/null | cut -d ' ' -f 1)"})
    compadd -M 'm:{a-z}={A-Z}' -a names
}

_adexp()
{
    local curcontext=$curcontext state line
    local -A opt_args
    local -a subcommands=(
@SUBCOMMANDS@
    )
    _arguments -C \\
@OPTIONS@
        '1:subcommand:->subcommand' \\
        '*::argument:->argument'
    if [[ $state == subcommand ]]; then
        _describe subcommand subcommands
    elif [[ $state == argument ]]; then
        case $line[1] in
@CASES@
        esac
    fi
}

_adexp "$@"
"""


def kind(placeholder, choices=()):
    """What is completed for an argument or the value of an option."""
    return ",".join(choices) or KINDS.get(placeholder, NOTHING)


def bash_row(key, value):
    return f"        [{key}]='{value}'"


def bash_arguments(help):
    return " ".join(kind(name) + "..." * is_repeated for name, is_repeated in help.arguments())


def bash_completion(main, helps):
    subcommands = [help.name.split()[1] for help in helps]
    keys = {"adexp": main, **dict(zip(subcommands, helps))}
    options = [(key, entry) for key, help in keys.items() for entry in help.entries(OPTIONS)]
    rows = {
        "@OPTIONS@": [bash_row(key, ",".join(name for entry in help.entries(OPTIONS)
                                             for name in entry.names))
                      for key, help in keys.items()],
        "@VALUES@": [bash_row(f"{key} {name}", kind(entry.value, entry.choices))
                     for key, entry in options if entry.value for name in entry.names],
        "@ARGUMENTS@": [bash_row("adexp", ",".join(subcommands)),
                        *(bash_row(key, bash_arguments(help))
                          for key, help in zip(subcommands, helps))],
    }
    return filled(BASH, rows)


ZSH_ACTIONS = {FILE: "_files", FOLDER: "_files -/", DEFINITION: "_adexp_definitions", NOTHING: " "}


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
    lines = [f"            {help.name.split()[1]})", "                _arguments \\"]
    specifications = zsh_options(help) + zsh_arguments(help)
    lines += [f"                    {line} \\" for line in specifications[:-1]]
    return [*lines, f"                    {specifications[-1]}", "                ;;"]


def zsh_completion(main, helps):
    rows = {
        "@SUBCOMMANDS@": [f"        '{entry.names[0]}:{zsh_quoted(entry.text, ':')}'"
                          for entry in main.entries(SUBCOMMANDS)],
        "@OPTIONS@": [f"        {line} \\" for line in zsh_options(main)],
        "@CASES@": [line for help in helps for line in zsh_case(help)],
    }
    return filled(ZSH, rows)


def filled(template, rows):
    for mark, lines in rows.items():
        template = template.replace(mark, "\n".join(lines))
    return template
