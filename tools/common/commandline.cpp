#include "commandline.h"

#include "console.h"
#include "nearestname.h"
#include "settingsfile.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <sstream>
#include <vector>

namespace {

// CLI11 takes an argument "[a,b]" for a list of two. A file may have that name.
std::string protectBrackets(const std::string& argument)
{
    const bool looksLikeList =
        argument.size() > 1 && argument.front() == '[' && argument.back() == ']';
    return looksLikeList ? "./" + argument : argument;
}

// In reverse order, as CLI11 wants them.
std::vector<std::string> arguments(int argc, const char* const* argv)
{
    std::vector<std::string> result;
    std::transform(argv + std::min(argc, 1), argv + argc, std::back_inserter(result),
                   protectBrackets);
    std::reverse(result.begin(), result.end());
    return result;
}

bool isOption(const std::string& argument)
{
    return argument.size() > 1 && argument.front() == '-';
}

std::vector<std::string> optionNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
        for (const std::string& name : option->get_snames())
            names.push_back("-" + name);
    }
    return names;
}

std::vector<std::string> subcommandNames(const CLI::App& app)
{
    std::vector<std::string> names;
    for (const CLI::App* subcommand : app.get_subcommands({}))
        names.push_back(subcommand->get_name());
    return names;
}

// "unknown option "--sumary"; the nearest one is "--summary""
std::string unknown(const std::string& kind, const std::string& name,
                    const std::vector<std::string>& known)
{
    return "unknown " + kind + " \"" + name + "\"; the nearest one is \"" +
           nearestName(name, known) + '"';
}

// What is wrong with the first argument that app itself does not know; empty if it knows all.
std::string explainUnknown(const CLI::App& app)
{
    for (const std::string& argument : app.remaining()) {
        if (argument == "--") // CLI11 keeps the mark too
            continue;
        if (isOption(argument))
            return unknown("option", argument.substr(0, argument.find('=')), optionNames(app));
        if (!app.get_parent())
            return unknown("subcommand", argument, subcommandNames(app));
        return "\"" + argument + "\" is one argument too many";
    }
    return {};
}

ExitCode usageError(const CLI::App& app, const CLI::ParseError& error)
{
    // The app and then the subcommand: the argument that stands first is the one explained.
    std::vector<const CLI::App*> levels{&app};
    for (const CLI::App* subcommand : app.get_subcommands())
        levels.push_back(subcommand);
    std::string text;
    std::string help;
    for (const CLI::App* level : levels) {
        help = level == &app ? "adexp --help" : "adexp " + level->get_name() + " --help";
        text = explainUnknown(*level);
        if (!text.empty())
            break;
    }
    if (text.empty())
        text = error.what();
    printError(CommandName, text + "; see " + help);
    return ExitCode::Usage;
}

// Lines of no more than width characters, a longer word aside.
std::string wrapped(const std::string& text, std::size_t width)
{
    std::istringstream words(text);
    std::string lines;
    std::size_t length = 0;
    for (std::string word; words >> word; length += word.size()) {
        const bool fits = length + 1 + word.size() <= width;
        if (length != 0)
            lines += fits ? ' ' : '\n';
        length = length != 0 && fits ? length + 1 : 0;
        lines += word;
    }
    return lines;
}

// The help, with the explanations of options in a column that fits a terminal.
std::string help(CLI::App* app)
{
    constexpr std::size_t Width = 50;
    for (CLI::App* const command : app->get_subcommands()) // the one that was given
        for (CLI::Option* const option : command->get_options())
            option->description(wrapped(option->get_description(), Width));
    return app->help();
}

ExitCode print(const std::string& text)
{
    StandardOutput out;
    out.write(text);
    return out.flush() ? ExitCode::Success : ExitCode::NotDone;
}

} // namespace

CLI::Option* addTextOption(CLI::App* command, const std::string& names, std::string* value,
                           const std::string& description)
{
    const CLI::Validator notEmpty(
        [](const std::string& text) {
            return text.empty() ? std::string("the name is empty") : std::string();
        },
        "");
    return command->add_option(names, *value, description)->check(notEmpty);
}

void addCommonParts(CLI::App* command, const std::string& footer, std::string* settings)
{
    command->footer(footer + '\n' + ExitCodeTable);
    if (settings)
        addTextOption(command, "--settings", settings,
                      std::string("Settings file (ini) of the rule set; without it ") +
                          BuiltInSettings + ", the one in the library")
            ->type_name("FILE");
}

void addFormatOption(CLI::App* command, bool* isJson)
{
    command
        ->add_option_function<std::string>(
            "--format", [isJson](const std::string& format) { *isJson = format == "json"; },
            "Form of what is printed: text, or json for one object per line")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"text", "json"}));
}

std::optional<ExitCode> parseCommandLine(CLI::App* app, int argc, const char* const* argv)
{
    try {
        app->parse(arguments(argc, argv));
        return std::nullopt;
    } catch (const CLI::CallForHelp&) {
        return print(help(app));
    } catch (const CLI::CallForVersion& version) {
        return print(std::string(version.what()) + '\n');
    } catch (const CLI::ParseError& error) {
        return usageError(*app, error);
    }
}
