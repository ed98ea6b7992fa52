#ifndef CHARCLASS_H
#define CHARCLASS_H

#include <QChar>

#include <array>

/// The character classes of ADEXP as bits, for the standard terms.
///
/// Nearly all characters of a message are below 128. They are looked up in a table, the others in
/// Qt's Unicode tables.
namespace CharClass {

enum Bit : unsigned char {
    Upper = 1,   ///< upper-case letter of any script
    Digit = 2,   ///< decimal digit of any script
    Space = 4,   ///< white space
    Special = 8, ///< one of ( ) ? : . , ' = + /
    Hyphen = 16, ///< the hyphen
};

/// The bits of a character below 128.
constexpr unsigned char asciiBits(char16_t c)
{
    if (c >= u'A' && c <= u'Z')
        return Upper;
    if (c >= u'0' && c <= u'9')
        return Digit;
    if (c == u' ' || (c >= u'\t' && c <= u'\r'))
        return Space;
    if (c == u'-')
        return Hyphen;
    for (const char16_t special : u"()?:.,'=+/")
        if (c == special && c != 0)
            return Special;
    return 0;
}

constexpr std::array<unsigned char, 128> makeAsciiTable()
{
    std::array<unsigned char, 128> table{};
    for (unsigned i = 0; i < table.size(); ++i)
        table[i] = asciiBits(static_cast<char16_t>(i));
    return table;
}

inline constexpr std::array<unsigned char, 128> AsciiTable = makeAsciiTable();

/// The bits of @p c by Qt's tables.
inline unsigned char unicodeBits(QChar c)
{
    if (c.category() == QChar::Letter_Uppercase)
        return Upper;
    if (c.isDigit())
        return Digit;
    return c.isSpace() ? Space : 0;
}

/// True if @p c is in one of the classes @p bits.
inline bool isAny(QChar c, unsigned bits)
{
    const char16_t u = c.unicode();
    return ((u < AsciiTable.size() ? AsciiTable[u] : unicodeBits(c)) & bits) != 0;
}

} // namespace CharClass

#endif
