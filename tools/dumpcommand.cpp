#include "dumpcommand.h"

#include "adexplib.h"
#include "commandline.h"
#include "console.h"
#include "diagnosticcollector.h"
#include "mainclass.h"
#include "msgrule.h"
#include "nearestname.h"

#include <CLI/CLI.hpp>

#include <vector>

namespace {

constexpr const char* Footer =
    "NAME is a term or the title of a message rule; small letters do as well. Without NAME\n"
    "all are shown as \"NAME = form\": the terms in the order of loading, then the message\n"
    "rules. In the compiled form \"!\" is a sequence, \"|\" a choice, and SEP stands wherever\n"
    "white space may be.\n"
    "\n"
    "Examples:\n"
    "  adexp dump ARCID\n"
    "  adexp dump --settings my.ini\n";

// The terms in load order, then the message rules.
std::vector<const TermStd*> allDefinitions()
{
    std::vector<const TermStd*> definitions(mc->termsList.begin(), mc->termsList.end());
    definitions.insert(definitions.end(), mc->msgRules.begin(), mc->msgRules.end());
    return definitions;
}

ExitCode unknownName(const std::string& name)
{
    std::vector<std::string> known;
    for (const TermStd* definition : allDefinitions())
        known.push_back(definition->config.recordName.toStdString());
    std::string text = "there is no term and no message rule of that name";
    if (const std::string nearest = nearestName(name, known); !nearest.empty())
        text += "; the nearest one is " + nearest;
    printError(name, text);
    return ExitCode::NotDone;
}

void printAll(StandardOutput* out)
{
    for (const TermStd* definition : allDefinitions())
        out->write((definition->config.recordName + QLatin1String(" = ") +
                    definition->dumpData(true) + QLatin1Char('\n'))
                       .toStdString());
}

// A term and a message rule may share a name; both are shown. False if there is neither.
bool printNamed(const QString& name, StandardOutput* out)
{
    bool found = false;
    for (const TermStd* definition : allDefinitions()) {
        if (definition->config.recordName != name)
            continue;
        out->write((definition->dumpData(true) + QLatin1Char('\n')).toStdString());
        found = true;
    }
    return found;
}

ExitCode dump(const std::string& name)
{
    // Rule sets have all their names in upper case.
    const QString recordName = QString::fromStdString(name).toUpper();
    const DiagnosticCollector diagnostics{std::string_view(CommandName)};
    StandardOutput out;
    if (recordName.isEmpty())
        printAll(&out);
    else if (!printNamed(recordName, &out))
        return unknownName(recordName.toStdString());
    if (!out.flush())
        return ExitCode::NotDone;
    return diagnostics.count() == 0 ? ExitCode::Success : ExitCode::WithDiagnostics;
}

} // namespace

CLI::App* addDumpCommand(CLI::App* app, DumpOptions* options)
{
    CLI::App* const command = app->add_subcommand("dump", "Show how terms and rules were compiled");
    addFooter(command, Footer);
    addSettingsOption(command, &options->settings);
    command->add_option("NAME", options->name, "Term or title")->type_name("");
    return command;
}

ExitCode runDump(const DumpOptions& options)
{
    const RuleSet rules(options.settings);
    return rules.isLoaded() ? worse(rules.status(), dump(options.name)) : rules.status();
}
