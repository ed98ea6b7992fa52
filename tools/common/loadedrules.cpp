#include "loadedrules.h"

#include "console.h"
#include "findingjson.h"
#include "settingsfile.h"

#include <QJsonObject>
#include <QString>

namespace {

void report(const std::string& settings, const std::string& text, bool isJson)
{
    if (isJson)
        writeToStandardError(jsonLine(errorJson(settings, text)));
    else
        printError(settings, text);
}

void report(const std::string& settings, const adexp::Finding& finding, bool isJson)
{
    if (!isJson)
        return printError(settings, finding.line());
    QJsonObject object = findingJson(finding);
    if (!object.contains(QStringLiteral("file")))
        object.insert(QStringLiteral("file"), QString::fromStdString(settings));
    writeToStandardError(jsonLine(object));
}

} // namespace

LoadedRules::LoadedRules(const std::string& settings, bool isJson)
    : m_status(load(settings, isJson))
{
}

ExitCode LoadedRules::load(const std::string& settings, bool isJson)
{
    if (const std::string error = settingsError(settings); !error.empty()) {
        report(settings, error, isJson);
        return ExitCode::NotDone;
    }
    m_rules.emplace(settings);
    for (const adexp::Finding finding : m_rules->findings())
        report(settings, finding, isJson);
    switch (m_rules->status()) {
    case adexp::Status::Ok:
        return m_rules->findings().empty() ? ExitCode::Success : ExitCode::WithDiagnostics;
    case adexp::Status::SettingsUnreadable:
        report(settings, NotAnIniFile, isJson);
        return ExitCode::NotDone;
    default:
        report(settings,
               "the rule set cannot be loaded, the lines above say why; correct the settings file "
               "or the rule file they name (a relative path starts from the working directory)",
               isJson);
        return ExitCode::NotDone;
    }
}
