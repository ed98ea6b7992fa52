#include "messagereports.h"

#include "console.h"
#include "findingjson.h"
#include "inputfile.h"

#include <QString>

MessageReports::MessageReports(const Message& message, const ConvertOptions& options,
                               ConversionResult* result)
    : m_message(message), m_options(options), m_result(result)
{
    if (options.summary)
        m_result->coverage.name = message.name();
}

void MessageReports::add(const adexp::Findings& findings)
{
    if (findings.empty())
        return;
    m_result->status = worse(m_result->status, ExitCode::WithDiagnostics);
    if (m_options.wantsFindings())
        for (const adexp::Finding finding : findings)
            add(finding);
}

void MessageReports::add(const adexp::Finding& finding)
{
    if (m_options.summary)
        ++m_result->coverage.diagnostics[std::string(finding.line())];
    if (!m_options.showsReports())
        return;
    if (m_options.isJson)
        m_result->reports += jsonLine(placed(findingJson(finding)));
    else
        m_result->reports += errorLine(m_message.name(), finding.line());
}

void MessageReports::notConverted(const std::string& reason)
{
    const std::string text = "not converted: " + reason;
    fail(reason, m_options.isJson ? jsonLine(placed(errorJson(std::string(), text)))
                                  : errorLine(m_message.name(), text));
}

void MessageReports::notWritten(const std::string& document, const std::string& reason)
{
    fail(document + ' ' + reason,
         m_options.isJson ? jsonLine(errorJson(document, reason)) : errorLine(document, reason));
}

// The reason goes into the summary, the line is shown.
void MessageReports::fail(const std::string& reason, const std::string& line)
{
    m_result->status = ExitCode::NotDone;
    if (m_options.summary)
        m_result->coverage.failure = reason;
    if (!m_options.isSummaryOnly())
        m_result->reports += line;
}

// An object with the file of the message, and which one it is of several in it.
QJsonObject MessageReports::placed(QJsonObject object) const
{
    object.insert(QStringLiteral("file"), QString::fromStdString(displayName(m_message.input)));
    if (m_message.number != 0)
        object.insert(QStringLiteral("message"), static_cast<qint64>(m_message.number));
    return object;
}
