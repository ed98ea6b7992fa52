#include "ruleset.h"

#include "adexp.h"
#include "console.h"
#include "diagnosticcollector.h"

#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace {

ExitCode load(const std::string& settings)
{
    if (const std::string error = settingsError(settings); !error.empty()) {
        printError(settings, error);
        return ExitCode::NotDone;
    }
    const DiagnosticCollector diagnostics{std::string_view(settings)};
    switch (init_adexp(settings.data(), static_cast<int>(settings.size()))) {
    case 0:
        return diagnostics.count() == 0 ? ExitCode::Success : ExitCode::WithDiagnostics;
    case 1:
        printError(settings, NotAnIniFile);
        return ExitCode::NotDone;
    default:
        printError(settings, "the rule set cannot be loaded, the lines above say why; correct the "
                             "settings file or the rule file they name");
        return ExitCode::NotDone;
    }
}

} // namespace

// The library takes a settings file that is not there for an empty one, and its report then is
// about the keys that are missing.
std::string settingsError(const std::string& settings)
{
    const bool isCompiledIn = settings.front() == ':';
    if (isCompiledIn || access(settings.c_str(), R_OK) == 0)
        return {};
    return std::string("the settings file cannot be read: ") + std::strerror(errno) +
           "; check the name behind --settings";
}

RuleSet::RuleSet(const std::string& settings) : m_status(load(settings)) {}

RuleSet::~RuleSet()
{
    clear_adexp();
}
