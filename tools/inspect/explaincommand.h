#ifndef EXPLAINCOMMAND_H
#define EXPLAINCOMMAND_H

#include "exitcodes.h"
#include "settingsfile.h"

#include <string>

namespace CLI {
class App;
}

/// What `adexp explain` was asked for.
struct ExplainOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    std::string name;                       ///< definition or title; empty: show the names of all
};

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addExplainCommand(CLI::App* app, ExplainOptions* options);

/// Prints what is known of a definition or message rule, or the names of all.
ExitCode runExplain(const ExplainOptions& options);

#endif
