// Parts of a rule set that have no effect.

#include "grammar/termexpression.h"
#include "load/mainclass.h"
#include "termwarnings.h"

#include "support/diagnosticcapture.h"
#include "support/expressionwriter.h"
#include "support/rulefolder.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

// A rule set of simple terms, fields and one rule.
class Rules
{
public:
    Rules() : converter(nullptr) {}

    Rules& term(const QString& name, const QString& expression, bool isField = false)
    {
        ConfigInfo record;
        record.recordName = name;
        record.ruleText = expression;
        if (TermStd* const term = TermExpression::append_expression(&record, true, &toOutput)) {
            term->containsField = isField;
            converter.termsList.append(term);
        }
        return *this;
    }

    Rules& rule(const QString& fields)
    {
        const RuleFolder folder;
        converter.termsList_checkConfig(&toOutput);
        EXPECT_TRUE(converter.readMsgRulesXMLFile(
            folder.write(QStringLiteral("rules.xml"), "<r><msgRule title='MSG'><fields>" +
                                                          fields.toUtf8() +
                                                          "</fields></msgRule></r>"),
            &toOutput));
        return *this;
    }

    // Each warning as "text" and, behind " @ ", the expression from its position on.
    std::vector<std::string> warnings(const QString& expression)
    {
        converter.termsList_checkConfig(&toOutput);
        std::vector<std::string> result;
        for (const Finding& finding : TermWarnings(&converter).find()) {
            EXPECT_EQ(finding.severity, Severity::Warning);
            result.push_back((finding.text + QLatin1String(" @ ") + expression.mid(finding.begin))
                                 .toStdString());
        }
        return result;
    }

    MainClass converter;
};

struct Case
{
    const char* expression;
    std::vector<std::string> warnings;
};

class InADefinition : public testing::TestWithParam<Case>
{
};

TEST_P(InADefinition, IsWarnedOf)
{
    const QString expression = QString::fromUtf8(GetParam().expression);
    Rules rules;
    rules.term(QStringLiteral("CODE"), QStringLiteral("4{ALPHA}4"))
        .term(QStringLiteral("WORD"), QStringLiteral("1{ALPHANUM}"))
        .term(QStringLiteral("R"), expression);
    EXPECT_EQ(rules.warnings(expression), GetParam().warnings);
}

const char* const TakesAll = " before it takes every character that it could begin with @ ";

std::vector<std::string> never(const std::string& term, const std::string& before,
                               const std::string& rest)
{
    return {term + " never matches: " + before + TakesAll + rest};
}

std::vector<std::string> neverWins(const std::string& term, const std::string& before,
                                   const std::string& rest)
{
    return {term + " never wins: " + before + " before it takes as much of every text @ " + rest};
}

std::vector<std::string> sameTexts(const std::string& term, const std::string& rest)
{
    return {term + " never wins: what stands before it matches the same texts @ " + rest};
}

INSTANTIATE_TEST_SUITE_P(
    Choices, InADefinition,
    testing::Values(
        Case{"CODE | 'ZZZZ'", neverWins("'ZZZZ'", "CODE", "ZZZZ'")}, Case{"'ZZZZ' | CODE", {}},
        Case{"CODE | 'ZZZ'", {}}, Case{"'A' | 'B' | 'A'", sameTexts("'A'", "A'")},
        Case{"'AB' | DIGIT | 'AB'", sameTexts("'AB'", "AB'")},
        Case{"DIGIT | ALPHA | ALPHANUM", sameTexts("ALPHANUM", "ALPHANUM")},
        Case{"ALPHANUM | DIGIT", sameTexts("DIGIT", "DIGIT")}, Case{"DIGIT | ALPHANUM", {}},
        Case{"ALPHA ! (CODE | ('A' ! 'BCD'))", neverWins("('A' ! 'BCD')", "CODE", "'A' ! 'BCD'))")},
        Case{"CODE | ('A' ! 'BC')", {}},
        Case{"ALPHA | NIL",
             {"NIL never wins in a choice, as it takes nothing; write "
              "the choice in square brackets @ NIL"}}));

INSTANTIATE_TEST_SUITE_P(
    Sequences, InADefinition,
    testing::Values(Case{"{ALPHANUM} ! DIGIT", never("DIGIT", "{ALPHANUM}", "DIGIT")},
                    Case{"1{ALPHANUM} ! DIGIT", never("DIGIT", "1{ALPHANUM}", "DIGIT")},
                    Case{"WORD ! (CODE | '1')", never("(CODE | '1')", "WORD", "CODE | '1')")},
                    Case{"1{ALPHANUM}3 ! DIGIT", {}}, Case{"{ALPHA} ! DIGIT", {}},
                    Case{"WORD DIGIT", {}}, Case{"WORD ! ['/'] ! DIGIT", {}},
                    Case{"WORD ! [DIGIT] ! '/'", never("[DIGIT]", "WORD", "DIGIT] ! '/'")},
                    Case{"[WORD] ! DIGIT", never("DIGIT", "[WORD]", "DIGIT")},
                    Case{"[2{ALPHANUM}] ! DIGIT", {}}, Case{"[WORD] DIGIT", {}},
                    Case{"WORD ! ('/' | [DIGIT]) ! ALPHA", {}}, Case{"{CHARACTER} CODE", {}},
                    Case{"1{CHARACTER} CODE", never("SEP", "1{CHARACTER}", "CODE")},
                    Case{"'A' ! {LIM_CHAR} ! [CODE]", never("[CODE]", "{LIM_CHAR}", "CODE]")},
                    Case{"ALPHA SEP SEP DIGIT", never("SEP", "SEP", "SEP DIGIT")},
                    Case{"ALPHA [SEP] DIGIT", {}},
                    Case{"(('/' ! WORD) | WORD) ! CODE",
                         never("CODE", "(('/' ! WORD) | WORD)", "CODE")},
                    Case{"(('/' ! WORD) | '-') ! CODE", {}},
                    Case{"ALPHA ! NIL",
                         {"NIL takes nothing, so a sequence with it never matches; leave it "
                          "out @ NIL"}},
                    Case{"ALPHA ! [NIL]", {"NIL takes nothing; leave it out @ NIL]"}},
                    Case{"NIL", {}},
                    Case{"ALPHA ! {DIGIT}0",
                         {"matches nothing, as its maximum count is 0 "
                          "@ DIGIT}0"}},
                    Case{"1{WORD}3",
                         {"is matched once at the most: an occurrence takes every character that "
                          "the next one could begin with @ WORD}3"}},
                    Case{"1{WORD ! '/'}3", {}}, Case{"1{WORD [SEP]}3", {}}));

TEST(InARule, AFieldNamedTwiceIsWarnedOf)
{
    Rules rules;
    rules.term(QStringLiteral("A"), QStringLiteral("DIGIT"), true)
        .term(QStringLiteral("B"), QStringLiteral("DIGIT"), true)
        .term(QStringLiteral("PAIR"), QStringLiteral("A A"), true);
    const QString fields = QStringLiteral("A [B A] | ((A PAIR) | (B PAIR)) PAIR");
    rules.rule(QStringLiteral("(A [B A]) | (((A PAIR) | (B PAIR)) PAIR)"));
    EXPECT_EQ(rules.warnings(QStringLiteral("(A [B A]) | (((A PAIR) | (B PAIR)) PAIR)")),
              (std::vector<std::string>{
                  "A is named before; naming a field once allows it any number of times @ A]) | "
                  "(((A PAIR) | (B PAIR)) PAIR)",
                  "PAIR is named before; naming a field once allows it any number of times @ "
                  "PAIR)"}));
}

TEST(InARule, AFieldThatTakesTheOthersIsWarnedOf)
{
    Rules rules;
    rules.term(QStringLiteral("ALL"), QStringLiteral("{CHARACTER}"), true)
        .term(QStringLiteral("A"), QStringLiteral("DIGIT"), true)
        .term(QStringLiteral("PART"), QStringLiteral("[ALL] [A]"), true);
    const QString fields = QStringLiteral("A [PART] [ALL]");
    rules.rule(fields);
    EXPECT_EQ(rules.warnings(QStringLiteral("[ALL] [A]")),
              (std::vector<std::string>{"ALL takes the fields behind it, too, up to the end of the "
                                        "message; put it last @ ALL] [A]"}));
}

// Nothing is matched by an expression with a required term that is said never to match.
TEST(NeverMatching, IsTrueOfAllShortTexts)
{
    const std::vector<QString> texts = allTexts(QStringLiteral("AB1 -"), 5);
    Chance chance(11);
    int found = 0;
    for (int i = 0; i < 3000; ++i) {
        const QString expression = ExpressionWriter(&chance).expression(1);
        const DiagnosticCapture notWanted;
        Rules rules;
        rules.term(QStringLiteral("X"), QStringLiteral("1{ALPHANUM}"))
            .term(QStringLiteral("Y"), QStringLiteral("ALPHA | '1'"))
            .term(QStringLiteral("Z"), QStringLiteral("X ! ['-' ! Y]"))
            .term(QStringLiteral("R"), expression);
        rules.converter.termsList_checkConfig(&toOutput);
        TermStd* const term = rules.converter.termsList.search(u"R");
        const TermExpression* const sequence = term ? asExpression(term) : nullptr;
        if (!sequence || isChoice(sequence))
            continue;
        for (const Finding& finding : TermWarnings(&rules.converter).find()) {
            const bool isAboutAStep = std::any_of(
                sequence->ExprList.cbegin(), sequence->ExprList.cend(), [&](const TermStd* step) {
                    return step->isRequired() && !step->isSeparator() &&
                           step->config.textBegin == finding.begin;
                });
            if (!isAboutAStep || !finding.text.contains(QLatin1String(" never matches: ")) ||
                finding.text.startsWith(QLatin1String("SEP")))
                continue;
            ++found;
            for (const QString& text : texts)
                ASSERT_EQ(term->parse(text.constData()), 0)
                    << expression.toStdString() << ": " << finding.text.toStdString() << ": \""
                    << text.toStdString() << '"';
        }
    }
    EXPECT_GT(found, 20);
}

TEST(InAChoice, ManyAlternativesTakeNoTime)
{
    QString expression = QStringLiteral("'AB' ! DIGIT");
    for (int i = 0; i < 20000; ++i)
        expression = expression + QLatin1String(i == 0 ? "" : ")") + QLatin1String(" | ('AB' ! ") +
                     QString::number(i % 7 + 1) + QLatin1String("{DIGIT}") +
                     QString::number(i + 10);
    expression = QLatin1Char('(') + expression + QLatin1String("))");
    expression.replace(QStringLiteral("('AB' ! DIGIT |"), QStringLiteral("(('AB' ! DIGIT) |"));
    Rules rules;
    rules.term(QStringLiteral("R"), expression);
    ASSERT_NE(rules.converter.termsList.search(u"R"), nullptr);
    rules.warnings(expression);
}

} // namespace
