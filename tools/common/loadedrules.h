#ifndef LOADEDRULES_H
#define LOADEDRULES_H

#include "adexp.hpp"
#include "exitcodes.h"

#include <optional>
#include <string>

/// The rule set that the command works with. What is wrong with it has been reported.
class LoadedRules
{
public:
    /// Loads the rule set of the settings file @p settings. What is wrong with it goes to standard
    /// error, as JSON if @p isJson.
    explicit LoadedRules(const std::string& settings, bool isJson = false);

    /// WithDiagnostics if something was reported, NotDone if the rule set cannot be used.
    ExitCode status() const { return m_status; }
    /// False if the rule set cannot be used.
    bool isLoaded() const { return m_status != ExitCode::NotDone; }
    /// The rule set; only if it can be used.
    const adexp::RuleSet& rules() const { return *m_rules; }

private:
    ExitCode load(const std::string& settings, bool isJson);

    std::optional<adexp::RuleSet> m_rules;
    ExitCode m_status;
};

#endif
