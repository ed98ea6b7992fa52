#ifndef COMMANDLINE_H
#define COMMANDLINE_H

#include "exitcodes.h"

#include <optional>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

/// Ends the --help of @p command with @p footer and the table of exit codes. Unless @p settings is
/// null, the command gets the option --settings.
void addCommonParts(CLI::App* command, const std::string& footer, std::string* settings);

/// Adds an option @p names whose argument, which may not be empty, goes to @p value.
CLI::Option* addTextOption(CLI::App* command, const std::string& names, std::string* value,
                           const std::string& description);

/// Adds the option --format to @p command; @p isJson becomes true for "json".
void addFormatOption(CLI::App* command, bool* isJson);

/// Parses the arguments of the process into the options of @p app. Returns how the command ends if
/// nothing else is to be done: after --help, --version, and a message about wrong arguments.
std::optional<ExitCode> parseCommandLine(CLI::App* app, int argc, const char* const* argv);

#endif
