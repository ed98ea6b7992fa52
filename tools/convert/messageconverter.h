#ifndef MESSAGECONVERTER_H
#define MESSAGECONVERTER_H

#include "conversion.h"
#include "conversionresult.h"
#include "convertoptions.h"
#include "message.h"

#include <optional>
#include <string>

class MessageReports;

/// Does the whole work for one message after another: reads, converts, and writes the document if
/// it goes to a file.
class MessageConverter
{
public:
    /// Works as @p options say, which must outlive the object, with the rule set that is loaded.
    explicit MessageConverter(const ConvertOptions& options) : m_options(options) {}

    /// Converts @p message. The document of the result lives until the next call.
    ConversionResult convert(const Message& message);

    /// The result for a @p message that cannot be converted, for the @p reason.
    ConversionResult notConverted(const Message& message, const std::string& reason);

private:
    void convertInto(const Message& message, MessageReports* reports, ConversionResult* result);

    void write(const std::string& file, MessageReports* reports);

    const ConvertOptions& m_options;
    std::optional<Conversion> m_conversion;
};

#endif
