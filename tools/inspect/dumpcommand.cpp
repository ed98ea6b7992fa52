#include "commandline.h"
#include "commands.h"
#include "console.h"
#include "definitions.h"
#include "grammar/termstd.h"
#include "loadedrules.h"
#include "settingsfile.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <vector>

namespace {

struct DumpOptions
{
    std::string settings = BuiltInSettings;
    std::string name; // term or title; empty: all
};

constexpr const char* DumpFooter =
    "NAME is a term or the title of a message rule, in capital or small letters. Without NAME\n"
    "all are shown as \"NAME = form\": the terms in the order of loading, then the message\n"
    "rules. In the compiled form, \"!\" is a sequence, \"|\" is a choice, and SEP shows where\n"
    "white space may be.\n"
    "\n"
    "Examples:\n"
    "  adexp dump ARCID\n"
    "  adexp dump --settings my.ini\n";

ExitCode dump(const MainClass& rules, const std::string& name)
{
    const std::vector<TermStd*> definitions =
        name.empty() ? allDefinitions(rules) : definitionsNamed(rules, name);
    if (definitions.empty() && !name.empty())
        return ExitCode::NotDone;
    StandardOutput out;
    for (const TermStd* definition : definitions) {
        if (name.empty())
            out.write(definition->config.recordName.toStdString() + " = ");
        out.write(definition->dumpData(true).toStdString() + '\n');
    }
    return out.flush() ? ExitCode::Success : ExitCode::NotDone;
}

} // namespace

void addDumpCommand(CLI::App* app, ExitCode* status)
{
    CLI::App* const command = app->add_subcommand("dump", "Show how terms and rules were compiled");
    const auto options = std::make_shared<DumpOptions>();
    addCommonParts(command, DumpFooter, &options->settings);
    command->add_option("NAME", options->name, "Term or title")->type_name("");
    command->final_callback([options, status] {
        *status = withRules(options->settings, false, [&](const adexp::RuleSet& rules) {
            return dump(insideOf(rules), options->name);
        });
    });
}
