#include "matchingcost.h"

#include <algorithm>

namespace {

// Far beyond every limit. Figures end here, so that none becomes infinite.
constexpr double Enormous = 1e30;

double bounded(double steps)
{
    return std::min(steps, Enormous);
}

double withinText(double length)
{
    return std::min<double>(length, MatchingCost::TextLength);
}

} // namespace

MatchingCost::MatchingCost(double perUnit, double failure, double longest)
    : m_perUnit(perUnit), m_failure(failure), m_longest(longest)
{
}

MatchingCost MatchingCost::ofLiteral(int length)
{
    return MatchingCost(1, length, withinText(length));
}

MatchingCost MatchingCost::ofSeparator()
{
    // Behind an optional term it is looked at once more, to see whether it is there.
    return MatchingCost(2, 1, TextLength);
}

MatchingCost MatchingCost::repeated(int minRepeat, int maxRepeat) const
{
    // Each occurrence takes one unit at least; the last try fails.
    MatchingCost cost;
    cost.m_perUnit = bounded(m_perUnit + m_success);
    cost.m_success = m_failure + 1;
    cost.m_longest = withinText(std::max(0, maxRepeat) * m_longest);
    // Too few occurrences go to waste.
    cost.m_failure = cost.m_success;
    if (minRepeat > 1)
        cost.m_failure += cost.m_perUnit * withinText((minRepeat - 1.0) * m_longest);
    cost.m_failure = bounded(cost.m_failure);
    return cost;
}

void MatchingCost::addAlternative(const MatchingCost& alternative)
{
    m_perUnit = bounded(m_perUnit + alternative.m_perUnit);
    m_success = bounded(m_success + std::max(alternative.m_success, alternative.m_failure));
    m_failure = bounded(m_failure + alternative.m_failure);
    m_longest = std::max(m_longest, alternative.m_longest);
}

void MatchingCost::append(const MatchingCost& next, bool required, bool needsSeparator)
{
    // If it fails, all that was matched before goes to waste.
    if (required)
        m_failure = std::max(m_failure, m_perUnit * m_longest + m_success + next.m_failure);
    double besides = next.m_success;
    if (!required) {
        besides = std::max(besides, next.m_failure);
        if (needsSeparator)
            besides = std::max(besides, next.m_success + next.m_perUnit * next.m_longest);
    }
    m_perUnit = std::max(m_perUnit, next.m_perUnit);
    m_success = bounded(m_success + besides);
    m_longest = withinText(m_longest + next.m_longest);
    m_mayBeEmpty = m_mayBeEmpty && (!required || m_mayPassOverNext);
    m_mayPassOverNext = !required && needsSeparator;
    if (m_mayBeEmpty)
        m_failure = std::max(m_failure, m_success);
    m_failure = bounded(m_failure);
}

double MatchingCost::steps() const
{
    return m_perUnit * m_longest + std::max(m_success, m_failure);
}
