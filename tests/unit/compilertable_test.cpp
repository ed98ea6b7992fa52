// What the compiler makes of an expression text: one row per case.

#include "support/diagnosticcapture.h"
#include "support/termset.h"
#include "support/tooutput.h"
#include "support/utf16text.h"

#include "grammar/termexpression.h"
#include "message/msgrule.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <memory>

namespace {

/*
 * The dump column is a short form of the real dump, because the real one repeats every name:
 *
 *     <E> ... </E>   stands for   <TermExpression> ... </TermExpression>
 *     $A$            stands for   A<simpleTerm>A</simpleTerm>not found</simpleTerm>
 *
 * A null pointer stands for a text that must not compile. The last column holds the texts of all
 * reports, in order.
 */
class Row
{
public:
    constexpr Row(Utf16Text expression, const char16_t* dump,
                  std::initializer_list<Utf16Text> messages = {})
        : m_expression(expression), m_dump(dump)
    {
        for (const Utf16Text& message : messages)
            m_messages[m_messageCount++] = message;
    }

    QString expression() const { return m_expression; }
    bool compiles() const { return m_dump != nullptr; }
    QString dump() const { return QString::fromUtf16(m_dump); }

    QStringList messages() const
    {
        QStringList result;
        for (int i = 0; i < m_messageCount; ++i)
            result.append(m_messages[i]);
        return result;
    }

private:
    Utf16Text m_expression;
    const char16_t* m_dump;
    Utf16Text m_messages[2];
    int m_messageCount = 0;
};

constexpr std::nullptr_t Refused = nullptr;

QString expanded(QString dump)
{
    dump.replace(QStringLiteral("<E>"), QStringLiteral("<TermExpression>"));
    dump.replace(QStringLiteral("</E>"), QStringLiteral("</TermExpression>"));
    const QStringList pieces = dump.split(QChar(u'$'));
    QString result;
    for (int i = 0; i < pieces.size(); ++i) {
        const QString& piece = pieces.at(i);
        const bool isReference = i % 2 == 1;
        result += piece;
        if (isReference) {
            result += QStringLiteral("<simpleTerm>") + piece +
                      QStringLiteral("</simpleTerm>not found</simpleTerm>");
        }
    }
    return result;
}

void checkRow(const Row& row)
{
    SCOPED_TRACE("expression: " + readable(row.expression()));
    DiagnosticCapture diagnostics;
    const std::unique_ptr<TermStd> term = compileDefinition(QStringLiteral("R"), row.expression());
    EXPECT_EQ(diagnostics.reportedTexts().join(QChar(u'\n')).toStdString(),
              row.messages().join(QChar(u'\n')).toStdString());
    EXPECT_TRUE(diagnostics.criticalLines().isEmpty());
    ASSERT_EQ(term != nullptr, row.compiles());
    if (term) {
        EXPECT_EQ(term->dumpData(true).toStdString(), expanded(row.dump()).toStdString());
    }
}

template <std::size_t Count>
void checkTable(const Row (&rows)[Count])
{
    for (const Row& row : rows)
        checkRow(row);
}

} // namespace

TEST(CompilerTable, short_form_of_the_dump_column_is_expanded)
{
    EXPECT_EQ(expanded(QStringLiteral("<E>$A$ ! 2{DIGIT}4</E>")),
              QStringLiteral("<TermExpression>A<simpleTerm>A</simpleTerm>not found</simpleTerm>"
                             " ! 2{DIGIT}4</TermExpression>"));
}

TEST(CompilerTable, words_become_standard_terms_or_references)
{
    checkTable({
        {u"CHARACTER", u"CHARACTER"},
        {u"ALPHANUM", u"ALPHANUM"},
        {u"ALPHA", u"ALPHA"},
        {u"DIGIT", u"DIGIT"},
        {u"SEP", u"SEP"},
        {u"NIL", u"NIL"},
        {u"LIM_CHAR", u"LIM_CHAR"},
        {u"digit", u"DIGIT"},
        {u"Lim_Char", u"LIM_CHAR"},
        {u"A", u"$A$"},
        {u"arcid", u"$ARCID$"},
        {u"DIGITS", u"$DIGITS$"},
        {u"LIM-CHAR", u"$LIM-CHAR$"},
        {u"UNKNOWN", u"$UNKNOWN$"},
        {u"AUTOSEP", u"$AUTOSEP$"},
        {u"5", u"$5$"},
        {u"-", u"$-$"},
        {u"A,B", u"$A,B$"},
        {u"A&B*C", u"$A&B*C$"},
        {u"\"A\"", u"$\"A\"$"},
        {u"A.B:C/D-E_9", u"$A.B:C/D-E_9$"},
        {u"]", u"$]$"},
        {u"}", u"$}$"},
        {u"a}b]c)", u"$A}B]C)$"},
        {u"\u00e9", u"$\u00c9$"},
        {u"stra\u00dfe", u"$STRASSE$"},
    });
}

TEST(CompilerTable, white_space_is_simplified)
{
    checkTable({
        {u"", Refused, {u"term list is empty"}},
        {u" ", Refused, {u"term list is empty"}},
        {u"\t\r\n  ", Refused, {u"term list is empty"}},
        {u"  A  ", u"$A$"},
        {u"\u2028A\u3000", u"$A$"},
        {u"A\tB", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A\r\n    B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A\u00a0B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"\n2\n{\nDIGIT\n}\n4\n", u"2{DIGIT}4"},
    });
}

TEST(CompilerTable, literals)
{
    checkTable({
        {u"'IFPL'", u"'IFPL'"},
        {u"'abc'", u"'ABC'"},
        {u"'DIGIT'", u"'DIGIT'"},
        {u"'A B'", u"'A B'"},
        {u"'A \t\n B'", u"'A B'"},
        {u"' A '", u"'A'"},
        {u"' '", u"''"},
        {u"'|'", u"'|'"},
        {u"'!+'", u"'!+'"},
        {u"'([{'", u"'([{'"},
        {u"'2{A}3'", u"'2{A}3'"},
        {u"'stra\u00dfe'", u"'STRASSE'"},
        {u"'\U00010428'", u"'\U00010400'"},
        {u"'A''B'", u"<E>'A' ! 'B'</E>"},
        {u"'A' 'B'", u"<E>'A' ! 'B'</E>"},
        {u"'A'+'B'", u"<E>'A' ! 'B'</E>"},
        {u"'A'!'B'", u"<E>'A' ! 'B'</E>"},
        {u"'A'|'B'", u"<E>'A' | 'B'</E>"},
        {u"'X' A", u"<E>'X' ! SEP ! $A$</E>"},
        {u"'X'A", u"<E>'X' ! SEP ! $A$</E>"},
        {u"'X'+A", u"<E>'X' ! SEP ! $A$</E>"},
        {u"'X' ! A", u"<E>'X' ! $A$</E>"},
        {u"A 'X'", u"<E>$A$ ! 'X'</E>"},
        {u"A'X'", u"<E>$A$ ! 'X'</E>"},
        {u"A+'X'", u"<E>$A$ ! 'X'</E>"},
        {u"A ! 'X'", u"<E>$A$ ! 'X'</E>"},
        {u"A'X'B", u"<E>$A$ ! 'X' ! SEP ! $B$</E>"},
        {u"2 'X'", u"<E>$2$ ! 'X'</E>"},
        {u"'X'5", u"<E>'X' ! SEP ! $5$</E>"},
        {u"'X' SEP A", u"<E>'X' ! SEP ! $A$</E>"},
        {u"SEP 'X'", u"<E>SEP ! 'X'</E>"},
        {u"''", Refused, {u"term in '' empty"}},
        {u"A ''", Refused, {u"term in '' empty"}},
        {u"'", Refused, {u"no clossing character '"}},
        {u"'A", Refused, {u"no clossing character ' A"}},
        {u"'abc d", Refused, {u"no clossing character ' abc d"}},
        {u"A 'B", Refused, {u"no clossing character ' B"}},
        {u"A'", Refused, {u"no clossing character '"}},
        {u"'A'B'", Refused, {u"no clossing character '"}},
    });
}

TEST(CompilerTable, round_brackets)
{
    checkTable({
        {u"(A)", u"$A$"},
        {u"((A))", u"$A$"},
        {u"(((A)))", u"$A$"},
        {u"( A )", u"$A$"},
        {u"(DIGIT)", u"DIGIT"},
        {u"(digit)", u"DIGIT"},
        {u"( DIGIT )", u"DIGIT"},
        {u"('x')", u"'X'"},
        {u"(A B)", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"((A B))", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"(A) (B)", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"(A)(B)", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A(B)", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"(A)B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"2(A)", u"<E>$2$ ! SEP ! $A$</E>"},
        {u"(A)2", u"<E>$A$ ! SEP ! $2$</E>"},
        {u"A('X')", u"<E>$A$ ! SEP ! 'X'</E>"},
        {u"A (B C)", u"<E>$A$ ! SEP ! (<E>$B$ ! SEP ! $C$</E>)</E>"},
        {u"(A B) C", u"<E>(<E>$A$ ! SEP ! $B$</E>) ! SEP ! $C$</E>"},
        {u"(A|B)!C", u"<E>(<E>$A$ | $B$</E>) ! $C$</E>"},
        {u"(A|B) (C|D)", u"<E>(<E>$A$ | $B$</E>) ! SEP ! (<E>$C$ | $D$</E>)</E>"},
        {u"A ((B | C) D)", u"<E>$A$ ! SEP ! (<E>(<E>$B$ | $C$</E>) ! SEP ! $D$</E>)</E>"},
        {u"([A])", u"<E>$[A]$</E>"},
        {u"(([A]))", u"<E>$[A]$</E>"},
        {u"([A B])", u"<E>(<E>$A$ ! SEP ! $B$</E>)</E>"},
        {u"({A})", u"<E>$0{A}536870911$</E>"},
        {u"(2{DIGIT}4)", u"<E>2{DIGIT}4</E>"},
        {u"(2{DIGIT}4) A", u"<E>(<E>2{DIGIT}4</E>) ! SEP ! $A$</E>"},
        {u"(A))", u"<E>$A$ ! SEP ! $)$</E>"},
        {u")", u"$)$"},
        {u"()", Refused, {u"term in () empty"}},
        {u"A ()", Refused, {u"term in () empty"}},
        {u"(())", Refused, {u"term in () empty"}},
        {u"( )", Refused, {u"term list is empty"}},
        {u"(", Refused, {u"no clossing character )"}},
        {u"(A", Refused, {u"no clossing character ) A"}},
        {u"(A B", Refused, {u"no clossing character ) A B"}},
        {u"( A", Refused, {u"no clossing character )  A"}},
        {u"(a b", Refused, {u"no clossing character ) a b"}},
        {u"A (B", Refused, {u"no clossing character ) B"}},
        {u"((A)", Refused, {u"no clossing character ) (A)"}},
        {u"(()", Refused, {u"no clossing character ) ()"}},
        {u")A(", Refused, {u"no clossing character )"}},
        {u"(A [B)", Refused, {u"no clossing character ] B"}},
        {u"(a [b)", Refused, {u"no clossing character ] B"}},
        {u"(A {B)", Refused, {u"no clossing character } B"}},
        {u"(A ')' B)", Refused, {u"no clossing character '"}},
    });
}

TEST(CompilerTable, square_brackets)
{
    checkTable({
        {u"[A]", u"$[A]$"},
        {u"[(A)]", u"$[A]$"},
        {u"[DIGIT]", u"[DIGIT]"},
        {u"[digit]", u"[DIGIT]"},
        {u"['X']", u"['X']"},
        {u"['IFPL']", u"['IFPL']"},
        {u"[A B]", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"[A|B]", u"<E>$A$ | $B$</E>"},
        {u"[[A]]", u"<E>$[A]$</E>"},
        {u"[{A}]", u"<E>$0{A}536870911$</E>"},
        {u"[2{A}4]", u"<E>$2{A}4$</E>"},
        {u"A [B] C", u"<E>$A$ ! SEP ! $[B]$ ! SEP ! $C$</E>"},
        {u"[A] [B]", u"<E>$[A]$ ! SEP ! $[B]$</E>"},
        {u"[A]![B]", u"<E>$[A]$ ! $[B]$</E>"},
        {u"[A]|[B]", u"<E>$[A]$ | $[B]$</E>"},
        {u"2[A]3", u"<E>$2$ ! SEP ! $[A]$ ! SEP ! $3$</E>"},
        {u"A [B C] D", u"<E>$A$ ! SEP ! (<E>$B$ ! SEP ! $C$</E>) ! SEP ! $D$</E>"},
        {u"A ['X']", u"<E>$A$ ! SEP ! ['X']</E>"},
        {u"A['/' DIGIT]", u"<E>$A$ ! SEP ! (<E>'/' ! SEP ! DIGIT</E>)</E>"},
        {u"ALPHA {ALPHANUM}6 ['/' DIGIT]",
         u"<E>ALPHA ! SEP ! 0{ALPHANUM}6 ! SEP ! (<E>'/' ! SEP ! DIGIT</E>)</E>"},
        {u"[]", Refused, {u"term in [] empty"}},
        {u"[ ]", Refused, {u"term list is empty"}},
        {u"[", Refused, {u"no clossing character ]"}},
        {u"[A", Refused, {u"no clossing character ] A"}},
        {u"A [[B]", Refused, {u"no clossing character ] [B]"}},
        {u"[A(B]C)", Refused, {u"no clossing character ) B"}},
    });
}

TEST(CompilerTable, braces_with_counts)
{
    checkTable({
        {u"{DIGIT}", u"0{DIGIT}536870911"},
        {u"{DIGIT}4", u"0{DIGIT}4"},
        {u"2{DIGIT}", u"2{DIGIT}536870911"},
        {u"2{DIGIT}4", u"2{DIGIT}4"},
        {u"2 {DIGIT} 4", u"2{DIGIT}4"},
        {u"2 { digit } 4", u"2{DIGIT}4"},
        {u"{A}", u"$0{A}536870911$"},
        {u"1{A}1", u"$1{A}1$"},
        {u"0{A}0", u"$0{A}0$"},
        {u"{A}0", u"$0{A}0$"},
        {u"007{A}09", u"$7{A}9$"},
        {u"3{'ab'}3", u"3{'AB'}3"},
        {u"{A B}2", u"0{<E>$A$ ! SEP ! $B$</E>}2"},
        {u"2{A|B}", u"2{<E>$A$ | $B$</E>}536870911"},
        {u"{(A)}2", u"$0{A}2$"},
        {u"{(A B)}2", u"0{<E>$A$ ! SEP ! $B$</E>}2"},
        {u"{[A]}2", u"0{<E>$[A]$</E>}2"},
        {u"{([A])}2", u"0{<E>$[A]$</E>}2"},
        {u"{{A}2}3", u"0{<E>$0{A}2$</E>}3"},
        {u"{2{A}3}", u"0{<E>$2{A}3$</E>}536870911"},
        {u"{A}2{B}3{C}4", u"<E>$0{A}2$ ! SEP ! $0{B}3$ ! SEP ! $0{C}4$</E>"},
        {u"A [2{B C}3]", u"<E>$A$ ! SEP ! (<E>2{<E>$B$ ! SEP ! $C$</E>}3</E>)</E>"},
        {u"{}", Refused, {u"term in {} empty"}},
        {u"2{}3", Refused, {u"term in {} empty"}},
        {u"{ }", Refused, {u"term list is empty"}},
        {u"{", Refused, {u"no clossing character }"}},
        {u"{A", Refused, {u"no clossing character } A"}},
        {u"2{A", Refused, {u"no clossing character } A"}},
        {u"{{A}", Refused, {u"no clossing character } {A}"}},
        {u"{A}}", u"<E>$0{A}536870911$ ! SEP ! $}$</E>"},
    });
}

TEST(CompilerTable, number_before_the_brace_is_a_count_only_if_it_is_a_whole_word)
{
    checkTable({
        {u"A{B}", u"<E>$A$ ! SEP ! $0{B}536870911$</E>"},
        {u"A {B}", u"<E>$A$ ! SEP ! $0{B}536870911$</E>"},
        {u"A2{B}", u"<E>$A2$ ! SEP ! $0{B}536870911$</E>"},
        {u"A 2{B}", u"<E>$A$ ! SEP ! $2{B}536870911$</E>"},
        {u"2 3{A}", u"<E>$2$ ! SEP ! $3{A}536870911$</E>"},
        {u"2!{A}", u"<E>$2$ ! $0{A}536870911$</E>"},
        {u"2|{A}3", u"<E>$2$ | $0{A}3$</E>"},
        {u"1.5{A}", u"<E>$1.5$ ! SEP ! $0{A}536870911$</E>"},
        {u"0x2{A}", u"<E>$0X2$ ! SEP ! $0{A}536870911$</E>"},
        {u"-1{A}", u"$0{A}536870911$"},
        {u"-3{A}", u"$-3{A}536870911$"},
        {u"-3{A}2", u"$-3{A}2$"},
        {u"-2147483648{A}1", u"$-2147483648{A}1$"},
        {u"2147483648{A}",
         u"<E>$2147483648$ ! SEP ! $0{A}536870911$</E>",
         {u"repeat count 2147483648 is larger than 2147483647 and is taken for a name"}},
        {u"002147483647{A}1",
         u"$1{A}1$",
         {u"minimum repeat count = 2147483647 more than maximum repeat count = 1"}},
        {u"-2147483649{A}", u"<E>$-2147483649$ ! SEP ! $0{A}536870911$</E>"},
        {u"SEP{A}", u"<E>SEP ! $0{A}536870911$</E>"},
    });
}

TEST(CompilerTable, number_after_the_brace_is_a_count_only_if_nothing_is_glued_to_it)
{
    checkTable({
        {u"{DIGIT}5X", u"<E>0{DIGIT}536870911 ! SEP ! $5X$</E>"},
        {u"{DIGIT} 5X", u"<E>0{DIGIT}536870911 ! SEP ! $5X$</E>"},
        {u"{DIGIT}5)", u"<E>0{DIGIT}536870911 ! SEP ! $5)$</E>"},
        {u"{DIGIT}5-", u"<E>0{DIGIT}536870911 ! SEP ! $5-$</E>"},
        {u"{A}-3", u"<E>$0{A}536870911$ ! SEP ! $-3$</E>"},
        {u"{A}\u0663", u"<E>$0{A}536870911$ ! SEP ! $\u0663$</E>"},
        {u"{A}X2{B}", u"<E>$0{A}536870911$ ! SEP ! $X2$ ! SEP ! $0{B}536870911$</E>"},
        {u"{DIGIT}5 X", u"<E>0{DIGIT}5 ! SEP ! $X$</E>"},
        {u"{DIGIT}5!X", u"<E>0{DIGIT}5 ! $X$</E>"},
        {u"{DIGIT}5|X", u"<E>0{DIGIT}5 | $X$</E>"},
        {u"{DIGIT}5+X", u"<E>0{DIGIT}5 ! SEP ! $X$</E>"},
        {u"{DIGIT}5'X'", u"<E>0{DIGIT}5 ! 'X'</E>"},
        {u"{DIGIT}5(X)", u"<E>0{DIGIT}5 ! SEP ! $X$</E>"},
        {u"{DIGIT}5[X]", u"<E>0{DIGIT}5 ! SEP ! $[X]$</E>"},
        {u"{DIGIT}5{X}", u"<E>0{DIGIT}5 ! SEP ! $0{X}536870911$</E>"},
        {u"{A} 2 {B}", u"<E>$0{A}2$ ! SEP ! $0{B}536870911$</E>"},
        {u"{A}2 3", u"<E>$0{A}2$ ! SEP ! $3$</E>"},
        {u"{A}2 3{B}4", u"<E>$0{A}2$ ! SEP ! $3{B}4$</E>"},
        {u"({A}5)", u"<E>$0{A}5$</E>"},
        {u"{A}2147483647", u"$0{A}2147483647$"},
        {u"{A}2147483648",
         u"$0{A}0$",
         {u"repeat count 2147483648 is larger than 2147483647 and counts as 0"}},
        {u"{A}4294967297",
         u"$0{A}0$",
         {u"repeat count 4294967297 is larger than 2147483647 and counts as 0"}},
        {u"{A}99999999999999999999 B",
         u"<E>$0{A}0$ ! SEP ! $B$</E>",
         {u"repeat count 99999999999999999999 is larger than 2147483647 and counts as 0"}},
        {u"{A}99999999999999999999X", u"<E>$0{A}536870911$ ! SEP ! $99999999999999999999X$</E>"},
    });
}

TEST(CompilerTable, corrected_repeat_counts)
{
    checkTable({
        {u"5{DIGIT}3",
         u"3{DIGIT}3",
         {u"minimum repeat count = 5 more than maximum repeat count = 3"}},
        {u"5{A B}3",
         u"3{<E>$A$ ! SEP ! $B$</E>}3",
         {u"minimum repeat count = 5 more than maximum repeat count = 3"}},
        {u"1{A}0", u"$0{A}0$", {u"minimum repeat count = 1 more than maximum repeat count = 0"}},
        {u"2{A}99999999999",
         u"$0{A}0$",
         {u"repeat count 99999999999 is larger than 2147483647 and counts as 0",
          u"minimum repeat count = 2 more than maximum repeat count = 0"}},
        {u"2147483647{A}",
         u"$536870911{A}536870911$",
         {u"minimum repeat count = 2147483647 more than maximum repeat count = 536870911"}},
        {u"{SEP}", u"0{SEP}536870911"},
        {u"{SEP}1", u"0{SEP}1"},
        {u"1{SEP}1", u"1{SEP}1"},
        {u"2{SEP}", u"1{SEP}536870911", {u"in adexp the number of spaces does not matter"}},
        {u"{SEP}3", u"0{SEP}1", {u"in adexp the number of spaces does not matter"}},
        {u"{sep}2", u"0{SEP}1", {u"in adexp the number of spaces does not matter"}},
        {u"2{SEP}5", u"1{SEP}1", {u"in adexp the number of spaces does not matter"}},
        {u"5{SEP}3", u"1{SEP}1", {u"in adexp the number of spaces does not matter"}},
        {u"2{SEP}0",
         u"0{SEP}0",
         {u"in adexp the number of spaces does not matter",
          u"minimum repeat count = 1 more than maximum repeat count = 0"}},
        {u"(3{DIGIT}2 | 4{DIGIT}3)",
         u"<E>2{DIGIT}2 | 3{DIGIT}3</E>",
         {u"minimum repeat count = 3 more than maximum repeat count = 2",
          u"minimum repeat count = 4 more than maximum repeat count = 3"}},
        {u"5{DIGIT}3 |",
         Refused,
         {u"minimum repeat count = 5 more than maximum repeat count = 3",
          u"missing the last term after operator |"}},
    });
}

TEST(CompilerTable, operators)
{
    checkTable({
        {u"A B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A+B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A + B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A!B", u"<E>$A$ ! $B$</E>"},
        {u"A ! B", u"<E>$A$ ! $B$</E>"},
        {u"A|B", u"<E>$A$ | $B$</E>"},
        {u"A | B | C", u"<E>$A$ | $B$ | $C$</E>"},
        {u"A |B| C", u"<E>$A$ | $B$ | $C$</E>"},
        {u"A!B!C", u"<E>$A$ ! $B$ ! $C$</E>"},
        {u"A B C", u"<E>$A$ ! SEP ! $B$ ! SEP ! $C$</E>"},
        {u"A!B C", u"<E>$A$ ! $B$ ! SEP ! $C$</E>"},
        {u"A+B!C", u"<E>$A$ ! SEP ! $B$ ! $C$</E>"},
        {u"A | (B C)", u"<E>$A$ | (<E>$B$ ! SEP ! $C$</E>)</E>"},
        {u"(A B) | C", u"<E>(<E>$A$ ! SEP ! $B$</E>) | $C$</E>"},
        {u"NIL | A", u"<E>NIL | $A$</E>"},
        {u"ALPHA DIGIT", u"<E>ALPHA ! SEP ! DIGIT</E>"},
        {u"ALPHA{DIGIT}", u"<E>ALPHA ! SEP ! 0{DIGIT}536870911</E>"},
        {u"2{ALPHA}3 '/' DIGIT", u"<E>2{ALPHA}3 ! '/' ! SEP ! DIGIT</E>"},
        {u"'F' ! 3{DIGIT}3", u"<E>'F' ! 3{DIGIT}3</E>"},
    });
}

TEST(CompilerTable, no_separator_is_inserted_beside_a_written_one)
{
    checkTable({
        {u"A SEP B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A sep B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A+SEP+B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A!SEP!B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A ! B SEP", u"<E>$A$ ! $B$ ! SEP</E>"},
        {u"SEP A", u"<E>SEP ! $A$</E>"},
        {u"SEP SEP", u"<E>SEP ! SEP</E>"},
        {u"A SEP SEP B", u"<E>$A$ ! SEP ! SEP ! $B$</E>"},
        {u"A | SEP", u"<E>$A$ | SEP</E>"},
        {u"A (SEP) B", u"<E>$A$ ! SEP ! $B$</E>"},
        {u"A [SEP] B", u"<E>$A$ ! [SEP] ! $B$</E>"},
        {u"A {SEP} B", u"<E>$A$ ! 0{SEP}536870911 ! $B$</E>"},
        // The text between the brackets is compared as it was written.
        {u"A (sep) B", u"<E>$A$ ! SEP ! SEP ! $B$</E>"},
        {u"A [sep] B", u"<E>$A$ ! SEP ! [SEP] ! $B$</E>"},
        {u"A {Sep}1 B", u"<E>$A$ ! SEP ! 0{SEP}1 ! $B$</E>"},
        {u"A ((SEP)) B", u"<E>$A$ ! SEP ! SEP ! $B$</E>"},
        {u"A ( SEP ) B", u"<E>$A$ ! SEP ! SEP ! $B$</E>"},
        // A separator inside a group is not seen from outside.
        {u"A (SEP B)", u"<E>$A$ ! SEP ! (<E>SEP ! $B$</E>)</E>"},
        {u"(A SEP) B", u"<E>(<E>$A$ ! SEP</E>) ! SEP ! $B$</E>"},
        {u"([SEP]) A", u"<E>(<E>[SEP]</E>) ! SEP ! $A$</E>"},
    });
}

TEST(CompilerTable, misplaced_operators)
{
    checkTable({
        {u"A |", Refused, {u"missing the last term after operator |"}},
        {u"A|", Refused, {u"missing the last term after operator |"}},
        {u"A !", Refused, {u"missing the last term after operator !"}},
        {u"A +", Refused, {u"missing the last term after operator +"}},
        {u"'X' |", Refused, {u"missing the last term after operator |"}},
        {u"{A}2 |", Refused, {u"missing the last term after operator |"}},
        {u"(A|)", Refused, {u"missing the last term after operator |"}},
        {u"A | B |", Refused, {u"missing the last term after operator |"}},
        {u"A B |", Refused, {u"missing the last term after operator |"}},
        {u"| A", Refused, {u"operator | without the term"}},
        {u"!A", Refused, {u"operator ! without the term"}},
        {u"+", Refused, {u"operator + without the term"}},
        {u"||", Refused, {u"operator | without the term"}},
        {u"(|A)", Refused, {u"operator | without the term"}},
        {u"A ( | )", Refused, {u"operator | without the term"}},
        {u"A | | B", Refused, {u"two statements one after another without the term | |"}},
        {u"A||B", Refused, {u"two statements one after another without the term | |"}},
        {u"A |! B", Refused, {u"two statements one after another without the term | !"}},
        {u"A ! + B", Refused, {u"two statements one after another without the term ! +"}},
        {u"A + | B", Refused, {u"two statements one after another without the term + |"}},
        {u"A !! B", Refused, {u"two statements one after another without the term ! !"}},
        {u"'X' | | A", Refused, {u"two statements one after another without the term | |"}},
        {u"[A | \n | B]", Refused, {u"two statements one after another without the term | |"}},
    });
}

#define PRIORITY_MESSAGE                                                                           \
    u"automatic priority operations are not implemented, please arrange the brackets to indicate " \
    u"the priority"

TEST(CompilerTable, different_operators_at_one_level)
{
    checkTable({
        {u"A | B C", Refused, {PRIORITY_MESSAGE}},
        {u"A B | C", Refused, {PRIORITY_MESSAGE}},
        {u"A ! B | C", Refused, {PRIORITY_MESSAGE}},
        {u"A | B ! C", Refused, {PRIORITY_MESSAGE}},
        {u"A | B + C", Refused, {PRIORITY_MESSAGE}},
        {u"A | 'X' 'Y'", Refused, {PRIORITY_MESSAGE}},
        {u"A 'X' | B", Refused, {PRIORITY_MESSAGE}},
        {u"A | B C | D", Refused, {PRIORITY_MESSAGE}},
        {u"SEP A | B", Refused, {PRIORITY_MESSAGE}},
        {u"(A | B C)", Refused, {PRIORITY_MESSAGE}},
        {u"(A | B C) | D", Refused, {PRIORITY_MESSAGE}},
        {u"A | (B | C D)", Refused, {PRIORITY_MESSAGE}},
        // An operator at the end is looked at first, and does not hide the mixture.
        {u"A | B C |", Refused, {u"missing the last term after operator |", PRIORITY_MESSAGE}},
        {u"A B | C !", Refused, {u"missing the last term after operator !", PRIORITY_MESSAGE}},
        // The end of the text is never reached in these.
        {u"A | B C (", Refused, {u"no clossing character )"}},
        {u"A | B C | | D", Refused, {u"two statements one after another without the term | |"}},
    });
}

TEST(CompilerTable, error_in_a_bracketed_part_is_reported_once_and_ends_the_compilation)
{
    checkTable({
        {u"A | ()", Refused, {u"term in () empty"}},
        {u"| ()", Refused, {u"operator | without the term"}},
        {u"A B (C | )", Refused, {u"missing the last term after operator |"}},
        {u"(A | ) (B | )", Refused, {u"missing the last term after operator |"}},
        {u"{[('A' | )]}3", Refused, {u"missing the last term after operator |"}},
        {u"A | [ ] B", Refused, {u"term list is empty"}},
        {u"() | | ''", Refused, {u"term in () empty"}},
    });
}

TEST(CompilerReport,
     error_in_a_bracketed_part_shows_the_place_of_the_record_and_the_text_of_the_part)
{
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(compileDefinition(QStringLiteral("FL_LEVEL"), QStringLiteral("c (a [b)")));
    ASSERT_EQ(diagnostics.lines().size(), 1u);
    EXPECT_EQ(diagnostics.lines()[0].type, QtDebugMsg);
    EXPECT_EQ(diagnostics.lines()[0].text.toStdString(),
              "\"element (FL_LEVEL) file simple.xml line 12, column 5: \" \"A [B\" "
              "\"no clossing character ] B\" ");
}

TEST(CompilerReport, error_of_the_whole_text_shows_the_text_as_it_was_given)
{
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(compileDefinition(QString(), QStringLiteral("a  |\n ")));
    ASSERT_EQ(diagnostics.lines().size(), 1u);
    EXPECT_EQ(diagnostics.lines()[0].text.toStdString(),
              "\"elementfile simple.xml line 12, column 5: \" \"a  |\n \" "
              "\"missing the last term after operator |\" ");
}

TEST(CompilerReport, corrected_count_shows_the_text_of_the_repeated_part)
{
    DiagnosticCapture diagnostics;
    EXPECT_TRUE(compileDefinition(QStringLiteral("N"), QStringLiteral("a 5{digit}3")));
    ASSERT_EQ(diagnostics.lines().size(), 1u);
    EXPECT_EQ(diagnostics.lines()[0].text.toStdString(),
              "\"element (N) file simple.xml line 12, column 5: \" \"DIGIT\" "
              "\"minimum repeat count = 5 more than maximum repeat count = 3\" ");
}

TEST(CompilerReport, quotes_in_a_report_are_not_escaped)
{
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(compileDefinition(QStringLiteral("N"), QStringLiteral("(\"A\"")));
    ASSERT_EQ(diagnostics.lines().size(), 1u);
    EXPECT_EQ(diagnostics.lines()[0].text.toStdString(),
              "\"element (N) file simple.xml line 12, column 5: \" \"(\"A\"\" "
              "\"no clossing character ) \"A\"\" ");
}

TEST(CompilerUnwrap, definition_of_one_decorated_term_is_that_term)
{
    const auto term = compileDefinition(QStringLiteral("R"), QStringLiteral("[A]"));
    ASSERT_TRUE(term);
    EXPECT_EQ(term->type(), 9);
    EXPECT_EQ(term->bracketType, 1);
    EXPECT_EQ(term->config.recordName, QStringLiteral("R"));
    EXPECT_EQ(term->config.ruleText, QStringLiteral("A"));
}

TEST(CompilerUnwrap, bracketed_part_of_one_decorated_term_stays_an_expression)
{
    for (const QString& text :
         {QStringLiteral("[A]"), QStringLiteral("{A}"), QStringLiteral("2{DIGIT}3")}) {
        SCOPED_TRACE(text.toStdString());
        ConfigInfo record;
        fillRecord(&record, QStringLiteral("R"), text);
        const std::unique_ptr<TermStd> term(
            TermExpression::append_expression(&record, false, &toOutput));
        ASSERT_TRUE(term);
        EXPECT_EQ(term->type(), 8);
        EXPECT_EQ(term->bracketType, 0);
        EXPECT_EQ(term->minRepeat, -1);
        EXPECT_EQ(static_cast<TermExpression*>(term.get())->ExprList.size(), 1);
    }
}

TEST(CompilerUnwrap, bracketed_part_of_one_plain_term_is_that_term)
{
    ConfigInfo record;
    fillRecord(&record, QStringLiteral("R"), QStringLiteral("((A))"));
    const std::unique_ptr<TermStd> term(
        TermExpression::append_expression(&record, false, &toOutput));
    ASSERT_TRUE(term);
    EXPECT_EQ(term->type(), 9);
    EXPECT_EQ(term->bracketType, 0);
}

TEST(CompilerInvariant, expression_holds_one_operator_less_than_terms)
{
    ConfigInfo record;
    fillRecord(&record, QStringLiteral("R"), QStringLiteral(" a  b | "));
    DiagnosticCapture diagnostics;
    const TermExpression broken(&record, &toOutput);
    EXPECT_FALSE(broken.valid);
    EXPECT_EQ(broken.ExprRuleStr, QStringLiteral("a b |"));
    // What was compiled before the error stays: A, the inserted separator and B.
    EXPECT_EQ(broken.ExprList.size(), 3);
    EXPECT_EQ(broken.OperatorsList, QStringLiteral("!!"));

    record.ruleText = QStringLiteral("a|b|c");
    const TermExpression choice(&record, &toOutput);
    EXPECT_TRUE(choice.valid);
    EXPECT_EQ(choice.ExprList.size(), 3);
    EXPECT_EQ(choice.OperatorsList, QStringLiteral("||"));
    EXPECT_EQ(choice.currentOperator, QChar(u'|'));

    record.ruleText = QStringLiteral("a");
    const TermExpression single(&record, &toOutput);
    EXPECT_TRUE(single.valid);
    EXPECT_TRUE(single.OperatorsList.isEmpty());
    EXPECT_TRUE(single.currentOperator.isNull());
}

TEST(CompilerInvariant, word_pending_at_a_bracket_error_is_not_among_the_terms)
{
    ConfigInfo record;
    fillRecord(&record, QStringLiteral("R"), QStringLiteral("A B(C"));
    DiagnosticCapture diagnostics;
    const TermExpression glued(&record, &toOutput);
    EXPECT_FALSE(glued.valid);
    EXPECT_EQ(glued.ExprList.size(), 1); // A

    record.ruleText = QStringLiteral("A 2 {C");
    const TermExpression beforeBrace(&record, &toOutput);
    EXPECT_EQ(beforeBrace.ExprList.size(), 1); // A; the 2 may still be a count

    record.ruleText = QStringLiteral("A B (C");
    const TermExpression settledByBlank(&record, &toOutput);
    EXPECT_EQ(settledByBlank.ExprList.size(), 3); // A, the inserted separator and B
}

TEST(CompilerInvariant, sub_terms_carry_the_place_of_the_record_and_their_own_text)
{
    ConfigInfo record;
    fillRecord(&record, QStringLiteral("R"), QStringLiteral("a 'x y' {b c}"));
    const TermExpression expression(&record, &toOutput);
    ASSERT_EQ(expression.ExprList.size(), 4); // A, literal, inserted separator, group
    const QStringList ruleTexts{QStringLiteral("A"), QStringLiteral("X Y"),
                                QStringLiteral("AUTOSEP"), QStringLiteral("B C")};
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        const ConfigInfo& config = expression.ExprList.at(i)->config;
        EXPECT_EQ(config.ruleText, ruleTexts.at(i));
        const bool isInserted = i == 2;
        EXPECT_EQ(config.recordName, isInserted ? QString() : QStringLiteral("R"));
        EXPECT_EQ(config.xmlFile, isInserted ? QString() : QStringLiteral("simple.xml"));
        if (!isInserted) {
            EXPECT_EQ(config.lineNumber, 12);
            EXPECT_EQ(config.columnNumber, 5);
        }
    }
    EXPECT_EQ(expression.ExprList.at(2)->ExprRuleStr, QStringLiteral("AUTOSEP"));
    EXPECT_EQ(expression.ExprList.at(2)->type(), 5);
}

TEST(CompilerNesting, fifty_levels_are_compiled)
{
    const int levels = 50;
    const QString text =
        QString(levels, QChar(u'(')) + QStringLiteral("A B") + QString(levels, QChar(u')'));
    const auto term = compileDefinition(QStringLiteral("R"), text);
    ASSERT_TRUE(term);
    EXPECT_EQ(term->dumpData(true), expanded(QStringLiteral("<E>$A$ ! SEP ! $B$</E>")));
}

TEST(CompilerNesting, hundred_thousand_levels_are_refused_with_a_report)
{
    const int levels = 100000;
    const QString text =
        QString(levels, QChar(u'[')) + QStringLiteral("A") + QString(levels, QChar(u']'));
    DiagnosticCapture diagnostics;
    EXPECT_FALSE(compileDefinition(QStringLiteral("R"), text));
    EXPECT_FALSE(diagnostics.debugLines().isEmpty());
}

TEST(CompilerFirstTerm, first_term_is_handed_over_by_erasing_it)
{
    ConfigInfo record;
    fillRecord(&record, QStringLiteral("R"), QStringLiteral("A"));
    TermExpression expression(&record, &toOutput);
    const std::unique_ptr<TermStd> first(expression.get_first_term());
    ASSERT_TRUE(first);
    expression.erase_first_term(&toOutput);
    EXPECT_EQ(expression.get_first_term(), nullptr);
    EXPECT_EQ(first->ExprRuleStr, QStringLiteral("A")); // still alive: the caller owns it now
}

TEST(CompilerFirstTerm, erasing_from_an_empty_expression_is_an_internal_error)
{
    ConfigInfo record;
    fillRecord(&record, QStringLiteral("R"), QString());
    DiagnosticCapture diagnostics;
    TermExpression expression(&record, &toOutput);
    diagnostics.clear();
    expression.erase_first_term(&toOutput);
    ASSERT_EQ(diagnostics.lines().size(), 1u);
    EXPECT_EQ(diagnostics.lines()[0].type, QtCriticalMsg);
    EXPECT_EQ(diagnostics.lines()[0].text.trimmed().toStdString(),
              "void TermExpression::erase_first_term() it == ExprList.end()");
}

TEST(CompilerStandardTerm, keywords_are_looked_up_exactly)
{
    ConfigInfo record;
    fillRecord(&record, QStringLiteral("R"), QStringLiteral("A"));
    const TermExpression expression(&record, &toOutput);
    const QStringList keywords{QStringLiteral("CHARACTER"), QStringLiteral("ALPHANUM"),
                               QStringLiteral("ALPHA"),     QStringLiteral("DIGIT"),
                               QStringLiteral("SEP"),       QStringLiteral("NIL"),
                               QStringLiteral("LIM_CHAR")};
    for (int i = 0; i < keywords.size(); ++i) {
        record.ruleText = keywords.at(i);
        const std::unique_ptr<TermStd> term(expression.isStdTerm(&record));
        ASSERT_TRUE(term) << keywords.at(i).toStdString();
        EXPECT_EQ(term->type(), i + 1);
    }
    for (const QString& other : {QStringLiteral("digit"), QStringLiteral(" DIGIT"),
                                 QStringLiteral("UNKNOWN"), QStringLiteral("AUTOSEP"), QString()}) {
        record.ruleText = other;
        EXPECT_EQ(expression.isStdTerm(&record), nullptr) << other.toStdString();
    }
}
