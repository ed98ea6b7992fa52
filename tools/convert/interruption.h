#ifndef INTERRUPTION_H
#define INTERRUPTION_H

/// What the command leaves behind when a signal ends it (SIGINT, SIGTERM, SIGHUP, SIGQUIT): no
/// half-written file, whatever thread writes it, and no half line on the terminal.
///
/// The signal then ends the command as it would have without all this. All state is static, since
/// signals belong to the process.
class Interruption
{
public:
    /// From now on the signals are handled, but for those that the caller of the command ignores.
    static void handle();

    /// The signals are left to the other threads.
    static void leaveToOtherThreads();

    /// There is (or is no more) a line on standard error that is to be erased.
    static void setLineShown(bool isShown);
};

#endif
