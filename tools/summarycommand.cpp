#include "summarycommand.h"

#include "console.h"
#include "conversion.h"
#include "coveragereport.h"
#include "diagnosticcollector.h"
#include "inputfile.h"
#include "ruleset.h"

#include <filesystem>

namespace {

// The messages that the arguments stand for. Folders that cannot be listed go to the report.
std::vector<std::string> messagesOf(const std::vector<std::string>& inputs, CoverageReport* report)
{
    std::vector<std::string> messages;
    for (const std::string& input : inputs) {
        std::error_code error;
        if (input == StandardInput || !std::filesystem::is_directory(input, error)) {
            messages.push_back(input);
            continue;
        }
        const FolderListing listing = listFolder(input);
        messages.insert(messages.end(), listing.files.begin(), listing.files.end());
        for (const FolderListing::Unlisted& unlisted : listing.unlisted)
            report->addNotConverted(unlisted.folder, unlisted.reason);
    }
    return messages;
}

void convertInto(const std::string& input, CoverageReport* report)
{
    std::string message;
    if (const std::string error = readInput(input, &message); !error.empty()) {
        report->addNotConverted(displayName(input), error);
        return;
    }
    DiagnosticCounts reported;
    const DiagnosticCollector diagnostics(
        [&reported](const QString& text) { ++reported[text.toStdString()]; });
    const Conversion conversion(message);
    if (conversion.hasDocument())
        report->addDocument(conversion.document(), reported);
    else
        report->addNotConverted(displayName(input), conversion.failure());
}

} // namespace

ExitCode runSummary(const std::string& settings, const std::vector<std::string>& inputs)
{
    const RuleSet rules(settings);
    if (!rules.isLoaded())
        return rules.status();
    CoverageReport report;
    for (const std::string& message : messagesOf(inputs, &report))
        convertInto(message, &report);

    StandardOutput out;
    out.write(report.text());
    if (!out.flush())
        return ExitCode::NotDone;
    if (report.notConverted() != 0)
        printError(CommandName, std::to_string(report.notConverted()) +
                                    " not converted; the end of the report says which and why");
    return worse(rules.status(), report.status());
}
