// How deep definitions may nest, and that nothing deeper than that uses up the stack.

#include "support/diagnosticcapture.h"
#include "support/grammar.h"
#include "support/smallstack.h"
#include "support/tooutput.h"

#include "grammar/definitionnesting.h"
#include "grammar/termexpression.h"
#include "load/mainclass.h"
#include "message/adexpdoc.h"

#include <gtest/gtest.h>

namespace {

const QString TooDeep = QStringLiteral("brackets and references are nested deeper than 128 levels");
const QString Removed = QStringLiteral("term  no valid, entry is removed");

void define(MainClass* converter, const QString& name, const QString& text)
{
    ConfigInfo record;
    record.setXMLFile(QStringLiteral("simple.xml"));
    record.recordName = name;
    record.ruleText = text;
    TermStd* const term = TermExpression::append_expression(&record, true, &toOutput);
    ASSERT_NE(term, nullptr) << name.toStdString();
    converter->termsList.append(term);
}

QString numbered(int number)
{
    return QLatin1Char('T') + QString::number(number);
}

// T0 names T1, T1 names T2 ...; the last one is a DIGIT.
void defineChain(MainClass* converter, int length, bool lastFirst)
{
    for (int i = 0; i < length; ++i) {
        const int number = lastFirst ? length - 1 - i : i;
        define(converter, numbered(number),
               number == length - 1 ? QStringLiteral("DIGIT") : numbered(number + 1));
    }
}

QString nestedBrackets(int levels)
{
    // Two terms in each bracket, so that each stays an expression.
    return QStringLiteral("(A ").repeated(levels) + QLatin1Char('B') +
           QStringLiteral(")").repeated(levels);
}

bool compiles(const QString& text)
{
    ConfigInfo record;
    record.ruleText = text;
    const std::unique_ptr<TermStd> term(
        TermExpression::append_expression(&record, true, &toOutput));
    return term != nullptr;
}

TEST(DefinitionNesting, BracketsCompileUpToTheLimit)
{
    runWithSmallStack([] {
        const DiagnosticCapture capture;
        EXPECT_TRUE(compiles(nestedBrackets(TermExpression::MaxNesting)));
        EXPECT_TRUE(capture.lines().empty());
    });
}

// A bracket around a single word counts like any other, although it becomes no expression.
TEST(DefinitionNesting, BracketsAroundASingleWordCountToo)
{
    const auto brackets = [](int levels) {
        return QStringLiteral("[").repeated(levels) + QLatin1Char('A') +
               QStringLiteral("]").repeated(levels);
    };
    const DiagnosticCapture capture;
    EXPECT_TRUE(compiles(brackets(TermExpression::MaxNesting)));
    EXPECT_TRUE(capture.lines().empty());
    EXPECT_FALSE(compiles(brackets(TermExpression::MaxNesting + 1)));
    EXPECT_EQ(capture.reportedTexts(), QStringList{TooDeep});
}

TEST(DefinitionNesting, DeeperBracketsAreRefusedWithOneReport)
{
    for (const int levels : {TermExpression::MaxNesting + 1, 5000}) {
        runWithSmallStack([levels] {
            const DiagnosticCapture capture;
            EXPECT_FALSE(compiles(nestedBrackets(levels)));
            EXPECT_EQ(capture.reportedTexts(), QStringList{TooDeep});
        });
    }
}

TEST(DefinitionNesting, AChainOfReferencesUpToTheLimitMatches)
{
    for (const bool lastFirst : {false, true}) {
        runWithSmallStack([lastFirst] {
            const DiagnosticCapture capture;
            MainClass converter(nullptr);
            defineChain(&converter, TermExpression::MaxNesting + 1, lastFirst);
            converter.termsList_checkConfig(&toOutput);
            EXPECT_TRUE(capture.lines().empty());
            TermStd* const first = converter.termsList.search(numbered(0));
            ASSERT_NE(first, nullptr);
            const QString text = QStringLiteral("7");
            EXPECT_EQ(first->parse(text.constData()), 1);
            EXPECT_EQ(first->calculateOfLengthData(true), 1);
            EXPECT_FALSE(first->isCharacterNoLimit(&toOutput));
            EXPECT_FALSE(first->dumpData(true).isEmpty());
        });
    }
}

// Definitions that are too deep are removed, the others stay, in any order.
TEST(DefinitionNesting, OfALongerChainThoseWithinTheLimitStay)
{
    constexpr int Length = 100000;
    for (const bool lastFirst : {false, true}) {
        runWithSmallStack([lastFirst] {
            DiagnosticCapture capture;
            MainClass converter(nullptr);
            defineChain(&converter, Length, lastFirst);
            converter.termsList_checkConfig(&toOutput);
            constexpr int kept = TermExpression::MaxNesting + 1;
            EXPECT_EQ(converter.termsList.size(), kept);
            EXPECT_EQ(capture.lines().size(), size_t{2} * (Length - kept));
            const QStringList reports = capture.reportedTexts();
            EXPECT_EQ(reports.at(0), TooDeep);
            EXPECT_EQ(reports.at(1), Removed);
            EXPECT_NE(converter.termsList.search(numbered(Length - kept)), nullptr);
            EXPECT_EQ(converter.termsList.search(numbered(Length - kept - 1)), nullptr);
        });
    }
}

// Only a defined field has fields in it, so a tree of fields is not deeper than the definitions.
// Reading and writing it call themselves once for each level.
TEST(DefinitionNesting, TheDeepestTreeOfFieldsIsConvertedWithLittleStack)
{
    constexpr int Levels = TermExpression::MaxNesting + 1;
    for (const bool isBlock : {false, true}) {
        runWithSmallStack([isBlock] {
            const DiagnosticCapture capture;
            Grammar grammar;
            QString message = QStringLiteral("-TITLE DEEP");
            QString ends;
            for (int i = 0; i < Levels; ++i) {
                const bool isLast = i + 1 == Levels;
                grammar.field(numbered(i), isLast ? QStringLiteral("DIGIT") : numbered(i + 1));
                message += QLatin1String(isBlock ? " -BEGIN " : " -") + numbered(i);
                ends.prepend(QLatin1String(" -END ") + numbered(i));
            }
            grammar.rule(QStringLiteral("DEEP"), numbered(0));
            AdexpDoc doc(message + QLatin1String(" 7") + (isBlock ? ends : QString()), &toOutput);
            doc.setRootField(grammar.rules());
            doc.parse();
            const std::string document(doc.toXMLString().view());
            // A field of a block stands in an item of its own.
            const size_t elementsAround = isBlock ? 2 * Levels : Levels + 1;
            const std::string innermost = '\n' + std::string(4 * elementsAround, ' ') + "<T128 ";
            EXPECT_NE(document.find(innermost), std::string::npos);
            EXPECT_TRUE(capture.lines().empty());
        });
    }
}

TEST(DefinitionNesting, BracketsAndReferencesCountTogether)
{
    const DiagnosticCapture capture;
    MainClass converter(nullptr);
    define(&converter, QStringLiteral("A"), QStringLiteral("DIGIT"));
    define(&converter, QStringLiteral("B"), QStringLiteral("DIGIT"));
    define(&converter, QStringLiteral("INNER"), nestedBrackets(70));
    define(&converter, QStringLiteral("OUTER"),
           nestedBrackets(70).replace(QLatin1Char('B'), QStringLiteral("INNER")));
    converter.termsList_checkConfig(&toOutput);
    EXPECT_EQ(capture.reportedTexts(), (QStringList{TooDeep, Removed}));
    EXPECT_NE(converter.termsList.search(QStringLiteral("INNER")), nullptr);
    EXPECT_EQ(converter.termsList.search(QStringLiteral("OUTER")), nullptr);
}

TEST(DefinitionNesting, ALoopLongerThanTheLimitTakesNoMoreStackThanAShortOne)
{
    runWithSmallStack([] {
        constexpr int Length = 20000;
        const DiagnosticCapture capture;
        MainClass converter(nullptr);
        for (int i = 0; i < Length; ++i)
            define(&converter, numbered(i), numbered((i + 1) % Length));
        converter.termsList_checkConfig(&toOutput);
        EXPECT_TRUE(capture.reportedTexts().contains(TooDeep));
        for (const TermStd* term : converter.termsList)
            EXPECT_FALSE(term->valid);
    });
}

// Every one of the definitions refers to all of them but itself.
void defineTangle(MainClass* converter, int count, const QString& also)
{
    for (int i = 0; i < count; ++i) {
        QStringList names;
        for (int k = 0; k < count; ++k) {
            if (k != i)
                names.append(numbered(k));
        }
        define(converter, numbered(i), names.join(QLatin1Char(' ')) + QLatin1Char(' ') + also);
    }
}

bool containsTangled(const DiagnosticCapture& capture)
{
    return capture.reportedTexts().contains(
        QStringLiteral("loops of variables are tangled more than 400 levels deep"));
}

// The check enters a definition of a tangle again through each of its references. So there are as
// many levels as references in all, although there are only few definitions.
TEST(DefinitionNesting, ASmallTangleOfLoopsIsReportedAsLoopsOnly)
{
    const DiagnosticCapture capture;
    MainClass converter(nullptr);
    define(&converter, QStringLiteral("X"), QStringLiteral("DIGIT"));
    defineTangle(&converter, 15, QStringLiteral("X"));
    converter.termsList_checkConfig(&toOutput);
    EXPECT_FALSE(containsTangled(capture));
    EXPECT_FALSE(capture.reportedTexts().contains(TooDeep));
}

TEST(DefinitionNesting, WhatALargeTangleOfLoopsRefersToStaysInUse)
{
    runWithSmallStack([] {
        const DiagnosticCapture capture;
        MainClass converter(nullptr);
        defineTangle(&converter, 40, QStringLiteral("SOUND"));
        define(&converter, QStringLiteral("SOUND"), QStringLiteral("X ! X"));
        define(&converter, QStringLiteral("X"), QStringLiteral("DIGIT"));
        converter.termsList_checkConfig(&toOutput);
        EXPECT_TRUE(containsTangled(capture));
        TermStd* const sound = converter.termsList.search(QStringLiteral("SOUND"));
        ASSERT_NE(sound, nullptr);
        EXPECT_TRUE(sound->valid);
        EXPECT_EQ(sound->parse(QStringLiteral("12").constData()), 2);
    });
}

// Each reference of A leads back to A.
TEST(DefinitionNesting, AVeryLargeTangleOfLoopsDoesNotTakeTheStack)
{
    runWithSmallStack([] {
        constexpr int Length = 20000;
        const DiagnosticCapture capture;
        MainClass converter(nullptr);
        QStringList names;
        for (int i = 0; i < Length; ++i)
            names.append(numbered(i));
        define(&converter, QStringLiteral("A"), names.join(QLatin1Char(' ')));
        for (const QString& name : names)
            define(&converter, name, QStringLiteral("A"));
        converter.termsList_checkConfig(&toOutput);
        EXPECT_TRUE(containsTangled(capture));
        for (const TermStd* term : converter.termsList)
            EXPECT_FALSE(term->valid);
    });
}

// T0 is a DIGIT, T1 names T0 twice, T2 names T1 twice ... Tn has 2^(n + 2) - 3 terms.
void defineDoublings(MainClass* converter, int count)
{
    define(converter, numbered(0), QStringLiteral("DIGIT"));
    for (int i = 1; i < count; ++i)
        define(converter, numbered(i), QStringLiteral("[%1] ! [%1]").arg(numbered(i - 1)));
}

TEST(DefinitionNesting, DoublingsAreRefusedFromTheOneThatComesToTooManyTerms)
{
    const DiagnosticCapture capture;
    MainClass converter(nullptr);
    constexpr int Count = 100; // without the limit, checking the last one would never end
    constexpr int Kept = 15;   // T14 has 65533 terms
    defineDoublings(&converter, Count);
    converter.termsList_checkConfig(&toOutput);
    EXPECT_EQ(converter.termsList.size(), Kept);
    EXPECT_NE(converter.termsList.search(numbered(Kept - 1)), nullptr);
    // The next one is refused for its size, and each one after it because the one before is
    // missing.
    EXPECT_EQ(capture.reportedTexts().mid(0, 5),
              (QStringList{QStringLiteral("references written out come to more than 100000 terms"),
                           Removed, QStringLiteral("variable T15 not found"),
                           QStringLiteral("variable T15 not found"), Removed}));
}

TEST(DefinitionNesting, TheTermsAreThoseOfTheDefinitionWithItsReferencesWrittenOut)
{
    const DiagnosticCapture capture;
    MainClass converter(nullptr);
    define(&converter, QStringLiteral("A"), QStringLiteral("DIGIT"));
    define(&converter, QStringLiteral("B"), QStringLiteral("A"));
    define(&converter, QStringLiteral("C"), QStringLiteral("A ! 'X' ! (A | B)"));
    define(&converter, QStringLiteral("D"), QStringLiteral("D | C"));
    DefinitionNesting nesting(&converter.termsList);
    const auto terms = [&](const char* name) {
        return nesting.extentOf(converter.termsList.search(QString::fromLatin1(name))).terms;
    };
    EXPECT_EQ(terms("A"), 1);
    EXPECT_EQ(terms("B"), 2);  // the reference and the digit
    EXPECT_EQ(terms("C"), 10); // itself, A + DIGIT, 'X', the choice, A + DIGIT, B + A + DIGIT
    EXPECT_EQ(terms("D"), 13); // itself, D, C and what it is
}

} // namespace
