// How many characters an expression takes at the start of a text: one row per case.

#include "support/diagnosticcapture.h"
#include "support/termset.h"
#include "support/tooutput.h"
#include "support/utf16text.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>

namespace {

struct Definition
{
    Utf16Text name;
    Utf16Text expression;
};

/// Up to three definitions which the expression of a row may refer to.
class Definitions
{
public:
    constexpr Definitions(std::initializer_list<Definition> definitions)
    {
        for (const Definition& definition : definitions)
            m_definitions[m_count++] = definition;
    }

    const Definition* begin() const { return m_definitions; }
    const Definition* end() const { return m_definitions + m_count; }

private:
    Definition m_definitions[3];
    int m_count = 0;
};

struct Row
{
    Definitions definitions;
    Utf16Text expression;
    Utf16Text text;
    int matched; ///< UTF-16 units
};

void checkRow(const Row& row)
{
    const QString expression = row.expression;
    const QString text = row.text;
    SCOPED_TRACE("expression: " + readable(expression) + "   text: " + readable(text));
    DiagnosticCapture diagnostics;
    TermSet definitions;
    for (const Definition& definition : row.definitions)
        ASSERT_TRUE(definitions.define(definition.name, definition.expression));
    const auto term = compileDefinition(QStringLiteral("R"), expression);
    ASSERT_TRUE(term);
    ASSERT_TRUE(term->check_config(definitions.terms(), &toOutput));
    diagnostics.clear();
    EXPECT_EQ(term->parse(text.constData()), row.matched);
    EXPECT_TRUE(diagnostics.lines().empty()) << "matching reports nothing";
}

template <std::size_t Count>
void checkTable(const Row (&rows)[Count])
{
    for (const Row& row : rows)
        checkRow(row);
}

/// The one-letter terms that the rows about sequences and choices are written with.
constexpr Definitions Letters{{u"A", u"'A'"}, {u"B", u"'B'"}, {u"C", u"'C'"}};

} // namespace

TEST(MatcherTable, digit)
{
    checkTable({
        {{}, u"DIGIT", u"5", 1},
        {{}, u"DIGIT", u"12", 1},
        {{}, u"DIGIT", u"A", 0},
        {{}, u"DIGIT", u"", 0},
        {{}, u"DIGIT", u" 1", 0},
        {{}, u"DIGIT", u"\u0663", 1},     // Arabic-Indic three
        {{}, u"DIGIT", u"\u0967", 1},     // Devanagari one
        {{}, u"DIGIT", u"\uff15", 1},     // fullwidth five
        {{}, u"DIGIT", u"\u00b2", 0},     // superscript two
        {{}, u"DIGIT", u"\u00bd", 0},     // one half
        {{}, u"DIGIT", u"\u2167", 0},     // Roman numeral eight
        {{}, u"DIGIT", u"\U0001d7ce", 0}, // a digit, but outside the sixteen-bit range
    });
}

TEST(MatcherTable, alpha)
{
    checkTable({
        {{}, u"ALPHA", u"Ab", 1},         {{}, u"ALPHA", u"abc", 0},
        {{}, u"ALPHA", u"1", 0},          {{}, u"ALPHA", u"-", 0},
        {{}, u"ALPHA", u" A", 0},         {{}, u"ALPHA", u"\u00c9", 1}, // E with acute
        {{}, u"ALPHA", u"\u00e9", 0},     {{}, u"ALPHA", u"\u0416", 1}, // Cyrillic Zhe
        {{}, u"ALPHA", u"\u0436", 0},     {{}, u"ALPHA", u"\u03a9", 1}, // Greek Omega
        {{}, u"ALPHA", u"\u03c9", 0},     {{}, u"ALPHA", u"\uff21", 1}, // fullwidth A
        {{}, u"ALPHA", u"\u01c5", 0},                                   // title case
        {{}, u"ALPHA", u"\u05d0", 0},                                   // a letter without case
        {{}, u"ALPHA", u"\u00aa", 0},                                   // ordinal indicator
        {{}, u"ALPHA", u"\u02b0", 0},                                   // modifier letter
        {{}, u"ALPHA", u"\u2160", 0},                                   // Roman numeral one
        {{}, u"ALPHA", u"\u24b6", 0},                                   // circled A
        {{}, u"ALPHA", u"\U00010400", 0}, // a capital, but outside the sixteen-bit range
    });
}

TEST(MatcherTable, alphanum)
{
    checkTable({
        {{}, u"ALPHANUM", u"A", 1},
        {{}, u"ALPHANUM", u"9", 1},
        {{}, u"ALPHANUM", u"\u0416", 1},
        {{}, u"ALPHANUM", u"\u0663", 1},
        {{}, u"ALPHANUM", u"a", 0},
        {{}, u"ALPHANUM", u"-", 0},
        {{}, u"ALPHANUM", u".", 0},
        {{}, u"ALPHANUM", u" ", 0},
        {{}, u"ALPHANUM", u"", 0},
    });
}

TEST(MatcherTable, character)
{
    checkTable({
        {{}, u"CHARACTER", u"A", 1},          {{}, u"CHARACTER", u"5", 1},
        {{}, u"CHARACTER", u"\u0416", 1},     {{}, u"CHARACTER", u"\u0663", 1},
        {{}, u"CHARACTER", u"-", 1},          {{}, u"CHARACTER", u"(", 1},
        {{}, u"CHARACTER", u")", 1},          {{}, u"CHARACTER", u"?", 1},
        {{}, u"CHARACTER", u":", 1},          {{}, u"CHARACTER", u".", 1},
        {{}, u"CHARACTER", u",", 1},          {{}, u"CHARACTER", u"'", 1},
        {{}, u"CHARACTER", u"=", 1},          {{}, u"CHARACTER", u"+", 1},
        {{}, u"CHARACTER", u"/", 1},          {{}, u"CHARACTER", u" ", 1},
        {{}, u"CHARACTER", u"\n", 1},         {{}, u"CHARACTER", u"\t", 1},
        {{}, u"CHARACTER", u"\r", 1},         {{}, u"CHARACTER", u"\v", 1},
        {{}, u"CHARACTER", u"\f", 1},         {{}, u"CHARACTER", u"\u00a0", 1},
        {{}, u"CHARACTER", u"\u2028", 1},     {{}, u"CHARACTER", u"\u2029", 1},
        {{}, u"CHARACTER", u"\u3000", 1},     {{}, u"CHARACTER", u"*", 0},
        {{}, u"CHARACTER", u"_", 0},          {{}, u"CHARACTER", u"!", 0},
        {{}, u"CHARACTER", u"\"", 0},         {{}, u"CHARACTER", u"a", 0},
        {{}, u"CHARACTER", u"\u0436", 0},     {{}, u"CHARACTER", u";", 0},
        {{}, u"CHARACTER", u"&", 0},          {{}, u"CHARACTER", u"<", 0},
        {{}, u"CHARACTER", u">", 0},          {{}, u"CHARACTER", u"@", 0},
        {{}, u"CHARACTER", u"#", 0},          {{}, u"CHARACTER", u"%", 0},
        {{}, u"CHARACTER", u"$", 0},          {{}, u"CHARACTER", u"\\", 0},
        {{}, u"CHARACTER", u"[", 0},          {{}, u"CHARACTER", u"{", 0},
        {{}, u"CHARACTER", u"|", 0},          {{}, u"CHARACTER", u"~", 0},
        {{}, u"CHARACTER", u"^", 0},          {{}, u"CHARACTER", u"`", 0},
        {{}, u"CHARACTER", u"\x01", 0},       {{}, u"CHARACTER", u"\u2010", 0},
        {{}, u"CHARACTER", u"\u2212", 0},     {{}, u"CHARACTER", u"\u200b", 0},
        {{}, u"CHARACTER", u"\u00d7", 0},     {{}, u"CHARACTER", u"\xd83d", 0},
        {{}, u"CHARACTER", u"\U0001f6e9", 0}, {{}, u"CHARACTER", u"", 0},
        {{}, u"CHARACTER", u"\0A", 0},
    });
}

TEST(MatcherTable, limited_character)
{
    checkTable({
        {{}, u"LIM_CHAR", u"-", 0},
        {{}, u"LIM_CHAR", u"A", 1},
        {{}, u"LIM_CHAR", u"5", 1},
        {{}, u"LIM_CHAR", u"\u03a9", 1},
        {{}, u"LIM_CHAR", u"(", 1},
        {{}, u"LIM_CHAR", u")", 1},
        {{}, u"LIM_CHAR", u"?", 1},
        {{}, u"LIM_CHAR", u":", 1},
        {{}, u"LIM_CHAR", u".", 1},
        {{}, u"LIM_CHAR", u",", 1},
        {{}, u"LIM_CHAR", u"'", 1},
        {{}, u"LIM_CHAR", u"=", 1},
        {{}, u"LIM_CHAR", u"+", 1},
        {{}, u"LIM_CHAR", u"/", 1},
        {{}, u"LIM_CHAR", u" ", 1},
        {{}, u"LIM_CHAR", u"\n", 1},
        {{}, u"LIM_CHAR", u"\u00a0", 1},
        {{}, u"LIM_CHAR", u"*", 0},
        {{}, u"LIM_CHAR", u"_", 0},
        {{}, u"LIM_CHAR", u"!", 0},
        {{}, u"LIM_CHAR", u"\"", 0},
        {{}, u"LIM_CHAR", u"a", 0},
        {{}, u"LIM_CHAR", u"", 0},
        {{}, u"{LIM_CHAR}", u"AB 1/2-C", 6},
        {{}, u"{CHARACTER}", u"AB 1/2-C", 8},
    });
}

TEST(MatcherTable, separator_and_nil)
{
    checkTable({
        {{}, u"SEP", u"   X", 3},
        {{}, u"SEP", u" \n\t X", 4},
        {{}, u"SEP", u"\n", 1},
        {{}, u"SEP", u"\v\f\r X", 4},
        {{}, u"SEP", u"\u00a0\u2003\u2028\u3000X", 4},
        {{}, u"SEP", u"X", 0},
        {{}, u"SEP", u"", 0},
        {{}, u"SEP", u"- ", 0},
        {{}, u"SEP", u"\u200b ", 0}, // zero width space is no space
        {{}, u"SEP", u" \u200b ", 1},
        {{}, u"SEP", u" \0 ", 1},
        {{}, u"NIL", u"A", 0},
        {{}, u"NIL", u" ", 0},
        {{}, u"NIL", u"", 0},
    });
}

TEST(MatcherTable, repeat_counts)
{
    checkTable({
        {{}, u"2{DIGIT}4", u"12345", 4},
        {{}, u"2{DIGIT}4", u"123", 3},
        {{}, u"2{DIGIT}4", u"12A", 2},
        {{}, u"2{DIGIT}4", u"1A", 0},
        {{}, u"2{DIGIT}4", u"", 0},
        {{}, u"{DIGIT}", u"A", 0},
        {{}, u"{DIGIT}", u"123A", 3},
        {{}, u"{DIGIT}", u"1 2", 1},
        {{}, u"{DIGIT}0", u"12", 0},
        {{}, u"{DIGIT}1", u"12", 1},
        {{}, u"2{DIGIT}", u"123456789", 9},
        {{}, u"3{DIGIT}3", u"12", 0},
        {{}, u"3{DIGIT}3", u"1234", 3},
        {{}, u"5{DIGIT}3", u"12", 0}, // corrected to 3 and 3
        {{}, u"5{DIGIT}3", u"1234", 3},
        {{}, u"-3{DIGIT}2", u"123", 2},
        {{}, u"-3{DIGIT}2", u"A", 0},
        {{}, u"{DIGIT}2147483648", u"123", 0}, // a count that does not fit counts as 0
        {{}, u"{CHARACTER}", u"ABC DEF", 7},
        {{}, u"{CHARACTER}", u"ABC\0DEF", 3},
        {{}, u"{CHARACTER}", u"AB*C", 2},
        {{}, u"{CHARACTER}", u"\u0416\n\u0663-", 4},
        {{}, u"{CHARACTER}", u"A\U0001f6e9", 1},
        {{}, u"{SEP}3", u"   X", 3}, // one occurrence covers the whole run
        {{}, u"2{SEP}", u" X", 1},
        {{}, u"1{SEP}1", u"X", 0},
        {{}, u"{NIL}", u"A", 0},
        {{}, u"{'AB'}", u"ABABA", 4},
        {{}, u"2{'AB'}3", u"ABABABAB", 6},
        {{}, u"2{'AB'}3", u"ABA", 0},
        {{}, u"{ALPHA!DIGIT}2", u"A1B2C3", 4},
        {{}, u"2{ALPHA!DIGIT}2", u"A1B", 0},
        {{}, u"2{ALPHA!DIGIT}2", u"A1BC", 0},
        {{}, u"{ALPHA DIGIT}", u"A 1B 2", 6},
        {{}, u"{{DIGIT}2}", u"12345", 5},
        {{}, u"2{{DIGIT}2}2", u"12345", 4},
        {{}, u"{2{DIGIT}2}", u"12345", 4},
        {{}, u"2{2{DIGIT}2}2", u"123", 0},
    });
}

TEST(MatcherTable, literals)
{
    checkTable({
        {{}, u"'IFPL'", u"IFPL", 4},
        {{}, u"'IFPL'", u"IFPLX", 4},
        {{}, u"'IFPL'", u"IFP", 0},
        {{}, u"'IFPL'", u"ifpl", 0},
        {{}, u"'IFPL'", u"XIFPL", 0},
        {{}, u"'IFPL'", u"", 0},
        {{}, u"'ifpl'", u"IFPL", 4},
        {{}, u"'abc'", u"ABC", 3},
        {{}, u"'abc'", u"abc", 0},
        {{}, u"'A   B'", u"A B", 3},
        {{}, u"'A   B'", u"A  B", 0},
        {{}, u"'A\n\t B'", u"A B", 3},
        {{}, u"'A B'", u"A\nB", 0},
        {{}, u"' A '", u"A", 1},
        {{}, u"'-TITLE'", u"-TITLE X", 6},
        {{}, u"'*_a\"'", u"*_A\"", 4}, // characters which no standard term matches
        {{}, u"'\u0436'", u"\u0416", 1},
        {{}, u"'\U0001f6e9'", u"\U0001f6e9", 2}, // two UTF-16 units
        {{}, u"'\U0001f6e9'", u"\xd83d", 0},
        {{}, u"'AB'", u"A\0B", 0},
        {{}, u"['IFPL']", u"IFPL", 4},
        {{}, u"['IFPL']", u"X", 0},
    });
}

TEST(MatcherTable, sequence)
{
    checkTable({
        {{}, u"ALPHA DIGIT", u"A 1", 3},
        {{}, u"ALPHA DIGIT", u"A  \n1", 5},
        {{}, u"ALPHA DIGIT", u"A1", 0},
        {{}, u"ALPHA DIGIT", u"A B", 0},
        {{}, u"ALPHA DIGIT", u" A 1", 0},
        {{}, u"ALPHA!DIGIT", u"A1", 2},
        {{}, u"ALPHA!DIGIT", u"A 1", 0},
        {{}, u"ALPHA+DIGIT", u"A 1", 3},
        {{}, u"ALPHA DIGIT ALPHA", u"1 1 A", 0}, // the later terms would match
        {{}, u"'F' ! 3{DIGIT}3", u"F330", 4},
        {{}, u"'F' ! 3{DIGIT}3", u"F3301", 4},
        {{}, u"'F' ! 3{DIGIT}3", u"F33", 0},
        {{}, u"'F' 3{DIGIT}3", u"F330", 0}, // a separator is inserted after a literal
        {{}, u"'F' 3{DIGIT}3", u"F 330", 5},
        {{}, u"2{ALPHA}3 '/' DIGIT", u"AB/ 1", 5},
        {{}, u"2{ALPHA}3 '/' DIGIT", u"ABC/ 1", 6},
        {{}, u"2{ALPHA}3 '/' DIGIT", u"AB/1", 0},
        {{}, u"2{ALPHA}3 '/' DIGIT", u"AB / 1", 0},
        {{}, u"ALPHA {ALPHANUM}6 ['/' DIGIT]", u"A BC1 / 7", 9},
        {{}, u"ALPHA {ALPHANUM}6 ['/' DIGIT]", u"A BC1", 2},
        {{}, u"ALPHA {ALPHANUM}6 ['/' DIGIT]", u"A BC1 ", 6},
        {{}, u"ALPHA {ALPHANUM}6 ['/' DIGIT]", u"A", 1},
        {Letters, u"A B C", u"A B C", 5},
        {Letters, u"A B C", u"A B C D", 5},
        {Letters, u"A B C", u"A B", 0},
        {Letters, u"A SEP SEP B", u"A  B", 0}, // the first separator takes the whole run
    });
}

TEST(MatcherTable, end_of_the_text_inside_a_sequence)
{
    checkTable({
        {{}, u"ALPHA DIGIT", u"A", 0},
        {{}, u"ALPHA DIGIT", u"A ", 0},
        {{}, u"ALPHA DIGIT", u"", 0},
        {{}, u"ALPHA SEP", u"A", 1},
        {{}, u"ALPHA SEP", u"A \n", 3},
        {{}, u"ALPHA SEP", u"A1", 0},
        {{}, u"ALPHA SEP", u"A\0 ", 1},
        {{}, u"ALPHA [DIGIT]", u"A", 1},
        {{}, u"ALPHA [DIGIT]", u"A ", 2},
        {{}, u"ALPHA [DIGIT]", u"A 1", 3},
        {{}, u"ALPHA [DIGIT]", u"A B", 2},
        {{}, u"ALPHA [DIGIT]", u"A*", 0}, // the separator before it is required
        {{}, u"ALPHA {DIGIT}", u"A", 1},
        {{}, u"ALPHA 1{DIGIT}", u"A", 0},
        {{}, u"ALPHA -3{DIGIT}2", u"A", 1},
        {{}, u"ALPHA ! DIGIT [ALPHA] SEP DIGIT", u"A1", 0},
        {{}, u"ALPHA ! DIGIT [ALPHA] SEP", u"A1", 2},
        // Remaining separators are ignored however they are written.
        {{}, u"ALPHA ! 1{SEP}1", u"A", 1},
        {{}, u"ALPHA ! 1{SEP}1 SEP [DIGIT]", u"A", 1},
        // A group which holds a separator, and a reference, are no separators.
        {{}, u"ALPHA ! ([SEP])", u"A", 0},
        {{{u"BLANK", u"SEP"}}, u"ALPHA ! BLANK", u"A", 0},
        {{{u"BLANK", u"SEP"}}, u"ALPHA ! BLANK", u"A ", 2},
        {{}, u"ALPHA ! NIL", u"A", 0},
        {{}, u"ALPHA ! NIL", u"AB", 0},
        {{}, u"ALPHA ! [NIL]", u"AB", 1},
    });
}

TEST(MatcherTable, optional_term_is_skipped_with_the_separator_after_it)
{
    checkTable({
        {Letters, u"A [B] C", u"A B C", 5},
        {Letters, u"A [B] C", u"A C", 3},
        {Letters, u"A [B] C", u"A\n\nC", 4},
        {Letters, u"A [B] C", u"A", 0},
        {Letters, u"A [B] C", u"A ", 0},
        {Letters, u"A [B] C", u"AC", 0},
        {Letters, u"[A] B", u"A B", 3},
        {Letters, u"[A] B", u"B", 1},
        {Letters, u"[A] B", u" B", 2}, // nothing, but a separator follows it
        {Letters, u"A {B} C", u"A BB C", 6},
        {Letters, u"A {B} C", u"A C", 3},
        {Letters, u"A 1{B} C", u"A B C", 5},
        {Letters, u"A 1{B} C", u"A C", 0},
        {Letters, u"A [B|C] A", u"A C A", 5},
        {Letters, u"A [B|C] A", u"A A", 3},
        {Letters, u"A [B] [C] A", u"A A", 3},
        {Letters, u"A [B] [C] A", u"A C A", 5},
        {Letters, u"A [B] [C] A", u"A B C A", 7},
        {Letters, u"A [B] [C] A", u"A C B A", 0},
        {Letters, u"[NIL] A", u"A", 1},
        {Letters, u"[SEP] A", u" A", 2},
        {Letters, u"[SEP] A", u"A", 1},
        {Letters, u"[SEP] SEP A", u"A", 1},
        {Letters, u"[SEP] SEP A", u" A", 0}, // the optional run has no separator after it
        {Letters, u"A [SEP] B", u"AB", 2},
        {Letters, u"A {SEP} B", u"AB", 2},
        {Letters, u"A {SEP} B", u"A  B", 4},
        // Without a separator after it an optional term is simply absent.
        {Letters, u"[A] ! B", u"AB", 2},
        {Letters, u"[A] ! B", u"B", 1},
        {Letters, u"[A] ! B", u"A", 0},
        {{}, u"ALPHA [DIGIT] 'X'", u"A 1X", 4},
        {{}, u"ALPHA [DIGIT] 'X'", u"A X", 3},
        {{}, u"ALPHA [DIGIT] 'X'", u"A 1 X", 0},
        {{}, u"ALPHA [DIGIT] 'X'", u"AX", 0},
    });
}

TEST(MatcherTable, optional_term_counts_as_absent_if_its_separator_is_missing)
{
    checkTable({
        {Letters, u"A [B] C", u"A BC", 0},
        {Letters, u"A [B] C", u"A B", 0},
        {Letters, u"A {B} C", u"A BBC", 0},
        {Letters, u"[A] B", u"AB", 0},
        {Letters, u"[A] B", u"A", 0},
        {Letters, u"[A] SEP", u"A", 0},
        {Letters, u"[A] SEP", u"A ", 2},
        {Letters, u"[B] 'B'", u"B", 0},           // no separator is inserted before a literal
        {{}, u"[2{DIGIT}2] 1{DIGIT}", u"123", 3}, // the skipped digits are read again
        {{}, u"[2{DIGIT}2] 1{DIGIT}", u"12 3", 4},
        // The end of the text is no separator either.
        {Letters, u"A [B] [C]", u"A B", 2},
        {Letters, u"A [B] [C]", u"A B ", 4},
        {Letters, u"A [B] [C]", u"A B C", 5},
        {Letters, u"A [B] [C]", u"A B X", 4},
        {Letters, u"A [B] [C]", u"A C", 3},
        {Letters, u"A [B] [C]", u"A X", 2},
        {Letters, u"A [B] [C]", u"A", 1},
        {Letters, u"A [B] [C]", u"A ", 2},
        {Letters, u"[A] [B]", u"A", 0},
        {Letters, u"[A] [B]", u"A ", 2},
        {Letters, u"[A] [B]", u"B", 1},
        {Letters, u"[A] [B]", u"A B", 3},
        {Letters, u"A [B] [B]", u"A B", 3}, // the second takes what the first may not
        {Letters, u"[A [B]] C", u"A B C", 5},
        // The group takes "A " with its own separator, so none is left to stand after it.
        {Letters, u"[A [B]] C", u"A C", 0},
        {Letters, u"[A [B]] C", u"C", 1},
    });
}

TEST(MatcherTable, choice)
{
    checkTable({
        {{}, u"'AB' | 'ABCDE'", u"ABCDEF", 5},
        {{}, u"'ABCDE' | 'AB'", u"ABCDEF", 5},
        {{}, u"'ABCDE' | 'AB'", u"ABC", 2},
        {{}, u"'X' | 'Y'", u"Z", 0},
        {{}, u"'X' | 'Y'", u"", 0},
        {{}, u"'AB' | 'AB'", u"AB", 2},
        {{}, u"ALPHA | DIGIT", u"1", 1},
        {{}, u"ALPHA | DIGIT | SEP", u"  ", 2},
        {{}, u"NIL | ALPHA", u"A", 1},
        {{}, u"NIL | ALPHA", u"", 0},
        {{}, u"{ALPHA} | {DIGIT}3", u"1234", 3},
        {{}, u"[ALPHA] | DIGIT", u"A", 1},
        {{}, u"[ALPHA] | DIGIT", u" ", 0},
        {Letters, u"A | B | C", u"C", 1},
        {Letters, u"(A | B) C", u"B C", 3},
        {Letters, u"(A B) | A", u"A B", 3},
        {Letters, u"(A B) | A", u"A C", 1},
        {Letters, u"{A | B}", u"ABBAC", 4},
        {Letters, u"2{A | B}3", u"ABAB", 3},
        {Letters, u"2{A | B}3", u"AC", 0},
        {Letters, u"(A | (A B)) C", u"A C", 3},
        {Letters, u"(A | (A B)) C", u"A B C", 5},
    });
}

TEST(MatcherTable, matching_never_goes_back)
{
    checkTable({
        {{}, u"('A' | 'AB') ! 'BC'", u"ABC", 0},
        {{}, u"{ALPHA} ! 'Z'", u"ABZ", 0},
        {{}, u"{ALPHA}2 ! 'Z'", u"ABZ", 3},
        {{}, u"[ALPHA] ! ALPHA", u"A", 0},
        {{}, u"{CHARACTER} '-'", u"AB-", 0},
        {{}, u"{LIM_CHAR} '-'", u"AB-", 3},
        {{}, u"{'AB'} ! 'ABC'", u"ABABC", 0},
        {Letters, u"(A | (A B)) C", u"A B", 0},
        {Letters, u"{A [B]}", u"A BA B", 6},
        {Letters, u"{A [B]}", u"AAA", 0},
    });
}

TEST(MatcherTable, references)
{
    checkTable({
        {{{u"X", u"Y"}, {u"Y", u"Z"}, {u"Z", u"DIGIT"}}, u"X", u"1", 1},
        {{{u"FL", u"'F' ! 3{DIGIT}3"}}, u"fl", u"F330", 4},
        {{{u"FL", u"'F' ! 3{DIGIT}3"}}, u"FL '/' ! FL", u"F330/F340", 9},
        {{{u"X", u"'A' | 'AB'"}}, u"X ! 'C'", u"ABC", 3},
        {{{u"X", u"DIGIT"}, {u"X", u"ALPHA"}}, u"X", u"1", 1}, // the first of a name counts
        {{{u"X", u"DIGIT"}, {u"X", u"ALPHA"}}, u"X", u"A", 0},
        // Repeat counts inside and outside multiply.
        {{{u"X", u"2{DIGIT}2"}}, u"2{X}2", u"1234", 4},
        {{{u"X", u"2{DIGIT}2"}}, u"2{X}2", u"123456", 4},
        {{{u"X", u"2{DIGIT}2"}}, u"2{X}2", u"123", 0},
        {{{u"X", u"2{DIGIT}2"}}, u"{X}", u"12345", 4},
        {{{u"X", u"2{DIGIT}3"}}, u"2{X}3", u"12345678", 8},
        {{{u"X", u"2{DIGIT}3"}}, u"2{X}3", u"1234567", 6},
        {{{u"X", u"{DIGIT}3"}}, u"1{X}1", u"1234", 3},
        {{{u"X", u"{DIGIT}0"}}, u"{X}", u"1", 0},
        {{{u"X", u"2{Y}2"}, {u"Y", u"2{DIGIT}2"}}, u"2{X}2", u"123456789", 8},
        {{{u"X", u"{DIGIT}"}}, u"{X}", u"123A", 3},
        // A plain reference is required, even if what it refers to is optional.
        {{{u"X", u"[DIGIT]"}}, u"X ! ALPHA", u"A", 0},
        {{{u"X", u"[DIGIT]"}}, u"X ! ALPHA", u"1A", 2},
        {{{u"X", u"[DIGIT]"}}, u"X ALPHA", u"A", 0},
        {{{u"X", u"{DIGIT}3"}}, u"X ALPHA", u"A", 0},
        {{{u"X", u"{DIGIT}3"}}, u"[X] ALPHA", u"A", 1},
        {{{u"X", u"{DIGIT}3"}}, u"[X] ALPHA", u"123 A", 5},
        // A reference to a separator is not a separator to the expression around it.
        {{{u"BLANK", u"SEP"}}, u"ALPHA BLANK DIGIT", u"A 1", 0},
        {{{u"BLANK", u"SEP"}}, u"ALPHA ! BLANK ! DIGIT", u"A 1", 3},
        {{{u"BLANK", u"SEP"}}, u"[ALPHA] ! BLANK ! DIGIT", u"A 1", 3},
        {{{u"BLANK", u"SEP"}}, u"[ALPHA] ! BLANK ! DIGIT", u"1", 0},
        {{{u"BLANK", u"SEP"}}, u"ALPHA ! [BLANK] ! DIGIT", u"A1", 2},
    });
}

TEST(MatcherTable, nested_groups)
{
    checkTable({
        {Letters, u"(A B) C", u"A B C", 5},
        {Letters, u"A (B C)", u"A B C", 5},
        {Letters, u"A [B C] A", u"A B C A", 7},
        {Letters, u"A [B C] A", u"A A", 3},
        {Letters, u"A [B C] A", u"A B A", 0},
        {Letters, u"(A B) | (A C)", u"A C", 3},
        {Letters, u"{(A | B) ! C}", u"ACBCC", 4},
        {Letters, u"{(A B) | C}", u"A BCA BB", 7},
        {Letters, u"([A])", u"A", 1},
        {Letters, u"([A])", u"B", 0},
        {Letters, u"([A]) ! B", u"B", 0}, // the group around the optional term is required
        {Letters, u"([A]) ! B", u"AB", 2},
        {Letters, u"[A ! [B ! [C]]]", u"ABC", 3},
        {Letters, u"[A ! [B ! [C]]]", u"ABB", 2},
        {Letters, u"[A ! [B ! [C]]]", u"AC", 1},
        {Letters, u"2{[A] ! B}", u"ABBABC", 5},
    });
}
