#ifndef MATCHCOMMAND_H
#define MATCHCOMMAND_H

#include "exitcodes.h"
#include "settingsfile.h"

#include <optional>
#include <string>

namespace CLI {
class App;
}

/// What `adexp match` was asked for.
struct MatchOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    std::string expression;                 ///< an expression in place of a name; empty: a name
    std::optional<std::string> first;       ///< NAME; with an expression, TEXT
    std::optional<std::string> second;      ///< TEXT; with an expression, nothing
    bool isJson = false;                    ///< the result as a JSON object
};

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addMatchCommand(CLI::App* app, MatchOptions* options);

/// Prints how far a text matches, and what stopped the match.
ExitCode runMatch(const MatchOptions& options);

#endif
