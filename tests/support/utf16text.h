#ifndef UTF16TEXT_H
#define UTF16TEXT_H

#include <QString>

#include <cstddef>
#include <string>

/**
 * A text written as a u"" literal in a row of a test table. The implicit conversions keep the rows
 * short; null characters inside the literal are kept. It only views the literal, so that tables of
 * several hundred rows are constants which compile quickly.
 */
class Utf16Text
{
public:
    constexpr Utf16Text() = default;

    template <std::size_t Size>
    constexpr Utf16Text(const char16_t (&literal)[Size])
        : m_text(literal), m_size(static_cast<int>(Size - 1))
    {
    }

    operator QString() const { return QString(reinterpret_cast<const QChar*>(m_text), m_size); }

private:
    const char16_t* m_text = u"";
    int m_size = 0;
};

/// The text for people: everything outside printable ASCII as its hexadecimal code unit.
inline std::string readable(const QString& text)
{
    std::string result;
    for (const QChar character : text) {
        if (character.unicode() >= 0x20 && character.unicode() < 0x7f)
            result += static_cast<char>(character.unicode());
        else
            result += "<" + std::to_string(character.unicode()) + ">";
    }
    return result;
}

#endif
