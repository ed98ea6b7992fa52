// The search for the title, the choice of the rule and the root field.

#include "message/adexpdoc.h"

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/reports.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

namespace {

class RootField : public testing::Test
{
protected:
    RootField()
    {
        grammar.field(QStringLiteral("ARCID"), QStringLiteral("{ALPHANUM}7"));
        grammar.rule(QStringLiteral("IFPL"), QStringLiteral("ARCID"));
        grammar.rule(QStringLiteral("ACK"), QStringLiteral("ARCID"));
    }

    MsgRule* rule(int index) const { return grammar.rules()->at(index); }

    // `root` of the message, after the header was set.
    static void expectRoot(const AdexpDoc& doc, QStringView name, const TermStd* term, int begin)
    {
        ASSERT_NE(doc.rootField, nullptr);
        const AdexpField& root = *doc.rootField;
        const int textEnd = static_cast<int>(doc.msgParam.text.size());
        EXPECT_EQ(root.fieldName.toString(), name.toString());
        EXPECT_EQ(doc.msgParam.title, name.toString());
        EXPECT_EQ(root.fieldTerm, term);
        EXPECT_EQ(root.parentField, nullptr);
        EXPECT_EQ(root.fieldBegin, begin);
        EXPECT_EQ(root.fieldEnd, textEnd);
        EXPECT_EQ(root.endBlockPoint, textEnd);
        EXPECT_EQ(root.endTextPoint, textEnd);
    }

    static void expectHeader(const AdexpDoc& doc)
    {
        EXPECT_EQ(doc.msgParam.rating, QStringLiteral(u"ГГ"));
        EXPECT_EQ(doc.msgParam.to, QStringLiteral(u"БУДУТ_АДРЕСА_КОМУ"));
        EXPECT_EQ(doc.msgParam.datatime, QStringLiteral(u"БУДЕТ_ДАТА_ВРЕМЯ"));
        EXPECT_EQ(doc.msgParam.from, QStringLiteral(u"БУДЕТ_АДРЕС_ОТПРАВИТЕЛЯ"));
    }

    Grammar grammar;
    DiagnosticCapture diagnostics;
};

TEST_F(RootField, IsNamedByTheTitleAndTakesItsRule)
{
    AdexpDoc doc(QStringLiteral("-TITLE IFPL -ARCID ABC\n"), &toOutput);
    doc.setRootField(grammar.rules());
    expectRoot(doc, u"IFPL", rule(0), 0);
    expectHeader(doc);
    EXPECT_TRUE(doc.isValid);
    EXPECT_EQ(linesOf(diagnostics), Lines());
}

TEST_F(RootField, WordsAndFieldsBeforeTheTitleAreReported)
{
    AdexpDoc doc(QStringLiteral("ZCZC 001 -ADEXP -TITLE ACK"), &toOutput);
    doc.setRootField(grammar.rules());
    expectRoot(doc, u"ACK", rule(1), 16);
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{"\"ignore word\" \"ZCZC\" ", "\"ignore word\" \"001\" ",
                     "\"begin message still not found, field -ADEXP ignored\" "}));
    EXPECT_FALSE(doc.isValid);
}

TEST_F(RootField, LoneHyphenBeforeTitleIsJoined)
{
    AdexpDoc doc(QStringLiteral("-\nTITLE IFPL"), &toOutput);
    doc.setRootField(grammar.rules());
    expectRoot(doc, u"IFPL", rule(0), 2);
    EXPECT_EQ(linesOf(diagnostics), Lines());
}

TEST_F(RootField, JoinedFieldBeforeTheTitleIsReportedWithItsHyphen)
{
    AdexpDoc doc(QStringLiteral("- - X -TITLE IFPL"), &toOutput);
    doc.setRootField(grammar.rules());
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{"\"field consists of a single character\" ",
                     "\"begin message still not found, field -X ignored\" "}));
    expectRoot(doc, u"IFPL", rule(0), 6);
}

TEST_F(RootField, NoneWithoutTitle)
{
    AdexpDoc doc(QStringLiteral("-title IFPL -TITLEX -ARCID"), &toOutput);
    doc.setRootField(grammar.rules());
    EXPECT_EQ(doc.rootField, nullptr);
    expectHeader(doc);
    EXPECT_EQ(doc.msgParam.title, QString());
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{"\"begin message still not found, field -title ignored\" ",
                     "\"ignore word\" \"IFPL\" ",
                     "\"begin message still not found, field -TITLEX ignored\" ",
                     "\"begin message still not found, field -ARCID ignored\" ",
                     "\"begin message (-TITLE) not found\" "}));
    EXPECT_FALSE(doc.isValid);

    diagnostics.clear();
    doc.parse();
    EXPECT_TRUE(doc.toXMLString().isEmpty());
    EXPECT_EQ(linesOf(diagnostics), Lines());
}

TEST_F(RootField, NoneInAnEmptyText)
{
    AdexpDoc doc{QString(), &toOutput};
    doc.setRootField(grammar.rules());
    EXPECT_EQ(doc.rootField, nullptr);
    EXPECT_EQ(linesOf(diagnostics), (Lines{"\"begin message (-TITLE) not found\" "}));
}

TEST_F(RootField, HasNoTermWithoutARuleForTheTitle)
{
    AdexpDoc doc(QStringLiteral("-TITLE XYZ -ARCID ABC"), &toOutput);
    doc.setRootField(grammar.rules());
    expectRoot(doc, u"XYZ", nullptr, 0);
    doc.parse();
    EXPECT_TRUE(doc.rootField->subFields.empty());
    EXPECT_TRUE(doc.toXMLString().isEmpty());
    EXPECT_EQ(linesOf(diagnostics), Lines());
    EXPECT_TRUE(doc.isValid);
}

TEST_F(RootField, HasNoTermForATitleInLowerCase)
{
    AdexpDoc doc(QStringLiteral("-TITLE ifpl"), &toOutput);
    doc.setRootField(grammar.rules());
    expectRoot(doc, u"ifpl", nullptr, 0);
}

TEST_F(RootField, HasAnEmptyTitleBehindTitleAsLastWord)
{
    AdexpDoc doc(QStringLiteral("-TITLE "), &toOutput);
    doc.setRootField(grammar.rules());
    expectRoot(doc, u"", nullptr, 0);
    EXPECT_TRUE(doc.toXMLString().isEmpty());
    EXPECT_EQ(linesOf(diagnostics), Lines());
}

TEST_F(RootField, TitleMayBeAFieldWord)
{
    AdexpDoc doc(QStringLiteral("-TITLE -ARCID ABC"), &toOutput);
    doc.setRootField(grammar.rules());
    expectRoot(doc, u"-ARCID", nullptr, 0);
    EXPECT_EQ(linesOf(diagnostics), Lines());
}

TEST_F(RootField, IsTheSameWhenSetAgain)
{
    AdexpDoc doc(QStringLiteral("X -TITLE IFPL -ARCID ABC"), &toOutput);
    doc.setRootField(grammar.rules());
    doc.parse();
    diagnostics.clear();
    doc.setRootField(grammar.rules());
    expectRoot(doc, u"IFPL", rule(0), 2);
    EXPECT_TRUE(doc.rootField->subFields.empty());
    EXPECT_EQ(linesOf(diagnostics), (Lines{"\"ignore word\" \"X\" "}));

    doc.parse();
    ASSERT_EQ(doc.rootField->subFields.size(), 1u);
    EXPECT_EQ(doc.rootField->subFields.front()->fieldBegin, 14);
}

TEST_F(RootField, NeedsNoRules)
{
    AdexpDoc doc(QStringLiteral("-TITLE IFPL"), &toOutput);
    doc.setRootField(nullptr);
    expectRoot(doc, u"IFPL", nullptr, 0);
}

TEST_F(RootField, RuleSearchComparesExactly)
{
    EXPECT_EQ(AdexpDoc::search_rule(grammar.rules(), u"ACK"), rule(1));
    EXPECT_EQ(AdexpDoc::search_rule(grammar.rules(), u"ack"), nullptr);
    EXPECT_EQ(AdexpDoc::search_rule(grammar.rules(), u"AC"), nullptr);
    EXPECT_EQ(AdexpDoc::search_rule(grammar.rules(), u""), nullptr);
}

TEST_F(RootField, RuleSearchTakesTheFirst)
{
    grammar.rule(QStringLiteral("ACK"), QStringLiteral("[ARCID]"));
    EXPECT_EQ(AdexpDoc::search_rule(grammar.rules(), u"ACK"), rule(1));
}

TEST_F(RootField, RuleSearchWithoutRulesFindsNothing)
{
    EXPECT_EQ(AdexpDoc::search_rule(nullptr, u"IFPL"), nullptr);
}

} // namespace
