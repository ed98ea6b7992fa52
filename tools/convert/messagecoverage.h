#ifndef MESSAGECOVERAGE_H
#define MESSAGECOVERAGE_H

#include "adexp.hpp"

#include <cstdint>
#include <map>
#include <string>

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

#endif
