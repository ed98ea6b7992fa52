#include "report/linereporter.h"

#include <QLoggingCategory>

namespace {

QString quoted(const QString& item)
{
    return u'"' + item + QLatin1String("\" ");
}

} // namespace

void LineReporter::report(const Finding& finding)
{
    send(finding.severity == Severity::Internal ? QtCriticalMsg : QtDebugMsg, lineOf(finding));
}

QString LineReporter::lineOf(const Finding& finding)
{
    if (finding.severity == Severity::Internal)
        return finding.text + u' ';
    if (finding.signature)
        return QLatin1String(finding.signature) + u' ' + quoted(finding.head + finding.text);
    if (finding.code >= ADEXP_CODE_SETTINGS_ACCESS && finding.code <= ADEXP_CODE_SETTINGS_ERROR)
        return finding.text + u' ' + quoted(finding.detail);
    if (finding.code < ADEXP_CODE_SETTINGS_ACCESS) // about a message
        return quoted(finding.text) +
               (finding.detail.isEmpty() ? QString() : quoted(finding.detail));
    return quoted(finding.record.xmlErrorHead()) + quoted(finding.record.ruleText) +
           quoted(finding.text);
}

void LineReporter::send(QtMsgType type, const QString& line)
{
    const QMessageLogContext context(nullptr, 0, nullptr, "default");
    qt_message_output(type, context, line);
}
