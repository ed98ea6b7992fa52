#ifndef SETTINGSFILE_H
#define SETTINGSFILE_H

#include "adexp.h"

#include <QByteArray>
#include <QString>

class MainClass;
class Reporter;

/// The settings file, an ini file that names the four rule files.
namespace SettingsFile {

/// Loads the rule set that the file @p path names into @p rules (not null, empty). A file that is
/// not there is taken for an empty one, and then there are no names of rule files. Returns
/// ADEXP_OK, ADEXP_SETTINGS_UNREADABLE or ADEXP_RULES_UNREADABLE, the last two after a report.
adexp_status load(const QString& path, MainClass* rules, Reporter* reporter);

/// False if @p content has a section whose name is not ended on its line: what makes QSettings
/// refuse a file. It does so only once: what it could read of the file it keeps for the process,
/// and does not look at the file again while that has not changed.
bool isIniFile(const QByteArray& content);

} // namespace SettingsFile

#endif
