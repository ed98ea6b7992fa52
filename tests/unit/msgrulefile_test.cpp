// Reading the message rule file.

#include "support/reports.h"
#include "support/rulefolder.h"
#include "support/tooutput.h"

#include "load/mainclass.h"
#include "message/adexpdoc.h"
#include "message/msgrule.h"

#include <gtest/gtest.h>

namespace {

class MsgRuleFile : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(converter.readTermsXMLFile(
            folder.write(QStringLiteral("primary.xml"),
                         "<fields><PrimaryField name='ARCID'><term>{ALPHANUM}7</term>"
                         "</PrimaryField><PrimaryField name='ADEP'><term>{ALPHA}4</term>"
                         "</PrimaryField></fields>"),
            QStringLiteral("PrimaryField"), true, &toOutput));
        converter.termsList_checkConfig(&toOutput);
    }

    bool load(const QByteArray& content)
    {
        file = folder.write(QStringLiteral("rules.xml"), content);
        return converter.readMsgRulesXMLFile(file, &toOutput);
    }

    // The titles of the rules in list order.
    Lines titles() const
    {
        Lines result;
        for (const MsgRule* rule : converter.msgRules)
            result.push_back(rule->config.recordName.toStdString());
        return result;
    }

    QString head(int index, const char* title) const
    {
        return RuleFolder::head(file, index, QString::fromUtf8(title));
    }

    RuleFolder folder;
    QString file;
    MainClass converter{nullptr};
    DiagnosticCapture diagnostics;
};

TEST_F(MsgRuleFile, RecordsBecomeRulesInFileOrder)
{
    EXPECT_TRUE(load("<rules>"
                     "<msgRule title='ifpl'><fields>arcid [adep]</fields></msgRule>"
                     "<msgRule title='ACK'><fields>ARCID</fields></msgRule></rules>"));
    EXPECT_EQ(titles(), (Lines{"IFPL", "ACK"}));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(MsgRuleFile, RuleKeepsWhereItWasDefinedAndWhoLoadedIt)
{
    load("<rules>\n\n<msgRule title='ifpl'><fields>arcid</fields></msgRule></rules>");
    ASSERT_EQ(converter.msgRules.size(), 1);
    const MsgRule* const rule = converter.msgRules.at(0);
    EXPECT_EQ(rule->config.xmlErrorHeadShort(), RuleFolder::place(file, 0));
    EXPECT_EQ(rule->config.lineNumber, 3);
    EXPECT_EQ(rule->config.tagName.toStdString(), "msgRule");
    EXPECT_EQ(rule->config.ruleText.toStdString(), "ARCID");
    EXPECT_EQ(rule->owner, &converter);
    EXPECT_TRUE(rule->valid);
}

TEST_F(MsgRuleFile, RulesCannotBeReferredToByName)
{
    load("<rules>"
         "<msgRule title='ACK'><fields>ARCID</fields></msgRule>"
         "<msgRule title='REJ'><fields>ACK</fields></msgRule></rules>");
    EXPECT_EQ(titles(), Lines{"ACK"});
    EXPECT_EQ(converter.termsList.size(), 2);
    EXPECT_EQ(linesOf(diagnostics).front(), termReport(head(1, "REJ"), QStringLiteral("ACK"),
                                                       QStringLiteral("variable ACK not found")));
}

TEST_F(MsgRuleFile, EverythingElseIsIgnored)
{
    EXPECT_TRUE(load("<any>text<!-- no --><msgRule title='ACK' note='x'><description>d"
                     "</description><fields>AR<![CDATA[CI]]>D</fields><fields>NO</fields>"
                     "<msgRule title='REJ'><fields>ARCID</fields></msgRule></msgRule></any>"));
    EXPECT_EQ(titles(), Lines{"ACK"});
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(MsgRuleFile, OnlyExactlyFalseDisables)
{
    load("<rules>"
         "<msgRule title='A' active='false'><fields>ARCID</fields></msgRule>"
         "<msgRule title='B' active='FALSE'><fields>ARCID</fields></msgRule>"
         "<msgRule title='C' active='0'><fields>ARCID</fields></msgRule></rules>");
    EXPECT_EQ(titles(), (Lines{"B", "C"}));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(MsgRuleFile, FileOfDisabledRecordsSucceedsAndConvertsNothing)
{
    EXPECT_TRUE(load("<rules><msgRule title='ACK' active='false'><fields>ARCID</fields></msgRule>"
                     "<bad active='false'/></rules>"));
    EXPECT_EQ(titles(), Lines{});
    EXPECT_TRUE(converter.charAdexpToCharXml(QStringLiteral("-TITLE ACK -ARCID EIN21K"), &toOutput)
                    .isEmpty());
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(MsgRuleFile, MisnamedRecordIsReportedAtItsOwnPlaceWithItsOwnTitle)
{
    EXPECT_TRUE(load("<rules>\n"
                     "<msgRule title='ACK'><fields>ARCID</fields></msgRule>\n"
                     "<msgrule title='rej'><fields>ARCID</fields></msgrule></rules>"));
    EXPECT_EQ(titles(), Lines{"ACK"});
    EXPECT_EQ(linesOf(diagnostics),
              Lines{readMsgRulesReport(head(1, "REJ") + QStringLiteral("bad tag name msgrule"))});
}

TEST_F(MsgRuleFile, SecondRuleForATitleIsReportedAndIgnored)
{
    EXPECT_TRUE(load("<rules>\n"
                     "<msgRule title='ifpl'><fields>arcid</fields></msgRule>\n"
                     "<msgRule title='IFPL'><fields>adep 'x'</fields></msgRule></rules>"));
    EXPECT_EQ(titles(), Lines{"IFPL"});
    EXPECT_EQ(converter.msgRules.at(0)->config.ruleText.toStdString(), "ARCID");
    EXPECT_EQ(linesOf(diagnostics),
              Lines{readMsgRulesReport(
                  head(1, "IFPL") +
                  QStringLiteral("detect replay msgRule IFPL previous msgRule contains fields "
                                 "ARCID ignored msgRule contains fields ADEP 'X'"))});
}

TEST_F(MsgRuleFile, DuplicateIsFoundBeforeItsTextIsCompiled)
{
    load("<rules>"
         "<msgRule title='ACK'><fields>ARCID</fields></msgRule>"
         "<msgRule title='ACK'><fields>(</fields></msgRule></rules>");
    EXPECT_EQ(diagnostics.lines().size(), 1U);
}

TEST_F(MsgRuleFile, RuleWithUnknownNameIsReportedByTheReferenceAndByTheLoader)
{
    EXPECT_TRUE(load("<rules><msgRule title='ACK'><fields>arcid nowhere</fields></msgRule>"
                     "<msgRule title='REJ'><fields>ARCID</fields></msgRule></rules>"));
    EXPECT_EQ(titles(), Lines{"REJ"});
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{termReport(head(0, "ACK"), QStringLiteral("NOWHERE"),
                                QStringLiteral("variable NOWHERE not found")),
                     readMsgRulesReport(
                         head(0, "ACK") +
                         QStringLiteral("rule \"ARCID NOWHERE\" no valid, record ignored"))}));
}

TEST_F(MsgRuleFile, EveryUnknownNameOfARuleIsReported)
{
    load("<rules><msgRule title='ACK'><fields>X [Y] ARCID {Z}3</fields></msgRule></rules>");
    const auto report = [this](const char* name) {
        return termReport(head(0, "ACK"), QString::fromUtf8(name),
                          QStringLiteral("variable ") + QString::fromUtf8(name) +
                              QStringLiteral(" not found"));
    };
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{report("X"), report("Y"), report("Z"),
                     readMsgRulesReport(
                         head(0, "ACK") +
                         QStringLiteral("rule \"X [Y] ARCID {Z}3\" no valid, record ignored"))}));
}

TEST_F(MsgRuleFile, RuleThatDoesNotCompileIsReportedByTheCompilerAndByTheLoader)
{
    EXPECT_TRUE(load("<rules><msgRule title='ACK'><fields>arcid |</fields></msgRule></rules>"));
    EXPECT_EQ(titles(), Lines{});
    EXPECT_EQ(
        linesOf(diagnostics),
        (Lines{termReport(head(0, "ACK"), QStringLiteral("ARCID |"),
                          QStringLiteral("missing the last term after operator |")),
               readMsgRulesReport(head(0, "ACK") +
                                  QStringLiteral("rule \"ARCID |\" no valid, record ignored"))}));
}

TEST_F(MsgRuleFile, RecordWithoutFieldsElementIsRefused)
{
    EXPECT_TRUE(load("<rules><msgRule title='ACK'/></rules>"));
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{termReport(head(0, "ACK"), QString(), QStringLiteral("term list is empty")),
                     readMsgRulesReport(head(0, "ACK") +
                                        QStringLiteral("rule \"\" no valid, record ignored"))}));
}

TEST_F(MsgRuleFile, TitleOfARefusedRuleIsFreeForTheNext)
{
    load("<rules>"
         "<msgRule title='ACK'><fields>NOWHERE</fields></msgRule>"
         "<msgRule title='ACK'><fields>ARCID</fields></msgRule></rules>");
    ASSERT_EQ(titles(), Lines{"ACK"});
    EXPECT_EQ(converter.msgRules.at(0)->config.ruleText.toStdString(), "ARCID");
}

TEST_F(MsgRuleFile, RecordsWithoutTitleShareTheEmptyTitle)
{
    EXPECT_TRUE(load("<rules><msgRule><fields>ARCID</fields></msgRule>"
                     "<msgRule><fields>ADEP</fields></msgRule></rules>"));
    EXPECT_EQ(titles(), Lines{""});
    EXPECT_EQ(linesOf(diagnostics),
              Lines{readMsgRulesReport(
                  QStringLiteral("element") + RuleFolder::place(file, 1) +
                  QStringLiteral(": detect replay msgRule  previous msgRule contains fields ARCID "
                                 "ignored msgRule contains fields ADEP"))});
}

TEST_F(MsgRuleFile, TermFileAttributeAndElementNamesMeanNothingHere)
{
    load("<rules><msgRule name='ACK' title='REJ'><term>NOWHERE</term><fields>ARCID</fields>"
         "</msgRule></rules>");
    EXPECT_EQ(titles(), Lines{"REJ"});
}

TEST_F(MsgRuleFile, EmptyRootSucceeds)
{
    EXPECT_TRUE(load("<rules/>"));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

// Unlike for the term files the loader has nothing to add.
TEST_F(MsgRuleFile, EmptyPathIsReportedOnce)
{
    EXPECT_FALSE(converter.readMsgRulesXMLFile(QString(), &toOutput));
    EXPECT_EQ(linesOf(diagnostics), Lines{setContentReport(QStringLiteral("file path is empty"))});
}

TEST_F(MsgRuleFile, FileThatCannotBeOpenedIsReportedOnce)
{
    const QString missing = folder.path(QStringLiteral("missing.xml"));
    EXPECT_FALSE(converter.readMsgRulesXMLFile(missing, &toOutput));
    EXPECT_EQ(linesOf(diagnostics), Lines{setContentReport(RuleFolder::openErrorText(missing))});
}

TEST_F(MsgRuleFile, MalformedFileIsReportedOnce)
{
    EXPECT_FALSE(load("<rules><msgRule title='ACK'>"));
    EXPECT_EQ(linesOf(diagnostics), Lines{setContentReport(QStringLiteral(
                                        "Parse error at line 1, column 29no element found"))});
}

} // namespace
