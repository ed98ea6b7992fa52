#ifndef SHAREDRULES_H
#define SHAREDRULES_H

#include "api/viewdata.h"
#include "load/mainclass.h"

#include <atomic>
#include <memory>

/// A loaded rule set with the number of those who use it, behind the handle of adexp.h.
struct adexp_rules : MainClass
{
    adexp_rules() : MainClass(nullptr) {}

    std::atomic<int> users{1};
    ViewData loading; ///< status and findings of the load
};

/// Gives a share in a rule set back.
struct ReleaseRules
{
    void operator()(adexp_rules* rules) const;
};

/// A share in a rule set; null: none.
using RulesShare = std::unique_ptr<adexp_rules, ReleaseRules>;

/// One more share in @p rules, which may be null.
RulesShare shareOf(adexp_rules* rules);

/// An empty rule set, made after the memory was found that loading from the settings file @p path
/// takes first.
RulesShare newRules(const QString& path);

#endif
