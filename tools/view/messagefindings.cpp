#include "messagefindings.h"

#include "unicode.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <tuple>

MessageFindings messageFindings(const adexp::Findings& findings)
{
    using Key = std::tuple<int, int, std::string_view, std::string_view>;
    MessageFindings all; // in the order of their first report
    std::map<Key, size_t> indexes;
    for (const adexp::Finding finding : findings) {
        const auto [begin, end] = std::pair(finding.place().begin, finding.place().end);
        const auto [known, isNew] =
            indexes.emplace(Key{begin, end, finding.text(), finding.detail()}, all.size());
        if (isNew)
            all.push_back({finding.severity() == adexp::Severity::Warning, unicode(finding.text()),
                           unicode(finding.detail()), begin, end});
        else
            ++all[known->second].count;
    }
    std::stable_sort(all.begin(), all.end(), [](const MessageFinding& a, const MessageFinding& b) {
        return a.begin < b.begin;
    });
    return all;
}
