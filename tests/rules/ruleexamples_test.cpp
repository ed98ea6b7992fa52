// The embedded rule set against the examples in its own records: every example must be accepted by
// the definition it stands in, every counterexample must be refused.
//
// All examples of one record:  adexp_rule_tests --gtest_filter='*/PrimaryField_ADEP'

#include "support/diagnosticcapture.h"
#include "support/tooutput.h"

#include "examplechecker.h"
#include "load/mainclass.h"
#include "load/rulefilereader.h"
#include "message/msgrule.h"
#include "rulechecker.h"

#include <QDomDocument>
#include <QFile>
#include <QSettings>
#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <iterator>
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

// A record of a rule file, and the name of the tests about it.
struct Record : RuleRecord
{
    std::string testName; // unique among all records

    // The form that editors can jump to.
    std::string placeText() const
    {
        return xmlFile.toStdString() + ':' + std::to_string(place.line) + ": " +
               recordName.toStdString();
    }

    // The texts of the parts with that tag.
    QStringList texts(const char* partTag) const
    {
        QStringList result;
        for (const RecordPart& part : parts) {
            if (part.tag == QLatin1String(partTag))
                result.append(part.text.trimmed());
        }
        return result;
    }
};

void PrintTo(const Record& record, std::ostream* out)
{
    *out << record.placeText();
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
    std::string name = (record.tagName + u'_' + record.recordName).toStdString();
    std::replace_if(
        name.begin(), name.end(),
        [](unsigned char c) { return c >= 128 || (std::isalnum(c) == 0 && c != '_'); }, '_');
    // The loading test reports a doubled record; it must not end the run here.
    while (!taken->insert(name).second)
        name += "_again";
    return name;
}

// The names of the records in the groups that comments divide the file into.
std::vector<Group> readGroups(const QString& path)
{
    std::vector<Group> groups;
    QFile file(path);
    QDomDocument document;
    // A file that cannot be read has no records here; the loading test tells why.
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file))
        return groups;
    for (QDomNode node = document.documentElement().firstChild(); !node.isNull();
         node = node.nextSibling()) {
        if (node.isComment() || groups.empty())
            groups.push_back({node.toComment().data().simplified(), {}});
        const QDomElement record = node.toElement();
        if (!record.isNull())
            groups.back().names.append(record.attribute(QStringLiteral("name"),
                                                        record.attribute(QStringLiteral("title"))));
    }
    return groups;
}

RuleFile readFile(const QString& path, const QString& tag, std::set<std::string>* takenTestNames)
{
    RuleFile result;
    result.name = QStringLiteral("rules/") + path.section(u'/', -1);
    result.groups = readGroups(path);
    RuleFileReader reader(tag, true);
    reader.read(path);
    for (RuleRecord& ruleRecord : reader.records) {
        Record record;
        static_cast<RuleRecord&>(record) = std::move(ruleRecord);
        record.setXMLFile(result.name);
        record.testName = testNameOf(record, takenTestNames);
        result.records.push_back(std::move(record));
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
        const auto read = [&](const char* key, const char* tag) {
            result.push_back(readFile(settings.value(QLatin1String(key)).toString(),
                                      QLatin1String(tag), &takenTestNames));
        };
        read("simpleTermsFile", "simpleTerm");
        read("subFieldsFile", "SubField");
        read("primaryFieldsFile", "PrimaryField");
        read("msgRulesFile", "msgRule");
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
        isLoaded = converter.readSettingsRules(&settings, &toOutput);
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

class RecordTest : public testing::TestWithParam<Record>
{
protected:
    void SetUp() override
    {
        const QString& name = GetParam().recordName;
        MainClass& converter = ruleSet().converter;
        const bool isLoaded = GetParam().isMessageRule()
                                  ? converter.msgRules.search(name) != nullptr
                                  : converter.termsList.search(name) != nullptr;
        ASSERT_TRUE(isLoaded) << "the definition was refused when the rule set was loaded";
    }
};

using Examples = RecordTest;

TEST_P(Examples, AreAccepted)
{
    const ExampleChecker checker(&ruleSet().converter);
    EXPECT_FALSE(GetParam().texts("example").isEmpty()) << "no example";
    for (const QString& example : GetParam().texts("example"))
        EXPECT_EQ(checker.whyRefused(GetParam(), example), QString())
            << GetParam().placeText() << ": example " << quoted(example);
}

using Counterexamples = RecordTest;

TEST_P(Counterexamples, AreRefused)
{
    const ExampleChecker checker(&ruleSet().converter);
    EXPECT_FALSE(GetParam().texts("counterexample").isEmpty()) << "no counterexample";
    for (const QString& counterexample : GetParam().texts("counterexample"))
        EXPECT_EQ(checker.whyAccepted(GetParam(), counterexample), QString())
            << GetParam().placeText() << ": counterexample " << quoted(counterexample);
}

using RecordLayout = RecordTest;

TEST_P(RecordLayout, BeginsWithADescriptionOfOneLine)
{
    const RecordPart first = GetParam().parts.at(0);
    ASSERT_EQ(first.tag, QStringLiteral("description"));
    const QString description = first.text.trimmed();
    EXPECT_FALSE(description.isEmpty());
    EXPECT_FALSE(description.contains(u'\n')) << quoted(description);
}

TEST_P(RecordLayout, HasOneDefinitionThenExamplesThenCounterexamples)
{
    const Record& record = GetParam();
    QStringList expected{QStringLiteral("description"), record.isMessageRule()
                                                            ? QStringLiteral("fields")
                                                            : QStringLiteral("term")};
    for (int i = 0; i < record.texts("example").size(); ++i)
        expected.append(QStringLiteral("example"));
    for (int i = 0; i < record.texts("counterexample").size(); ++i)
        expected.append(QStringLiteral("counterexample"));
    QStringList tags;
    for (const RecordPart& part : record.parts)
        tags.append(part.tag);
    EXPECT_EQ(tags, expected);
}

TEST_P(RecordLayout, IsWrittenInUpperCase)
{
    const Record& record = GetParam();
    ASSERT_NE(record.expression(), nullptr);
    EXPECT_EQ(record.expression()->text, record.ruleText);
}

TEST_P(RecordLayout, HasNoEmptyExampleUnlessItNeverHasData)
{
    const bool neverHasData = GetParam().expression()->text == QLatin1String("NIL");
    EXPECT_TRUE(neverHasData || !GetParam().texts("example").contains(QString()));
    EXPECT_FALSE(GetParam().texts("counterexample").contains(QString()));
}

TEST_P(RecordLayout, HasNoExampleTwice)
{
    QStringList all = GetParam().texts("example") + GetParam().texts("counterexample");
    EXPECT_EQ(all.removeDuplicates(), 0);
}

std::string testName(const testing::TestParamInfo<Record>& info)
{
    return info.param.testName;
}

// A function: the embedded files are there only when main() begins.
auto allRecords()
{
    return testing::ValuesIn(recordsThat([](const Record&) { return true; }));
}

INSTANTIATE_TEST_SUITE_P(RuleSet, Examples, allRecords(), testName);
INSTANTIATE_TEST_SUITE_P(
    RuleSet, Counterexamples,
    testing::ValuesIn(recordsThat([](const Record& r) { return !r.isMessageRule(); })), testName);
INSTANTIATE_TEST_SUITE_P(RuleSet, RecordLayout, allRecords(), testName);

TEST(RuleSetLoading, ReportsNothing)
{
    EXPECT_TRUE(ruleSet().isLoaded);
    for (const QString& report : ruleSet().reports)
        ADD_FAILURE() << report.toStdString();
}

// The loading above shows what the library finds, this what a look at the whole finds.
TEST(RuleSetChecking, FindsNothing)
{
    QSettings settings(SettingsPath, QSettings::IniFormat);
    const RuleChecker checker(&settings);
    for (const Finding& finding : checker.findings())
        ADD_FAILURE() << finding.record.xmlFile.toStdString() << ':' << finding.record.lineNumber
                      << ": " << finding.text.toStdString();
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

TEST(RuleSetNames, AreInUpperCase)
{
    for (const RuleFile& file : ruleFiles()) {
        for (const Group& group : file.groups) {
            for (const QString& name : group.names)
                EXPECT_EQ(name, name.toUpper());
        }
    }
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
