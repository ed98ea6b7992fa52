#ifndef UNINTERRUPTED_H
#define UNINTERRUPTED_H

#include <csignal>

/// Holds back the end of the process by a signal that asks for it (SIGINT, SIGTERM, SIGHUP,
/// SIGQUIT), as long as an object of this class lives. A signal that came meanwhile acts
/// afterwards.
class Uninterrupted
{
public:
    /// When the process is about to end, waits for that instead.
    Uninterrupted();
    ~Uninterrupted();

    Uninterrupted(const Uninterrupted&) = delete;
    Uninterrupted& operator=(const Uninterrupted&) = delete;

    /// For the handler of these signals: returns when there is no such object in any thread, and
    /// none comes any more.
    static void end();

private:
    sigset_t m_before{};
};

#endif
