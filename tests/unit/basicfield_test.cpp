// Fields with data: where the data ends, and how it is matched against the definition.

#include "message/adexpdoc.h"

#include "support/diagnosticcapture.h"
#include "support/fieldtree.h"
#include "support/grammar.h"
#include "support/reports.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class BasicField : public testing::Test
{
protected:
    BasicField()
    {
        grammar.field(QStringLiteral("NOTE"), QStringLiteral("{CHARACTER}"));
        grammar.field(QStringLiteral("ARCID"), QStringLiteral("1{ALPHANUM}7"));
        grammar.field(QStringLiteral("RMK"), QStringLiteral("{LIM_CHAR}"));
        grammar.field(QStringLiteral("SHORT"), QStringLiteral("{CHARACTER}9"));
        grammar.field(QStringLiteral("NOTES"), QStringLiteral("{NOTE}"));
        QString deep = QStringLiteral("'A'");
        for (int level = 0; level < 4; ++level)
            deep = QStringLiteral("({%1} ! 'B') | 'A'").arg(level == 0 ? deep : u'(' + deep + u')');
        grammar.field(QStringLiteral("DEEP"), deep);
        grammar.rule(QStringLiteral("T"),
                     QStringLiteral("ARCID [RMK] [SHORT] [DEEP] [NOTE] [NOTES]"));
    }

    // The fields below the root of the message, whose text is put behind "-TITLE T ".
    Lines tree(const QString& fields)
    {
        doc = std::make_unique<AdexpDoc>(QStringLiteral("-TITLE T ") + fields, &toOutput);
        doc->setRootField(grammar.rules());
        doc->parse();
        return treeBelow(*doc->rootField);
    }

    Lines reports() const { return linesOf(diagnostics); }

    Grammar grammar;
    DiagnosticCapture diagnostics;
    std::unique_ptr<AdexpDoc> doc;
};

TEST_F(BasicField, WithMatchingDataIsSilent)
{
    EXPECT_EQ(tree(QStringLiteral("-ARCID\tABC123 \n")), (Lines{"ARCID 9..22: ABC123"}));
    EXPECT_EQ(reports(), Lines());
    EXPECT_TRUE(doc->isValid);
}

TEST_F(BasicField, WithoutDataIsAcceptedAndEndsBehindItsKeyword)
{
    EXPECT_EQ(tree(QStringLiteral("-ARCID -RMK")), (Lines{"ARCID 9..15", "RMK 16..20"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BasicField, SurplusDataIsReportedAndDropped)
{
    EXPECT_EQ(tree(QStringLiteral("-ARCID ABC123 XYZ -RMK A")),
              (Lines{"ARCID 9..26: ABC123", "RMK 27..33: A"}));
    EXPECT_EQ(
        reports(),
        (Lines{"\"ARCID field contains the extra data is not described in Rule\" \" XYZ\" "}));
    EXPECT_FALSE(doc->isValid);
}

TEST_F(BasicField, KeepsTheWhiteSpaceThatItsDefinitionMatched)
{
    EXPECT_EQ(tree(QStringLiteral("-RMK A *")), (Lines{"RMK 9..17: A "}));
    EXPECT_EQ(reports(),
              (Lines{"\"RMK field contains the extra data is not described in Rule\" \"*\" "}));
}

TEST_F(BasicField, IncorrectDataIsReportedAndKept)
{
    EXPECT_EQ(tree(QStringLiteral("-ARCID *A B")), (Lines{"ARCID 9..20: *A B"}));
    EXPECT_EQ(reports(), (Lines{"\"ARCID field contains incorrect data\" \"*A B\" "}));
    EXPECT_FALSE(doc->isValid);
    EXPECT_NE(doc->rootField->subFields.front()->fieldTerm, nullptr);
}

TEST_F(BasicField, DataThatTakesTooManyStepsIsReportedAndKept)
{
    const std::string few(20, 'A');
    const std::string many(200, 'A');
    EXPECT_EQ(tree(QStringLiteral("-DEEP ") + QString::fromStdString(many)),
              (Lines{"DEEP 9..215: " + many}));
    EXPECT_EQ(reports(),
              (Lines{"\"DEEP field takes too many steps to be matched\" \"" + many + "\" "}));
    EXPECT_FALSE(doc->isValid);
    tree(QStringLiteral("-DEEP ") + QString::fromStdString(few));
    EXPECT_EQ(reports().back(),
              "\"DEEP field contains the extra data is not described in Rule\" \"" + few.substr(1) +
                  "\" ");
}

TEST_F(BasicField, DataEndsBeforeTheNextFieldWord)
{
    EXPECT_EQ(tree(QStringLiteral("-RMK A-B\nC -ARCID X")),
              (Lines{"RMK 9..19: A", "ARCID 20..28: X"}));
    EXPECT_EQ(reports(),
              (Lines{"\"RMK field contains the extra data is not described in Rule\" \"-B\nC\" "}));
}

TEST_F(BasicField, LimitedCharactersEndAtTheNextFieldWordToo)
{
    EXPECT_EQ(tree(QStringLiteral("-SHORT A-B -ARCID X")),
              (Lines{"SHORT 9..19: A-B", "ARCID 20..28: X"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BasicField, UnlimitedCharactersRunToTheEndOfTheMessage)
{
    EXPECT_EQ(tree(QStringLiteral("-NOTE A -ARCID X\n-END Y\n")),
              (Lines{"NOTE 9..32: A -ARCID X\n-END Y"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BasicField, UnlimitedCharactersRunToTheEndOfTheBlock)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN NOTES -NOTE A -NOTE B -END NOTES -ARCID X")),
              (Lines{"NOTES[] 9..38", "  NOTE 22..48 #1: A -NOTE B", "ARCID 49..57: X"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BasicField, BlockWithBasicContentRunsToItsEnd)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN RMK\n A\n B\n-END RMK -ARCID X")),
              (Lines{"RMK[] 9..34: A\n B", "ARCID 35..43: X"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BasicField, BlockWithBasicContentTakesFieldWordsAsData)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN SHORT A -B C -END SHORT -ARCID X")),
              (Lines{"SHORT[] 9..39: A -B C", "ARCID 40..48: X"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BasicField, BlockWithoutDataIsAccepted)
{
    EXPECT_EQ(tree(QStringLiteral("-BEGIN ARCID -END ARCID")), (Lines{"ARCID[] 9..32"}));
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BasicField, EndsAtItsTextLimitWhenNothingWasRead)
{
    AdexpDoc empty(QString(), &toOutput);
    AdexpField* const root = empty.createField(&empty, QStringView(u"ARCID"),
                                               grammar.fieldTerm(QStringLiteral("ARCID")));
    root->parseBasicField();
    EXPECT_EQ(root->fieldEnd, 0);
    EXPECT_TRUE(root->fieldData.isEmpty());
    EXPECT_EQ(reports(), Lines());
}

TEST_F(BasicField, DataEndsForTheDefinitionAtANullCharacter)
{
    const QString message = QStringLiteral("-ARCID AB") + QChar() + u'C';
    EXPECT_EQ(tree(message), (Lines{"ARCID 9..20: AB"}));
    const QString report =
        QStringLiteral("\"ARCID field contains the extra data is not described in Rule\" \"") +
        QChar() + QStringLiteral("C\" ");
    EXPECT_EQ(reports(), (Lines{report.toStdString()}));
}

} // namespace
