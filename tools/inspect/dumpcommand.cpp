#include "dumpcommand.h"

#include "commandline.h"
#include "console.h"
#include "definitions.h"
#include "diagnosticcollector.h"
#include "termstd.h"

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

void printAll(StandardOutput* out)
{
    for (const TermStd* definition : allDefinitions())
        out->write((definition->config.recordName + QLatin1String(" = ") +
                    definition->dumpData(true) + QLatin1Char('\n'))
                       .toStdString());
}

// False if there is no definition of that name.
bool printNamed(const QString& name, StandardOutput* out)
{
    const std::vector<TermStd*> definitions = definitionsNamed(name);
    for (const TermStd* definition : definitions)
        out->write((definition->dumpData(true) + QLatin1Char('\n')).toStdString());
    return !definitions.empty();
}

ExitCode dump(const std::string& name)
{
    // All names in a rule set are in upper case.
    const QString recordName = QString::fromStdString(name).toUpper();
    const DiagnosticCollector diagnostics{std::string_view(CommandName)};
    StandardOutput out;
    if (recordName.isEmpty()) {
        printAll(&out);
    } else if (!printNamed(recordName, &out)) {
        printUnknownName(recordName);
        return ExitCode::NotDone;
    }
    if (!out.flush())
        return ExitCode::NotDone;
    return diagnostics.count() == 0 ? ExitCode::Success : ExitCode::WithDiagnostics;
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
    const RuleSet rules(options.settings);
    return rules.isLoaded() ? worse(rules.status(), dump(options.name)) : rules.status();
}
