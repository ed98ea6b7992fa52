#ifndef MATCHCOMMAND_H
#define MATCHCOMMAND_H

#include "exitcodes.h"
#include "ruleset.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// What `adexp match` was asked for.
struct MatchOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    std::string expression;                 ///< an expression in place of a name; empty: a name
    std::vector<std::string> arguments;     ///< NAME and TEXT; with an expression, TEXT
    bool isJson = false;                    ///< the result as a JSON object
};

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addMatchCommand(CLI::App* app, MatchOptions* options);

/// Prints how far a text matches, and what stopped the match.
ExitCode runMatch(const MatchOptions& options);

#endif
