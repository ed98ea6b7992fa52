#ifndef SETTINGSFILE_H
#define SETTINGSFILE_H

#include <QString>

#include <string>

class QSettings;

/// The settings path of the rule set that is compiled into the library.
constexpr const char* BuiltInSettings = ":/adexp/adexp.ini";

/// The keys of the rule files in the group "rules", in the order of loading.
constexpr const char* RuleFileKeys[] = {"simpleTermsFile", "subFieldsFile", "primaryFieldsFile",
                                        "msgRulesFile"};

/// The path of the rule file @p key as @p settings, in no group, give it; empty if they do not.
QString pathOf(const char* key, const QSettings& settings);

/// What is wrong with a settings file that can be opened, but not read.
constexpr const char* NotAnIniFile =
    "the settings file is not an ini file; give the ini file that names the four rule files";

/// Why the settings file @p settings cannot be opened; empty if it can.
std::string settingsError(const std::string& settings);

#endif
