#include "commandline.h"
#include "commands.h"
#include "console.h"
#include "findingjson.h"
#include "rulechecker.h"
#include "settingsfile.h"

#include <CLI/CLI.hpp>

#include <QJsonObject>
#include <QSettings>

#include <algorithm>
#include <memory>

namespace {

struct CheckOptions
{
    std::string settings = BuiltInSettings;
    bool isJson = false; // one JSON object per finding
};

constexpr const char* CheckFooter =
    "Each finding is a line \"FILE:LINE:COLUMN: error|warning: TEXT [NAME]\", sorted by place, "
    "the\n"
    "form that editors and build servers read; the last line counts them. Warnings are about\n"
    "what has no effect: definitions that nothing uses, alternatives that never win, terms that\n"
    "never match. The <example> and <counterexample> elements of the records are tried. A\n"
    "finding that only follows from another is not shown; definitions left out for it are\n"
    "counted.\n"
    "\n"
    "Examples:\n"
    "  adexp check --settings my.ini\n"
    "  adexp check --settings my.ini --format json\n";

bool isWarning(const Finding& finding)
{
    return finding.severity == Severity::Warning;
}

// "3 errors", "1 error"
std::string counted(std::ptrdiff_t count, const char* noun)
{
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string jsonOf(const Finding& finding)
{
    const ConfigInfo& place = finding.record;
    QJsonObject object = findingJson(isWarning(finding), finding.text, finding.detail);
    insertRecord(place.recordName, place.xmlFile, place.lineNumber, place.columnNumber, &object);
    return jsonLine(object);
}

std::string textLine(const Finding& finding)
{
    const ConfigInfo& place = finding.record;
    std::string line = place.xmlFile.toStdString() + ':';
    if (place.lineNumber > 0)
        line += std::to_string(place.lineNumber) + ':' + std::to_string(place.columnNumber) + ':';
    line += isWarning(finding) ? " warning: " : " error: ";
    line += finding.text.toStdString();
    if (!place.recordName.isEmpty())
        line += " [" + place.recordName.toStdString() + ']';
    return escaped(line) + '\n';
}

std::string summary(const RuleChecker& checker)
{
    const auto& findings = checker.findings();
    const auto warnings = std::count_if(findings.begin(), findings.end(), isWarning);
    const RuleChecker::Counts counts = checker.counts();
    std::string text = counted(static_cast<std::ptrdiff_t>(findings.size()) - warnings, "error") +
                       ", " + counted(warnings, "warning") + "; " +
                       counted(counts.definitions, "definition");
    if (counts.definitionsLeftOut > 0)
        text += " (" + std::to_string(counts.definitionsLeftOut) + " left out)";
    text += ", " + counted(counts.messageRules, "message rule");
    if (counts.messageRulesLeftOut > 0)
        text += " (" + std::to_string(counts.messageRulesLeftOut) + " left out)";
    if (checker.isIncomplete())
        text += "; the files behind the one that cannot be read were not looked at";
    return text + '\n';
}

// Prints all that can be said about a rule set.
ExitCode runCheck(const CheckOptions& options)
{
    if (const std::string error = settingsError(options.settings); !error.empty()) {
        printError(options.settings, error);
        return ExitCode::NotDone;
    }
    QSettings settings(QString::fromStdString(options.settings), QSettings::IniFormat);
    if (settings.status() != QSettings::NoError) {
        printError(options.settings, NotAnIniFile);
        return ExitCode::NotDone;
    }
    const RuleChecker checker(&settings);
    StandardOutput out;
    for (const Finding& finding : checker.findings())
        out.write(options.isJson ? jsonOf(finding) : textLine(finding));
    if (!options.isJson)
        out.write(summary(checker));
    if (!out.flush())
        return ExitCode::NotDone;
    return checker.findings().empty() ? ExitCode::Success : ExitCode::WithDiagnostics;
}

} // namespace

void addCheckCommand(CLI::App* app, ExitCode* status)
{
    CLI::App* const command = app->add_subcommand("check", "Check a rule set");
    const auto options = std::make_shared<CheckOptions>();
    addCommonParts(command, CheckFooter, &options->settings);
    addFormatOption(command, &options->isJson);
    command->final_callback([options, status] { *status = runCheck(*options); });
}
