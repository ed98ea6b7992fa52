#include "nearestname.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace {

// Names of fields are not longer, and comparing long names takes time.
constexpr std::size_t LongestName = 40;

std::size_t difference(std::size_t a, std::size_t b)
{
    return a < b ? b - a : a - b;
}

} // namespace

// The Levenshtein distance with exchanges of neighbours, row by row.
std::size_t editDistance(const std::string& a, const std::string& b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    std::vector<std::size_t> above = row;
    std::vector<std::size_t> twoAbove = row;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        twoAbove.swap(above);
        above.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t replaced = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, above[j] + 1, row[j - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], twoAbove[j - 2] + 1);
        }
    }
    return row.back();
}

std::string nearestName(const std::string& name, const std::vector<std::string>& known)
{
    std::string nearest;
    std::size_t fewest = std::numeric_limits<std::size_t>::max();
    if (name.size() > LongestName)
        return nearest;
    for (const std::string& candidate : known) {
        if (candidate.size() > LongestName || difference(name.size(), candidate.size()) >= fewest)
            continue;
        const std::size_t changes = editDistance(name, candidate);
        if (changes < fewest) {
            fewest = changes;
            nearest = candidate;
        }
    }
    return nearest;
}
