// How long two threads take over the sample messages, beside two processes and one thread. Called
// by bench/parallel.
//   parallel-probe threads N TURNS      N threads of this process, with one rule set
//   parallel-probe processes N TURNS    N processes with a thread each
// Each converts all samples so many times. Prints the seconds from the start of the first to the
// end of the last.

#include "adexp.hpp"
#include "support/messages.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point begin)
{
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

// Documents are made and thrown away.
void convertAll(const adexp::RuleSet& rules, const std::vector<std::string>& messages, int turns)
{
    adexp::Result result;
    for (int turn = 0; turn < turns; ++turn)
        for (const std::string& message : messages)
            rules.convert(message, &result, {true, false, true, 0});
}

template <typename Work>
void runThreads(int count, Work work)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
}

template <typename Work>
void runProcesses(int count, Work work)
{
    for (int i = 0; i < count; ++i) {
        const pid_t pid = fork();
        if (pid == 0) {
            work();
            _exit(0);
        }
        if (pid == -1)
            std::exit(EXIT_FAILURE);
    }
    while (wait(nullptr) != -1) {
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::fputs("Usage: parallel-probe threads|processes N TURNS\n", stderr);
        return 1;
    }
    const adexp::RuleSet rules(adexp::BuiltIn);
    const std::vector<std::string> messages = bench::sampleMessages();
    const bool areThreads = argv[1] == std::string("threads");
    const int count = std::atoi(argv[2]);
    const int turns = std::atoi(argv[3]);
    const auto work = [&] { convertAll(rules, messages, turns); };
    convertAll(rules, messages, 1 + turns / 100); // warm
    const Clock::time_point begin = Clock::now();
    if (areThreads)
        runThreads(count, work);
    else
        runProcesses(count, work);
    std::printf("%.6f\n", secondsSince(begin));
}
