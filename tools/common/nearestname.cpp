#include "nearestname.h"

#include <algorithm>

namespace {

// Names of fields are not longer, and comparing long names takes time.
constexpr std::size_t LongestName = 40;

} // namespace

// The Levenshtein distance with exchanges of neighbours, by the lengths of what is compared of
// both.
std::size_t editDistance(const std::string& a, const std::string& b)
{
    const std::size_t width = b.size() + 1;
    std::vector<std::size_t> changes((a.size() + 1) * width);
    const auto at = [&](std::size_t i, std::size_t j) -> std::size_t& {
        return changes[i * width + j];
    };
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            std::size_t& fewest = at(i, j);
            fewest = i + j;
            if (i > 0 && j > 0)
                fewest = std::min({at(i - 1, j - 1) + (a[i - 1] == b[j - 1] ? 0 : 1),
                                   at(i - 1, j) + 1, at(i, j - 1) + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                fewest = std::min(fewest, at(i - 2, j - 2) + 1);
        }
    }
    return changes.back();
}

std::string nearestName(const std::string& name, const std::vector<std::string>& known)
{
    std::string nearest;
    std::size_t fewest = LongestName + 1;
    for (const std::string& candidate : known) {
        if (std::max(name.size(), candidate.size()) > LongestName)
            continue;
        if (const std::size_t changes = editDistance(name, candidate); changes < fewest) {
            fewest = changes;
            nearest = candidate;
        }
    }
    return nearest;
}
