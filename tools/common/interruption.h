#ifndef INTERRUPTION_H
#define INTERRUPTION_H

#include <csignal>

/// What the command leaves behind when a signal ends it (SIGINT, SIGTERM, SIGHUP, SIGQUIT): no
/// half-written file, whatever thread writes it, and no half line on the terminal.
///
/// The signal then ends the command as it would have without all this. All state is static, since
/// signals belong to the process.
class Interruption
{
public:
    /// Holds these signals back as long as an object of this class lives. One that came meanwhile
    /// acts afterwards.
    class Delay
    {
    public:
        /// When the process is about to end, waits for that instead.
        Delay();
        ~Delay();

        Delay(const Delay&) = delete;
        Delay& operator=(const Delay&) = delete;

    private:
        sigset_t m_before{};
    };

    /// From now on the signals are handled, but for those that the caller of the command ignores.
    static void handle();

    /// The signals are left to the other threads. Returns those that were left to them before.
    static sigset_t leaveToOtherThreads();

    /// There is (or is no more) a line on standard error that is to be erased.
    static void setLineShown(bool isShown);
};

#endif
