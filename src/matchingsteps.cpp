#include "matchingsteps.h"

#include <utility>

MatchingSteps::MatchingSteps(qint64 length)
    : m_before(std::exchange(s_left, AtLeast + PerUnit * length))
{
}

MatchingSteps::~MatchingSteps()
{
    s_left = m_before;
}
