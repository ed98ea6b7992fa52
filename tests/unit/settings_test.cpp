// The settings file and the order in which the rule files are loaded.

#include "support/reports.h"
#include "support/rulefolder.h"
#include "support/ruleset.h"
#include "support/tooutput.h"

#include "load/mainclass.h"
#include "message/msgrule.h"

#include <QSettings>

#include <gtest/gtest.h>

namespace {

class Settings : public testing::Test
{
protected:
    // Writes the four rule files; an empty content leaves the file out.
    void writeFiles(const QByteArray& simple, const QByteArray& sub, const QByteArray& primary,
                    const QByteArray& rules)
    {
        const auto write = [this](const QString& path, const QByteArray& content) {
            if (!content.isEmpty())
                folder.write(path.section(u'/', -1), content);
        };
        write(simpleFile, simple);
        write(subFile, sub);
        write(primaryFile, primary);
        write(rulesFile, rules);
    }

    bool load(const QByteArray& settingsFile)
    {
        QSettings settings(folder.write(QStringLiteral("adexp.ini"), settingsFile),
                           QSettings::IniFormat);
        EXPECT_EQ(settings.status(), QSettings::NoError);
        return converter.readSettingsRules(&settings, &toOutput);
    }

    bool loadAll() { return load(settingsText(simpleFile, subFile, primaryFile, rulesFile)); }

    Lines termNames() const
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

    RuleFolder folder;
    const QString simpleFile = folder.path(QStringLiteral("simple.xml"));
    const QString subFile = folder.path(QStringLiteral("sub.xml"));
    const QString primaryFile = folder.path(QStringLiteral("primary.xml"));
    const QString rulesFile = folder.path(QStringLiteral("rules.xml"));
    MainClass converter{nullptr};
    DiagnosticCapture diagnostics;
};

const Lines NoSimpleTermsPath{setContentReport(QStringLiteral("file path is empty")),
                              readTermsReport(QStringLiteral("can not read simpleTerm records"))};

TEST_F(Settings, AllFourFilesAreLoaded)
{
    writeRuleFiles(folder);
    EXPECT_TRUE(loadAll());
    EXPECT_EQ(termNames(), (Lines{"POINT", "PTID", "ARCID", "RMK", "PT", "RTEPTS"}));
    EXPECT_EQ(converter.msgRules.size(), 2);
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(Settings, TermsOfTheFieldFilesAreFieldsAndSimpleTermsAreNot)
{
    writeRuleFiles(folder);
    loadAll();
    EXPECT_FALSE(term("POINT")->containsField);
    EXPECT_TRUE(term("PTID")->containsField);
    EXPECT_TRUE(term("ARCID")->containsField);
}

TEST_F(Settings, EveryTermIsCheckedAndEveryFieldMarkedAtTheEnd)
{
    writeRuleFiles(folder);
    loadAll();
    for (const TermStd* each : converter.termsList)
        EXPECT_TRUE(each->configChecked) << each->config.recordName.toStdString();
    EXPECT_TRUE(term("PT")->compoundField);
    EXPECT_FALSE(term("PTID")->compoundField);
}

TEST_F(Settings, FileWithoutTheGroupLoadsNothing)
{
    EXPECT_FALSE(load("[other]\nsimpleTermsFile=x\n"));
    EXPECT_EQ(linesOf(diagnostics), NoSimpleTermsPath);
}

TEST_F(Settings, GroupWithoutKeysLoadsNothing)
{
    EXPECT_FALSE(load("[rules]\n"));
    EXPECT_EQ(linesOf(diagnostics), NoSimpleTermsPath);
}

TEST_F(Settings, EmptyFileLoadsNothing)
{
    EXPECT_FALSE(load(""));
    EXPECT_EQ(linesOf(diagnostics), NoSimpleTermsPath);
}

TEST_F(Settings, FileThatDoesNotExistIsLikeAnEmptyOne)
{
    QSettings settings(folder.path(QStringLiteral("missing.ini")), QSettings::IniFormat);
    EXPECT_EQ(settings.status(), QSettings::NoError);
    EXPECT_FALSE(converter.readSettingsRules(&settings, &toOutput));
    EXPECT_EQ(linesOf(diagnostics), NoSimpleTermsPath);
}

TEST_F(Settings, KeysOutsideTheGroupAreIgnored)
{
    EXPECT_FALSE(load("simpleTermsFile=" + simpleFile.toUtf8() + "\n[rules]\nother=1\n"));
    EXPECT_EQ(linesOf(diagnostics), NoSimpleTermsPath);
}

TEST_F(Settings, OtherGroupsAndKeysAreIgnored)
{
    writeRuleFiles(folder);
    EXPECT_TRUE(load("[a]\nb=c\n" + settingsText(simpleFile, subFile, primaryFile, rulesFile) +
                     "more=1\n[z]\nmsgRulesFile=nowhere\n"));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(Settings, MissingSimpleTermsStopTheLoading)
{
    writeFiles({}, RuleSetText::SubFields, RuleSetText::PrimaryFields, RuleSetText::MsgRules);
    EXPECT_FALSE(loadAll());
    EXPECT_EQ(termNames(), Lines{});
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{setContentReport(RuleFolder::openErrorText(simpleFile)),
                     readTermsReport(QStringLiteral("can not read simpleTerm records"))}));
}

TEST_F(Settings, MissingSubFieldsLeaveTheCheckedSimpleTerms)
{
    writeFiles(RuleSetText::SimpleTerms, {}, RuleSetText::PrimaryFields, RuleSetText::MsgRules);
    EXPECT_FALSE(loadAll());
    EXPECT_EQ(termNames(), Lines{"POINT"});
    EXPECT_TRUE(term("POINT")->configChecked);
    EXPECT_EQ(converter.msgRules.size(), 0);
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{setContentReport(RuleFolder::openErrorText(subFile)),
                     readTermsReport(QStringLiteral("can not read SubField records"))}));
}

TEST_F(Settings, MissingPrimaryFieldsLeaveTheSubFieldsUnchecked)
{
    writeFiles(RuleSetText::SimpleTerms, RuleSetText::SubFields, {}, RuleSetText::MsgRules);
    EXPECT_FALSE(loadAll());
    EXPECT_EQ(termNames(), (Lines{"POINT", "PTID"}));
    EXPECT_FALSE(term("PTID")->configChecked);
    EXPECT_EQ(converter.msgRules.size(), 0);
    EXPECT_EQ(linesOf(diagnostics),
              (Lines{setContentReport(RuleFolder::openErrorText(primaryFile)),
                     readTermsReport(QStringLiteral("can not read PrimaryField records"))}));
}

TEST_F(Settings, MissingMessageRulesFailAlthoughAllTermsAreLoaded)
{
    writeFiles(RuleSetText::SimpleTerms, RuleSetText::SubFields, RuleSetText::PrimaryFields, {});
    EXPECT_FALSE(loadAll());
    EXPECT_EQ(converter.termsList.size(), 6);
    EXPECT_EQ(linesOf(diagnostics), Lines{setContentReport(RuleFolder::openErrorText(rulesFile))});
}

TEST_F(Settings, MalformedMessageRulesFailAlthoughAllTermsAreLoaded)
{
    writeFiles(RuleSetText::SimpleTerms, RuleSetText::SubFields, RuleSetText::PrimaryFields,
               "<rules>");
    EXPECT_FALSE(loadAll());
    EXPECT_EQ(converter.termsList.size(), 6);
    EXPECT_EQ(
        linesOf(diagnostics),
        Lines{setContentReport(QStringLiteral("Parse error at line 1, column 8no element found"))});
}

TEST_F(Settings, MissingKeysReadAsEmptyPaths)
{
    writeRuleFiles(folder);
    EXPECT_FALSE(load("[rules]\nsimpleTermsFile=" + simpleFile.toUtf8() + "\nsubFieldsFile=" +
                      subFile.toUtf8() + "\nprimaryFieldsFile=" + primaryFile.toUtf8() + "\n"));
    EXPECT_EQ(linesOf(diagnostics), Lines{setContentReport(QStringLiteral("file path is empty"))});
}

TEST_F(Settings, MessageRulesWithoutAValidRuleAreNoFailure)
{
    writeFiles(RuleSetText::SimpleTerms, RuleSetText::SubFields, RuleSetText::PrimaryFields,
               "<rules><msgRule title='IFPL'><fields>NOWHERE</fields></msgRule></rules>");
    EXPECT_TRUE(loadAll());
    EXPECT_EQ(converter.msgRules.size(), 0);
    EXPECT_TRUE(converter.charAdexpToCharXml(QStringLiteral("-TITLE IFPL -ARCID AB12"), &toOutput)
                    .isEmpty());
}

TEST_F(Settings, BadRecordsAreNoFailure)
{
    writeFiles("<t><simpleTerm name='A'><term>NOWHERE</term></simpleTerm><bad/></t>",
               "<t><SubField/></t>", "<t><PrimaryField name='F'><term>(</term></PrimaryField></t>",
               "<r><bad/></r>");
    EXPECT_TRUE(loadAll());
    EXPECT_EQ(termNames(), Lines{});
}

TEST_F(Settings, SimpleTermsCannotReferToFields)
{
    writeFiles("<t><simpleTerm name='A'><term>PTID</term></simpleTerm></t>",
               RuleSetText::SubFields.mid(0), RuleSetText::PrimaryFields, RuleSetText::MsgRules);
    loadAll();
    EXPECT_EQ(term("A"), nullptr);
    EXPECT_EQ(linesOf(diagnostics).front(),
              termReport(RuleFolder::head(simpleFile, 0, QStringLiteral("A")),
                         QStringLiteral("PTID"), QStringLiteral("variable PTID not found")));
}

TEST_F(Settings, SubFieldsAndPrimaryFieldsCanReferToEachOther)
{
    writeFiles("<t/>", "<t><SubField name='S'><term>P</term></SubField></t>",
               "<t><PrimaryField name='P'><term>DIGIT</term></PrimaryField>"
               "<PrimaryField name='Q'><term>S</term></PrimaryField></t>",
               "<r/>");
    EXPECT_TRUE(loadAll());
    EXPECT_EQ(termNames(), (Lines{"S", "P", "Q"}));
    EXPECT_EQ(linesOf(diagnostics), Lines{});
}

TEST_F(Settings, FirstDefinitionOfANameWinsAcrossTheFiles)
{
    writeFiles("<t><simpleTerm name='A'><term>DIGIT</term></simpleTerm></t>",
               "<t><SubField name='A'><term>ALPHA</term></SubField>"
               "<SubField name='B'><term>ALPHA</term></SubField></t>",
               "<t><PrimaryField name='B'><term>SEP</term></PrimaryField>"
               "<PrimaryField name='A'><term>SEP</term></PrimaryField></t>",
               "<r/>");
    EXPECT_TRUE(loadAll());
    EXPECT_EQ(termNames(), (Lines{"A", "B"}));
    EXPECT_EQ(term("A")->config.ruleText.toStdString(), "DIGIT");
    EXPECT_EQ(term("B")->config.ruleText.toStdString(), "ALPHA");
    EXPECT_EQ(diagnostics.lines().size(), 3U);
}

// It was removed before the field was read, so the name is free.
TEST_F(Settings, FieldMayTakeTheNameOfARemovedSimpleTerm)
{
    writeFiles("<t><simpleTerm name='A'><term>NOWHERE</term></simpleTerm></t>",
               "<t><SubField name='A'><term>ALPHA</term></SubField></t>", "<t/>", "<r/>");
    EXPECT_TRUE(loadAll());
    EXPECT_EQ(termNames(), Lines{"A"});
    EXPECT_TRUE(term("A")->containsField);
}

TEST_F(Settings, MessageRulesAreCheckedAgainstTheRemainingTerms)
{
    writeFiles("<t/>", "<t><SubField name='S'><term>NOWHERE</term></SubField></t>", "<t/>",
               "<r><msgRule title='ACK'><fields>S</fields></msgRule></r>");
    EXPECT_TRUE(loadAll());
    EXPECT_EQ(converter.msgRules.size(), 0);
    const Lines lines = linesOf(diagnostics);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[2], termReport(RuleFolder::head(rulesFile, 0, QStringLiteral("ACK")),
                                   QStringLiteral("S"), QStringLiteral("variable S not found")));
}

TEST_F(Settings, RelativePathsAreTakenFromTheWorkingDirectory)
{
    const RuleFolder elsewhere;
    writeRuleFiles(elsewhere);
    const WorkingDirectory directory(elsewhere.path(QString()));
    // The settings file stands in another folder and is named by an absolute path.
    EXPECT_TRUE(load(settingsText(QStringLiteral("simple.xml"), QStringLiteral("./sub.xml"),
                                  QStringLiteral("primary.xml"), QStringLiteral("rules.xml"))));
    EXPECT_EQ(converter.msgRules.size(), 2);
    EXPECT_EQ(term("PTID")->config.xmlFile.toStdString(), "./sub.xml");
}

TEST_F(Settings, FilesBesideTheSettingsFileAreNotFoundByRelativePaths)
{
    writeRuleFiles(folder);
    const RuleFolder elsewhere;
    const WorkingDirectory directory(elsewhere.path(QString()));
    EXPECT_FALSE(load(settingsText(QStringLiteral("simple.xml"), QStringLiteral("sub.xml"),
                                   QStringLiteral("primary.xml"), QStringLiteral("rules.xml"))));
    EXPECT_EQ(linesOf(diagnostics).front(),
              setContentReport(RuleFolder::openErrorText(QStringLiteral("simple.xml"))));
}

TEST_F(Settings, PathsAreUtf8AndInQuotesMayHoldWhatTheFormatUses)
{
    folder.write(QStringLiteral("\u0441, a; b.xml"), RuleSetText::SimpleTerms);
    folder.write(QStringLiteral("c\\d.xml"), RuleSetText::SubFields);
    folder.write(QStringLiteral("\u00e9.xml"), RuleSetText::PrimaryFields);
    folder.write(QStringLiteral("rules.xml"), RuleSetText::MsgRules);
    const WorkingDirectory directory(folder.path(QString()));
    EXPECT_TRUE(load("[rules]\nsimpleTermsFile=\"\xd1\x81, a; b.xml\"\nsubFieldsFile=c\\\\d.xml\n"
                     "primaryFieldsFile=\xc3\xa9.xml\nmsgRulesFile=rules.xml\n"));
    EXPECT_EQ(converter.msgRules.size(), 2);
}

TEST_F(Settings, GetPathGivesTheValueOfTheCurrentGroupOrNothing)
{
    QSettings settings(folder.write(QStringLiteral("adexp.ini"),
                                    "key=outside\n[rules]\nkey=conf/a b.xml\nempty=\n"),
                       QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("rules"));
    const auto path = [&settings](const char* key) {
        return MainClass::getPathFromSettings(&settings, QString::fromUtf8(key)).toStdString();
    };
    EXPECT_EQ(path("key"), "conf/a b.xml");
    EXPECT_EQ(path("empty"), "");
    EXPECT_EQ(path("missing"), "");
}

TEST_F(Settings, EmbeddedRuleSetIsNamedByResourcePaths)
{
    QSettings settings(QStringLiteral(":/adexp/adexp.ini"), QSettings::IniFormat);
    EXPECT_TRUE(converter.readSettingsRules(&settings, &toOutput));
    EXPECT_GT(converter.msgRules.size(), 0);
}

} // namespace
