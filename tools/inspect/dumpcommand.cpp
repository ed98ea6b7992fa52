#include "dumpcommand.h"

#include "commandline.h"
#include "console.h"
#include "definitions.h"
#include "grammar/termstd.h"
#include "loadedrules.h"

#include <CLI/CLI.hpp>

#include <vector>

namespace {

constexpr const char* DumpFooter =
    "NAME is a term or the title of a message rule, in capital or small letters. Without NAME\n"
    "all are shown as \"NAME = form\": the terms in the order of loading, then the message\n"
    "rules. In the compiled form, \"!\" is a sequence, \"|\" is a choice, and SEP shows where\n"
    "white space may be.\n"
    "\n"
    "Examples:\n"
    "  adexp dump ARCID\n"
    "  adexp dump --settings my.ini\n";

void printAll(const MainClass& rules, StandardOutput* out)
{
    for (const TermStd* definition : allDefinitions(rules))
        out->write((definition->config.recordName + QLatin1String(" = ") +
                    definition->dumpData(true) + QLatin1Char('\n'))
                       .toStdString());
}

// False if there is no definition of that name.
bool printNamed(const MainClass& rules, const QString& name, StandardOutput* out)
{
    const std::vector<TermStd*> definitions = definitionsNamed(rules, name);
    for (const TermStd* definition : definitions)
        out->write((definition->dumpData(true) + QLatin1Char('\n')).toStdString());
    return !definitions.empty();
}

ExitCode dump(const MainClass& rules, const std::string& name)
{
    // All names in a rule set are in upper case.
    const QString recordName = QString::fromStdString(name).toUpper();
    StandardOutput out;
    if (recordName.isEmpty()) {
        printAll(rules, &out);
    } else if (!printNamed(rules, recordName, &out)) {
        printUnknownName(rules, recordName);
        return ExitCode::NotDone;
    }
    return out.flush() ? ExitCode::Success : ExitCode::NotDone;
}

} // namespace

CLI::App* addDumpCommand(CLI::App* app, DumpOptions* options)
{
    CLI::App* const command = app->add_subcommand("dump", "Show how terms and rules were compiled");
    addFooter(command, DumpFooter);
    addSettingsOption(command, &options->settings);
    command->add_option("NAME", options->name, "Term or title")->type_name("");
    return command;
}

ExitCode runDump(const DumpOptions& options)
{
    const LoadedRules rules(options.settings);
    if (!rules.isLoaded())
        return rules.status();
    return worse(rules.status(), dump(insideOf(rules.rules()), options.name));
}
