#include "commandline.h"
#include "commands.h"
#include "console.h"
#include "inputfile.h"
#include "loadedrules.h"
#include "settingsfile.h"
#include "whynotconverted.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace {

struct TreeOptions
{
    std::string settings = BuiltInSettings;
    std::string file; // the message
};

constexpr const char* TreeFooter =
    "There is a line for each field, with its name and data, indented by depth. If there are\n"
    "fields in it, they stand between \"++ Begin\" and \"++ End\". A field that the rule set does\n"
    "not allow at its place is marked as unknown. \"-\" reads standard input.\n"
    "\n"
    "Example:\n"
    "  adexp tree plan.adexp\n";

// The field and those in it, a line for each, indented by depth. A call for each level, which the
// rule set bounds.
void appendTree(const adexp::Field& field, const std::string& indent, std::string* lines)
{
    const std::string name(field.name());
    lines->append(indent).append(name).append(" ").append(field.data());
    if (!field.isKnown()) {
        const std::optional<adexp::Field> parent = field.parent();
        lines->append(" : -- <")
            .append(parent ? parent->name() : "???")
            .append("> Unknown field --");
    }
    lines->append(" \n");
    if (field.children().empty())
        return;
    const std::string title = " sub fields for " + name + " ++ \n";
    lines->append(indent).append("++ Begin").append(title);
    for (const adexp::Field child : field.children())
        appendTree(child, indent + "   ", lines);
    lines->append(indent).append("++ End").append(title);
}

ExitCode showTree(const std::string& name, const std::string& message, const adexp::RuleSet& rules)
{
    const adexp::Result result = rules.convert(message, {false, true, true, 0});
    for (const adexp::Finding finding : result.findings())
        printError(name, finding.report());
    StandardOutput out;
    std::string lines;
    if (const std::optional<adexp::Field> root = result.message())
        appendTree(*root, std::string(), &lines);
    out.write(lines);
    if (!out.flush())
        return ExitCode::NotDone;
    if (!result.isOk()) {
        printError(name, "no fields: " + whyNotConverted(result));
        return ExitCode::NotDone;
    }
    return result.findings().empty() ? ExitCode::Success : ExitCode::WithDiagnostics;
}

ExitCode runTree(const TreeOptions& options)
{
    const std::string name = displayName(options.file);
    std::string message;
    if (const std::string error = readInput(options.file, &message); !error.empty()) {
        printError(name, "no fields: " + error);
        return ExitCode::NotDone;
    }
    return withRules(options.settings, false,
                     [&](const adexp::RuleSet& rules) { return showTree(name, message, rules); });
}

} // namespace

void addTreeCommand(CLI::App* app, ExitCode* status)
{
    CLI::App* const command = app->add_subcommand("tree", "Show the tree of fields of a message");
    const auto options = std::make_shared<TreeOptions>();
    addCommonParts(command, TreeFooter, &options->settings);
    command->add_option("FILE", options->file, "Message")->type_name("")->required();
    command->final_callback([options, status] { *status = runTree(*options); });
}
