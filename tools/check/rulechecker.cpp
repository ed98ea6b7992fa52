#include "rulechecker.h"

#include "definitions.h"
#include "examplechecker.h"
#include "message/msgrule.h"
#include "nearestname.h"
#include "report/reporter.h"
#include "settingsfile.h"
#include "termwarnings.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>

#include <algorithm>
#include <tuple>

namespace {

// How many unknown names get the nearest name as a hint: each search compares all names.
constexpr int MostHints = 100;

class FindingList : public Reporter
{
public:
    void report(const Finding& finding) override { all.push_back(finding); }

    std::vector<Finding> all;
};

QString placeKey(const ConfigInfo& record)
{
    return record.xmlFile + u':' + QString::number(record.lineNumber) + u':' +
           QString::number(record.columnNumber);
}

bool isMissing(const QString& path)
{
    return !path.isEmpty() && QFileInfo(path).isRelative() && !QFileInfo::exists(path);
}

// The words of an expression that was perhaps not compiled: some may not be names. The record may
// be null.
QStringList namesIn(const RuleRecord* record)
{
    static const QRegularExpression others(QStringLiteral("[\\s|!+'()\\[\\]{}]+"),
                                           QRegularExpression::UseUnicodePropertiesOption);
    return record ? record->ruleText.split(others, Qt::SkipEmptyParts) : QStringList();
}

} // namespace

RuleChecker::RuleChecker(QSettings* settings)
    : m_rules(nullptr), m_settingsFile(settings->fileName())
{
    readSettings(*settings);
    FindingList found;
    m_rules.keptRecords = &m_records;
    m_isLoaded = m_rules.readSettingsRules(settings, &found);
    indexRecords();
    keepCauses(found.all);
    for (const Finding& warning : TermWarnings(&m_rules).find())
        keep(warning);
    if (m_isLoaded)
        findUnused();
    checkExamples();
    sortByPlace();
}

void RuleChecker::readSettings(const QSettings& settings)
{
    for (const char* key : RuleFileKeys) {
        m_files.append(pathOf(key, settings));
        if (m_files.last().isEmpty() && m_missingKey.isEmpty())
            m_missingKey = QLatin1String(key);
    }
}

void RuleChecker::indexRecords()
{
    for (const RuleRecord& record : m_records) {
        m_byPlace.insert(placeKey(record), &record);
        if (record.isForeign)
            continue;
        if (record.isActive && !isLoaded(record))
            m_refused.insert(&record);
        const RuleRecord* const previous = m_byName.value(record.recordName);
        if (!record.isMessageRule() && (!previous || !previous->isActive))
            m_byName.insert(record.recordName, &record);
    }
    m_names = {"CHARACTER", "ALPHANUM", "ALPHA", "DIGIT", "SEP", "NIL", "LIM_CHAR"};
    for (const RuleRecord& record : m_records) {
        if (!record.isMessageRule())
            m_names.push_back(record.recordName.toStdString());
    }
}

bool RuleChecker::isLoaded(const RuleRecord& record) const
{
    const QString& name = record.recordName;
    const TermStd* const definition =
        record.isMessageRule() ? m_rules.msgRules.search(name) : m_rules.termsList.search(name);
    // A definition may be in the list although its check has failed.
    return definition && definition->valid && placeKey(definition->config) == placeKey(record);
}

bool RuleChecker::isInUse(const RuleRecord& record) const
{
    return record.isActive && !record.isForeign && isLoaded(record);
}

const RuleRecord* RuleChecker::recordOf(const ConfigInfo& info) const
{
    return m_byPlace.value(placeKey(info));
}

void RuleChecker::keepCauses(const std::vector<Finding>& all)
{
    int loops = 0;
    for (const Finding& finding : all) {
        if (finding.kind() == FindingKind::Consequence || followsFromAnother(finding))
            continue;
        Finding cause = finding;
        if (cause.record.xmlFile.isEmpty() && !m_missingKey.isEmpty())
            cause.text += QLatin1String("; give it behind the key ") + m_missingKey +
                          QLatin1String(" of the group [rules]");
        if (isMissing(cause.record.xmlFile))
            cause.text += QLatin1String("; a relative path starts from the working directory");
        if (cause.kind() == FindingKind::UnknownName)
            cause.text += hintFor(cause);
        if (cause.kind() == FindingKind::Loop && loops++ < MostHints)
            cause.text += loopHint(cause.record.recordName, cause.detail);
        keep(cause);
    }
}

// True for a reference to a definition that exists and was left out itself. (A simple term may not
// refer to a field in any case.)
bool RuleChecker::followsFromAnother(const Finding& finding) const
{
    if (finding.kind() != FindingKind::UnknownName)
        return false;
    const RuleRecord* const target = m_byName.value(finding.detail);
    const RuleRecord* const record = recordOf(finding.record);
    const bool isOutOfReach =
        target && target->isField() && record && !record->isField() && !record->isMessageRule();
    return target && m_refused.count(target) != 0 && !isOutOfReach;
}

QString RuleChecker::hintFor(const Finding& unknownName)
{
    const RuleRecord* const target = m_byName.value(unknownName.detail);
    if (target && !target->isActive)
        return QStringLiteral("; its record is switched off (active=\"false\")");
    if (target && target->isField())
        return QStringLiteral("; it is a field, and a simple term can refer to simple terms only");
    const QString name = unknownName.detail;
    if (!m_nearest.contains(name) && m_nearest.size() < MostHints)
        m_nearest.insert(name, nearestHint(name.toStdString()));
    return m_nearest.value(name);
}

// The shortest way from the definition through the other one back to itself.
QString RuleChecker::loopHint(const QString& name, const QString& by) const
{
    QHash<QString, QString> cameFrom{{by, name}};
    QStringList toFollow{by};
    while (!toFollow.isEmpty() && !cameFrom.contains(name)) {
        const QString current = toFollow.takeFirst();
        for (const QString& next : namesIn(m_byName.value(current))) {
            if (!cameFrom.contains(next)) {
                cameFrom.insert(next, current);
                toFollow.append(next);
            }
        }
    }
    QStringList way{name};
    for (QString at = cameFrom.value(name); !at.isEmpty() && at != name; at = cameFrom.value(at))
        way.prepend(at);
    way.prepend(name);
    return QLatin1String("; the circle is ") + way.join(QLatin1String(" > "));
}

// Empty if no name is similar enough.
QString RuleChecker::nearestHint(const std::string& name) const
{
    const std::string nearest = nearestName(name, m_names);
    const bool isNear = 2 * editDistance(name, nearest) <= name.size();
    return isNear ? QLatin1String("; the nearest name is ") + QString::fromStdString(nearest)
                  : QString();
}

// Gives the finding the exact place.
void RuleChecker::keep(Finding finding)
{
    ConfigInfo& place = finding.record;
    if (const RuleRecord* const record = recordOf(place)) {
        const SourcePlace exact =
            finding.begin < 0 ? record->place
                              : placeInExpression(record, static_cast<std::size_t>(finding.begin));
        place.setXMLData(exact.line, exact.column, place.tagName);
    } else if (place.xmlFile.isEmpty()) {
        place.setXMLFile(m_settingsFile);
    }
    m_findings.push_back(std::move(finding));
}

SourcePlace RuleChecker::placeInExpression(const RuleRecord* record, std::size_t position)
{
    const RecordPart* const expression = record->expression();
    if (!expression)
        return record->place;
    auto places = m_expressionPlaces.find(record);
    if (places == m_expressionPlaces.end())
        places = m_expressionPlaces.emplace(record, placesInExpression(*expression)).first;
    return places->second[std::min(position, places->second.size() - 1)];
}

void RuleChecker::findUnused()
{
    QSet<QString> used;
    QStringList toFollow;
    for (const MsgRule* rule : m_rules.msgRules)
        toFollow += referencesOf(rule);
    // A definition that was left out counts as using everything that it names.
    for (const RuleRecord* record : m_refused)
        toFollow += namesIn(record);
    while (!toFollow.isEmpty()) {
        const QString name = toFollow.takeLast();
        const TermStd* const term = used.contains(name) ? nullptr : m_rules.termsList.search(name);
        used.insert(name);
        if (term)
            toFollow += referencesOf(term);
    }
    for (const RuleRecord& record : m_records) {
        const bool isUsed = used.contains(record.recordName);
        if (isInUse(record) && !record.isMessageRule() && isUsed == record.isMeantUnused)
            report(record, record.place, Severity::Warning,
                   isUsed ? QStringLiteral("a message rule uses it; delete unused=\"true\"")
                          : QStringLiteral("no message rule uses it, directly or through other "
                                           "definitions; delete it, or write unused=\"true\""),
                   {});
    }
}

void RuleChecker::report(const RuleRecord& record, const SourcePlace& place, Severity severity,
                         const QString& text, const QString& detail)
{
    Finding finding;
    finding.severity = severity;
    finding.text = text;
    finding.detail = detail;
    finding.record = record;
    finding.record.setXMLData(place.line, place.column, record.tagName);
    m_findings.push_back(std::move(finding));
}

void RuleChecker::checkExamples()
{
    const ExampleChecker checker(&m_rules);
    for (const RuleRecord& record : m_records) {
        if (!isInUse(record))
            continue;
        for (const RecordPart& part : record.parts) {
            const bool isCounterexample = part.tag == QLatin1String("counterexample");
            if (!isCounterexample && part.tag != QLatin1String("example"))
                continue;
            const QString example = part.text.trimmed();
            const QString why = isCounterexample ? checker.whyAccepted(record, example)
                                                 : checker.whyRefused(record, example);
            if (!why.isEmpty())
                report(record, placesInExpression(part).front(), Severity::Error,
                       QLatin1String("the ") + part.tag + u' ' + why, example);
        }
    }
}

void RuleChecker::sortByPlace()
{
    const auto key = [this](const Finding& finding) {
        const ConfigInfo& place = finding.record;
        return std::make_tuple(m_files.indexOf(place.xmlFile), place.lineNumber, place.columnNumber,
                               finding.text);
    };
    std::stable_sort(m_findings.begin(), m_findings.end(),
                     [&key](const Finding& a, const Finding& b) { return key(a) < key(b); });
    // A loop is reported for each reference to it, and again for those that follow.
    const auto end =
        std::unique(m_findings.begin(), m_findings.end(),
                    [&key](const Finding& a, const Finding& b) { return key(a) == key(b); });
    m_findings.erase(end, m_findings.end());
}

RuleChecker::Counts RuleChecker::counts() const
{
    Counts counts;
    for (const RuleRecord& record : m_records) {
        if (record.isActive && !record.isForeign)
            ++(record.isMessageRule() ? counts.messageRules : counts.definitions);
    }
    for (const RuleRecord* record : m_refused)
        ++(record->isMessageRule() ? counts.messageRulesLeftOut : counts.definitionsLeftOut);
    return counts;
}

std::vector<SourcePlace> placesInExpression(const RecordPart& part)
{
    const QString& text = part.text;
    std::vector<SourcePlace> result;
    bool blankIsDue = false;
    for (int i = 0; i < text.size();) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const int length = isPair ? 2 : 1;
        const SourcePlace here = part.places[static_cast<std::size_t>(i)];
        if (text.at(i).isSpace()) {
            blankIsDue = !result.empty();
        } else {
            const auto units = text.mid(i, length).toUpper().size() + (blankIsDue ? 1 : 0);
            result.insert(result.end(), static_cast<std::size_t>(units), here);
            blankIsDue = false;
        }
        i += length;
    }
    result.push_back(part.places.back());
    return result;
}
