#include "messageconverter.h"

#include "console.h"
#include "findingjson.h"
#include "inputfile.h"
#include "outputfile.h"
#include "recordreader.h"
#include "whynotconverted.h"

#include <QJsonObject>
#include <QString>

#include <filesystem>
#include <new>

namespace {

// A line with the file of the message, and which one it is of several in it.
std::string jsonLineOf(const Message& message, QJsonObject object)
{
    object.insert(QStringLiteral("file"), QString::fromStdString(displayName(message.input)));
    if (message.number != 0)
        object.insert(QStringLiteral("message"), static_cast<qint64>(message.number));
    return jsonLine(object);
}

} // namespace

MessageConverter::MessageConverter(const ConvertOptions& options, const adexp::RuleSet& rules)
    : m_options(options), m_rules(rules)
{
}

ConversionResult MessageConverter::convert(const Message& message)
{
    ConversionResult result = emptyResult(message);
    result.part = message.part;
    try {
        convertInto(message, &result);
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
        ConversionResult result = emptyResult(message);
        notConverted(message, MemoryRanOut, &result);
        return result;
    }
}

ConversionResult MessageConverter::emptyResult(const Message& message) const
{
    ConversionResult result;
    if (m_options.summary)
        result.coverage.name = message.name();
    return result;
}

void MessageConverter::convertInto(const Message& message, ConversionResult* result)
{
    std::string fromFile;
    std::string failure = message.failure;
    if (failure.empty() && !message.isRead)
        failure = readInput(message.input, &fromFile);
    if (!failure.empty())
        return notConverted(message, failure, result);
    m_rules.convert(message.isRead ? message.text : fromFile, &m_converted, m_options.wanted());
    report(message, result);
    if (!m_converted.isOk())
        return notConverted(message, whyNotConverted(m_converted), result);
    if (m_options.summary)
        result->coverage.count(m_converted);
    if (m_options.isToStandardOutput())
        result->document = m_converted.document();
    if (!message.document.empty())
        write(message.document, result);
}

void MessageConverter::write(const std::string& file, ConversionResult* result) const
{
    if (m_options.recursive) { // the sub-folders of the messages; what fails shows on writing
        std::error_code error;
        std::filesystem::create_directories(std::filesystem::path(file).parent_path(), error);
    }
    const std::string error = writeFile(file, m_converted.document());
    if (!error.empty())
        fail(file + ' ' + error,
             m_options.isJson ? jsonLine(errorJson(file, error)) : errorLine(file, error), result);
}

// What was found in the message.
void MessageConverter::report(const Message& message, ConversionResult* result) const
{
    const adexp::Findings findings = m_converted.findings();
    if (findings.empty())
        return;
    result->status = worse(result->status, ExitCode::WithDiagnostics);
    if (!m_options.wantsFindings())
        return;
    for (const adexp::Finding finding : findings) {
        if (m_options.summary)
            ++result->coverage.diagnostics[std::string(finding.report())];
        if (m_options.showsReports())
            result->reports += m_options.isJson ? jsonLineOf(message, findingJson(finding))
                                                : errorLine(message.name(), finding.report());
    }
}

void MessageConverter::notConverted(const Message& message, const std::string& reason,
                                    ConversionResult* result) const
{
    const std::string text = "not converted: " + reason;
    fail(reason,
         m_options.isJson ? jsonLineOf(message, errorJson(std::string(), text))
                          : errorLine(message.name(), text),
         result);
}

// The reason goes into the summary, the line is shown.
void MessageConverter::fail(const std::string& reason, const std::string& line,
                            ConversionResult* result) const
{
    result->status = ExitCode::NotDone;
    if (m_options.summary)
        result->coverage.failure = reason;
    if (!m_options.isSummaryOnly())
        result->reports += line;
}
