#ifndef SETTINGSFILE_H
#define SETTINGSFILE_H

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

#endif
