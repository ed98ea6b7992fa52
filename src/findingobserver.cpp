#include "findingobserver.h"

namespace {

FindingObserver* innermost = nullptr;

} // namespace

FindingObserver::FindingObserver() : m_outer(innermost)
{
    innermost = this;
}

FindingObserver::~FindingObserver()
{
    innermost = m_outer;
}

FindingObserver* FindingObserver::current()
{
    return innermost;
}
