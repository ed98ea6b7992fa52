// Where a configuration item was defined, and the heads of the reports that say so.

#include "support/reports.h"
#include "support/termset.h"
#include "support/tooutput.h"

#include "grammar/termexpression.h"
#include "report/configinfo.h"

#include <gtest/gtest.h>

namespace {

ConfigInfo itemAt(const QString& file, int line, int column, const QString& name)
{
    ConfigInfo item;
    item.setXMLFile(file);
    item.lineNumber = line;
    item.columnNumber = column;
    item.recordName = name;
    return item;
}

TEST(ConfigInfo, ShortHeadNamesFileLineAndColumn)
{
    const ConfigInfo item = itemAt(QStringLiteral("simple.xml"), 12, 5, QStringLiteral("FL_LEVEL"));
    EXPECT_EQ(item.xmlErrorHeadShort().toStdString(), "file simple.xml line 12, column 5");
}

TEST(ConfigInfo, FullHeadNamesRecordAndPlace)
{
    const ConfigInfo item = itemAt(QStringLiteral("simple.xml"), 12, 5, QStringLiteral("FL_LEVEL"));
    EXPECT_EQ(item.xmlErrorHead().toStdString(),
              "element (FL_LEVEL) file simple.xml line 12, column 5: ");
}

TEST(ConfigInfo, FullHeadOfRecordWithoutNameRunsTogether)
{
    const ConfigInfo item = itemAt(QStringLiteral("simple.xml"), 12, 5, QString());
    EXPECT_EQ(item.xmlErrorHead().toStdString(), "elementfile simple.xml line 12, column 5: ");
}

TEST(ConfigInfo, EmptyFileLeavesTwoBlanksInTheHead)
{
    const ConfigInfo item = itemAt(QString(), 12, 5, QStringLiteral("FL_LEVEL"));
    EXPECT_EQ(item.xmlErrorHeadShort().toStdString(), "file  line 12, column 5");
}

TEST(ConfigInfo, NumbersAreWrittenInDecimalWithoutGrouping)
{
    const ConfigInfo item = itemAt(QStringLiteral("a"), 1234567, -1, QString());
    EXPECT_EQ(item.xmlErrorHeadShort().toStdString(), "file a line 1234567, column -1");
}

TEST(ConfigInfo, BeforeTheFirstRecordEverythingIsEmpty)
{
    const ConfigInfo item;
    EXPECT_EQ(item.xmlErrorHead().toStdString(), "elementfile  line 0, column 0: ");
    EXPECT_TRUE(item.tagName.isEmpty());
    EXPECT_TRUE(item.ruleText.isEmpty());
}

TEST(ConfigInfo, SetXmlFileKeepsThePathAsGiven)
{
    ConfigInfo item;
    item.setXMLFile(QStringLiteral("conf/../conf/simple.xml"));
    EXPECT_EQ(item.xmlFile.toStdString(), "conf/../conf/simple.xml");
}

TEST(ConfigInfo, SetXmlDataTakesLineColumnAndTagOnly)
{
    ConfigInfo item = itemAt(QStringLiteral("simple.xml"), 1, 2, QStringLiteral("BEFORE"));
    item.ruleText = QStringLiteral("DIGIT");

    item.setXMLData(3, 24, QStringLiteral("simpleTerm"));

    EXPECT_EQ(item.lineNumber, 3);
    EXPECT_EQ(item.columnNumber, 24);
    EXPECT_EQ(item.tagName.toStdString(), "simpleTerm");
    EXPECT_EQ(item.xmlFile.toStdString(), "simple.xml");
    EXPECT_EQ(item.recordName.toStdString(), "BEFORE");
    EXPECT_EQ(item.ruleText.toStdString(), "DIGIT");
}

TEST(ConfigInfo, CopyParamCopiesAllSixValues)
{
    ConfigInfo original = itemAt(QStringLiteral("simple.xml"), 12, 5, QStringLiteral("FL_LEVEL"));
    original.tagName = QStringLiteral("simpleTerm");
    original.ruleText = QStringLiteral("DIGIT");
    ConfigInfo copy = itemAt(QStringLiteral("other.xml"), 1, 1, QStringLiteral("OTHER"));

    copy.copyParam(&original);

    EXPECT_EQ(copy.xmlFile.toStdString(), "simple.xml");
    EXPECT_EQ(copy.tagName.toStdString(), "simpleTerm");
    EXPECT_EQ(copy.lineNumber, 12);
    EXPECT_EQ(copy.columnNumber, 5);
    EXPECT_EQ(copy.recordName.toStdString(), "FL_LEVEL");
    EXPECT_EQ(copy.ruleText.toStdString(), "DIGIT");
}

TEST(ConfigInfo, CopyWithAnotherRuleTextKeepsThePlaceOfItsRecord)
{
    ConfigInfo original = itemAt(QStringLiteral("simple.xml"), 12, 5, QStringLiteral("FL_LEVEL"));
    original.ruleText = QStringLiteral("A B");
    ConfigInfo copy;
    copy.copyParam(&original);

    copy.ruleText = QStringLiteral("A");

    EXPECT_EQ(copy.xmlErrorHead().toStdString(), original.xmlErrorHead().toStdString());
    EXPECT_EQ(original.ruleText.toStdString(), "A B");
}

TEST(ConfigErrorMessage, IsHeadRuleTextAndMessageEachQuotedAndFollowedByABlank)
{
    ConfigInfo item = itemAt(QStringLiteral("simple.xml"), 12, 5, QStringLiteral("FL_LEVEL"));
    item.ruleText = QStringLiteral("F {DIGIT}3");
    const TermStd term(TermTypeDigit, &item);

    const DiagnosticCapture diagnostics;
    term.configErrorMessage(ADEXP_CODE_EMPTY_EXPRESSION, QStringLiteral("term list is empty"),
                            &toOutput);

    EXPECT_EQ(linesOf(diagnostics),
              Lines{"\"element (FL_LEVEL) file simple.xml line 12, column 5: \" "
                    "\"F {DIGIT}3\" \"term list is empty\" "});
}

TEST(ConfigErrorMessage, IsOfSeverityDebug)
{
    const ConfigInfo item;
    const DiagnosticCapture diagnostics;
    TermStd(TermTypeDigit, &item)
        .configErrorMessage(ADEXP_CODE_EMPTY_EXPRESSION, QStringLiteral("text"), &toOutput);
    ASSERT_EQ(diagnostics.lines().size(), 1U);
    EXPECT_EQ(diagnostics.lines().front().type, QtDebugMsg);
}

TEST(ConfigErrorMessage, DoesNotEscapeQuotesBackslashesOrLetters)
{
    ConfigInfo item = itemAt(QStringLiteral("a\"b.xml"), 1, 1, QStringLiteral("N\"M"));
    item.ruleText = QStringLiteral("'\"' \\n");
    const TermStd term(TermTypeDigit, &item);

    const DiagnosticCapture diagnostics;
    term.configErrorMessage(ADEXP_CODE_EMPTY_EXPRESSION, QStringLiteral(u"say \"Г\""), &toOutput);

    EXPECT_EQ(linesOf(diagnostics),
              Lines{"\"element (N\"M) file a\"b.xml line 1, column 1: \" \"'\"' \\n\" "
                    "\"say \"\u0413\"\" "});
}

TEST(ConfigErrorMessage, OfEmptyRecordHasEmptyPieces)
{
    const ConfigInfo item;
    const TermStd term(TermTypeDigit, &item);
    const DiagnosticCapture diagnostics;
    term.configErrorMessage(ADEXP_CODE_EMPTY_EXPRESSION, QString(), &toOutput);
    EXPECT_EQ(linesOf(diagnostics), Lines{"\"elementfile  line 0, column 0: \" \"\" \"\" "});
}

TEST(ConfigErrorMessage, OfSubTermNamesThePlaceOfTheWholeRecord)
{
    const DiagnosticCapture diagnostics;
    const auto term = compileDefinition(QStringLiteral("LEVEL"), QStringLiteral("A (B 5{DIGIT}3)"));
    ASSERT_TRUE(term);
    EXPECT_EQ(linesOf(diagnostics),
              Lines{"\"element (LEVEL) file simple.xml line 12, column 5: \" \"DIGIT\" "
                    "\"minimum repeat count = 5 more than maximum repeat count = 3\" "});
}

} // namespace
