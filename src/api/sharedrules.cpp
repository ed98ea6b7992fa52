#include "api/sharedrules.h"

#include <QFileInfo>

#include <cstddef>
#include <new>

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

// Most of Qt throws std::bad_alloc when memory runs out, and nothing is lost. But the constructors
// of QObject and QSettings end the process, or leak. So the memory that they need is allocated and
// released at once. If there is not enough, the failure happens here, where it does no harm.
RulesShare newRules(const QString& path)
{
    // What the first call needs, and buffers whose size does not depend on the file.
    constexpr std::size_t Fixed = std::size_t(128) << 10;
    // More than Qt 5.15 and Qt 6.4 need at the peak, for files of nothing but short sections.
    constexpr std::size_t PerByte = 128;
    // Never optimised away, unlike new and delete.
    ::operator delete(
        ::operator new(Fixed + PerByte * static_cast<std::size_t>(QFileInfo(path).size())));
    return RulesShare(new adexp_rules);
}
