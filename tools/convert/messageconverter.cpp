#include "messageconverter.h"

#include "inputfile.h"
#include "messagereports.h"
#include "outputfile.h"
#include "recordreader.h"
#include "whynotconverted.h"

#include <filesystem>
#include <new>

MessageConverter::MessageConverter(const ConvertOptions& options, const adexp::RuleSet& rules)
    : m_options(options), m_rules(rules)
{
}

ConversionResult MessageConverter::convert(const Message& message)
{
    ConversionResult result;
    result.part = message.part;
    MessageReports reports(message, m_options, &result);
    try {
        convertInto(message, &reports, &result);
    } catch (const std::bad_alloc&) {
        m_converted = adexp::Result(); // what it holds may be large
        throw;
    }
    return result;
}

ConversionResult MessageConverter::convertOrTell(const Message& message)
{
    try {
        return convert(message);
    } catch (const std::bad_alloc&) {
        ConversionResult result;
        MessageReports(message, m_options, &result).notConverted(MemoryRanOut);
        return result;
    }
}

void MessageConverter::convertInto(const Message& message, MessageReports* reports,
                                   ConversionResult* result)
{
    std::string fromFile;
    std::string failure = message.failure;
    if (failure.empty() && !message.isRead)
        failure = readInput(message.input, &fromFile);
    if (!failure.empty())
        return reports->notConverted(failure);
    m_rules.convert(message.isRead ? message.text : fromFile, &m_converted, m_options.wanted());
    reports->add(m_converted.findings());
    if (!m_converted.isOk())
        return reports->notConverted(whyNotConverted(m_converted));
    if (m_options.summary)
        result->coverage.count(m_converted);
    if (m_options.isToStandardOutput())
        result->document = m_converted.document();
    if (!message.document.empty())
        write(message.document, reports);
}

void MessageConverter::write(const std::string& file, MessageReports* reports) const
{
    if (m_options.recursive) { // the sub-folders of the messages; what fails shows on writing
        std::error_code error;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path(), error);
    }
    const std::string error = writeFile(file, m_converted.document());
    if (!error.empty())
        reports->notWritten(file, error);
}
