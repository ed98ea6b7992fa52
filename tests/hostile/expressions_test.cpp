// Expressions and sets of definitions made to cost as much as they can.

#include "hostile/steps.h"

#include "support/diagnosticcapture.h"
#include "support/termset.h"
#include "support/tooutput.h"

#include "grammar/match.h"
#include "grammar/termexpression.h"
#include "load/mainclass.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

struct ExpressionShape
{
    const char* name;
    const char* before;
    const char* repeated;
    const char* behind;
    bool compiles;
    double stepsPerByte;
};

constexpr ExpressionShape Shapes[] = {
    {"alternatives", "A", " | 'XYZ'", "", true, 16.2},
    {"words", "A", " BCD", "", true, 55.4},
    {"optional_groups", "A", " [BCD]", "", true, 43.4},
    {"repeated_groups", "A", " 2{DIGIT}3", "", true, 57.2},
    {"nested_groups", "A", " ((B ! C) | [D])", "", true, 63.1},
    {"brackets_never_closed", "A", "(", "", false, 5.0},
    {"braces_never_closed", "A", " {A", "", false, 4.3},
    {"deep_brackets", "A", "(", ")", false, 641.8},
    {"operators_on_end", "A", "|", "", false, 0.1},
    {"quotes", "A", "''", "", false, 0.1},
    {"digits", "{A}", "9", "", true, 3.0},
    {"blanks", "A", "   ", "", true, 0.1},
};

class HostileExpressions : public testing::TestWithParam<ExpressionShape>
{
};

QString expression(const ExpressionShape& shape, int count)
{
    QString text =
        QString::fromLatin1(shape.before) + QString::fromLatin1(shape.repeated).repeated(count);
    if (shape.name == std::string("deep_brackets"))
        return text + u'A' + QString::fromLatin1(shape.behind).repeated(count);
    return text + QString::fromLatin1(shape.behind);
}

TEST_P(HostileExpressions, CompileInStepsInProportionToTheirSize)
{
    const ExpressionShape& shape = GetParam();
    expectLinear(
        [&shape](int count) {
            const DiagnosticCapture capture;
            const QString text = expression(shape, count);
            EXPECT_EQ(compileDefinition(QStringLiteral("T"), text) != nullptr, shape.compiles);
            return text.size();
        },
        1000, shape.stepsPerByte);
}

INSTANTIATE_TEST_SUITE_P(, HostileExpressions, testing::ValuesIn(Shapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

// The text is the repeated part of the shape as many times.
std::int64_t match(const QString& expression, int count, const QString& part, int expected)
{
    const DiagnosticCapture capture;
    const std::unique_ptr<TermStd> term = compileDefinition(QStringLiteral("T"), expression);
    EXPECT_TRUE(term->check_config(nullptr, &toOutput));
    const QString text = part.repeated(count);
    EXPECT_EQ(term->parse(text.constData()), expected);
    return expression.size() + text.size();
}

TEST(HostileMatching, HugeRepeatCountsCostWhatTheTextCosts)
{
    for (const char* text :
         {"{DIGIT}2147483647", "{[DIGIT]}2147483647", "{{DIGIT}2147483647}2147483647",
          "{(DIGIT | '12')}2147483647", "{[NIL] ! DIGIT}2147483647", "{DIGIT ! [SEP]}2147483647"}) {
        SCOPED_TRACE(text);
        expectLinear(
            [text](int count) {
                return match(QString::fromLatin1(text), count, QStringLiteral("12"), 2 * count);
            },
            1000, 54);
    }
    // A repeat that matches nothing stops at once, whatever its counts are.
    for (const char* text : {"{NIL}2147483647", "2147483647{DIGIT}2147483647", "{SEP}2147483647"})
        EXPECT_EQ(match(QString::fromLatin1(text), 1000, QStringLiteral("1"), 0),
                  1000 + qstrlen(text));
}

TEST(HostileMatching, AllOfTenThousandAlternativesAreTried)
{
    expectLinear(
        [](int count) {
            const QString text = QStringLiteral("'X' | ").repeated(count) + QStringLiteral("'XY'");
            return match(text, 1, QStringLiteral("XY"), 2);
        },
        1000, 26.5);
}

// Definitions, loaded as a term file would, and checked.
class DefinitionSet
{
public:
    void define(const QString& name, const QString& text)
    {
        ConfigInfo record;
        fillRecord(&record, name, text);
        if (TermStd* const term = TermExpression::append_expression(&record, true, &toOutput))
            m_converter.termsList.append(term);
        m_bytes += name.size() + text.size();
    }
    std::int64_t check()
    {
        m_converter.termsList_checkConfig(&toOutput);
        return m_bytes;
    }
    qsizetype size() const { return m_converter.termsList.size(); }
    TermStd* term(const QString& name) const { return m_converter.termsList.search(name); }

private:
    MainClass m_converter{nullptr};
    std::int64_t m_bytes = 0;
};

QString numbered(int number)
{
    return QLatin1Char('T') + QString::number(number).rightJustified(6, u'0');
}

TEST(HostileDefinitions, AChainIsCheckedInStepsInProportionToItsLength)
{
    for (const bool lastFirst : {false, true}) {
        expectLinear(
            [lastFirst](int count) {
                const DiagnosticCapture capture;
                DefinitionSet set;
                for (int i = 0; i < count; ++i) {
                    const int number = lastFirst ? count - 1 - i : i;
                    set.define(numbered(number), number == count - 1 ? QStringLiteral("DIGIT")
                                                                     : numbered(number + 1));
                }
                return set.check();
            },
            10'000, 60.5);
    }
}

TEST(HostileDefinitions, ALoopIsCheckedInStepsInProportionToItsLength)
{
    expectLinear(
        [](int count) {
            const DiagnosticCapture capture;
            DefinitionSet set;
            for (int i = 0; i < count; ++i)
                set.define(numbered(i), numbered((i + 1) % count) + QStringLiteral(" DIGIT"));
            return set.check();
        },
        1000, 70.9);
}

TEST(HostileDefinitions, AStarOfLoopsIsCheckedInStepsInProportionToItsSize)
{
    expectLinear(
        [](int count) {
            const DiagnosticCapture capture;
            DefinitionSet set;
            QString all;
            for (int i = 0; i < count; ++i) {
                set.define(numbered(i), QStringLiteral("A"));
                all += numbered(i) + u' ';
            }
            set.define(QStringLiteral("A"), all);
            return set.check();
        },
        1000, 155.4);
}

// Each definition names the one before twice.
TEST(HostileDefinitions, DoublingsAreCheckedInStepsInProportionToTheirNumber)
{
    expectLinear(
        [](int count) {
            const DiagnosticCapture capture;
            DefinitionSet set;
            set.define(numbered(0), QStringLiteral("DIGIT"));
            for (int i = 1; i < count; ++i)
                set.define(numbered(i), QStringLiteral("[%1] ! [%1]").arg(numbered(i - 1)));
            return set.check();
        },
        1000, 52.2);
}

// Repeats in parts that fail, or are left out, after they have read far: each level multiplies the
// steps by the length of the text.

struct NestedRepeat
{
    const char* name;
    const char* level; // %1 is the next level, the last one an 'A'
    const char* text;  // one of many
};

constexpr NestedRepeat NestedRepeats[] = {
    {"a_longer_alternative_that_fails", "({%1} ! 'B') | 'A'", "A"},
    {"an_optional_part_that_fails", "[{%1} ! 'B'] ! 'A'", "A"},
    {"an_optional_part_without_its_separator", "[{%1}] ALPHA", "A"},
    {"too_few", "(1000{%1}) | 'A'", "A"},
    {"separators", "({%1 ! SEP} ! 'B') | 'A'", "A  "},
    {"small_counts", "({%1}5 ! 'B') | 'A'", "A"},
};

class HostileNestedRepeats : public testing::TestWithParam<NestedRepeat>
{
};

// The first of so many levels.
TermStd* defineLevels(const char* level, int levels, DefinitionSet* set)
{
    for (int i = 0; i < levels; ++i) {
        const QString next = i + 1 == levels ? QStringLiteral("'A'") : numbered(i + 1);
        set->define(numbered(i), QString::fromLatin1(level).arg(next));
    }
    set->check();
    return set->term(numbered(0));
}

TEST_P(HostileNestedRepeats, TakeNoMoreThanTheStepsThatThereAre)
{
    const NestedRepeat& shape = GetParam();
    const QString text = QString::fromLatin1(shape.text).repeated(300);
    const auto allowed =
        static_cast<double>(Match::StepsAtLeast + Match::StepsPerUnit * text.size());
    for (const int levels : {1, 2, 4, 8, 30}) {
        DefinitionSet set;
        TermStd* const term = defineLevels(shape.level, levels, &set);
        ASSERT_NE(term, nullptr);
        bool areExhausted = false;
        const std::int64_t taken = stepsOf([&] {
            Match match(text.size(), &toOutput);
            term->match(text.constData(), &match);
            areExhausted = match.areStepsExhausted();
        });
        // A repetition tries some terms, and each of them takes some branches.
        EXPECT_LE(static_cast<double>(taken), 60 * allowed) << levels << " levels";
        if (levels != 4) {
            EXPECT_EQ(areExhausted, levels > 4) << levels << " levels";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, HostileNestedRepeats, testing::ValuesIn(NestedRepeats),
                         [](const auto& shape) { return std::string(shape.param.name); });

// Repeats and choices that waste nothing may nest as they like.
TEST(HostileMatching, NestedRepeatsThatWasteNothingTakeStepsInProportionToTheText)
{
    for (const char* level : {"{%1}", "1{%1}", "{%1 ! [SEP]}", "{%1 | ('B' ! {'C'})}", "'B' | {%1}",
                              "{(%1 ! [%1]) | 'B'}3"}) {
        SCOPED_TRACE(level);
        const int levels = QString::fromLatin1(level).count(QStringLiteral("%1")) > 1 ? 8 : 32;
        DefinitionSet set;
        TermStd* const term = defineLevels(level, levels, &set);
        ASSERT_NE(term, nullptr);
        const auto takenFor = [term](int count) {
            const QString text(count, u'A');
            return stepsOf([&] {
                Match match(text.size(), &toOutput);
                EXPECT_GT(term->match(text.constData(), &match), 0);
                EXPECT_FALSE(match.areStepsExhausted());
            });
        };
        EXPECT_LE(takenFor(10'000), 11 * takenFor(1000));
    }
}

} // namespace
