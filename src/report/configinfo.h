#ifndef CONFIGINFO_H
#define CONFIGINFO_H

#include <QString>

/// Where an item of the rule set was defined, and its text.
///
/// The loaders fill one per XML record; every term built from the record keeps a copy, so that each
/// report about the rule set can name the file, line and column to look at.
class ConfigInfo
{
public:
    QString xmlFile;      ///< path of the XML file as the settings file gives it
    QString tagName;      ///< tag of the record's element
    int lineNumber = 0;   ///< line of the end of its start tag, from 1; 0: no record
    int columnNumber = 0; ///< column of the end of its start tag, from 1
    QString recordName;   ///< name (of a message rule: title) of the record, in upper case
    QString ruleText;     ///< expression text of the record or of the sub-term, in upper case
    int textBegin = 0; ///< position of ruleText in the simplified expression of the record, from 0

    /// Sets the file of the record.
    void setXMLFile(const QString& file);

    /// Sets line, column and tag. File, name and rule text stay as they are.
    void setXMLData(int line, int column, const QString& tag);

    /// Copies all values from @p other (not null).
    void copyParam(const ConfigInfo* other);

    /// The place alone: "file simple.xml line 12, column 5".
    QString xmlErrorHeadShort() const;

    /// Name and place, the beginning of a report: "element (FL) file simple.xml line 12, column 5:
    /// ".
    QString xmlErrorHead() const;
};

#endif
