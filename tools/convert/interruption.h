#ifndef INTERRUPTION_H
#define INTERRUPTION_H

#include <sys/types.h>

/// What the command leaves behind when a signal ends it (SIGINT, SIGTERM, SIGHUP, SIGQUIT): no
/// process that works for it, and no half line on the terminal.
///
/// The signal then ends the command as it would have without all this. All state is static, since
/// signals belong to the process.
class Interruption
{
public:
    /// The most processes that can be ended.
    static constexpr int MaxProcesses = 256;

    /// From now on the signals are handled, but for those that the caller of the command ignores.
    static void handle();

    /// For a process that works for the command: it ends with the command and by it alone, whatever
    /// the terminal sends to both.
    static void leaveToParent(pid_t parent);

    /// The process @p pid works for the command at @p place (from 0, below MaxProcesses); 0: none
    /// does any more.
    static void setProcess(int place, pid_t pid);

    /// There is (or is no more) a line on standard error that is to be erased.
    static void setLineShown(bool isShown);
};

#endif
