// Findings as values: their text and place, besides the line that Qt's message output gets.

#include "adexpdoc.h"
#include "findingobserver.h"
#include "mainclass.h"

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/rulefolder.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

class Findings : public FindingObserver
{
public:
    void found(const Finding& finding) override { all.push_back(finding); }

    std::vector<Finding> all;
};

struct MessageCase
{
    const char* name;
    const char* message;
    const char* text;    // of the first finding
    const char* detail;  // of the first finding
    const char* stretch; // of the message, which the first finding is about; it occurs once
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
    const QString message = QString::fromUtf8(GetParam().message);
    AdexpDoc doc(message);
    doc.setRootField(grammar.rules());
    doc.parse();

    ASSERT_FALSE(findings.all.empty());
    const Finding& finding = findings.all.front();
    EXPECT_EQ(finding.text, QString::fromUtf8(GetParam().text));
    EXPECT_EQ(finding.detail, QString::fromUtf8(GetParam().detail));
    const QString stretch = QString::fromUtf8(GetParam().stretch);
    EXPECT_EQ(finding.begin, message.indexOf(stretch));
    EXPECT_EQ(finding.end, finding.begin + stretch.size());
    EXPECT_EQ(finding.type, QtDebugMsg);
    EXPECT_TRUE(finding.record.xmlFile.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    Messages, FindingInAMessage,
    testing::Values(MessageCase{"Word", "Q -TITLE IFPL", "ignore word", "Q", "Q"},
                    MessageCase{"FieldBeforeTheTitle", "-X -TITLE IFPL",
                                "begin message still not found, field -X ignored", "", "-X"},
                    MessageCase{"UnknownField", "-TITLE IFPL -NOTE A B -SUB AB",
                                "rule NOTE for IFPL not found", "", "-NOTE"},
                    MessageCase{"SurplusData", "-TITLE IFPL -SUB ABCDEF",
                                "SUB field contains the extra data is not described in Rule", "EF",
                                "EF"},
                    MessageCase{"WrongData", "-TITLE IFPL -SUB 77",
                                "SUB field contains incorrect data", "77", "77"},
                    MessageCase{"BlockWithoutEnd", "-TITLE IFPL -BEGIN LIST -SUB AB",
                                "not found the end of the block", "-END", "-BEGIN LIST"},
                    MessageCase{"EndWithoutBlock", "-TITLE IFPL -SUB AB -END LIST",
                                "found the end of the block without the block start", "", "-END"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

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
