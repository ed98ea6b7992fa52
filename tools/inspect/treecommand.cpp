#include "treecommand.h"

#include "adexpdoc.h"
#include "adexplib.h"
#include "commandline.h"
#include "console.h"
#include "conversion.h"
#include "diagnosticcollector.h"
#include "inputfile.h"
#include "mainclass.h"

#include <CLI/CLI.hpp>

namespace {

constexpr const char* TreeFooter =
    "There is a line for each field, with its name and data, indented by depth. If there are\n"
    "fields in it, they stand between \"++ Begin\" and \"++ End\". A field that the rule set does\n"
    "not allow at its place is marked as unknown. \"-\" reads standard input.\n"
    "\n"
    "Example:\n"
    "  adexp tree plan.adexp\n";

void printTree(const AdexpField& root, StandardOutput* out)
{
    const DiagnosticCollector toStandardOutput(
        [out](const QString& line) { out->write(line.toStdString() + '\n'); });
    root.dumpData();
}

ExitCode showTree(const std::string& name, const std::string& message)
{
    const DiagnosticCollector diagnostics{std::string_view(name)};
    AdexpDoc doc(QString::fromUtf8(message.data(), static_cast<int>(message.size())));
    doc.setRootField(&mc->msgRules);
    doc.parse();

    StandardOutput out;
    if (doc.rootField)
        printTree(*doc.rootField, &out);
    if (!out.flush())
        return ExitCode::NotDone;
    if (!doc.rootField || !doc.rootField->fieldTerm) {
        printError(name, "no fields: " + whyNotConverted(message));
        return ExitCode::NotDone;
    }
    return diagnostics.count() == 0 ? ExitCode::Success : ExitCode::WithDiagnostics;
}

} // namespace

CLI::App* addTreeCommand(CLI::App* app, TreeOptions* options)
{
    CLI::App* const command = app->add_subcommand("tree", "Show the tree of fields of a message");
    addFooter(command, TreeFooter);
    addSettingsOption(command, &options->settings);
    command->add_option("FILE", options->file, "Message")->type_name("")->required();
    return command;
}

ExitCode runTree(const TreeOptions& options)
{
    const std::string name = displayName(options.file);
    std::string message;
    if (const std::string error = readInput(options.file, &message); !error.empty()) {
        printError(name, "no fields: " + error);
        return ExitCode::NotDone;
    }
    const RuleSet rules(options.settings);
    return rules.isLoaded() ? worse(rules.status(), showTree(name, message)) : rules.status();
}
