// Findings as values: their text and place.

#include "grammar/termexpression.h"
#include "load/mainclass.h"
#include "message/adexpdoc.h"
#include "report/reporter.h"

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/rulefolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace {

class Findings : public Reporter
{
public:
    void report(const Finding& finding) override { all.push_back(finding); }

    std::vector<Finding> all;
};

// One finding in a message, in which "<" and ">" enclose the stretch that it is about; none if
// there is none. It is the first finding that has the text.
struct MessageCase
{
    const char* name;
    const char* marked;
    const char* text;
    const char* detail;
    Severity severity;
};

class FindingInAMessage : public testing::TestWithParam<MessageCase>
{
};

TEST_P(FindingInAMessage, HasTheStretchItIsAbout)
{
    Grammar grammar;
    grammar.field("SUB", "2{ALPHA}4").field("LIST", "SUB").rule("IFPL", "[SUB] [LIST]");
    const DiagnosticCapture diagnostics;
    Findings findings;
    QString message = QString::fromUtf8(GetParam().marked);
    const auto begin = message.indexOf(u'<');
    const auto end = begin == -1 ? -1 : message.indexOf(u'>') - 1;
    message.remove(u'<').remove(u'>');
    AdexpDoc doc(message, &findings);
    doc.setRootField(grammar.rules());
    doc.parse();

    const QString text = QString::fromUtf8(GetParam().text);
    const auto found =
        std::find_if(findings.all.cbegin(), findings.all.cend(),
                     [&text](const Finding& finding) { return finding.text == text; });
    ASSERT_NE(found, findings.all.cend());
    EXPECT_EQ(found->detail, QString::fromUtf8(GetParam().detail));
    EXPECT_EQ(found->begin, begin);
    EXPECT_EQ(found->end, end);
    EXPECT_EQ(found->severity, GetParam().severity);
    EXPECT_TRUE(found->record.xmlFile.isEmpty());
}

const char* const NoTitle = "begin message (-TITLE) not found";
const char* const LoneHyphen = "field consists of a single character";

INSTANTIATE_TEST_SUITE_P(
    Messages, FindingInAMessage,
    testing::Values(
        MessageCase{"Word", "<Q> -TITLE IFPL", "ignore word", "Q", Severity::Warning},
        MessageCase{"NoWordAtAll", " ", NoTitle, "", Severity::Error},
        MessageCase{"NoTitle", " <ONE> TWO -SUB AB", NoTitle, "", Severity::Error},
        MessageCase{"FieldBeforeTheTitle", "<-X> -TITLE IFPL",
                    "begin message still not found, field -X ignored", "", Severity::Warning},
        MessageCase{"JoinedFieldBeforeTheTitle", "<- X> -TITLE IFPL",
                    "begin message still not found, field -X ignored", "", Severity::Warning},
        MessageCase{"LoneHyphen", "-TITLE IFPL -SUB AB <-> -SUB AB", LoneHyphen, "",
                    Severity::Warning},
        MessageCase{"LoneHyphenWhileLookingAhead", "-TITLE IFPL -BEGIN LIST -SUB <-> -X -END LIST",
                    LoneHyphen, "", Severity::Warning},
        MessageCase{"LoneHyphenBehindAnEndOfAnotherName",
                    "-TITLE IFPL -BEGIN LIST -END -END <-> -X -END LIST", LoneHyphen, "",
                    Severity::Warning},
        MessageCase{"UnknownField", "-TITLE IFPL <-NOTE> A B -SUB AB",
                    "rule NOTE for IFPL not found", "", Severity::Error},
        MessageCase{"UnknownBlock", "-TITLE IFPL <-BEGIN NOTE> A -END NOTE",
                    "rule NOTE for IFPL not found", "", Severity::Error},
        MessageCase{"SurplusData", "-TITLE IFPL -SUB ABCD<EF>",
                    "SUB field contains the extra data is not described in Rule", "EF",
                    Severity::Warning},
        MessageCase{"WrongData", "-TITLE IFPL -SUB <77>", "SUB field contains incorrect data", "77",
                    Severity::Error},
        MessageCase{"BlockWithoutName", "-TITLE IFPL -SUB AB <-BEGIN>", "the bloсk is empty", "",
                    Severity::Error},
        MessageCase{"BlockWithoutEnd", "-TITLE IFPL <-BEGIN LIST> -SUB AB",
                    "not found the end of the block", "-END", Severity::Error},
        MessageCase{"EndOfAnotherName", "-TITLE IFPL -BEGIN LIST <-END OTHER> -END LIST",
                    "end block OTHER but wait LIST", "", Severity::Error},
        MessageCase{"EndWithoutBlock", "-TITLE IFPL -SUB AB <-END> LIST",
                    "found the end of the block without the block start", "", Severity::Error}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(FindingOfAnEndWithoutName, IsAboutTheEndAndNotTheBeginThatTheDetailIsFrom)
{
    Grammar grammar;
    grammar.field("SUB", "2{ALPHA}4").field("LIST", "SUB").rule("IFPL", "[LIST]");
    const DiagnosticCapture diagnostics;
    Findings findings;
    AdexpDoc doc(QStringLiteral("LIST -SUB AB - END"), &findings);
    AdexpField* const block =
        doc.createField(&doc, doc.getNextWord(99, nullptr), grammar.fieldTerm("LIST"));
    block->isList = true;
    block->parse();

    ASSERT_EQ(findings.all.size(), 1U);
    EXPECT_EQ(findings.all[0].text, QStringLiteral("end block wich out word"));
    EXPECT_EQ(findings.all[0].detail, QStringLiteral("LIST"));
    EXPECT_EQ(findings.all[0].begin, 13);
    EXPECT_EQ(findings.all[0].end, 18);
}

TEST(FindingInARuleFile, HasTheRecordItIsAbout)
{
    const RuleFolder folder;
    const QString file =
        folder.write("terms.xml", "<terms>\n"
                                  "<simpleTerm name='A'><term>(</term></simpleTerm>\n"
                                  "<wrong/>\n"
                                  "</terms>\n");
    const DiagnosticCapture diagnostics;
    Findings findings;
    MainClass converter(nullptr);
    ASSERT_TRUE(converter.readTermsXMLFile(file, QStringLiteral("simpleTerm"), false, &findings));

    ASSERT_EQ(findings.all.size(), 2U);
    EXPECT_EQ(findings.all[0].record.recordName, QStringLiteral("A"));
    EXPECT_EQ(findings.all[0].record.xmlFile, file);
    EXPECT_EQ(findings.all[0].record.lineNumber, 2);
    EXPECT_EQ(findings.all[0].begin, 0);
    // The line names the record before; the finding has its own place.
    EXPECT_EQ(findings.all[1].text, QStringLiteral("bad tag name wrong"));
    EXPECT_EQ(findings.all[1].record.lineNumber, 3);
}

TEST(FindingAboutARuleFile, HasItsPathAndNoLine)
{
    const DiagnosticCapture diagnostics;
    Findings findings;
    MainClass converter(nullptr);
    ASSERT_FALSE(converter.readMsgRulesXMLFile(QStringLiteral("/nowhere/rules.xml"), &findings));

    ASSERT_EQ(findings.all.size(), 1U);
    EXPECT_TRUE(findings.all[0].text.startsWith(QLatin1String("can not open file ")));
    EXPECT_EQ(findings.all[0].record.xmlFile, QStringLiteral("/nowhere/rules.xml"));
    EXPECT_EQ(findings.all[0].record.lineNumber, 0);
}

TEST(FindingWithoutAPlace, HasTheLineAsItsText)
{
    const DiagnosticCapture diagnostics;
    Findings findings;
    findings.internalError("void f()", "a == 0");

    ASSERT_EQ(findings.all.size(), 1U);
    EXPECT_EQ(findings.all[0].text, QStringLiteral("void f() a == 0"));
    EXPECT_EQ(findings.all[0].severity, Severity::Internal);
    EXPECT_TRUE(findings.all[0].record.xmlFile.isEmpty());
}

struct PositionCase
{
    const char* expression;
    const char* text; // beginning of that of the first finding
    const char* rest; // of the simplified expression, from the position of the finding on
};

class FindingInAnExpression : public testing::TestWithParam<PositionCase>
{
};

TEST_P(FindingInAnExpression, PointsAtWhatIsWrong)
{
    ConfigInfo record;
    record.recordName = QStringLiteral("SELF");
    record.ruleText = QString::fromUtf8(GetParam().expression);
    const DiagnosticCapture diagnostics;
    Findings findings;
    const TermList noTerms;
    const std::unique_ptr<TermStd> term(
        TermExpression::append_expression(&record, true, &findings));
    if (term)
        term->check_config(&noTerms, &findings);

    ASSERT_FALSE(findings.all.empty());
    const Finding& finding = findings.all.front();
    EXPECT_EQ(finding.text.left(static_cast<int>(strlen(GetParam().text))).toStdString(),
              GetParam().text);
    EXPECT_EQ(record.ruleText.simplified().mid(finding.begin).toStdString(), GetParam().rest);
}

INSTANTIATE_TEST_SUITE_P(
    Expressions, FindingInAnExpression,
    testing::Values(PositionCase{"", "term list is empty", ""},
                    PositionCase{"ALPHA (", "no clossing", "("},
                    PositionCase{"  ALPHA \n [A {B C]", "no clossing character }", "{B C]"},
                    PositionCase{"ALPHA ! (DIGIT ! ( () ))", "term in ()", "() ))"},
                    PositionCase{"(A ! '' )", "term in ''", "'' )"},
                    PositionCase{"( | A)", "operator |", "| A)"},
                    PositionCase{"[A ! ( B | + C)]", "two statements", "+ C)]"},
                    PositionCase{"{A ! B +  }", "missing the last term", "+ }"},
                    PositionCase{"A | B", "variable A not found", "A | B"},
                    PositionCase{"ALPHA | ( {'X' | 2{B}3} )", "variable B not found", "B}3} )"},
                    PositionCase{"ALPHA | 2 {B}3", "variable B not found", "B}3"},
                    PositionCase{"ALPHA ! SELF", "variable points to itself", "SELF"},
                    PositionCase{"ALPHA ! ' '", "ExprRuleStr is empty", " '"},
                    PositionCase{"ALPHA | DIGIT 'X'", "automatic priority", "'X'"},
                    PositionCase{"ALPHA | DIGIT ALPHA", "automatic priority", "ALPHA"},
                    PositionCase{"(ALPHA DIGIT | ( ALPHA))", "automatic priority", "( ALPHA))"},
                    PositionCase{"ALPHA ! (3{ DIGIT }2)", "minimum repeat count", "DIGIT }2)"},
                    PositionCase{"ALPHA ! {DIGIT} 2147483648", "repeat count", "2147483648"},
                    PositionCase{"ALPHA ! (2147483648 {DIGIT})", "repeat count",
                                 "2147483648 {DIGIT})"},
                    PositionCase{"ALPHA ! {SEP}2", "in adexp the number", "SEP}2"}));

} // namespace
