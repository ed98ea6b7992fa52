// The library against the slow second implementation in reference/, over generated expressions and
// texts. Everything is derived from fixed seeds: a failure is the same in every run.

#include "reference/referencematcher.h"
#include "support/diagnosticcapture.h"
#include "support/expressionwriter.h"
#include "support/termset.h"
#include "support/tooutput.h"
#include "support/utf16text.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

struct Definition
{
    QString name;
    QString expression;
};

using Definitions = std::vector<Definition>;

/// One expression with its definitions, in the library and in the reference.
class Comparison
{
public:
    Comparison(const Definitions& definitions, const QString& expression)
        : m_definitions(definitions), m_expression(expression)
    {
        DiagnosticCapture diagnostics;
        for (const Definition& definition : definitions) {
            m_terms.define(definition.name, definition.expression);
            m_grammar.define(definition.name, definition.expression);
        }
        diagnostics.clear();
        m_actual = compileDefinition(QStringLiteral("R"), expression);
        m_actualMessages = diagnostics.reportedTexts();
        m_expected = reference::compile(expression);
        if (m_actual)
            m_dumpBeforeCheck = m_actual->dumpData(true);
        m_isValid = m_actual && m_actual->check_config(m_terms.terms(), &toOutput);
    }

    /// True if both compiled (or refused) the expression alike and agree on what it is.
    bool agreesOnTheExpression()
    {
        if (m_actualMessages != m_expected.messages) {
            return differ("messages", m_expected.messages.join(QStringLiteral(" / ")),
                          m_actualMessages.join(QStringLiteral(" / ")));
        }
        if (m_expected.term.has_value() != (m_actual != nullptr))
            return differ("compiles", m_expected.term.has_value(), m_actual != nullptr);
        if (!m_expected.term)
            return true;
        const QString expectedDump = reference::Grammar().dump(*m_expected.term, true);
        if (m_dumpBeforeCheck != expectedDump)
            return differ("dump before the check", expectedDump, m_dumpBeforeCheck);
        const bool isSound = m_grammar.isSound(*m_expected.term, QStringLiteral("R"));
        if (m_isValid != isSound)
            return differ("valid", isSound, m_isValid);
        return !isSound ||
               (agreesOnTheDump() && agreesOnTheLength(true) && agreesOnTheLength(false));
    }

    /// True if both can match texts with the expression.
    bool isValid() const { return m_isValid; }

    const reference::Term& term() const { return *m_expected.term; }
    const reference::Grammar& grammar() const { return m_grammar; }

    /// True if both take the same number of characters from the text. Needs a valid expression.
    bool agreesOnTheText(const QString& text)
    {
        const int expected = m_grammar.matchedLength(*m_expected.term, text);
        const int actual = m_actual->parse(text.constData());
        m_lastLength = actual;
        return actual == expected ||
               differ(("length over the text " + readable(text)).c_str(), expected, actual);
    }

    int lastLength() const { return m_lastLength; }

    /// What differed, with everything that is needed to repeat it.
    const std::string& difference() const { return m_difference; }

private:
    bool agreesOnTheDump()
    {
        const QString expected = m_grammar.dump(*m_expected.term, true);
        const QString actual = m_actual->dumpData(true);
        return actual == expected || differ("dump", expected, actual);
    }

    bool agreesOnTheLength(bool withRepeat)
    {
        const qint64 expected = m_grammar.longestLength(*m_expected.term, withRepeat);
        // Sums are not capped, so what does not fit in an int has no defined value.
        if (expected > std::numeric_limits<int>::max())
            return true;
        const int actual = m_actual->calculateOfLengthData(withRepeat);
        return actual == expected || differ("longest length", expected, actual);
    }

    bool differ(const char* what, const QString& expected, const QString& actual)
    {
        return differ(what, readable(expected), readable(actual));
    }

    template <typename Value>
    bool differ(const char* what, const Value& expected, const Value& actual)
    {
        std::ostringstream text;
        text << "expression: " << readable(m_expression) << "\n";
        for (const Definition& definition : m_definitions)
            text << "  where " << readable(definition.name) << " = "
                 << readable(definition.expression) << "\n";
        text << what << ": expected " << expected << ", was " << actual << "\n";
        m_difference = text.str();
        return false;
    }

    bool differ(const char* what, qint64 expected, int actual)
    {
        return differ(what, expected, static_cast<qint64>(actual));
    }

    Definitions m_definitions;
    QString m_expression;
    TermSet m_terms;
    reference::Grammar m_grammar;
    std::unique_ptr<TermStd> m_actual;
    reference::Compiled m_expected;
    QStringList m_actualMessages;
    QString m_dumpBeforeCheck;
    bool m_isValid = false;
    int m_lastLength = 0;
    std::string m_difference;
};

/**
 * Writes texts which an expression matches more often than random ones would: walks the expression
 * and writes what each of its terms asks for.
 */
class TextWriter
{
public:
    TextWriter(Chance* chance, const std::vector<Definition>& definitions)
        : m_chance(chance), m_definitions(definitions)
    {
    }

    QString text(const reference::Term& term)
    {
        QString result;
        write(term, &result);
        return result.left(24);
    }

    /// The text with one character put in, taken out or changed.
    QString damaged(const QString& text)
    {
        static const QString characters = QStringLiteral("AB1 \n-a*");
        const int at = m_chance->below(static_cast<int>(text.size()) + 1);
        const int removed = m_chance->below(2);
        const QString added = m_chance->oneIn(3) ? QString() : QString(m_chance->pick(characters));
        return text.left(at) + added + text.mid(at + removed);
    }

private:
    void write(const reference::Term& term, QString* text)
    {
        if (text->size() > 24)
            return;
        if (term.bracket == reference::Bracket::Optional && m_chance->oneIn(3))
            return;
        int count = 1;
        if (term.bracket == reference::Bracket::Repeated) {
            const int room = std::max(1, std::min(term.most - term.least, 3) + 1);
            count = term.least + m_chance->below(room);
        }
        for (int i = 0; i < count; ++i)
            writeOnce(term, text);
    }

    void writeOnce(const reference::Term& term, QString* text)
    {
        switch (term.kind) {
        case reference::Kind::Keyword:
            *text += keywordText(term.text);
            return;
        case reference::Kind::Literal:
            *text += term.text;
            return;
        case reference::Kind::Name:
            writeDefinition(term.text, text);
            return;
        case reference::Kind::Group:
            break;
        }
        if (term.operators.startsWith(QChar(u'|'))) {
            write(m_chance->pick(term.parts), text);
            return;
        }
        for (const reference::Term& part : term.parts)
            write(part, text);
    }

    void writeDefinition(const QString& name, QString* text)
    {
        for (const Definition& definition : m_definitions) {
            if (definition.name == name) {
                write(*reference::compile(definition.expression).term, text);
                return;
            }
        }
    }

    QString keywordText(const QString& keyword)
    {
        static const QString letters = QStringLiteral("ABA\u0416");
        static const QString digits = QStringLiteral("121\u0663");
        static const QString specials = QStringLiteral("/.' ");
        if (keyword == QLatin1String("SEP"))
            return m_chance->oneIn(4) ? QStringLiteral(" \n") : QStringLiteral(" ");
        if (keyword == QLatin1String("ALPHA"))
            return m_chance->pick(letters);
        if (keyword == QLatin1String("DIGIT"))
            return m_chance->pick(digits);
        if (keyword == QLatin1String("ALPHANUM"))
            return m_chance->pick(letters + digits);
        if (keyword == QLatin1String("LIM_CHAR"))
            return m_chance->pick(letters + digits + specials);
        if (keyword == QLatin1String("CHARACTER"))
            return m_chance->pick(letters + digits + specials + QChar(u'-'));
        return QString(); // NIL
    }

    Chance* m_chance;
    const std::vector<Definition>& m_definitions;
};

} // namespace

// Every sequence and choice of up to three decorated atoms, over every text of up to four
// characters.
TEST(MatcherAgainstReference, all_small_expressions_over_all_short_texts)
{
    const QStringList atoms{QStringLiteral("ALPHA"), QStringLiteral("DIGIT"), QStringLiteral("SEP"),
                            QStringLiteral("'A'"), QStringLiteral("X")};
    QStringList parts;
    for (const QString& atom : atoms) {
        parts << atom << QStringLiteral("[%1]").arg(atom) << QStringLiteral("{%1}").arg(atom)
              << QStringLiteral("2{%1}2").arg(atom);
    }
    QStringList expressions = parts;
    for (const QString& oper : {QStringLiteral(" "), QStringLiteral("!"), QStringLiteral("|")}) {
        for (const QString& first : parts) {
            for (const QString& second : parts) {
                const QString two = first + oper + second;
                expressions << two;
                for (const QString& third : parts)
                    expressions << two + oper + third;
            }
        }
    }
    const Definitions definitions{{QStringLiteral("X"), QStringLiteral("'1' | ('1' ! SEP ! 'A')")}};
    const std::vector<QString> shortTexts = allTexts(QStringLiteral("A1 "), 3);
    const std::vector<QString> texts = allTexts(QStringLiteral("A1 "), 4);

    int pairs = 0;
    int matches = 0;
    Chance chance(1);
    for (const QString& expression : expressions) {
        Comparison comparison(definitions, expression);
        ASSERT_TRUE(comparison.agreesOnTheExpression()) << comparison.difference();
        ASSERT_TRUE(comparison.isValid()) << readable(expression);
        const bool isShort = expression.size() < 14;
        for (const QString& text : isShort || chance.oneIn(8) ? texts : shortTexts) {
            ASSERT_TRUE(comparison.agreesOnTheText(text)) << comparison.difference();
            ++pairs;
            matches += comparison.lastLength() > 0 ? 1 : 0;
        }
    }
    EXPECT_GT(pairs, 800000);
    EXPECT_GT(matches, pairs / 10); // otherwise the comparison would say little
}

TEST(MatcherAgainstReference, random_nested_expressions_with_definitions)
{
    Chance chance(20240611);
    ExpressionWriter writer(&chance);
    int pairs = 0;
    int matches = 0;
    int valid = 0;
    const int rounds = 9000;
    for (int round = 0; round < rounds; ++round) {
        Definitions definitions;
        // Definitions refer to each other at random; those which form loops must be refused alike.
        for (const QString& name :
             {QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("Z")}) {
            const bool isSimple = name != QLatin1String("X") || chance.oneIn(2);
            definitions.push_back(
                {name, isSimple ? QStringLiteral("%1{%2}3")
                                      .arg(chance.below(3))
                                      .arg(chance.oneIn(2) ? QStringLiteral("ALPHA | DIGIT")
                                                           : QStringLiteral("'1' ['/'] 'A'"))
                                : writer.expression(1)});
        }
        Comparison comparison(definitions, writer.expression(3));
        ASSERT_TRUE(comparison.agreesOnTheExpression()) << comparison.difference();
        if (!comparison.isValid())
            continue;
        ++valid;
        TextWriter texts(&chance, definitions);
        for (int i = 0; i < 14; ++i) {
            const QString good = texts.text(comparison.term());
            for (const QString& text :
                 {good, texts.damaged(good), texts.damaged(texts.damaged(good))}) {
                ASSERT_TRUE(comparison.agreesOnTheText(text)) << comparison.difference();
                ++pairs;
                matches += comparison.lastLength() > 0 ? 1 : 0;
            }
        }
    }
    EXPECT_GT(valid, rounds / 2);
    EXPECT_GT(pairs, 200000);
    EXPECT_GT(matches, pairs / 3);
}

TEST(MatcherAgainstReference, definitions_which_refer_to_each_other_at_random)
{
    Chance chance(7);
    int loops = 0;
    int sound = 0;
    const QStringList names{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C"),
                            QStringLiteral("D"), QStringLiteral("R")};
    const QStringList forms{QStringLiteral("%1"),      QStringLiteral("[%1] DIGIT"),
                            QStringLiteral("DIGIT"),   QStringLiteral("DIGIT | %1"),
                            QStringLiteral("2{%1}3"),  QStringLiteral("(SEP ! %1)"),
                            QStringLiteral("%1 ! %2"), QStringLiteral("'X'")};
    const auto definition = [&chance, &names, &forms] {
        QString text = chance.pick(forms);
        text.replace(QStringLiteral("%1"), chance.pick(names));
        return text.replace(QStringLiteral("%2"), chance.pick(names));
    };
    for (int round = 0; round < 20000; ++round) {
        Definitions definitions;
        for (int i = 0; i < 4; ++i)
            definitions.push_back({names.at(i), definition()});
        Comparison comparison(definitions, definition());
        ASSERT_TRUE(comparison.agreesOnTheExpression()) << comparison.difference();
        ++(comparison.isValid() ? sound : loops);
    }
    EXPECT_GT(sound, 2000);
    EXPECT_GT(loops, 2000);
}

// Whatever can be written with these pieces, most of it wrong: the same reports, the same dump.
TEST(CompilerAgainstReference, all_short_strings_of_tokens)
{
    const QStringList tokens{QStringLiteral("A"), QStringLiteral(" "),  QStringLiteral("|"),
                             QStringLiteral("!"), QStringLiteral("+"),  QStringLiteral("'"),
                             QStringLiteral("("), QStringLiteral(")"),  QStringLiteral("["),
                             QStringLiteral("]"), QStringLiteral("{"),  QStringLiteral("}"),
                             QStringLiteral("2"), QStringLiteral("SEP")};
    std::vector<QString> level{QString()};
    for (int length = 1; length <= 4; ++length) {
        std::vector<QString> longer;
        for (const QString& text : level) {
            for (const QString& token : tokens)
                longer.push_back(text + token);
        }
        for (const QString& text : longer) {
            Comparison comparison({}, text);
            ASSERT_TRUE(comparison.agreesOnTheExpression()) << comparison.difference();
        }
        level = longer;
    }
}

TEST(CompilerAgainstReference, random_strings_of_tokens)
{
    const QStringList tokens{
        QStringLiteral("A"),           QStringLiteral("digit"),  QStringLiteral("SEP"),
        QStringLiteral("sep"),         QStringLiteral("'x'"),    QStringLiteral("' '"),
        QStringLiteral("'"),           QStringLiteral("("),      QStringLiteral("("),
        QStringLiteral(")"),           QStringLiteral(")"),      QStringLiteral("["),
        QStringLiteral("["),           QStringLiteral("]"),      QStringLiteral("]"),
        QStringLiteral("{"),           QStringLiteral("{"),      QStringLiteral("}"),
        QStringLiteral("}"),           QStringLiteral("}3"),     QStringLiteral("2{"),
        QStringLiteral("-3"),          QStringLiteral("|"),      QStringLiteral("|"),
        QStringLiteral("!"),           QStringLiteral("+"),      QStringLiteral(" "),
        QStringLiteral(" "),           QStringLiteral("\n "),    QStringLiteral("5"),
        QStringLiteral("99999999999"), QStringLiteral("\u00e9"),
    };
    Chance chance(42);
    int compiled = 0;
    for (int round = 0; round < 60000; ++round) {
        QString text;
        for (int length = 1 + chance.below(9); length > 0; --length)
            text += chance.pick(tokens);
        Comparison comparison({}, text);
        ASSERT_TRUE(comparison.agreesOnTheExpression()) << comparison.difference();
        DiagnosticCapture ignored;
        compiled += compileDefinition(QStringLiteral("R"), text) ? 1 : 0;
    }
    EXPECT_GT(compiled, 5000);
}
