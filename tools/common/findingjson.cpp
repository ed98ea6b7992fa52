#include "findingjson.h"

#include "console.h"
#include "unicode.h"

#include <QJsonDocument>

QJsonObject findingJson(bool isWarning, const QString& text, const QString& detail)
{
    QJsonObject object{{QStringLiteral("severity"),
                        isWarning ? QStringLiteral("warning") : QStringLiteral("error")},
                       {QStringLiteral("text"), text}};
    if (!detail.isEmpty())
        object.insert(QStringLiteral("detail"), detail);
    return object;
}

void insertRecord(const QString& name, const QString& file, int line, int column,
                  QJsonObject* finding)
{
    if (!name.isEmpty())
        finding->insert(QStringLiteral("name"), name);
    finding->insert(QStringLiteral("file"), file);
    finding->insert(QStringLiteral("line"), line);
    finding->insert(QStringLiteral("column"), column);
}

QJsonObject findingJson(const adexp::Finding& finding)
{
    const adexp::Place& place = finding.place();
    QJsonObject object = findingJson(finding.severity() == adexp::Severity::Warning,
                                     unicode(finding.text()), unicode(finding.detail()));
    if (!finding.file().empty() && place.line > 0) {
        insertRecord(unicode(finding.path()), unicode(finding.file()), place.line, place.column,
                     &object);
    } else if (place.begin >= 0) {
        object.insert(QStringLiteral("begin"), place.begin);
        object.insert(QStringLiteral("end"), place.end);
    }
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
