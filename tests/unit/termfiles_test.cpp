// Reading the term definition files, and finding terms by name.

#include "support/reports.h"
#include "support/rulefolder.h"
#include "support/tooutput.h"

#include "grammar/termstd.h"
#include "load/mainclass.h"

#include <gtest/gtest.h>

namespace {

const QString SimpleTag = QStringLiteral("simpleTerm");

class TermFiles : public testing::Test
{
protected:
    // Writes @p content to a file and loads it as simple terms.
    bool load(const QByteArray& content)
    {
        file = folder.write(QStringLiteral("terms.xml"), content);
        return converter.readTermsXMLFile(file, SimpleTag, false, &toOutput);
    }

    // The names of the terms in list order.
    Lines names() const
    {
        Lines result;
        for (const TermStd* term : converter.termsList)
            result.push_back(term->config.recordName.toStdString());
        return result;
    }

    const TermStd* term(const char* name) const
    {
        return MainClass::termsList_search(&converter.termsList, QString::fromUtf8(name));
    }

    QString head(int index, const char* name) const
    {
        return RuleFolder::head(file, index, QString::fromUtf8(name));
    }

    RuleFolder folder;
    QString file;
    MainClass converter{nullptr};
    DiagnosticCapture diagnostics;
};

TEST_F(TermFiles, RecordsBecomeTermsInFileOrder)
{
    EXPECT_TRUE(load("<terms>"
                     "<simpleTerm name='B'><term>DIGIT</term></simpleTerm>"
                     "<simpleTerm name='A'><term>ALPHA</term></simpleTerm>"
                     "</terms>"));
    EXPECT_EQ(names(), (Lines{"B", "A"}));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(TermFiles, TermKeepsWhereItWasDefined)
{
    load("<terms>\n  <simpleTerm name='fl'><term>'F' {digit}3</term></simpleTerm></terms>");
    ASSERT_NE(term("FL"), nullptr);
    const ConfigInfo& config = term("FL")->config;
    EXPECT_EQ(config.xmlFile, file);
    EXPECT_EQ(config.tagName, SimpleTag);
    EXPECT_EQ(config.lineNumber, 2);
    EXPECT_EQ(config.xmlErrorHeadShort(), RuleFolder::place(file, 0));
    EXPECT_EQ(config.ruleText.toStdString(), "'F' {DIGIT}3");
}

TEST_F(TermFiles, SingleTermIsThatTermItself)
{
    load("<terms>"
         "<simpleTerm name='A'><term>DIGIT</term></simpleTerm>"
         "<simpleTerm name='B'><term>'X'</term></simpleTerm>"
         "<simpleTerm name='C'><term>[D]</term></simpleTerm>"
         "<simpleTerm name='E'><term>A B</term></simpleTerm>"
         "</terms>");
    EXPECT_EQ(term("A")->type(), TermTypeDigit);
    EXPECT_EQ(term("B")->type(), TermTypeSimple);
    EXPECT_EQ(term("C")->type(), TermTypeVariable);
    EXPECT_EQ(term("C")->bracketType, BracketOptional);
    EXPECT_EQ(term("E")->type(), TermTypeExpression);
}

TEST_F(TermFiles, TermsOfAFileAreNotYetChecked)
{
    load("<terms><simpleTerm name='A'><term>NOWHERE</term></simpleTerm></terms>");
    ASSERT_NE(term("A"), nullptr);
    EXPECT_FALSE(term("A")->configChecked);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(TermFiles, ContainsFieldIsWhatTheCallerSays)
{
    load("<terms><simpleTerm name='A'><term>DIGIT</term></simpleTerm></terms>");
    converter.readTermsXMLFile(
        folder.write(QStringLiteral("sub.xml"),
                     "<terms><SubField name='B'><term>DIGIT</term></SubField></terms>"),
        QStringLiteral("SubField"), true, &toOutput);
    EXPECT_FALSE(term("A")->containsField);
    EXPECT_TRUE(term("B")->containsField);
}

TEST_F(TermFiles, RootTagIsNotChecked)
{
    EXPECT_TRUE(load("<x:any xmlns:x='u'><simpleTerm name='A'><term>DIGIT</term></simpleTerm>"
                     "</x:any>"));
    EXPECT_EQ(names(), Lines{"A"});
}

TEST_F(TermFiles, EmptyRootLoadsNothingAndSucceeds)
{
    EXPECT_TRUE(load("<terms/>"));
    EXPECT_EQ(names(), Lines{});
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(TermFiles, NestedRecordsAreNotLookedFor)
{
    EXPECT_TRUE(load("<terms><simpleTerm name='A'><term>DIGIT</term>"
                     "<simpleTerm name='B'><term>ALPHA</term></simpleTerm>"
                     "</simpleTerm></terms>"));
    EXPECT_EQ(names(), Lines{"A"});
}

TEST_F(TermFiles, EverythingElseIsIgnored)
{
    EXPECT_TRUE(load("<terms>text<!-- comment --><?pi?>"
                     "<simpleTerm name='A' since='1'><note>ALPHA</note><term>DIGIT</term>"
                     "<term>ALPHA</term></simpleTerm>more</terms>"));
    EXPECT_EQ(names(), Lines{"A"});
    EXPECT_EQ(term("A")->config.ruleText.toStdString(), "DIGIT");
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(TermFiles, AllTextInsideTheTermElementIsJoined)
{
    load("<terms><simpleTerm name='A'><term>DI<b>G</b><!-- no text --><![CDATA[IT]]> "
         "&#x27;&lt;&amp;&#39;</term></simpleTerm></terms>");
    ASSERT_NE(term("A"), nullptr);
    EXPECT_EQ(term("A")->config.ruleText.toStdString(), "DIGIT '<&'");
}

TEST_F(TermFiles, OnlyExactlyFalseDisables)
{
    EXPECT_TRUE(load("<terms>"
                     "<simpleTerm name='A' active='false'><term>DIGIT</term></simpleTerm>"
                     "<simpleTerm name='B' active='FALSE'><term>DIGIT</term></simpleTerm>"
                     "<simpleTerm name='C' active='False'><term>DIGIT</term></simpleTerm>"
                     "<simpleTerm name='D' active='true'><term>DIGIT</term></simpleTerm>"
                     "<simpleTerm name='E' active=''><term>DIGIT</term></simpleTerm>"
                     "<simpleTerm name='F' active=' false'><term>DIGIT</term></simpleTerm>"
                     "<simpleTerm name='G' ACTIVE='false'><term>DIGIT</term></simpleTerm>"
                     "</terms>"));
    EXPECT_EQ(names(), (Lines{"B", "C", "D", "E", "F", "G"}));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(TermFiles, NamesAreUpperCased)
{
    load("<terms><simpleTerm name='fl'><term>DIGIT</term></simpleTerm></terms>");
    EXPECT_NE(term("FL"), nullptr);
    EXPECT_EQ(term("fl"), nullptr);
}

TEST_F(TermFiles, AttributesInAnotherCaseAreOtherAttributes)
{
    load("<terms><simpleTerm Name='A' NAME='B'><term>DIGIT</term></simpleTerm></terms>");
    EXPECT_EQ(names(), Lines{""});
}

TEST_F(TermFiles, WrongTagIsReportedUnderTheRecordBeforeIt)
{
    EXPECT_TRUE(load("<terms>\n"
                     "<simpleTerm name='A'><term>DIGIT</term></simpleTerm>\n"
                     "<SubField name='B'><term>DIGIT</term></SubField>\n"
                     "<simpleterm name='C'><term>DIGIT</term></simpleterm>\n"
                     "</terms>"));
    EXPECT_EQ(names(), Lines{"A"});
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{readTermsReport(head(0, "A") + QStringLiteral("bad tag name SubField")),
                     readTermsReport(head(0, "A") + QStringLiteral("bad tag name simpleterm"))}));
}

TEST_F(TermFiles, WrongTagBeforeTheFirstRecordIsReportedAtLine0)
{
    load("<terms><SubField name='B'/></terms>");
    EXPECT_EQ(linesOf(diagnostics),
              Lines{readTermsReport(QStringLiteral("elementfile ") + file +
                                    QStringLiteral(" line 0, column 0: bad tag name SubField"))});
}

TEST_F(TermFiles, WrongTagAfterADisabledRecordIsReportedUnderTheEnabledOneBefore)
{
    load("<terms>"
         "<simpleTerm name='A'><term>DIGIT</term></simpleTerm>"
         "<simpleTerm name='B' active='false'><term>DIGIT</term></simpleTerm>"
         "<bad/></terms>");
    EXPECT_EQ(linesOf(diagnostics),
              Lines{readTermsReport(head(0, "A") + QStringLiteral("bad tag name bad"))});
}

TEST_F(TermFiles, WrongTagAfterARefusedRecordIsReportedUnderThatRecord)
{
    load("<terms>"
         "<simpleTerm name='A'><term>DIGIT</term></simpleTerm>"
         "<simpleTerm name='B'></simpleTerm>"
         "<bad/></terms>");
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{termReport(head(1, "B"), QString(), QStringLiteral("term list is empty")),
                     readTermsReport(head(1, "B") + QStringLiteral("bad tag name bad"))}));
}

TEST_F(TermFiles, NamespacePrefixOfATagIsNotLookedAt)
{
    load("<terms xmlns:x='u'><x:simpleTerm name='A'><x:term>DIGIT</x:term></x:simpleTerm>"
         "<x:bad/></terms>");
    EXPECT_EQ(names(), Lines{"A"});
    EXPECT_EQ(linesOf(diagnostics),
              Lines{readTermsReport(head(0, "A") + QStringLiteral("bad tag name bad"))});
}

TEST_F(TermFiles, DisabledRecordWithWrongTagIsNotReported)
{
    EXPECT_TRUE(load("<terms><bad name='A' active='false'/></terms>"));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(TermFiles, SecondDefinitionOfANameIsReportedAndIgnored)
{
    EXPECT_TRUE(load("<terms>\n"
                     "<simpleTerm name='fl'><term>Digit</term></simpleTerm>\n"
                     "<simpleTerm name='FL'><term>alpha 'x'</term></simpleTerm>\n"
                     "</terms>"));
    EXPECT_EQ(names(), Lines{"FL"});
    EXPECT_EQ(term("FL")->config.ruleText.toStdString(), "DIGIT");
    EXPECT_EQ(linesOf(diagnostics),
              Lines{readTermsReport(
                  head(1, "FL") + QStringLiteral("detect replay record, previous record (") +
                  RuleFolder::place(file, 0) +
                  QStringLiteral(") contains rule \"DIGIT\" ignored record contains rule "
                                 "\"ALPHA 'X'\""))});
}

TEST_F(TermFiles, ThirdDefinitionOfANameIsComparedWithTheFirst)
{
    load("<terms>\n"
         "<simpleTerm name='A'><term>DIGIT</term></simpleTerm>\n"
         "<simpleTerm name='A'><term>ALPHA</term></simpleTerm>\n"
         "<simpleTerm name='A'><term>SEP</term></simpleTerm>\n"
         "</terms>");
    ASSERT_EQ(diagnostics.lines().size(), 2U);
    EXPECT_EQ(
        linesOf(diagnostics).back(),
        readTermsReport(head(2, "A") + QStringLiteral("detect replay record, previous record (") +
                        RuleFolder::place(file, 0) +
                        QStringLiteral(") contains rule \"DIGIT\" ignored record contains rule "
                                       "\"SEP\"")));
}

TEST_F(TermFiles, SubFieldNamedLikeASimpleTermIsIgnored)
{
    load("<terms><simpleTerm name='A'><term>DIGIT</term></simpleTerm></terms>");
    const QString subFile =
        folder.write(QStringLiteral("sub.xml"),
                     "<terms><SubField name='a'><term>ALPHA</term></SubField></terms>");
    EXPECT_TRUE(converter.readTermsXMLFile(subFile, QStringLiteral("SubField"), true, &toOutput));
    EXPECT_EQ(names(), Lines{"A"});
    EXPECT_FALSE(term("A")->containsField);
    EXPECT_EQ(
        linesOf(diagnostics),
        Lines{readTermsReport(
            RuleFolder::head(subFile, 0, QStringLiteral("A")) +
            QStringLiteral("detect replay record, previous record (") + RuleFolder::place(file, 0) +
            QStringLiteral(") contains rule \"DIGIT\" ignored record contains rule "
                           "\"ALPHA\""))});
}

TEST_F(TermFiles, RecordsWithoutNameShareTheEmptyName)
{
    EXPECT_TRUE(load("<terms>"
                     "<simpleTerm><term>DIGIT</term></simpleTerm>"
                     "<simpleTerm><term>ALPHA</term></simpleTerm></terms>"));
    EXPECT_EQ(names(), Lines{""});
    EXPECT_EQ(linesOf(diagnostics),
              Lines{readTermsReport(
                  QStringLiteral("element") + RuleFolder::place(file, 1) +
                  QStringLiteral(": detect replay record, previous record (") +
                  RuleFolder::place(file, 0) +
                  QStringLiteral(") contains rule \"DIGIT\" ignored record contains rule "
                                 "\"ALPHA\""))});
}

TEST_F(TermFiles, NameOfARefusedRecordIsFreeForTheNext)
{
    load("<terms>"
         "<simpleTerm name='A'><term>(</term></simpleTerm>"
         "<simpleTerm name='A'><term>ALPHA</term></simpleTerm></terms>");
    ASSERT_EQ(names(), Lines{"A"});
    EXPECT_EQ(term("A")->type(), TermTypeAlpha);
}

TEST_F(TermFiles, RecordWithoutTermElementIsRefusedByTheCompilerOnly)
{
    EXPECT_TRUE(load("<terms><simpleTerm name='A'/></terms>"));
    EXPECT_EQ(names(), Lines{});
    EXPECT_EQ(linesOf(diagnostics),
              Lines{termReport(head(0, "A"), QString(), QStringLiteral("term list is empty"))});
}

TEST_F(TermFiles, RecordThatDoesNotCompileIsSkippedWithoutAReportOfTheLoader)
{
    EXPECT_TRUE(load("<terms>"
                     "<simpleTerm name='A'><term>a | b c</term></simpleTerm>"
                     "<simpleTerm name='B'><term>DIGIT</term></simpleTerm></terms>"));
    EXPECT_EQ(names(), Lines{"B"});
    EXPECT_EQ(linesOf(diagnostics),
              Lines{termReport(head(0, "A"), QStringLiteral("A | B C"),
                               QStringLiteral("automatic priority operations are not implemented, "
                                              "please arrange the brackets to indicate the "
                                              "priority"))});
}

TEST_F(TermFiles, EmptyPathIsReportedTwiceAndFails)
{
    EXPECT_FALSE(
        converter.readTermsXMLFile(QString(), QStringLiteral("SubField"), true, &toOutput));
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{setContentReport(QStringLiteral("file path is empty")),
                     readTermsReport(QStringLiteral("can not read SubField records"))}));
}

TEST_F(TermFiles, FileThatCannotBeOpenedIsReportedTwiceAndFails)
{
    const QString missing = folder.path(QStringLiteral("missing.xml"));
    EXPECT_FALSE(converter.readTermsXMLFile(missing, SimpleTag, false, &toOutput));
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{setContentReport(RuleFolder::openErrorText(missing)),
                     readTermsReport(QStringLiteral("can not read simpleTerm records"))}));
}

TEST_F(TermFiles, MalformedFileIsReportedTwiceAndFails)
{
    EXPECT_FALSE(load("<terms>\n<simpleTerm name='A'></terms>"));
    EXPECT_EQ(
        linesOf(diagnostics),
        (Lines{setContentReport(QStringLiteral("Parse error at line 2, column 24mismatched tag")),
               readTermsReport(QStringLiteral("can not read simpleTerm records"))}));
}

TEST_F(TermFiles, NoRecordOfAMalformedFileIsTaken)
{
    EXPECT_FALSE(load("<terms><simpleTerm name='A'><term>DIGIT</term></simpleTerm>"));
    EXPECT_EQ(names(), Lines{});
}

TEST_F(TermFiles, SearchIsExactAndFindsTheFirstInListOrder)
{
    load("<terms>"
         "<simpleTerm name='A'><term>DIGIT</term></simpleTerm>"
         "<simpleTerm name='AB'><term>DIGIT</term></simpleTerm></terms>");
    EXPECT_EQ(term("A"), converter.termsList.at(0));
    EXPECT_EQ(term("AB"), converter.termsList.at(1));
    EXPECT_EQ(term("B"), nullptr);
    EXPECT_EQ(term("ab"), nullptr);
    EXPECT_EQ(term(""), nullptr);
    EXPECT_EQ(term(" A"), nullptr);

    auto* const again = new TermStd(TermTypeAlpha, &converter.termsList.at(0)->config);
    converter.termsList.append(again);
    EXPECT_EQ(term("A"), converter.termsList.at(0));
}

} // namespace
