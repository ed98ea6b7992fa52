#ifndef VIEWCOMMAND_H
#define VIEWCOMMAND_H

#include "exitcodes.h"
#include "settingsfile.h"

#include <string>

namespace CLI {
class App;
}

/// What `adexp view` was asked for.
struct ViewOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    std::string file;                       ///< the message
    std::string output;                     ///< the page; empty or "-": standard output
};

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addViewCommand(CLI::App* app, ViewOptions* options);

/// Writes the page of a message.
ExitCode runView(const ViewOptions& options);

#endif
