#include "messagefindings.h"

#include <algorithm>

void MessageFindings::found(const Finding& finding)
{
    const auto [known, isNew] = m_indexes.emplace(
        Key{finding.begin, finding.end, finding.text, finding.detail}, m_all.size());
    if (isNew)
        m_all.push_back({finding});
    else
        ++m_all[known->second].count;
}

std::vector<MessageFindings::Counted> MessageFindings::inTextOrder() const
{
    std::vector<Counted> ordered = m_all;
    std::stable_sort(ordered.begin(), ordered.end(), [](const Counted& a, const Counted& b) {
        return a.finding.begin < b.finding.begin;
    });
    return ordered;
}
