#ifndef COVERAGEREPORT_H
#define COVERAGEREPORT_H

#include "exitcodes.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// How often each distinct diagnostic was reported.
using DiagnosticCounts = std::map<std::string, std::int64_t>;

/// How well a rule set covers a set of messages, by their titles.
class CoverageReport
{
public:
    /// Counts the @p document of a message that was converted, and what was @p reported about it.
    void addDocument(std::string_view document, const DiagnosticCounts& reported);

    /// Lists an input that was not converted, with the @p reason. Its diagnostics are left out.
    void addNotConverted(const std::string& name, const std::string& reason);

    /// Number of inputs that were not converted.
    std::size_t notConverted() const { return m_notConverted.size(); }

    /// What the messages make of the command's exit status.
    ExitCode status() const;

    /// The report as lines of text.
    std::string text() const;

private:
    struct Counts
    {
        std::int64_t messages = 0;
        std::int64_t fields = 0;
        std::int64_t unknownFields = 0;
        std::int64_t reports = 0;
        DiagnosticCounts diagnostics;
    };

    static void countFields(std::string_view document, std::string* title, Counts* counts);
    static std::string line(const std::string& head, const Counts& counts);
    static std::string diagnosticLines(const DiagnosticCounts& diagnostics);
    Counts total() const;

    struct NotConverted
    {
        std::string name;
        std::string reason;
    };

    std::map<std::string, Counts> m_titles;
    std::vector<NotConverted> m_notConverted;
};

#endif
