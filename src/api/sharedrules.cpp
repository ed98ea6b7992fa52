#include "api/sharedrules.h"

#include "load/qtmemory.h"

void ReleaseRules::operator()(adexp_rules* rules) const
{
    if (rules->users.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete rules;
}

RulesShare shareOf(adexp_rules* rules)
{
    if (rules)
        rules->users.fetch_add(1, std::memory_order_relaxed);
    return RulesShare(rules);
}

RulesShare newRules(const QString& path)
{
    QtMemory::requireForSettings(path);
    return RulesShare(new adexp_rules);
}
