#include "processors.h"

#include <algorithm>
#include <fstream>
#include <sched.h>
#include <string>
#include <string_view>
#include <thread>

namespace fs = std::filesystem;

namespace {

// As many as the affinity allows.
int processorsToRunOn()
{
    cpu_set_t processors;
    if (sched_getaffinity(0, sizeof processors, &processors) == 0)
        return CPU_COUNT(&processors);
    return static_cast<int>(
        std::thread::hardware_concurrency()); // there are more than fit in a set
}

// A file cpu.max holds the time allowed in each period, and the period: "150000 100000". 0: no
// limit, or there is no such file.
int processorsAllowedBy(const fs::path& file)
{
    std::ifstream in(file);
    long long allowed = 0; // "max" is no number
    long long period = 0;
    if (!(in >> allowed >> period) || allowed <= 0 || period <= 0)
        return 0;
    return static_cast<int>(std::min<long long>((allowed + period - 1) / period, 1 << 20));
}

// The group of version 2 stands behind "0::".
fs::path ownGroup()
{
    std::ifstream in("/proc/self/cgroup");
    constexpr std::string_view Begin = "0::/";
    for (std::string line; std::getline(in, line);)
        if (line.compare(0, Begin.size(), Begin) == 0)
            return line.substr(Begin.size());
    return {};
}

} // namespace

int processorsOfGroup(const fs::path& root, const fs::path& group)
{
    int fewest = processorsAllowedBy(root / "cpu.max");
    fs::path folder = root;
    for (const fs::path& name : group) {
        folder /= name;
        const int allowed = processorsAllowedBy(folder / "cpu.max");
        if (allowed != 0)
            fewest = fewest == 0 ? allowed : std::min(fewest, allowed);
    }
    return fewest;
}

int usableProcessors()
{
    const int processors = std::max(processorsToRunOn(), 1);
    const int allowed = processorsOfGroup("/sys/fs/cgroup", ownGroup());
    return allowed == 0 ? processors : std::min(processors, allowed);
}
