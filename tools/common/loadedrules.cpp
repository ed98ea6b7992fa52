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
        return printError(settings, finding.report());
    QJsonObject object = findingJson(finding);
    if (!object.contains(QStringLiteral("file")))
        object.insert(QStringLiteral("file"), QString::fromStdString(settings));
    writeToStandardError(jsonLine(object));
}

} // namespace

ExitCode withRules(const std::string& settings, bool isJson,
                   const std::function<ExitCode(const adexp::RuleSet&)>& work)
{
    if (const std::string error = settingsError(settings); !error.empty()) {
        report(settings, error, isJson);
        return ExitCode::NotDone;
    }
    const adexp::RuleSet rules(settings);
    for (const adexp::Finding finding : rules.findings())
        report(settings, finding, isJson);
    if (rules.isLoaded())
        return worse(rules.findings().empty() ? ExitCode::Success : ExitCode::WithDiagnostics,
                     work(rules));
    report(settings,
           rules.status() == adexp::Status::SettingsUnreadable
               ? NotAnIniFile
               : "the rule set cannot be loaded, the lines above say why; correct the settings "
                 "file or the rule file they name (a relative path starts from the working "
                 "directory)",
           isJson);
    return ExitCode::NotDone;
}
