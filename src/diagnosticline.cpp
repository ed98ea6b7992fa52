#include "diagnosticline.h"

#include <QLoggingCategory>

DiagnosticLine::DiagnosticLine(QtMsgType type) : m_type(type) {}

DiagnosticLine& DiagnosticLine::plain(QStringView item)
{
    append(item);
    m_line.append(u' ');
    return *this;
}

DiagnosticLine& DiagnosticLine::plain(const char* item)
{
    m_line.append(QLatin1String(item));
    m_line.append(u' ');
    return *this;
}

DiagnosticLine& DiagnosticLine::number(qint64 item)
{
    m_line.append(QString::number(item));
    m_line.append(u' ');
    return *this;
}

DiagnosticLine& DiagnosticLine::quoted(QStringView item)
{
    m_line.append(u'"');
    append(item);
    m_line.append(QLatin1String("\" "));
    return *this;
}

void DiagnosticLine::append(QStringView item)
{
    // The size type is that of the Qt in use.
    m_line.append(item.data(), static_cast<decltype(m_line.size())>(item.size()));
}

void DiagnosticLine::send() const
{
    Finding finding;
    finding.type = m_type;
    finding.text = m_line.trimmed();
    send(finding);
}

void DiagnosticLine::send(const Finding& finding) const
{
    if (FindingObserver* const observer = FindingObserver::current())
        observer->found(finding);
    const QMessageLogContext context(nullptr, 0, nullptr, "default");
    qt_message_output(m_type, context, m_line);
}

void DiagnosticLine::internalError(const char* signature, const char* condition)
{
    DiagnosticLine(QtCriticalMsg).plain(signature).plain(condition).send();
}
