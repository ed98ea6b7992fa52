// A host that runs for months: a million conversions of good, faulty and refused messages, and a
// thousand loads. The memory of the process stays as it is.
//
// Usage: FOLDER-OF-MESSAGES

#include "countedheap.h"
#include "host.h"

#include <QtGlobal>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <numeric>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

constexpr int Conversions = 1000000;
constexpr int Loads = 1000;
constexpr int WarmUpLoads = 20;
constexpr int Samples = 100;
// Over hundreds of loads the allocator still takes a little more. Lost blocks show in their number;
// this limit is for memory that does not come from the heap.
constexpr double AllowedBytes = 1024 * 1024;

void ignore(QtMsgType, const QMessageLogContext&, const QString&) {}

double residentBytes()
{
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE));
}

double mean(const double* begin, const double* end)
{
    return std::accumulate(begin, end, 0.0) / static_cast<double>(end - begin);
}

// Runs the task again and again. False if memory grows.
template <typename Task>
bool staysFlat(const char* name, int runs, Task task)
{
    std::vector<double> resident;
    resident.reserve(Samples);
    const long blocks = CountedHeap::liveBlocks();
    for (int i = 1; i <= runs; ++i) {
        task(i);
        if (i % (runs / Samples) == 0)
            resident.push_back(residentBytes());
    }
    const double first = mean(resident.data(), resident.data() + Samples / 10);
    const double last = mean(resident.data() + Samples - Samples / 10, resident.data() + Samples);
    const long moreBlocks = CountedHeap::liveBlocks() - blocks; // printf() may take one
    std::printf("%d %s: resident %.0f KiB in the first tenth, %.0f KiB in the last; "
                "%ld blocks, %+ld\n",
                runs, name, first / 1024, last / 1024, blocks, moreBlocks);
    return last - first <= AllowedBytes && moreBlocks == 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    qInstallMessageHandler(&ignore);
    std::vector<std::string> messages = readMessages(argv[1]);
    // Neither a title nor a rule, nor anything at all.
    messages.insert(messages.begin(), {"-ARCID ABC", "-TITLE NOSUCHTITLE -ARCID ABC", ""});
    if (messages.size() < 10 || init() != 0)
        return 2;
    int documents = 0;
    const auto convertNext = [&](int i) {
        documents += convert(messages[static_cast<size_t>(i) % messages.size()]) != "null";
    };
    // The first conversion makes the index of its rule, so the same message always follows.
    const auto loadAgain = [&](int) {
        init();
        convertNext(3);
    };
    // First everything that is kept for good is made.
    const auto convertAll = [&] {
        for (int i = 0; i < static_cast<int>(messages.size()); ++i)
            convertNext(i);
    };

    convertAll();
    for (int i = 0; i < WarmUpLoads; ++i)
        loadAgain(i);
    const bool loadsAreFlat = staysFlat("loads", Loads, loadAgain);
    convertAll();
    const bool conversionsAreFlat = staysFlat("conversions", Conversions, convertNext);
    std::printf("%d documents\n", documents);
    clear_adexp();
    return loadsAreFlat && conversionsAreFlat && documents > Conversions / 2 ? 0 : 1;
}
