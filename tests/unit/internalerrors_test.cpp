// The exact critical lines of the terms: the full signature, the items, a blank behind each of
// them.

#include "support/diagnosticcapture.h"
#include "support/tooutput.h"

#include "grammar/termexpression.h"
#include "grammar/termvariable.h"

#include <gtest/gtest.h>

namespace {

ConfigInfo recordOf(const char* text)
{
    ConfigInfo record;
    record.ruleText = QLatin1String(text);
    return record;
}

TEST(InternalErrorLines, NullTextWhateverTheBrackets)
{
    const ConfigInfo record = recordOf("DIGIT");
    for (const int bracket : {BracketNone, BracketOptional, BracketRepeat}) {
        TermStd term(TermTypeDigit, &record);
        term.bracketType = bracket;
        const DiagnosticCapture capture;
        EXPECT_EQ(term.parse(nullptr), 0);
        EXPECT_EQ(capture.criticalLines(),
                  QStringList{QStringLiteral("int TermStd::parse(const QChar*) indata == 0 ")});
    }
}

TEST(InternalErrorLines, UnknownKind)
{
    const ConfigInfo record = recordOf("X");
    TermStd term(&record);
    const DiagnosticCapture capture;
    EXPECT_EQ(term.parse(QStringLiteral("A").constData()), 0);
    // Two blanks: that of the item and that behind it.
    EXPECT_EQ(capture.criticalLines(),
              QStringList{QStringLiteral(
                  "virtual int TermStd::real_parse(const QChar*) unknown StdTerm type =  0 ")});
}

TEST(InternalErrorLines, UnresolvedReference)
{
    const ConfigInfo record = recordOf("X");
    TermVariable variable(&record);
    const DiagnosticCapture capture;
    EXPECT_EQ(variable.parse(QStringLiteral("A").constData()), 0);
    EXPECT_EQ(variable.calculateOfLengthData(true), 0);
    EXPECT_FALSE(variable.isCharacterNoLimit(&toOutput));
    EXPECT_FALSE(variable.isFirstRequiredField(&variable, &toOutput));
    EXPECT_EQ(
        capture.criticalLines(),
        (QStringList{
            QStringLiteral("virtual int TermVariable::real_parse(const QChar*) simpleTerm == 0 "),
            QStringLiteral(
                "virtual int TermVariable::calculateOfLengthData(bool) const simpleTerm == 0 "),
            QStringLiteral("virtual bool TermVariable::isCharacterNoLimit() simpleTerm == 0 "),
            QStringLiteral("virtual bool TermVariable::isFirstRequiredField(const TermStd*) const "
                           "simpleTerm == 0 ")}));
}

TEST(InternalErrorLines, ExpressionWithoutTheTermsItNeeds)
{
    const ConfigInfo record = recordOf("");
    QStringList lines;
    {
        const DiagnosticCapture capture;
        TermExpression expression(&record, &toOutput);
        expression.erase_first_term(&toOutput);
        EXPECT_FALSE(expression.isFirstRequiredField(&expression, &toOutput));
        lines = capture.criticalLines();
    }
    EXPECT_EQ(lines,
              (QStringList{QStringLiteral("void TermExpression::erase_first_term() it == "
                                          "ExprList.end() "),
                           QStringLiteral("virtual bool TermExpression::isFirstRequiredField(const "
                                          "TermStd*) const check_term not found ")}));
}

TEST(InternalErrorLines, ExpressionWithTooFewOperators)
{
    const ConfigInfo record = recordOf("DIGIT ! ALPHA");
    TermExpression expression(&record, &toOutput);
    expression.OperatorsList.clear();
    const DiagnosticCapture capture;
    EXPECT_EQ(expression.dumpData(true),
              QStringLiteral("<TermExpression>DIGIT ? ALPHA</TermExpression>"));
    EXPECT_EQ(
        capture.criticalLines(),
        QStringList{QStringLiteral("virtual QString TermExpression::dumpData(bool) const i =  "
                                   "0 OperatorsList.length() =  0 ")});
}

} // namespace
