#include "report/configinfo.h"

#include <QObject>

void ConfigInfo::setXMLFile(const QString& file)
{
    xmlFile = file;
}

void ConfigInfo::setXMLData(int line, int column, const QString& tag)
{
    lineNumber = line;
    columnNumber = column;
    tagName = tag;
}

void ConfigInfo::copyParam(const ConfigInfo* other)
{
    *this = *other;
}

QString ConfigInfo::xmlErrorHeadShort() const
{
    return QObject::tr("file ") + xmlFile + QObject::tr(" line ") + QString::number(lineNumber) +
           QObject::tr(", column ") + QString::number(columnNumber);
}

QString ConfigInfo::xmlErrorHead() const
{
    QString head = QObject::tr("element");
    // Without a name nothing stands between "element" and "file". Scripts of users expect this
    // form; pinned by `ConfigInfo.FullHeadOfRecordWithoutNameRunsTogether`.
    if (!recordName.isEmpty())
        head += QLatin1String(" (") + recordName + QLatin1String(") ");
    return head + xmlErrorHeadShort() + QObject::tr(": ");
}
