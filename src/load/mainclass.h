#ifndef MAINCLASS_H
#define MAINCLASS_H

#include "grammar/namedlist.h"
#include "output/xmldocument.h"

#include <QObject>
#include <QString>

#include <functional>
#include <vector>

class ConfigInfo;
class Reporter;
class RuleFileReader;
class QSettings;
struct RuleRecord;

/// The converter: the loaded rule set, and the conversion of messages against it.
///
/// Owns the terms and rules. They are made while loading and only read afterwards.
class MainClass : public QObject
{
    Q_OBJECT

public:
    explicit MainClass(QObject* parent);

    /// Deletes the rules, then the terms.
    ~MainClass() override;

    /// The value of @p key in the current group of @p settings; empty if there is none.
    static QString getPathFromSettings(const QSettings* settings, const QString& key);

    /// Loads the four rule files that @p settings (not null, not owned) names. False if one of them
    /// cannot be read; the files before it stay loaded.
    bool readSettingsRules(QSettings* settings, Reporter* reporter);

    /// Reads the XML file @p path with @p reader. False after a report.
    static bool ruleDomDocumentsetContent(const QString& path, RuleFileReader* reader,
                                          Reporter* reporter);

    /// Loads the term definitions of the file @p path; its records have the tag @p recordTag, and
    /// their terms define fields if @p containsField is set. False if the file cannot be read; a
    /// bad record is reported and skipped.
    bool readTermsXMLFile(const QString& path, const QString& recordTag, bool containsField,
                          Reporter* reporter);

    /// Loads the message rules of the file @p path. False if the file cannot be read; a bad rule is
    /// reported and skipped.
    bool readMsgRulesXMLFile(const QString& path, Reporter* reporter);

    /// Checks every term that was not checked before, and removes those that cannot be used.
    void termsList_checkConfig(Reporter* reporter);

    /// Ends the loading: from now on nothing of the rule set changes.
    void settle(Reporter* reporter);

    /// The first term of @p list, in load order, with the record name @p name; null if there is
    /// none.
    static TermStd* termsList_search(const TermList* list, const QString& name);

    /// Converts one message. Returns the document as UTF-8, empty if there is none.
    XmlDocument charAdexpToCharXml(const QString& text, Reporter* reporter) const;

    TermList termsList; ///< the named terms of the three term files, in load order
    RuleList msgRules;  ///< the message rules in file order

    /// Receives all records of the files that are read, with all their parts; null if nobody wants
    /// them. Not owned.
    std::vector<RuleRecord>* keptRecords = nullptr;

private:
    bool readRecords(const QString& path, const QString& tag,
                     const std::function<void(const RuleRecord&)>& use, Reporter* reporter);
    void readTermRecord(const RuleRecord& record, bool containsField, ConfigInfo* last,
                        Reporter* reporter);
    void readMsgRuleRecord(const RuleRecord& record, Reporter* reporter);
    bool readRuleFiles(const QSettings& settings, Reporter* reporter);
};

#endif
