#include "findingjson.h"

#include "console.h"
#include "unicode.h"

#include <QJsonDocument>

QJsonObject findingJson(const FindingFacts& finding)
{
    QJsonObject object{{QStringLiteral("severity"),
                        finding.isWarning ? QStringLiteral("warning") : QStringLiteral("error")},
                       {QStringLiteral("text"), finding.text}};
    if (!finding.detail.isEmpty())
        object.insert(QStringLiteral("detail"), finding.detail);
    if (!finding.name.isEmpty())
        object.insert(QStringLiteral("name"), finding.name);
    if (!finding.file.isEmpty()) {
        object.insert(QStringLiteral("file"), finding.file);
        object.insert(QStringLiteral("line"), finding.line);
        object.insert(QStringLiteral("column"), finding.column);
    } else if (finding.begin >= 0) {
        object.insert(QStringLiteral("begin"), finding.begin);
        object.insert(QStringLiteral("end"), finding.end);
    }
    return object;
}

QJsonObject findingJson(const adexp::Finding& finding)
{
    FindingFacts facts;
    facts.isWarning = finding.severity() == adexp::Severity::Warning;
    facts.text = unicode(finding.text());
    facts.detail = unicode(finding.detail());
    if (!finding.file().empty() && finding.place().line > 0) { // about a definition
        facts.file = unicode(finding.file());
        facts.name = unicode(finding.path());
    }
    facts.line = finding.place().line;
    facts.column = finding.place().column;
    facts.begin = finding.place().begin;
    facts.end = finding.place().end;
    return findingJson(facts);
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
