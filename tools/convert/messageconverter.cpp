#include "messageconverter.h"

#include "inputfile.h"
#include "messagereports.h"
#include "outputfile.h"
#include "recordreader.h"

#include <filesystem>
#include <new>

ConversionResult MessageConverter::convert(const Message& message)
{
    ConversionResult result;
    MessageReports reports(message, m_options, &result);
    try {
        convertInto(message, &reports, &result);
    } catch (const std::bad_alloc&) {
        m_conversion.reset();
        reports.notConverted(MemoryRanOut);
    }
    return result;
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
    m_conversion.reset(); // before the next one takes memory
    m_conversion.emplace(message.isRead ? message.text : fromFile);
    if (!m_conversion->hasDocument())
        return reports->notConverted(m_conversion->failure());
    if (m_options.summary)
        result->coverage.countDocument(m_conversion->document());
    if (m_options.isToStandardOutput())
        result->document = m_conversion->document();
    if (!message.document.empty())
        write(message.document, reports);
}

void MessageConverter::write(const std::string& file, MessageReports* reports)
{
    if (m_options.recursive) { // the sub-folders of the messages; what fails shows on writing
        std::error_code error;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path(), error);
    }
    const std::string error = writeFile(file, m_conversion->document());
    if (!error.empty())
        reports->notWritten(file, error);
}

ConversionResult MessageConverter::notConverted(const Message& message, const std::string& reason)
{
    ConversionResult result;
    MessageReports(message, m_options, &result).notConverted(reason);
    return result;
}
