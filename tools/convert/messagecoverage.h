#ifndef MESSAGECOVERAGE_H
#define MESSAGECOVERAGE_H

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

class FrameReader;
class FrameWriter;

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

    /// Takes the title and counts the fields of the @p document of the message.
    void countDocument(std::string_view document);

    /// For handing it to another process.
    void writeTo(FrameWriter* frame) const;
    static MessageCoverage readFrom(FrameReader* frame);
};

#endif
