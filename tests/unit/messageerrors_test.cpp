// Reports about a message.

#include "message/adexpdoc.h"

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/reports.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

namespace {

using Report = void (AdexpDoc::*)(adexp_code, const QString&, QStringView);

// Errors and warnings are told apart by their callers only.
class MessageReport : public testing::TestWithParam<Report>
{
protected:
    void report(const QString& message, QStringView detail)
    {
        (doc.*GetParam())(ADEXP_CODE_STRAY_WORD, message, detail);
    }

    DiagnosticCapture diagnostics;
    AdexpDoc doc{QStringLiteral("-TITLE IFPL"), &toOutput};
};

INSTANTIATE_TEST_SUITE_P(Errors, MessageReport, testing::Values(&AdexpDoc::addError));
INSTANTIATE_TEST_SUITE_P(Warnings, MessageReport, testing::Values(&AdexpDoc::addWarning));

TEST_P(MessageReport, ClearsTheValidityOfTheDocument)
{
    report(QStringLiteral("ignore word"), u"XYZ");
    EXPECT_FALSE(doc.isValid);
}

TEST_P(MessageReport, QuotesMessageAndDetail)
{
    report(QStringLiteral("ignore word"), u"XYZ");
    EXPECT_EQ(linesOf(diagnostics), (Lines{"\"ignore word\" \"XYZ\" "}));
}

TEST_P(MessageReport, WithoutDetailHoldsTheMessageAlone)
{
    report(QStringLiteral("rule A for B not found"), {});
    EXPECT_EQ(linesOf(diagnostics), (Lines{"\"rule A for B not found\" "}));
    EXPECT_FALSE(doc.isValid);
}

TEST_P(MessageReport, EmptyDetailIsLikeNone)
{
    report(QStringLiteral("ignore word"), u"");
    EXPECT_EQ(linesOf(diagnostics), (Lines{"\"ignore word\" "}));
}

TEST_P(MessageReport, EscapesNothing)
{
    report(QStringLiteral("a \"quoted\" \\ text"), u"FIRST\n\tSECOND \"Я\"");
    EXPECT_EQ(linesOf(diagnostics), (Lines{"\"a \"quoted\" \\ text\" \"FIRST\n\tSECOND \"Я\"\" "}));
}

TEST_P(MessageReport, IsRepeatedEachTime)
{
    report(QStringLiteral("ignore word"), u"X");
    report(QStringLiteral("ignore word"), u"X");
    EXPECT_EQ(linesOf(diagnostics), (Lines{"\"ignore word\" \"X\" ", "\"ignore word\" \"X\" "}));
}

TEST_P(MessageReport, ReachesNoDocument)
{
    Grammar grammar;
    grammar.field(QStringLiteral("ARCID"), QStringLiteral("{ALPHANUM}7"));
    grammar.rule(QStringLiteral("IFPL"), QStringLiteral("ARCID"));
    doc.setRootField(grammar.rules());
    doc.parse();
    const XmlDocument before = doc.toXMLString();
    report(QStringLiteral("ignore word"), u"XYZ");
    EXPECT_EQ(doc.toXMLString().view(), before.view());
}

TEST(MessageReports, NoneForAMessageWithoutProblem)
{
    Grammar grammar;
    grammar.field(QStringLiteral("ARCID"), QStringLiteral("{ALPHANUM}7"));
    grammar.rule(QStringLiteral("IFPL"), QStringLiteral("ARCID"));
    const DiagnosticCapture diagnostics;
    AdexpDoc doc(QStringLiteral("-TITLE IFPL -ARCID ABC"), &toOutput);
    doc.setRootField(grammar.rules());
    doc.parse();
    EXPECT_TRUE(doc.isValid);
    EXPECT_EQ(linesOf(diagnostics), Lines());
}

} // namespace
