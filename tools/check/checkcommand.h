#ifndef CHECKCOMMAND_H
#define CHECKCOMMAND_H

#include "exitcodes.h"
#include "settingsfile.h"

#include <string>

namespace CLI {
class App;
}

/// What `adexp check` was asked for.
struct CheckOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    bool isJson = false;                    ///< one JSON object per finding
};

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addCheckCommand(CLI::App* app, CheckOptions* options);

/// Prints all that can be said about a rule set.
ExitCode runCheck(const CheckOptions& options);

#endif
