#include "interruption.h"

#include "askingsignals.h"
#include "uninterrupted.h"

#include <atomic>
#include <csignal>
#include <string_view>
#include <unistd.h>

namespace {

std::atomic<bool> s_isLineShown; // lock-free, therefore a handler may use it

// Calls nothing but what is allowed in a handler. The signal comes again when the handler returns.
void endCommand(int signal)
{
    Uninterrupted::end();
    constexpr std::string_view EraseLine = "\r\x1b[K";
    if (s_isLineShown && write(STDERR_FILENO, EraseLine.data(), EraseLine.size()) == -1) {
        // The terminal is gone, so is the line.
    }
    static_cast<void>(std::signal(signal, SIG_DFL));
    static_cast<void>(raise(signal));
}

} // namespace

void Interruption::handle()
{
    struct sigaction action
    {
    };
    action.sa_handler = endCommand;
    action.sa_mask = askingSignals();
    for (const int signal : AskingSignals) {
        struct sigaction before
        {
        };
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

void Interruption::leaveToOtherThreads()
{
    const sigset_t asking = askingSignals();
    pthread_sigmask(SIG_BLOCK, &asking, nullptr);
}

void Interruption::setLineShown(bool isShown)
{
    s_isLineShown = isShown;
}
