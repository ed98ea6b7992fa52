#ifndef COMMANDS_H
#define COMMANDS_H

#include "exitcodes.h"

namespace CLI {
class App;
}

// Each adds a subcommand to @p app. If the arguments of the process ask for it, it works at the end
// of their parsing, and @p status, which must outlive that, receives how it ended.

void addCheckCommand(CLI::App* app, ExitCode* status);
void addConvertCommand(CLI::App* app, ExitCode* status);
void addDumpCommand(CLI::App* app, ExitCode* status);
void addExplainCommand(CLI::App* app, ExitCode* status);
void addMatchCommand(CLI::App* app, ExitCode* status);
void addTreeCommand(CLI::App* app, ExitCode* status);
void addViewCommand(CLI::App* app, ExitCode* status);

#endif
