#ifndef COVERAGEREPORT_H
#define COVERAGEREPORT_H

#include "adexp.hpp"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// How often each distinct diagnostic was reported.
using DiagnosticCounts = std::map<std::string, std::int64_t>;

/// How well a rule set covers one message.
struct MessageCoverage
{
    std::string title;
    std::int64_t fields = 0;
    std::int64_t unknownFields = 0;
    DiagnosticCounts diagnostics;
    std::string name;    ///< of the message
    std::string failure; ///< why it was not converted; empty if it was

    /// Takes the title, and counts the fields that are in the document.
    void count(const adexp::Result& result);
};

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

    std::map<std::string, Counts> m_titles;
    Counts m_total; // without the diagnostics
    std::int64_t m_notConverted = 0;
    std::vector<NotConverted> m_listed; // the first of those that were not converted
};

#endif
