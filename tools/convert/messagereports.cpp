#include "messagereports.h"

#include "console.h"
#include "findingjson.h"
#include "inputfile.h"

#include <QJsonObject>
#include <QString>

MessageReports::MessageReports(const Message& message, const ConvertOptions& options,
                               ConversionResult* result)
    : m_message(message),
      m_options(options),
      m_result(result),
      m_collector([this](const QString& line) { foundLine(line); })
{
    if (options.summary)
        m_result->coverage.name = message.name();
}

// Each finding comes with its line, see foundLine().
void MessageReports::found(const Finding& finding)
{
    if (m_options.isJson && m_options.showsReports())
        m_result->reports += jsonLine(placed(findingJson(finding)));
}

void MessageReports::foundLine(const QString& line)
{
    m_result->status = worse(m_result->status, ExitCode::WithDiagnostics);
    const bool isShown = m_options.showsReports() && !m_options.isJson;
    if (!isShown && !m_options.summary)
        return;
    const std::string text = line.toStdString();
    if (isShown)
        m_result->reports += errorLine(m_message.name(), text);
    if (m_options.summary)
        ++m_result->coverage.diagnostics[text];
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
