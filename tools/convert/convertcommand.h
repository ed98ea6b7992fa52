#ifndef CONVERTCOMMAND_H
#define CONVERTCOMMAND_H

#include "convertoptions.h"
#include "exitcodes.h"

namespace CLI {
class App;
}

/// Adds the subcommand to @p app; its arguments go to @p options, which must outlive the parsing.
CLI::App* addConvertCommand(CLI::App* app, ConvertOptions* options);

/// Converts messages to documents.
ExitCode runConvert(const ConvertOptions& options);

#endif
