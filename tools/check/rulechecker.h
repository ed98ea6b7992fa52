#ifndef RULECHECKER_H
#define RULECHECKER_H

#include "load/mainclass.h"
#include "load/rulerecord.h"
#include "report/finding.h"

#include <QHash>
#include <QStringList>

#include <set>
#include <string>
#include <unordered_map>
#include <vector>

class QSettings;

/// The place of each UTF-16 unit of the text of @p part after QString::toUpper() and
/// QString::simplified(), which is the form that expressions are compiled from, and of what follows
/// it.
std::vector<SourcePlace> placesInExpression(const RecordPart& part);

/// All findings about a rule set, each one once, with its place in the rule files.
///
/// They are: the library's findings about definitions, without those that only follow from others;
/// parts of definitions that have no effect (TermWarnings); definitions that no message rule uses;
/// and examples that fail (ExampleChecker).
class RuleChecker
{
public:
    /// What became of the records that are not switched off.
    struct Counts
    {
        int definitions = 0;
        int messageRules = 0;
        int definitionsLeftOut = 0;
        int messageRulesLeftOut = 0;
    };

    /// Loads and checks the rule set of @p settings, an ini file that could be read.
    explicit RuleChecker(QSettings* settings);

    /// Sorted by file (in the order of loading), line and column. The place in the record is the
    /// exact place of the finding, as editors count it; line 0: the whole file.
    const std::vector<Finding>& findings() const { return m_findings; }

    /// True if a rule file could not be read; the files after it were not read either.
    bool isIncomplete() const { return !m_isLoaded; }

    Counts counts() const;

private:
    void readSettings(const QSettings& settings);
    void indexRecords();
    void keepCauses(const std::vector<Finding>& all);
    void keep(Finding finding);
    SourcePlace placeInExpression(const RuleRecord* record, std::size_t position);
    bool followsFromAnother(const Finding& finding) const;
    QString hintFor(const Finding& unknownName);
    QString loopHint(const QString& name, const QString& by) const;
    QString nearestHint(const std::string& name) const;
    void findUnused();
    void checkExamples();
    void report(const RuleRecord& record, const SourcePlace& place, Severity severity,
                const QString& text, const QString& detail);
    void sortByPlace();
    bool isLoaded(const RuleRecord& record) const;
    bool isInUse(const RuleRecord& record) const;
    const RuleRecord* recordOf(const ConfigInfo& info) const;

    MainClass m_rules;
    bool m_isLoaded = false;
    QString m_settingsFile;
    QString m_missingKey; // of the first rule file that the settings do not name
    QStringList m_files;  // in the order of loading
    std::vector<RuleRecord> m_records;
    QHash<QString, const RuleRecord*> m_byName;  // definitions only; the one that counts
    QHash<QString, const RuleRecord*> m_byPlace; // as findings of the library give it
    std::set<const RuleRecord*> m_refused;       // neither switched off nor loaded
    std::unordered_map<const RuleRecord*, std::vector<SourcePlace>> m_expressionPlaces; // asked for
    std::vector<std::string> m_names;  // all that an expression may refer to
    QHash<QString, QString> m_nearest; // hints given before
    std::vector<Finding> m_findings;
};

#endif
