// The check of all named terms after they were loaded.

#include "support/reports.h"
#include "support/rulefolder.h"
#include "support/tooutput.h"

#include "grammar/termstd.h"
#include "load/mainclass.h"
#include "message/msgrule.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace {

const QString Removed = QStringLiteral("term  no valid, entry is removed");

struct TermCounts
{
    int checks = 0;
    int compoundMarks = 0;
    int deletions = 0;
};

// A term that counts what the validation does with it.
class CountingTerm : public TermStd
{
public:
    CountingTerm(const ConfigInfo& record, bool isGood, bool isField, TermCounts* counts)
        : TermStd(&record), m_counts(counts)
    {
        valid = isGood;
        containsField = isField;
    }
    ~CountingTerm() override { ++m_counts->deletions; }

    bool check(Check*) override
    {
        ++m_counts->checks;
        return valid;
    }
    void setCompoundField() override { ++m_counts->compoundMarks; }

private:
    TermCounts* m_counts;
};

class Validation : public testing::Test
{
protected:
    using Definition = std::pair<const char*, const char*>;

    // Loads simple terms, each on a line of its own, and checks all terms.
    void define(std::initializer_list<Definition> definitions)
    {
        load(QStringLiteral("simpleTerm"), false, definitions);
    }

    void load(const QString& tag, bool areFields, std::initializer_list<Definition> definitions)
    {
        QByteArray content = "<terms>\n";
        for (const auto& [name, expression] : definitions)
            content += '<' + tag.toUtf8() + " name='" + name + "'><term>" + expression +
                       "</term></" + tag.toUtf8() + ">\n";
        file = folder.write(tag, content + "</terms>\n");
        ASSERT_TRUE(converter.readTermsXMLFile(file, tag, areFields, &toOutput));
        converter.termsList_checkConfig(&toOutput);
    }

    Lines names() const
    {
        Lines result;
        for (const TermStd* term : converter.termsList)
            result.push_back(term->config.recordName.toStdString());
        return result;
    }

    TermStd* term(const char* name) const
    {
        return MainClass::termsList_search(&converter.termsList, QString::fromUtf8(name));
    }

    // The report @p text of the term @p ruleText in the record number @p index, @p name.
    std::string report(int index, const char* name, const char* ruleText, const QString& text) const
    {
        return termReport(RuleFolder::head(file, index, QString::fromUtf8(name)),
                          QString::fromUtf8(ruleText), text);
    }

    static QString notFound(const char* name)
    {
        return QStringLiteral("variable ") + QString::fromUtf8(name) + QStringLiteral(" not found");
    }

    static QString foundNotValid(const char* name)
    {
        return QStringLiteral("variable ") + QString::fromUtf8(name) +
               QStringLiteral(" was found, but variable not valid");
    }

    RuleFolder folder;
    QString file;
    TermCounts field; // these outlive the terms that count in them
    TermCounts simple;
    MainClass converter{nullptr};
    DiagnosticCapture diagnostics;
};

ConfigInfo recordNamed(const char* name)
{
    ConfigInfo record;
    record.recordName = QString::fromUtf8(name);
    return record;
}

TEST_F(Validation, EmptyListStaysEmpty)
{
    converter.termsList_checkConfig(&toOutput);
    EXPECT_EQ(names(), Lines{});
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(Validation, ValidTermsAreMarkedAsCheckedAndKept)
{
    define({{"A", "B 'X'"}, {"B", "{DIGIT}3"}});
    EXPECT_EQ(names(), (Lines{"A", "B"}));
    EXPECT_TRUE(term("A")->configChecked);
    EXPECT_TRUE(term("B")->configChecked);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(Validation, TermWithUnknownReferenceIsRemoved)
{
    define({{"A", "DIGIT NOWHERE"}});
    EXPECT_EQ(names(), Lines{});
    EXPECT_EQ(linesOf(diagnostics), (Lines{report(0, "A", "NOWHERE", notFound("NOWHERE")),
                                           report(0, "A", "DIGIT NOWHERE", Removed)}));
}

TEST_F(Validation, SimpleTermThatRefersToAFieldIsRemovedBeforeTheFieldsAreRead)
{
    define({{"A", "ADEP"}});
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{report(0, "A", "ADEP", notFound("ADEP")), report(0, "A", "ADEP", Removed)}));
    load(QStringLiteral("PrimaryField"), true, {{"ADEP", "{ALPHA}4"}});
    EXPECT_EQ(names(), Lines{"ADEP"});
}

TEST_F(Validation, TermThatRefersToItselfIsRemoved)
{
    define({{"A", "A"}});
    EXPECT_EQ(names(), Lines{});
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{report(0, "A", "A", QStringLiteral("variable points to itself")),
                     report(0, "A", "A", Removed)}));
}

TEST_F(Validation, RemovalDoesNotSkipTheTermBehind)
{
    define({{"A", "NOWHERE"}, {"B", "NOWHERE"}, {"C", "DIGIT"}, {"D", "NOWHERE"}});
    EXPECT_EQ(names(), Lines{"C"});
    EXPECT_TRUE(term("C")->configChecked);
    EXPECT_EQ(
        linesOf(diagnostics),
        (Lines{report(0, "A", "NOWHERE", notFound("NOWHERE")), report(0, "A", "NOWHERE", Removed),
               report(1, "B", "NOWHERE", notFound("NOWHERE")), report(1, "B", "NOWHERE", Removed),
               report(3, "D", "NOWHERE", notFound("NOWHERE")),
               report(3, "D", "NOWHERE", Removed)}));
}

TEST_F(Validation, RemovedTermIsDeletedAtOnce)
{
    converter.termsList.append(new CountingTerm(recordNamed("BAD"), false, true, &field));
    converter.termsList_checkConfig(&toOutput);
    EXPECT_EQ(names(), Lines{});
    EXPECT_EQ(field.checks, 1);
    EXPECT_EQ(field.compoundMarks, 0);
    EXPECT_EQ(field.deletions, 1);
}

TEST_F(Validation, RemovedTermIsNotFoundByTheTermsBehindIt)
{
    define({{"A", "NOWHERE"}, {"B", "A"}});
    EXPECT_EQ(names(), Lines{});
    EXPECT_EQ(
        linesOf(diagnostics),
        (Lines{report(0, "A", "NOWHERE", notFound("NOWHERE")), report(0, "A", "NOWHERE", Removed),
               report(1, "B", "A", notFound("A")), report(1, "B", "A", Removed)}));
}

// B was checked on A's behalf and counts as checked from then on, although it failed.
TEST_F(Validation, TermThatFailedInTheCheckOfAnotherStaysWithoutReport)
{
    define({{"A", "B"}, {"B", "NOWHERE"}});
    EXPECT_EQ(names(), Lines{"B"});
    EXPECT_TRUE(term("B")->configChecked);
    EXPECT_FALSE(term("B")->valid);
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{report(1, "B", "NOWHERE", notFound("NOWHERE")),
                     report(0, "A", "B", foundNotValid("B")), report(0, "A", "B", Removed)}));
}

TEST_F(Validation, TermThatStaysInvalidMakesLaterReferencesToItFail)
{
    define({{"A", "B"}, {"B", "NOWHERE"}, {"C", "B"}});
    EXPECT_EQ(names(), Lines{"B"});
    const Lines lines = linesOf(diagnostics);
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_EQ(lines[3], report(2, "C", "B", foundNotValid("B")));
    EXPECT_EQ(lines[4], report(2, "C", "B", Removed));
}

TEST_F(Validation, TermCheckedOnBehalfOfAnotherIsNotCheckedAgain)
{
    define({{"A", "B X"}, {"B", "NOWHERE NOWHERE2"}});
    // Each name that is not there is reported once.
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{report(1, "B", "NOWHERE", notFound("NOWHERE")),
                     report(1, "B", "NOWHERE2", notFound("NOWHERE2")),
                     report(0, "A", "B", foundNotValid("B")), report(0, "A", "X", notFound("X")),
                     report(0, "A", "B X", Removed)}));
}

TEST_F(Validation, OnlyFieldsAreMarkedAsCompounds)
{
    converter.termsList.append(new CountingTerm(recordNamed("FIELD"), true, true, &field));
    converter.termsList.append(new CountingTerm(recordNamed("SIMPLE"), true, false, &simple));
    converter.termsList_checkConfig(&toOutput);
    EXPECT_EQ(field.compoundMarks, 1);
    EXPECT_EQ(simple.compoundMarks, 0);
}

TEST_F(Validation, LaterPassesMarkCompoundsAgainButCheckNothingAgain)
{
    converter.termsList.append(new CountingTerm(recordNamed("FIELD"), true, true, &field));
    converter.termsList.append(new CountingTerm(recordNamed("SIMPLE"), true, false, &simple));
    converter.termsList_checkConfig(&toOutput);
    converter.termsList_checkConfig(&toOutput);
    converter.termsList_checkConfig(&toOutput);
    EXPECT_EQ(field.checks, 1);
    EXPECT_EQ(field.compoundMarks, 3);
    EXPECT_EQ(simple.checks, 1);
    EXPECT_EQ(simple.compoundMarks, 0);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(Validation, TermMarkedAsCheckedIsNotCheckedWhateverItWouldSay)
{
    auto* const bad = new CountingTerm(recordNamed("BAD"), false, true, &field);
    bad->configChecked = true;
    converter.termsList.append(bad);
    converter.termsList_checkConfig(&toOutput);
    EXPECT_EQ(names(), Lines{"BAD"});
    EXPECT_EQ(field.checks, 0);
    EXPECT_EQ(field.compoundMarks, 1);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(Validation, FieldsThatReferToFieldsBecomeCompounds)
{
    define({{"DATE", "{DIGIT}6"}});
    load(QStringLiteral("PrimaryField"), true,
         {{"PT", "PTID ETO"}, {"PTID", "{ALPHA}5"}, {"ETO", "DATE"}, {"POINTS", "1{PT}"}});
    EXPECT_TRUE(term("PT")->compoundField);
    EXPECT_FALSE(term("PTID")->compoundField);
    EXPECT_FALSE(term("ETO")->compoundField);
    EXPECT_TRUE(term("POINTS")->compoundField);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

// References through a chain of records T1 -> T2 -> ... -> Tn -> T1.
class Loops : public Validation, public testing::WithParamInterface<int>
{
protected:
    static QByteArray name(int number) { return "T" + QByteArray::number(number); }

    int next(int number) const { return number == GetParam() ? 1 : number + 1; }

    // @p around: the text of each record, with %1 for the name it refers to.
    void defineLoop(const char* around)
    {
        QByteArray content = "<terms>\n";
        for (int i = 1; i <= GetParam(); ++i)
            content += "<simpleTerm name='" + name(i) + "'><term>" +
                       QByteArray(around).replace("%1", name(next(i))) + "</term></simpleTerm>\n";
        file = folder.write(QStringLiteral("loop.xml"), content + "</terms>");
        ASSERT_TRUE(
            converter.readTermsXMLFile(file, QStringLiteral("simpleTerm"), false, &toOutput));
        converter.termsList_checkConfig(&toOutput);
    }

    // What the reference in record @p number reports.
    std::string referenceReport(int number, const QString& text) const
    {
        return report(number - 1, name(number).constData(), name(next(number)).constData(), text);
    }

    Lines expectedReports(const char* ruleTextOfFirst) const
    {
        if (GetParam() == 1)
            return {referenceReport(1, QStringLiteral("variable points to itself")),
                    report(0, "T1", ruleTextOfFirst, Removed)};
        Lines lines{referenceReport(1, QStringLiteral("loop detected in the variables"))};
        for (int i = GetParam(); i >= 1; --i)
            lines.push_back(referenceReport(i, foundNotValid(name(next(i)).constData())));
        lines.push_back(report(0, "T1", ruleTextOfFirst, Removed));
        return lines;
    }

    // All but the first, which was checked on its own behalf.
    Lines expectedNames() const
    {
        Lines result;
        for (int i = 2; i <= GetParam(); ++i)
            result.push_back(name(i).toStdString());
        return result;
    }
};

TEST_P(Loops, OfPlainReferencesAreReportedOnceAndEnd)
{
    defineLoop("%1");
    EXPECT_EQ(linesOf(diagnostics), expectedReports(name(next(1)).constData()));
    EXPECT_EQ(names(), expectedNames());
}

TEST_P(Loops, ThroughExpressionsAreReportedOnceAndEnd)
{
    defineLoop("DIGIT (ALPHA [%1])");
    const QByteArray ruleText = "DIGIT (ALPHA [" + name(next(1)) + "])";
    EXPECT_EQ(linesOf(diagnostics), expectedReports(ruleText.constData()));
    EXPECT_EQ(names(), expectedNames());
}

TEST_P(Loops, DoNotHarmTheTermsBesideThem)
{
    define({{"BEFORE", "DIGIT"}});
    defineLoop("%1");
    EXPECT_NE(term("BEFORE"), nullptr);
    EXPECT_EQ(term("T1"), nullptr);
}

INSTANTIATE_TEST_SUITE_P(OfLength, Loops, testing::Range(1, 11));

} // namespace
