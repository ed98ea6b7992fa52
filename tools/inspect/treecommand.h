#ifndef TREECOMMAND_H
#define TREECOMMAND_H

#include "exitcodes.h"
#include "settingsfile.h"

#include <string>

namespace CLI {
class App;
}

/// What `adexp tree` was asked for.
struct TreeOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    std::string file;                       ///< the message
};

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addTreeCommand(CLI::App* app, TreeOptions* options);

/// Prints the tree of the fields of a message.
ExitCode runTree(const TreeOptions& options);

#endif
