// The embedded rule set against the examples in its own records: every example must be accepted by
// the definition it stands in, every counterexample must be refused.
//
// All examples of one record:  adexp_rule_tests --gtest_filter='*/PrimaryField_ADEP'

#include "support/diagnosticcapture.h"

#include "adexpdoc.h"
#include "configinfo.h"
#include "mainclass.h"
#include "msgrule.h"

#include <QDomDocument>
#include <QFile>
#include <QSettings>
#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <vector>

QT_BEGIN_NAMESPACE
// Qt's texts as they are; GoogleTest would print them as lists of characters.
static void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
QT_END_NAMESPACE

namespace {

const QString SettingsPath = QStringLiteral(":/adexp/adexp.ini");

// A record of a rule file as its author wrote it.
struct Record
{
    QString place; // file and line, the form that editors can jump to
    QString tag;
    QString name;
    QString expression;
    QString description;
    QStringList childTags;
    QStringList examples;
    QStringList counterexamples;
    std::string testName; // unique among all records

    bool isMessageRule() const { return tag == QLatin1String("msgRule"); }
    bool isField() const { return !isMessageRule() && tag != QLatin1String("simpleTerm"); }
};

void PrintTo(const Record& record, std::ostream* out)
{
    *out << record.place.toStdString() << ": " << record.name.toStdString();
}

// Records with their names, as they stand below one heading comment of a rule file.
struct Group
{
    QString heading;
    QStringList names;
};

struct RuleFile
{
    QString name;
    std::vector<Record> records;
    std::vector<Group> groups;
};

std::string testNameOf(const Record& record, std::set<std::string>* taken)
{
    std::string name = (record.tag + u'_' + record.name).toStdString();
    std::replace_if(
        name.begin(), name.end(),
        [](unsigned char c) { return c >= 128 || (std::isalnum(c) == 0 && c != '_'); }, '_');
    // A doubled record is for the loading test to complain about, it must not end the run here.
    while (!taken->insert(name).second)
        name += "_again";
    return name;
}

Record readRecord(const QDomElement& element, const QString& fileName)
{
    Record record;
    record.place = fileName + u':' + QString::number(element.lineNumber());
    record.tag = element.tagName();
    record.name = element.attribute(record.isMessageRule() ? QStringLiteral("title")
                                                           : QStringLiteral("name"));
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        const QString text = child.text().trimmed();
        record.childTags.append(tag);
        if (tag == QLatin1String("description"))
            record.description = text;
        else if (tag == QLatin1String("example"))
            record.examples.append(text);
        else if (tag == QLatin1String("counterexample"))
            record.counterexamples.append(text);
        else
            record.expression = text;
    }
    return record;
}

RuleFile readRuleFile(const QString& path, std::set<std::string>* takenTestNames)
{
    RuleFile result;
    result.name = QStringLiteral("rules/") + path.section(u'/', -1);
    QFile file(path);
    QDomDocument document;
    // A file that cannot be read has no records here; the loading test tells why.
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file))
        return result;
    for (QDomNode node = document.documentElement().firstChild(); !node.isNull();
         node = node.nextSibling()) {
        if (node.isComment()) {
            result.groups.push_back({node.toComment().data().simplified(), {}});
        } else if (node.isElement()) {
            Record record = readRecord(node.toElement(), result.name);
            record.testName = testNameOf(record, takenTestNames);
            if (result.groups.empty())
                result.groups.emplace_back();
            result.groups.back().names.append(record.name);
            result.records.push_back(std::move(record));
        }
    }
    return result;
}

const std::vector<RuleFile>& ruleFiles()
{
    static const std::vector<RuleFile> files = [] {
        std::vector<RuleFile> result;
        std::set<std::string> takenTestNames;
        QSettings settings(SettingsPath, QSettings::IniFormat);
        settings.beginGroup(QStringLiteral("rules"));
        for (const char* const key :
             {"simpleTermsFile", "subFieldsFile", "primaryFieldsFile", "msgRulesFile"})
            result.push_back(
                readRuleFile(settings.value(QLatin1String(key)).toString(), &takenTestNames));
        return result;
    }();
    return files;
}

template <typename Condition>
std::vector<Record> recordsThat(Condition condition)
{
    std::vector<Record> result;
    for (const RuleFile& file : ruleFiles())
        std::copy_if(file.records.begin(), file.records.end(), std::back_inserter(result),
                     condition);
    return result;
}

// The loaded rule set, and what its loading reported.
struct RuleSet
{
    RuleSet() : converter(nullptr)
    {
        QSettings settings(SettingsPath, QSettings::IniFormat);
        const DiagnosticCapture diagnostics;
        isLoaded = converter.readSettingsRules(&settings);
        for (const DiagnosticCapture::Line& line : diagnostics.lines())
            reports.append(line.text);
    }

    MainClass converter;
    bool isLoaded = false;
    QStringList reports;
};

RuleSet& ruleSet()
{
    static RuleSet loaded;
    return loaded;
}

std::string quoted(const QString& text)
{
    return '"' + text.toStdString() + '"';
}

// What the conversion of @p message under @p rules reports, each line with a line break before it.
std::string reportsOf(const QString& message, const RuleList& rules)
{
    const DiagnosticCapture diagnostics;
    AdexpDoc doc(message);
    doc.setRootField(&rules);
    doc.parse();
    std::string result;
    for (const DiagnosticCapture::Line& line : diagnostics.lines())
        result += "\n    " + line.text.toStdString();
    return result;
}

// A rule for messages that consist of nothing but one field.
class RuleOfOneField
{
public:
    explicit RuleOfOneField(const QString& fieldName)
    {
        ConfigInfo item;
        item.recordName = title();
        item.ruleText = u'[' + fieldName + u']';
        m_rule = std::make_unique<MsgRule>(&item, &ruleSet().converter);
        m_isValid = m_rule->check_config(&ruleSet().converter.termsList);
    }

    bool isValid() const { return m_isValid; }

    std::string reportsOf(const QString& stretch) const
    {
        RuleList rules;
        rules.append(m_rule.get());
        return ::reportsOf(QStringLiteral("-TITLE ") + title() + u' ' + stretch, rules);
    }

private:
    static QString title() { return QStringLiteral("EXAMPLEMESSAGE"); }

    std::unique_ptr<MsgRule> m_rule;
    bool m_isValid = false;
};

class RecordTest : public testing::TestWithParam<Record>
{
protected:
    // The beginning of every complaint about an example of the record.
    static std::string complaint(const char* kind, const QString& text)
    {
        return GetParam().place.toStdString() + ": " + GetParam().name.toStdString() + ": " + kind +
               ' ' + quoted(text) + ' ';
    }
};

class DefinitionExamples : public RecordTest
{
protected:
    void SetUp() override
    {
        term =
            MainClass::termsList_search(&ruleSet().converter.termsList, GetParam().name.toUpper());
        ASSERT_NE(term, nullptr) << "the definition was refused when the rule set was loaded";
    }

    bool isCompound() const { return term->compoundField || term->isContainsCompoundField(); }

    bool isWhollyMatched(const QString& data, int* matched) const
    {
        *matched = term->parse(data.constData());
        return *matched == data.size();
    }

    // As the field's data stands in a message.
    static QString stretch(const QString& data)
    {
        return u'-' + GetParam().name.toUpper() + u' ' + data;
    }

    TermStd* term = nullptr;
};

TEST_P(DefinitionExamples, AreAccepted)
{
    EXPECT_FALSE(GetParam().examples.isEmpty()) << "no example";
    const RuleOfOneField rule(GetParam().name.toUpper());
    ASSERT_TRUE(rule.isValid());
    for (const QString& example : GetParam().examples) {
        const std::string begin = complaint("example", example);
        int matched = 0;
        if (isCompound()) {
            EXPECT_EQ(rule.reportsOf(example), "") << begin << "is reported";
        } else if (!isWhollyMatched(example, &matched)) {
            ADD_FAILURE() << begin << "is matched only up to " << quoted(example.left(matched));
        } else if (GetParam().isField()) {
            EXPECT_EQ(rule.reportsOf(stretch(example)), "") << begin << "is reported in a message";
        }
    }
}

TEST_P(DefinitionExamples, CounterexamplesAreRefused)
{
    EXPECT_FALSE(GetParam().counterexamples.isEmpty()) << "no counterexample";
    const RuleOfOneField rule(GetParam().name.toUpper());
    ASSERT_TRUE(rule.isValid());
    for (const QString& counterexample : GetParam().counterexamples) {
        const std::string begin = complaint("counterexample", counterexample);
        int matched = 0;
        if (isCompound())
            EXPECT_NE(rule.reportsOf(counterexample), "") << begin << "is not reported";
        else
            EXPECT_FALSE(isWhollyMatched(counterexample, &matched)) << begin << "is matched";
    }
}

class MessageRuleExamples : public RecordTest
{
protected:
    void SetUp() override
    {
        const QString title = GetParam().name.toUpper();
        ASSERT_NE(AdexpDoc::search_rule(&ruleSet().converter.msgRules, title), nullptr)
            << "the rule was refused when the rule set was loaded";
    }
};

// The names of the fields below @p element that are not valid.
QStringList invalidFields(const QDomElement& element)
{
    QStringList names;
    const QDomNodeList descendants = element.elementsByTagName(QStringLiteral("*"));
    for (int i = 0; i < descendants.size(); ++i) {
        const QDomElement field = descendants.at(i).toElement();
        if (field.attribute(QStringLiteral("valid")) == QLatin1String("false"))
            names.append(field.tagName());
    }
    return names;
}

TEST_P(MessageRuleExamples, AreConvertedWithoutReport)
{
    EXPECT_FALSE(GetParam().examples.isEmpty()) << "no example";
    MainClass& converter = ruleSet().converter;
    for (const QString& example : GetParam().examples) {
        const std::string begin = complaint("example", example);
        EXPECT_EQ(reportsOf(example, converter.msgRules), "") << begin << "is reported";

        QDomDocument document;
        const DiagnosticCapture alreadyLookedAt;
        ASSERT_TRUE(document.setContent(converter.charAdexpToCharXml(example)))
            << begin << "gives no document";
        const QDomElement root = document.documentElement();
        EXPECT_EQ(root.attribute(QStringLiteral("rule")), GetParam().name.toUpper())
            << begin << "is a message of another title";
        EXPECT_EQ(invalidFields(root), QStringList()) << begin << "has fields that are not valid";
    }
}

class RecordLayout : public RecordTest
{
};

TEST_P(RecordLayout, BeginsWithADescriptionOfOneLine)
{
    const Record& record = GetParam();
    ASSERT_EQ(record.childTags.value(0), QStringLiteral("description"));
    EXPECT_FALSE(record.description.isEmpty());
    EXPECT_FALSE(record.description.contains(u'\n')) << quoted(record.description);
}

TEST_P(RecordLayout, HasOneDefinitionThenExamplesThenCounterexamples)
{
    const Record& record = GetParam();
    QStringList expected{QStringLiteral("description"), record.isMessageRule()
                                                            ? QStringLiteral("fields")
                                                            : QStringLiteral("term")};
    for (int i = 0; i < record.examples.size(); ++i)
        expected.append(QStringLiteral("example"));
    for (int i = 0; i < record.counterexamples.size(); ++i)
        expected.append(QStringLiteral("counterexample"));
    EXPECT_EQ(record.childTags, expected);
}

TEST_P(RecordLayout, IsWrittenInUpperCase)
{
    const Record& record = GetParam();
    EXPECT_EQ(record.name, record.name.toUpper());
    EXPECT_EQ(record.expression, record.expression.toUpper());
}

TEST_P(RecordLayout, HasNoEmptyExampleUnlessItNeverHasData)
{
    const bool neverHasData = GetParam().expression == QLatin1String("NIL");
    EXPECT_TRUE(neverHasData || !GetParam().examples.contains(QString()));
    EXPECT_FALSE(GetParam().counterexamples.contains(QString()));
}

TEST_P(RecordLayout, HasNoExampleTwice)
{
    QStringList all = GetParam().examples + GetParam().counterexamples;
    EXPECT_EQ(all.removeDuplicates(), 0);
}

std::string testName(const testing::TestParamInfo<Record>& info)
{
    return info.param.testName;
}

INSTANTIATE_TEST_SUITE_P(
    RuleSet, DefinitionExamples,
    testing::ValuesIn(recordsThat([](const Record& r) { return !r.isMessageRule(); })), testName);
INSTANTIATE_TEST_SUITE_P(
    RuleSet, MessageRuleExamples,
    testing::ValuesIn(recordsThat([](const Record& r) { return r.isMessageRule(); })), testName);
INSTANTIATE_TEST_SUITE_P(RuleSet, RecordLayout,
                         testing::ValuesIn(recordsThat([](const Record&) { return true; })),
                         testName);

TEST(RuleSetLoading, ReportsNothing)
{
    EXPECT_TRUE(ruleSet().isLoaded);
    for (const QString& report : ruleSet().reports)
        ADD_FAILURE() << report.toStdString();
}

TEST(RuleSetLoading, KeepsEveryRecord)
{
    std::size_t definitions = 0;
    std::size_t messageRules = 0;
    for (const RuleFile& file : ruleFiles()) {
        EXPECT_FALSE(file.records.empty()) << file.name.toStdString();
        for (const Record& record : file.records)
            ++(record.isMessageRule() ? messageRules : definitions);
    }
    EXPECT_EQ(static_cast<std::size_t>(ruleSet().converter.termsList.size()), definitions);
    EXPECT_EQ(static_cast<std::size_t>(ruleSet().converter.msgRules.size()), messageRules);
}

TEST(RuleSetOrder, IsAlphabeticalBelowEachHeading)
{
    for (const RuleFile& file : ruleFiles()) {
        for (const Group& group : file.groups) {
            QStringList sorted = group.names;
            sorted.sort();
            EXPECT_EQ(group.names, sorted)
                << file.name.toStdString() << ": below the comment " << quoted(group.heading);
        }
    }
}

} // namespace
