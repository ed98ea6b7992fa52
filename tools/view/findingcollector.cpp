#include "findingcollector.h"

#include <algorithm>

void FindingCollector::found(const Finding& finding)
{
    const auto [known, isNew] = m_indexes.emplace(
        Key{finding.begin, finding.end, finding.text, finding.detail}, m_all.size());
    if (isNew)
        m_all.push_back(
            {finding.severity, finding.text, finding.detail, finding.begin, finding.end});
    else
        ++m_all[known->second].count;
}

MessageFindings FindingCollector::inTextOrder() const
{
    MessageFindings ordered = m_all;
    std::stable_sort(
        ordered.begin(), ordered.end(),
        [](const MessageFinding& a, const MessageFinding& b) { return a.begin < b.begin; });
    return ordered;
}
