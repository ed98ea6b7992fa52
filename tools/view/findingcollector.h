#ifndef FINDINGCOLLECTOR_H
#define FINDINGCOLLECTOR_H

#include "findingobserver.h"
#include "messagefinding.h"

#include <map>
#include <tuple>

/// Collects the findings in a message while it lives.
///
/// A look ahead reports what a later one reports again. A finding that is told more than once, with
/// the same place, is kept once and counted.
class FindingCollector : public FindingObserver
{
public:
    void found(const Finding& finding) override;

    /// The findings so far.
    MessageFindings inTextOrder() const;

private:
    using Key = std::tuple<int, int, QString, QString>;

    MessageFindings m_all; // in the order of their first report
    std::map<Key, size_t> m_indexes;
};

#endif
