#ifndef MESSAGEFINDINGS_H
#define MESSAGEFINDINGS_H

#include "findingobserver.h"

#include <map>
#include <tuple>
#include <vector>

/// Collects the findings in a message while it lives.
///
/// A look ahead reports what a later one reports again. A finding that is told more than once, with
/// the same place, is kept once and counted.
class MessageFindings : public FindingObserver
{
public:
    struct Counted
    {
        Finding finding;
        int count = 1; ///< how often it was reported
    };

    void found(const Finding& finding) override;

    /// The findings in the order of their places; those without a place come first.
    std::vector<Counted> inTextOrder() const;

private:
    using Key = std::tuple<int, int, QString, QString>;

    std::vector<Counted> m_all; // in the order of their first report
    std::map<Key, size_t> m_indexes;
};

#endif
