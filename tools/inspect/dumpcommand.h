#ifndef DUMPCOMMAND_H
#define DUMPCOMMAND_H

#include "exitcodes.h"
#include "settingsfile.h"

#include <string>

namespace CLI {
class App;
}

/// What `adexp dump` was asked for.
struct DumpOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    std::string name;                       ///< term or title; empty: all
};

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addDumpCommand(CLI::App* app, DumpOptions* options);

/// Prints the compiled form of terms and message rules.
ExitCode runDump(const DumpOptions& options);

#endif
