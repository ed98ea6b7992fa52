#include "interruption.h"

#include <atomic>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace {

constexpr int Signals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// Lock-free, therefore a handler may use them.
std::atomic<int> s_delays;
std::atomic<bool> s_isEnding;
std::atomic<bool> s_isLineShown;

sigset_t allSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : Signals)
        sigaddset(&set, signal);
    return set;
}

// Calls nothing but what is allowed in a handler. The signal comes again when the handler returns.
void endCommand(int signal)
{
    s_isEnding = true;
    while (s_delays != 0)
        poll(nullptr, 0, 1); // sleeps
    constexpr std::string_view EraseLine = "\r\x1b[K";
    if (s_isLineShown && write(STDERR_FILENO, EraseLine.data(), EraseLine.size()) == -1) {
        // The terminal is gone, so is the line.
    }
    static_cast<void>(std::signal(signal, SIG_DFL));
    static_cast<void>(raise(signal));
}

} // namespace

// Counted before it looks whether the process ends, and the handler does it the other way round:
// one of the two sees the other.
Interruption::Delay::Delay() : m_before(leaveToOtherThreads())
{
    ++s_delays;
    if (!s_isEnding)
        return;
    --s_delays;
    for (;;)
        pause();
}

Interruption::Delay::~Delay()
{
    --s_delays;
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void Interruption::handle()
{
    struct sigaction action
    {
    };
    action.sa_handler = endCommand;
    action.sa_mask = allSignals();
    for (const int signal : Signals) {
        struct sigaction before
        {
        };
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

sigset_t Interruption::leaveToOtherThreads()
{
    const sigset_t asking = allSignals();
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &asking, &before);
    return before;
}

void Interruption::setLineShown(bool isShown)
{
    s_isLineShown = isShown;
}
