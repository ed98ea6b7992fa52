#ifndef FIRSTCHARS_H
#define FIRSTCHARS_H

#include "grammar/charclass.h"

#include <QtGlobal>

/// The characters that the data of a term can begin with.
///
/// A term that cannot begin with the current character is skipped without a call: in a choice of
/// twenty literals that saves nineteen calls. Only characters below 128 are told apart; any other
/// character counts as a possible beginning of every term.
class FirstChars
{
public:
    /// No character below 128.
    constexpr FirstChars() = default;

    /// Every character: nothing is known about the term.
    static constexpr FirstChars all()
    {
        FirstChars chars;
        chars.m_low = chars.m_high = ~quint64(0);
        return chars;
    }

    /// The characters of the classes @p bits (CharClass::Bit).
    static constexpr FirstChars ofClasses(unsigned bits)
    {
        FirstChars chars;
        for (size_t c = 0; c < CharClass::AsciiTable.size(); ++c) {
            if ((CharClass::AsciiTable[c] & bits) != 0)
                chars.add(static_cast<char16_t>(c));
        }
        return chars;
    }

    constexpr void add(char16_t c)
    {
        if (c < 64)
            m_low |= quint64(1) << c;
        else if (c < 128)
            m_high |= quint64(1) << (c - 64);
    }

    constexpr void add(const FirstChars& other)
    {
        m_low |= other.m_low;
        m_high |= other.m_high;
    }

    bool contains(QChar character) const
    {
        const char16_t c = character.unicode();
        return c >= 128 || (((c < 64 ? m_low : m_high) >> (c & 63)) & 1) != 0;
    }

private:
    quint64 m_low = 0;
    quint64 m_high = 0;
};

#endif
