#include "findingjson.h"

#include "console.h"
#include "findingobserver.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

void addPlace(const Finding& finding, QJsonObject* object)
{
    const ConfigInfo& record = finding.record;
    if (!record.xmlFile.isEmpty()) {
        object->insert(QStringLiteral("file"), record.xmlFile);
        object->insert(QStringLiteral("line"), record.lineNumber);
        object->insert(QStringLiteral("column"), record.columnNumber);
    } else if (finding.begin >= 0) {
        object->insert(QStringLiteral("begin"), finding.begin);
        object->insert(QStringLiteral("end"), finding.end);
    }
}

} // namespace

QJsonObject findingJson(const Finding& finding)
{
    const bool isWarning = finding.severity == Severity::Warning;
    QJsonObject object;
    object.insert(QStringLiteral("severity"),
                  isWarning ? QStringLiteral("warning") : QStringLiteral("error"));
    object.insert(QStringLiteral("text"), finding.text);
    if (!finding.detail.isEmpty())
        object.insert(QStringLiteral("detail"), finding.detail);
    if (!finding.record.recordName.isEmpty())
        object.insert(QStringLiteral("name"), finding.record.recordName);
    addPlace(finding, &object);
    return object;
}

QJsonObject errorJson(const std::string& file, const std::string& text)
{
    QJsonObject object{{QStringLiteral("severity"), QStringLiteral("error")},
                       {QStringLiteral("text"), QString::fromStdString(text)}};
    if (!file.empty())
        object.insert(QStringLiteral("file"), QString::fromStdString(file));
    return object;
}

std::string jsonLine(const QJsonObject& object)
{
    // QJsonDocument escapes the control characters below the blank only. None beyond the first
    // 65536 is one.
    const QString json = QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
    QString line;
    for (const QChar c : json) {
        if (isControl(c.unicode()))
            line += QStringLiteral("\\u%1").arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            line += c;
    }
    return line.toStdString() + '\n';
}
