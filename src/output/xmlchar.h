#ifndef XMLCHAR_H
#define XMLCHAR_H

/// The characters that XML 1.0 allows in a document, and in names without a prefix.
///
/// The fifth edition of XML 1.0 allows more characters in names than the four before it. Readers of
/// the older editions are still in use (Qt's own is one), so only characters that all editions
/// allow count as name characters here.
namespace XmlChar {

/// True if an XML document may contain the character.
constexpr bool isAllowed(char32_t c)
{
    return c == 0x9 || c == 0xa || c == 0xd || (c >= 0x20 && c <= 0xd7ff) ||
           (c >= 0xe000 && c <= 0xfffd) || (c >= 0x10000 && c <= 0x10ffff);
}

/// True if a name may begin with the ASCII character. The colon is not one: it separates prefix and
/// name.
constexpr bool isAsciiNameStart(char32_t c)
{
    return (c >= U'A' && c <= U'Z') || c == U'_' || (c >= U'a' && c <= U'z');
}

/// True if a name may have the ASCII character after its first one.
constexpr bool isAsciiName(char32_t c)
{
    return isAsciiNameStart(c) || c == U'-' || c == U'.' || (c >= U'0' && c <= U'9');
}

/// True if a name may begin with the character.
bool isNameStart(char32_t c);

/// True if a name may have the character after its first one.
bool isName(char32_t c);

} // namespace XmlChar

#endif
