#include "uninterrupted.h"

#include "askingsignals.h"

#include <atomic>
#include <poll.h>
#include <unistd.h>

namespace {

// Lock-free, therefore a handler may use them.
std::atomic<int> s_count;
std::atomic<bool> s_isEnding;

} // namespace

// Counted before it looks whether the process ends, and the handler does it the other way round:
// one of the two sees the other.
Uninterrupted::Uninterrupted()
{
    const sigset_t asking = askingSignals();
    pthread_sigmask(SIG_BLOCK, &asking, &m_before);
    ++s_count;
    if (!s_isEnding)
        return;
    --s_count;
    for (;;)
        pause();
}

Uninterrupted::~Uninterrupted()
{
    --s_count;
    pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

void Uninterrupted::end()
{
    s_isEnding = true;
    while (s_count != 0)
        poll(nullptr, 0, 1); // sleeps; a handler may call it
}
