#include "examplechecker.h"

#include "definitions.h"
#include "load/mainclass.h"
#include "load/rulerecord.h"
#include "message/adexpdoc.h"
#include "message/msgrule.h"
#include "report/linereporter.h"

#include <QStringList>

#include <algorithm>

namespace {

// "is matched only up to "ABC"", empty if all is matched.
QString unmatched(TermStd* term, const QString& data)
{
    LineReporter reports;
    Match match(data.size(), &reports);
    const int matched = term->match(data.constData(), &match);
    if (match.areStepsExhausted())
        return QStringLiteral("takes too many steps to be matched");
    if (matched == data.size())
        return {};
    return matched == 0 ? QStringLiteral("is not matched")
                        : QLatin1String("is matched only up to \"") + data.left(matched) + u'"';
}

class ReportedLines : public Reporter
{
public:
    void report(const Finding& finding) override
    {
        lines.append(LineReporter::lineOf(finding).trimmed());
    }

    QStringList lines;
};

// What the conversion of a message reports. @p title receives that of its rule, null without one.
QString reportsOf(const QString& message, const RuleList& rules, QString* title = nullptr)
{
    ReportedLines reported;
    AdexpDoc doc(message, &reported);
    doc.setRootField(&rules);
    doc.parse();
    if (title && doc.rootField && doc.rootField->fieldTerm)
        *title = doc.rootField->fieldTerm->config.recordName;
    return reported.lines.isEmpty() ? QString()
                                    : QLatin1String("is reported: ") + reported.lines.join(u' ');
}

} // namespace

ExampleChecker::ExampleChecker(MainClass* rules) : m_rules(rules) {}

TermStd* ExampleChecker::definitionOf(const RuleRecord& record) const
{
    return MainClass::termsList_search(&m_rules->termsList, record.recordName);
}

QString ExampleChecker::whyRefused(const RuleRecord& record, const QString& text) const
{
    if (record.isMessageRule())
        return messageRefused(record, text);
    TermStd* const term = definitionOf(record);
    return isCompound(term) ? stretchRefused(record, text) : dataRefused(record, term, text);
}

QString ExampleChecker::whyAccepted(const RuleRecord& record, const QString& text) const
{
    // A message may refuse what the definition accepts (a field ends at a hyphen), but a
    // counterexample is about the definition.
    TermStd* const term = record.isMessageRule() ? nullptr : definitionOf(record);
    const bool isRefused = term && !isCompound(term) ? !unmatched(term, text).isEmpty()
                                                     : !whyRefused(record, text).isEmpty();
    return isRefused ? QString() : QStringLiteral("is accepted");
}

QString ExampleChecker::dataRefused(const RuleRecord& record, TermStd* term,
                                    const QString& data) const
{
    if (QString text = unmatched(term, data); !text.isEmpty())
        return text;
    if (!record.isField())
        return {};
    const QString inMessage = stretchRefused(record, u'-' + record.recordName + u' ' + data);
    return inMessage.isEmpty() ? QString() : QLatin1String("in a message ") + inMessage;
}

// Tries the stretch as a whole message.
QString ExampleChecker::stretchRefused(const RuleRecord& record, const QString& stretch) const
{
    ConfigInfo config;
    config.recordName = QStringLiteral("EXAMPLEMESSAGE");
    config.ruleText = u'[' + record.recordName + u']';
    LineReporter reports;
    MsgRule rule(&config, m_rules, &reports);
    rule.check_config(&m_rules->termsList, &reports);
    RuleList rules;
    rules.append(&rule);
    return reportsOf(QLatin1String("-TITLE ") + config.recordName + u' ' + stretch, rules);
}

QString ExampleChecker::messageRefused(const RuleRecord& record, const QString& message) const
{
    QString title;
    QString reports = reportsOf(message, m_rules->msgRules, &title);
    if (title.isNull())
        return QStringLiteral("has no title, or one without a rule");
    if (title != record.recordName)
        return QLatin1String("is a message of the title ") + title;
    return reports;
}
