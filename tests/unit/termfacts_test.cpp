// Facts about the texts that a term matches are compared with the texts themselves: all short texts
// are tried with generated expressions, from fixed seeds.

#include "support/diagnosticcapture.h"
#include "support/expressionwriter.h"
#include "support/termset.h"
#include "support/tooutput.h"
#include "termfacts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace {

const std::vector<QString>& texts()
{
    static const std::vector<QString> all = allTexts(QStringLiteral("AB1 -"), 5);
    return all;
}

// Definitions that the expressions of the writer may refer to.
class Names
{
public:
    Names()
    {
        m_terms.define(QStringLiteral("X"), QStringLiteral("1{ALPHANUM}"));
        m_terms.define(QStringLiteral("Y"), QStringLiteral("ALPHA | '1'"));
        m_terms.define(QStringLiteral("Z"), QStringLiteral("X ! ['-' ! Y]"));
    }

    // Null if the expression is not valid.
    std::unique_ptr<TermStd> compile(const QString& expression)
    {
        const DiagnosticCapture notWanted;
        std::unique_ptr<TermStd> term = compileDefinition(QStringLiteral("R"), expression);
        if (term && !term->check_config(m_terms.terms(), &toOutput))
            term.reset();
        return term;
    }

private:
    TermSet m_terms;
};

// The lengths that the term matches of all texts.
std::vector<int> lengthsOf(TermStd* term)
{
    std::vector<int> lengths;
    for (const QString& text : texts())
        lengths.push_back(term->parse(text.constData()));
    return lengths;
}

// Empty if the facts hold for the text, of which the term matches a part.
std::string wrongFact(const TermFacts& facts, const QString& text, int length)
{
    if (!facts.canMatch)
        return "canMatch";
    if (length < facts.minLength || length > facts.maxLength)
        return "length";
    if (!facts.first.contains(text.at(0)))
        return "first";
    if (!facts.chars.contains(CharSet::ofText(text.left(length))))
        return "chars";
    if (length < text.size() && facts.notBehind.contains(text.at(length)))
        return "notBehind";
    return {};
}

// Empty if the facts hold for a text of which the term matches `length`, perhaps nothing.
std::string wrongRun(const TermFacts& facts, const QString& text, int length)
{
    if (!facts.run)
        return {};
    const auto end = std::find_if_not(text.begin(), text.end(),
                                      [&](QChar c) { return facts.run->set.contains(c); });
    const qint64 run = std::min<qint64>(end - text.begin(), facts.run->max);
    return length == (run < facts.run->min ? 0 : run) ? "" : "run";
}

TEST(TermFacts, HoldForAllShortTexts)
{
    Chance chance(3);
    Names names;
    int compared = 0;
    for (int i = 0; i < 400; ++i) {
        const QString expression = ExpressionWriter(&chance).expression(2);
        const std::unique_ptr<TermStd> term = names.compile(expression);
        if (!term)
            continue;
        TermFactsTable table;
        const TermFacts& facts = table.of(term.get());
        const std::vector<int> lengths = lengthsOf(term.get());
        for (std::size_t t = 0; t < lengths.size(); ++t) {
            const std::string wrong =
                lengths[t] > 0 ? wrongFact(facts, texts()[t], lengths[t]) : std::string();
            ASSERT_EQ(wrong + wrongRun(facts, texts()[t], lengths[t]), "")
                << expression.toStdString() << " with \"" << texts()[t].toStdString()
                << "\" matches " << lengths[t];
        }
        ++compared;
    }
    EXPECT_GT(compared, 300);
}

TEST(TermFacts, WhatCoversAnotherTakesAsMuchOfEveryText)
{
    Chance chance(5);
    Names names;
    TermFactsTable table;
    std::vector<std::unique_ptr<TermStd>> terms;
    std::vector<std::vector<int>> lengths;
    std::vector<QString> expressions;
    for (int i = 0; i < 250; ++i) {
        const QString expression = ExpressionWriter(&chance).expression(i % 3);
        if (std::unique_ptr<TermStd> term = names.compile(expression)) {
            lengths.push_back(lengthsOf(term.get()));
            expressions.push_back(expression);
            terms.push_back(std::move(term));
        }
    }
    int covered = 0;
    for (std::size_t a = 0; a < terms.size(); ++a) {
        for (std::size_t b = 0; b < terms.size(); ++b) {
            if (a == b || !table.covers(terms[a].get(), terms[b].get()))
                continue;
            ++covered;
            ASSERT_TRUE(std::equal(lengths[a].begin(), lengths[a].end(), lengths[b].begin(),
                                   [](int wide, int narrow) { return wide >= narrow; }))
                << expressions[a].toStdString() << " is said to cover "
                << expressions[b].toStdString();
        }
    }
    EXPECT_GT(covered, 300);
}

struct CoversCase
{
    const char* wide;
    const char* narrow;
    bool covers;
};

class Covering : public testing::TestWithParam<CoversCase>
{
};

TEST_P(Covering, IsRecognised)
{
    Names names;
    TermFactsTable table;
    const std::unique_ptr<TermStd> wide = names.compile(QString::fromUtf8(GetParam().wide));
    const std::unique_ptr<TermStd> narrow = names.compile(QString::fromUtf8(GetParam().narrow));
    ASSERT_TRUE(wide && narrow);
    EXPECT_EQ(table.covers(wide.get(), narrow.get()), GetParam().covers);
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, Covering,
    testing::Values(
        CoversCase{"'AB'", "'AB'", true}, CoversCase{"'AB'", "'A'", false},
        CoversCase{"'A'", "'AB'", false}, CoversCase{"X", "1{ALPHANUM}", true},
        CoversCase{"2{ALPHA}5", "3{ALPHA}4", true}, CoversCase{"2{ALPHA}5", "1{ALPHA}4", false},
        CoversCase{"2{ALPHA}5", "3{ALPHA}6", false},
        CoversCase{"2{ALPHANUM}5", "'REF' ! 2{DIGIT}2", true},
        CoversCase{"2{ALPHANUM}4", "'REF' ! 2{DIGIT}2", false},
        CoversCase{"2{ALPHANUM}5", "'R-F' ! DIGIT", false},
        CoversCase{"1{'A' | '1'}", "2{'1'}3", true},
        CoversCase{"1{ALPHA ! DIGIT}3", "2{ALPHA ! DIGIT}3", true},
        CoversCase{"2{ALPHA ! DIGIT}3", "1{ALPHA ! DIGIT}3", false},
        CoversCase{"'A' ! DIGIT ! [ALPHA]", "'A' ! DIGIT", true},
        CoversCase{"'A' ! DIGIT [ALPHA]", "'A' ! DIGIT", false},
        CoversCase{"'AB' ! [DIGIT]", "'AB'", true}, CoversCase{"['AB'] ! [DIGIT]", "'AB'", false},
        CoversCase{"'X' | ALPHA", "'B'", true}, CoversCase{"ALPHANUM", "ALPHA | '1'", true},
        CoversCase{"ALPHANUM", "ALPHA | '-'", false}));

TEST(TermFactsTable, NeedsNoTimeForManyPathsThroughDefinitions)
{
    TermSet terms;
    const DiagnosticCapture notWanted;
    for (const QString& letter : {QStringLiteral("A"), QStringLiteral("B")}) {
        for (int i = 0; i < 60; ++i)
            terms.define(
                letter + QString::number(i),
                QStringLiteral("(%1%2 ! %1%2) | (%1%2 ! 'X' ! %1%2)").arg(letter).arg(i + 1));
        terms.define(letter + QStringLiteral("60"), QStringLiteral("ALPHA"));
    }
    TermStd* const a = terms.terms()->search(u"A0");
    TermStd* const b = terms.terms()->search(u"B0");
    ASSERT_TRUE(a->check_config(terms.terms(), &toOutput) &&
                b->check_config(terms.terms(), &toOutput));
    TermFactsTable table;
    EXPECT_TRUE(table.covers(a, b));
}

} // namespace
