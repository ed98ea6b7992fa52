// How far a text matches, and what stopped it.

#include "matchtrace.h"

#include "support/diagnosticcapture.h"
#include "support/expressionwriter.h"
#include "support/termset.h"
#include "support/tooutput.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

std::unique_ptr<TermStd> compile(const TermSet& terms, const QString& expression)
{
    const DiagnosticCapture notWanted;
    std::unique_ptr<TermStd> term = compileDefinition(QStringLiteral("R"), expression);
    if (term && !term->check_config(terms.terms(), &toOutput))
        term.reset();
    return term;
}

void defineNames(TermSet* terms)
{
    terms->define(QStringLiteral("X"), QStringLiteral("1{ALPHANUM}"));
    terms->define(QStringLiteral("Y"), QStringLiteral("ALPHA | '1'"));
    terms->define(QStringLiteral("Z"), QStringLiteral("X ! ['-' ! Y]"));
}

TEST(MatchTrace, MatchesAsTheLibraryDoes)
{
    const std::vector<QString> texts = allTexts(QStringLiteral("AB1 -"), 4);
    TermSet terms;
    defineNames(&terms);
    Chance chance(17);
    int compared = 0;
    for (int i = 0; i < 400; ++i) {
        const QString expression = ExpressionWriter(&chance).expression(2);
        const std::unique_ptr<TermStd> term = compile(terms, expression);
        if (!term)
            continue;
        ++compared;
        for (const QString& text : texts) {
            const MatchTrace trace(term.get(), text);
            ASSERT_EQ(trace.matched(), term->parse(text.constData()))
                << expression.toStdString() << " with \"" << text.toStdString() << '"';
            ASSERT_GE(trace.stoppedAt(), trace.matched());
            ASSERT_LE(trace.stoppedAt(), text.size());
        }
    }
    EXPECT_GT(compared, 300);
}

struct Case
{
    const char* expression;
    const char* text;
    int matched;
    int stoppedAt;
    const char* wanted; // joined with " or "
    const char* path;   // joined with " > "
};

class Stopped : public testing::TestWithParam<Case>
{
};

TEST_P(Stopped, WhereSomethingElseIsWanted)
{
    TermSet terms;
    defineNames(&terms);
    const std::unique_ptr<TermStd> term = compile(terms, QString::fromUtf8(GetParam().expression));
    ASSERT_TRUE(term);
    const MatchTrace trace(term.get(), QString::fromUtf8(GetParam().text));
    EXPECT_EQ(trace.matched(), GetParam().matched);
    EXPECT_EQ(trace.stoppedAt(), GetParam().stoppedAt);
    EXPECT_EQ(trace.wanted().join(QLatin1String(" or ")).toStdString(), GetParam().wanted);
    EXPECT_EQ(trace.path().join(QLatin1String(" > ")).toStdString(), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(
    Matches, Stopped,
    testing::Values(
        Case{"DIGIT ! DIGIT", "1A", 0, 1, "a digit", ""},
        Case{"4{DIGIT}4", "12", 0, 2, "a digit", ""}, Case{"{DIGIT}2", "123", 2, 2, "", ""},
        Case{"{DIGIT}", "12A", 2, 2, "a digit", ""}, Case{"'ABC' | 'AX'", "ABD", 0, 2, "'ABC'", ""},
        Case{"'A' | DIGIT | ALPHA", "-", 0, 0, "'A' or a digit or an upper-case letter", ""},
        Case{"DIGIT ! Z", "1AB-*", 3, 4, "an upper-case letter or '1'", "Z > Y"},
        Case{"DIGIT ALPHA", "1A", 0, 1, "white space", ""},
        Case{"DIGIT ALPHA", "1", 0, 1, "an upper-case letter", ""},
        Case{"ALPHA [DIGIT] [ALPHA]", "A 1", 2, 3,
             "white space (without it [DIGIT] counts as absent)", ""},
        Case{"{CHARACTER}", "A*", 1, 1, "a character of CHARACTER", ""},
        Case{"1{LIM_CHAR}", "-", 0, 0, "a character of LIM_CHAR", ""},
        Case{"ALPHANUM", "-", 0, 0, "an upper-case letter or digit", ""},
        Case{"NIL", "A", 0, 0, "nothing (NIL)", ""}));

} // namespace
