#include "interruption.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <string_view>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int AskingToEnd[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// Lock-free, therefore a handler may use them.
std::atomic<pid_t> s_processes[Interruption::MaxProcesses];
std::atomic<bool> s_isLineShown;

void endProcesses()
{
    for (const std::atomic<pid_t>& process : s_processes)
        if (process != 0)
            kill(process, SIGTERM);
    // A process that is writing a file ends when the file is complete.
    for (const std::atomic<pid_t>& process : s_processes)
        while (process != 0 && waitpid(process, nullptr, 0) == -1 && errno == EINTR) {
        }
}

// Calls nothing but what is allowed in a handler. The signal comes again when the handler returns.
void endCommand(int signal)
{
    endProcesses();
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
    for (const int signal : AskingToEnd)
        sigaddset(&action.sa_mask, signal);
    for (const int signal : AskingToEnd) {
        struct sigaction before
        {
        };
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN)
            sigaction(signal, &action, nullptr);
    }
}

void Interruption::leaveToParent(pid_t parent)
{
    for (const int signal : AskingToEnd)
        static_cast<void>(std::signal(signal, signal == SIGTERM ? SIG_DFL : SIG_IGN));
    for (std::atomic<pid_t>& process : s_processes)
        process = 0;
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) // it ended before
        _exit(0);
}

void Interruption::setProcess(int place, pid_t pid)
{
    s_processes[place] = pid;
}

void Interruption::setLineShown(bool isShown)
{
    s_isLineShown = isShown;
}
