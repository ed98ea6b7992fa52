#ifndef EXITCODES_H
#define EXITCODES_H

#include <algorithm>

/// How the command ends. A higher number is worse, and a batch ends with its worst.
enum class ExitCode {
    Success = 0,         ///< everything was done, nothing was reported
    WithDiagnostics = 1, ///< everything was done; something was reported
    NotDone = 2,         ///< something could not be converted, shown or written
    Usage = 64,          ///< the arguments are wrong; nothing was done
};

/// The same table for --help. A signal ends the command as it ends any other command; shells show
/// that as 128+n.
constexpr const char* ExitCodeTable =
    "Exit status:\n"
    "  0      all was done, nothing was reported\n"
    "  1      all was done; something about a message or the rule set was reported\n"
    "  2      something was not done: no -TITLE, no rule for the title, a file that\n"
    "         cannot be read, a rule set that cannot be loaded, output not writable\n"
    "  64     the arguments are wrong\n"
    "  128+n  ended by signal n (as shells show it)\n";

/// The worse of two.
inline ExitCode worse(ExitCode a, ExitCode b)
{
    return std::max(a, b);
}

#endif
