#ifndef COVERAGEREPORT_H
#define COVERAGEREPORT_H

#include "exitcodes.h"
#include "messagecoverage.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// How well a rule set covers a set of messages, by their titles.
///
/// Its memory does not grow with the number of messages: of each title, and of what was not
/// converted, no more than MaxListed different lines are kept, the others are counted.
class CoverageReport
{
public:
    static constexpr std::size_t MaxListed = 1000;

    /// Adds a message, or lists it if it was not converted.
    void add(const MessageCoverage& message);

    /// Number of messages that were not converted.
    std::int64_t notConverted() const { return m_notConverted; }

    /// The report as lines of text.
    std::string text() const;

    /// The report as one line of JSON.
    std::string json() const;

private:
    struct Counts
    {
        std::int64_t messages = 0;
        std::int64_t fields = 0;
        std::int64_t unknownFields = 0;
        std::int64_t reports = 0;
        DiagnosticCounts diagnostics;
        std::int64_t unlisted = 0; // reports that diagnostics had no room for
    };
    struct NotConverted
    {
        std::string name;
        std::string reason;
    };

    static void addDiagnostic(const std::string& text, std::int64_t count, Counts* counts);
    static std::string line(const std::string& head, const Counts& counts);
    static std::string diagnosticLines(const Counts& counts);
    Counts total() const;
    std::int64_t notListed() const;

    std::map<std::string, Counts> m_titles;
    std::int64_t m_notConverted = 0;
    std::vector<NotConverted> m_listed; // the first of those that were not converted
};

#endif
