// Findings as values: their text and place, besides the line that Qt's message output gets.

#include "adexpdoc.h"
#include "findingobserver.h"
#include "mainclass.h"

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/rulefolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

class Findings : public FindingObserver
{
public:
    void found(const Finding& finding) override { all.push_back(finding); }

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
    AdexpDoc doc(message);
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
    EXPECT_EQ(found->type, QtDebugMsg);
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
    AdexpDoc doc(QStringLiteral("LIST -SUB AB - END"));
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
    ASSERT_TRUE(converter.readTermsXMLFile(file, QStringLiteral("simpleTerm"), false));

    ASSERT_EQ(findings.all.size(), 2U);
    EXPECT_EQ(findings.all[0].record.recordName, QStringLiteral("A"));
    EXPECT_EQ(findings.all[0].record.xmlFile, file);
    EXPECT_EQ(findings.all[0].record.lineNumber, 2);
    EXPECT_EQ(findings.all[0].begin, -1);
    // The line names the record before; the finding has its own place.
    EXPECT_EQ(findings.all[1].text, QStringLiteral("bad tag name wrong"));
    EXPECT_EQ(findings.all[1].record.lineNumber, 3);
}

TEST(FindingWithoutAPlace, HasTheLineAsItsText)
{
    const DiagnosticCapture diagnostics;
    Findings findings;
    MainClass converter(nullptr);
    ASSERT_FALSE(converter.readMsgRulesXMLFile(QString()));

    ASSERT_EQ(findings.all.size(), 1U);
    EXPECT_EQ(findings.all[0].text + u' ', diagnostics.debugLines().value(0));
    EXPECT_TRUE(findings.all[0].record.xmlFile.isEmpty());
}

TEST(FindingObservers, TheInnermostOneIsTold)
{
    const DiagnosticCapture diagnostics;
    Findings outer;
    {
        Findings inner;
        AdexpDoc(QStringLiteral("A")).addError(QStringLiteral("first"), {});
        EXPECT_EQ(inner.all.size(), 1U);
    }
    AdexpDoc(QStringLiteral("A")).addError(QStringLiteral("second"), {});
    ASSERT_EQ(outer.all.size(), 1U);
    EXPECT_EQ(outer.all[0].text, QStringLiteral("second"));
}

TEST(FindingObservers, TheOutputGetsItsLineAsWell)
{
    const DiagnosticCapture diagnostics;
    Findings findings;
    AdexpDoc(QStringLiteral("A")).addError(QStringLiteral("first"), {});
    EXPECT_EQ(diagnostics.debugLines(), QStringList(QStringLiteral("\"first\" ")));
}

} // namespace
