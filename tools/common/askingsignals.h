#ifndef ASKINGSIGNALS_H
#define ASKINGSIGNALS_H

#include <csignal>

/// The signals that ask a process to end.
constexpr int AskingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

/// The same as a set.
inline sigset_t askingSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : AskingSignals)
        sigaddset(&set, signal);
    return set;
}

#endif
