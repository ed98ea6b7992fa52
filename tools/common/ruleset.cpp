#include "ruleset.h"

#include "adexp.h"
#include "console.h"
#include "diagnosticcollector.h"
#include "findingjson.h"
#include "findingobserver.h"

#include <QJsonObject>
#include <QSettings>
#include <QString>

#include <cerrno>
#include <cstring>
#include <optional>
#include <unistd.h>

namespace {

void report(const std::string& settings, const std::string& text, bool isJson)
{
    if (isJson)
        writeToStandardError(jsonLine(errorJson(settings, text)));
    else
        printError(settings, text);
}

// Writes each finding to standard error as JSON.
class JsonReports : private FindingObserver
{
public:
    explicit JsonReports(const std::string& settings) : m_settings(settings) {}

private:
    void found(const Finding& finding) override
    {
        QJsonObject object = findingJson(finding);
        if (!object.contains(QStringLiteral("file")))
            object.insert(QStringLiteral("file"), QString::fromStdString(m_settings));
        writeToStandardError(jsonLine(object));
    }

    const std::string& m_settings;
};

// Loads the rule set, with its reports. The result is that of init_adexp().
int initialise(const std::string& settings, bool isJson, bool* isReported)
{
    std::optional<JsonReports> json;
    if (isJson)
        json.emplace(settings);
    const DiagnosticCollector diagnostics([&settings, isJson](const QString& line) {
        if (!isJson)
            printError(settings, line.toStdString());
    });
    const int result = init_adexp(settings.data(), static_cast<int>(settings.size()));
    *isReported = diagnostics.count() != 0;
    return result;
}

ExitCode load(const std::string& settings, bool isJson)
{
    if (const std::string error = settingsError(settings); !error.empty()) {
        report(settings, error, isJson);
        return ExitCode::NotDone;
    }
    bool isReported = false;
    switch (initialise(settings, isJson, &isReported)) {
    case 0:
        return isReported ? ExitCode::WithDiagnostics : ExitCode::Success;
    case 1:
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

} // namespace

// The library treats a missing settings file like an empty one, and would report the missing keys.
std::string settingsError(const std::string& settings)
{
    const bool isCompiledIn = settings.front() == ':';
    if (isCompiledIn || access(settings.c_str(), R_OK) == 0)
        return {};
    return std::string("the settings file cannot be read: ") + std::strerror(errno) +
           "; check the name behind --settings";
}

QString pathOf(const RuleFile& file, const QSettings& settings)
{
    return settings.value(QLatin1String("rules/") + QLatin1String(file.key)).toString();
}

RuleSet::RuleSet(const std::string& settings, bool isJson) : m_status(load(settings, isJson)) {}

RuleSet::~RuleSet()
{
    clear_adexp();
}
