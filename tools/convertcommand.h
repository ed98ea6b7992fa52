#ifndef CONVERTCOMMAND_H
#define CONVERTCOMMAND_H

#include "exitcodes.h"
#include "ruleset.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

/// What `adexp convert` was asked for.
struct ConvertOptions
{
    std::string settings = BuiltInSettings; ///< settings file of the rule set
    std::vector<std::string> files;         ///< messages; none: standard input
    std::string output;                     ///< file or folder; empty: standard output
    bool summary = false;                   ///< report the coverage, write no documents
};

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addConvertCommand(CLI::App* app, ConvertOptions* options);

/// Converts messages to documents.
ExitCode runConvert(const ConvertOptions& options);

#endif
