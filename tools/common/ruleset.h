#ifndef RULESET_H
#define RULESET_H

#include "exitcodes.h"

#include <QString>

#include <string>

class QSettings;

/// The settings path of the rule set that is compiled into the library.
constexpr const char* BuiltInSettings = ":/adexp/adexp.ini";

/// One of the files that a settings file names.
struct RuleFile
{
    const char* key; ///< in the group "rules"
    const char* tag; ///< of its records
};

/// The files of a rule set in the order of loading.
constexpr RuleFile RuleFiles[] = {
    {"simpleTermsFile", "simpleTerm"},
    {"subFieldsFile", "SubField"},
    {"primaryFieldsFile", "PrimaryField"},
    {"msgRulesFile", "msgRule"},
};

/// The path of @p file as @p settings, in no group, give it; empty if they do not.
QString pathOf(const RuleFile& file, const QSettings& settings);

/// What is wrong with a settings file that can be opened, but not read.
constexpr const char* NotAnIniFile =
    "the settings file is not an ini file; give the ini file that names the four rule files";

/// Why the settings file @p settings cannot be opened; empty if it can.
std::string settingsError(const std::string& settings);

/// The rule set of the library, loaded as long as an object of this class lives. There may be one.
class RuleSet
{
public:
    /// Loads the rule set of the settings file @p settings. What is wrong with it goes to standard
    /// error, as JSON if @p isJson.
    explicit RuleSet(const std::string& settings, bool isJson = false);

    /// Unloads the rule set.
    ~RuleSet();

    RuleSet(const RuleSet&) = delete;
    RuleSet& operator=(const RuleSet&) = delete;

    /// WithDiagnostics if something was reported, NotDone if the rule set cannot be used.
    ExitCode status() const { return m_status; }
    /// False if the rule set cannot be used.
    bool isLoaded() const { return m_status != ExitCode::NotDone; }

private:
    ExitCode m_status;
};

#endif
