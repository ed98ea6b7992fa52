#ifndef LOADEDRULES_H
#define LOADEDRULES_H

#include "adexp.hpp"
#include "exitcodes.h"

#include <functional>
#include <string>

/// Does @p work with the rule set of the settings file @p settings. What is wrong with the rule set
/// goes to standard error before, as JSON if @p isJson. Returns how the command ends: as @p work
/// says, or worse; NotDone without @p work if the rule set cannot be used.
ExitCode withRules(const std::string& settings, bool isJson,
                   const std::function<ExitCode(const adexp::RuleSet&)>& work);

#endif
