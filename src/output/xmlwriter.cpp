#include "output/xmlwriter.h"

#include "output/largememory.h"
#include "output/xmlchar.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

constexpr char32_t Replacement = 0xfffd;

// The most bytes for one UTF-16 unit in a text or an attribute value ("&quot;"), and in a name
// ("_x002F_"; a pair of surrogates takes less per unit).
constexpr qsizetype MaxBytesPerUnit = 6;
constexpr qsizetype MaxNameBytesPerUnit = 7;

// The units of text for which room is made at once.
constexpr qsizetype ChunkUnits = 4096;

// A document may be smaller than expected: a very large estimate must not fail.
constexpr qsizetype MostExpected = qsizetype(1) << 30;

// Where an ASCII character can be written as it is, without further checks.
enum AsciiBit : unsigned char { PlainInText = 1, PlainInAttribute = 2, NameStart = 4, Name = 8 };

constexpr std::array<unsigned char, 128> makeAsciiTable()
{
    std::array<unsigned char, 128> table{};
    for (char32_t c = 0; c < table.size(); ++c) {
        // '>' is escaped only after "]]", so it needs a further check.
        const bool plain = c >= 0x20 && c != U'&' && c != U'<' && c != U'>';
        if (plain || c == U'\t' || c == U'\n')
            table[c] |= PlainInText;
        if (plain && c != U'"')
            table[c] |= PlainInAttribute;
        if (XmlChar::isAsciiNameStart(c))
            table[c] |= NameStart;
        if (XmlChar::isAsciiName(c))
            table[c] |= Name;
    }
    return table;
}

constexpr std::array<unsigned char, 128> AsciiTable = makeAsciiTable();

bool isAscii(QChar c, AsciiBit bit)
{
    return c.unicode() < AsciiTable.size() && (AsciiTable[c.unicode()] & bit) != 0;
}

// The code point that begins at `in`; moves `in` past it. A lone surrogate counts as a code point.
char32_t takeCodePoint(const QChar*& in, const QChar* end)
{
    const QChar c = *in++;
    if (c.isHighSurrogate() && in != end && in->isLowSurrogate())
        return QChar::surrogateToUcs4(c, *in++);
    return c.unicode();
}

// Not for ASCII: all of its characters that need no escape have been written before.
char* putUtf8(char* out, char32_t c)
{
    const auto byte = [](char32_t bits) {
        return static_cast<char>(static_cast<unsigned char>(bits));
    };
    if (c < 0x800) {
        *out++ = byte(0xc0 | (c >> 6));
    } else {
        if (c < 0x10000) {
            *out++ = byte(0xe0 | (c >> 12));
        } else {
            *out++ = byte(0xf0 | (c >> 18));
            *out++ = byte(0x80 | ((c >> 12) & 0x3f));
        }
        *out++ = byte(0x80 | ((c >> 6) & 0x3f));
    }
    *out++ = byte(0x80 | (c & 0x3f));
    return out;
}

char* putEscapedInName(char* out, char32_t c)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    out = copyBytes(out, "_x");
    for (int shift = c > 0xfffff ? 20 : c > 0xffff ? 16 : 12; shift >= 0; shift -= 4)
        *out++ = Digits[(c >> shift) & 0xf];
    *out++ = '_';
    return out;
}

char* putName(char* out, QStringView name)
{
    const QChar* const begin = name.data();
    const QChar* const end = begin + name.size();
    for (const QChar* in = begin; in != end;) {
        const bool first = in == begin;
        if (isAscii(*in, first ? NameStart : Name)) {
            *out++ = static_cast<char>((in++)->unicode());
            continue;
        }
        const char32_t c = takeCodePoint(in, end);
        const bool allowed = first ? XmlChar::isNameStart(c) : XmlChar::isName(c);
        out = allowed ? putUtf8(out, c) : putEscapedInName(out, c);
    }
    return out;
}

// The escape of a character that is not plain where it stands (quote, tab and line feed are plain
// in text); empty if it needs none.
std::string_view escapeFor(char32_t c)
{
    switch (c) {
    case U'&':
        return "&amp;";
    case U'<':
        return "&lt;";
    case U'\r':
        return "&#xd;";
    case U'"':
        return "&quot;";
    case U'\t':
        return "&#x9;";
    case U'\n':
        return "&#xa;";
    default:
        return {};
    }
}

// Writes text[from, to) and returns the end. The text before `from` tells whether a '>' ends "]]>".
// Moves `from` past what was written: past `to` if `to` is between the halves of a surrogate pair.
char* putEscaped(char* out, QStringView text, qsizetype* from, qsizetype to, bool inAttribute)
{
    const AsciiBit plain = inAttribute ? PlainInAttribute : PlainInText;
    const QChar* const begin = text.data();
    const QChar* const stop = begin + to;
    const QChar* in = begin + *from;
    while (in < stop) {
        // Four at a time, since nearly all characters of a text are plain.
        while (stop - in >= 4 && isAscii(in[0], plain) && isAscii(in[1], plain) &&
               isAscii(in[2], plain) && isAscii(in[3], plain)) {
            for (int i = 0; i < 4; ++i)
                *out++ = static_cast<char>((in++)->unicode());
        }
        if (in == stop)
            break;
        if (isAscii(*in, plain)) {
            *out++ = static_cast<char>((in++)->unicode());
            continue;
        }
        const char32_t c = takeCodePoint(in, begin + text.size());
        if (c == U'>') {
            const bool endsSection = in - begin > 2 && in[-2] == u']' && in[-3] == u']';
            out = copyBytes(out, endsSection ? "&gt;" : ">");
        } else if (const std::string_view escape = escapeFor(c); !escape.empty()) {
            out = copyBytes(out, escape);
        } else {
            out = putUtf8(out, XmlChar::isAllowed(c) ? c : Replacement);
        }
    }
    *from = in - begin;
    return out;
}

} // namespace

XmlWriter::XmlWriter(qsizetype expectedSize)
{
    useSmallBuffer();
    room(std::min(expectedSize, MostExpected));
}

void XmlWriter::useSmallBuffer()
{
    m_begin = m_out = m_small.data();
    m_end = m_begin + m_small.size();
}

// Moves to a buffer with room for `bytes` more bytes.
void XmlWriter::grow(qsizetype bytes)
{
    const auto used = static_cast<size_t>(size());
    const size_t grown =
        std::max(used + static_cast<size_t>(bytes), static_cast<size_t>(m_end - m_begin) * 2);
    std::unique_ptr<char[]> buffer(new char[grown]);
    LargeMemory::advise(buffer.get(), grown);
    std::memcpy(buffer.get(), m_begin, used);
    m_large = std::move(buffer);
    m_begin = m_large.get();
    m_out = m_begin + used;
    m_end = m_begin + grown;
}

char* XmlWriter::breakLineAndIndent(char* out) const
{
    const auto blanks = static_cast<size_t>(m_open.size() * IndentWidth);
    *out++ = '\n';
    std::memset(out, ' ', blanks);
    return out + blanks;
}

void XmlWriter::startElement(QStringView name)
{
    char* out = room(2 + indentRoom() + name.size() * MaxNameBytesPerUnit);
    if (!m_open.isEmpty()) {
        OpenElement& parent = m_open.last();
        if (parent.lastContent == Content::None)
            *out++ = '>';
        if (parent.lastContent != Content::Text)
            out = breakLineAndIndent(out);
        parent.lastContent = Content::Element;
    }
    *out++ = '<';
    char* const nameEnd = putName(out, name);
    m_open.append({out - m_begin, nameEnd - out, Content::None});
    m_out = nameEnd;
}

void XmlWriter::endElement()
{
    const OpenElement element = m_open.last();
    m_open.removeLast();
    char* out = room(3 + indentRoom() + element.nameSize);
    if (element.lastContent == Content::None) {
        m_out = copyBytes(out, "/>");
        return;
    }
    if (element.lastContent == Content::Element)
        out = breakLineAndIndent(out);
    const auto nameSize = static_cast<size_t>(element.nameSize);
    out = copyBytes(copyBytes(out, "</"), {m_begin + element.nameBegin, nameSize});
    *out++ = '>';
    m_out = out;
}

void XmlWriter::attribute(std::string_view name, QStringView value)
{
    char* out =
        room(static_cast<qsizetype>(name.size()) + value.size() * MaxBytesPerUnit + AttributeSigns);
    qsizetype from = 0;
    out = putEscaped(beginAttribute(out, name), value, &from, value.size(), true);
    *out = '"';
    m_out = out + 1;
}

void XmlWriter::text(QStringView text)
{
    OpenElement& element = m_open.last();
    if (element.lastContent == Content::None) {
        char* const out = room(1);
        *out = '>';
        m_out = out + 1;
    }
    element.lastContent = Content::Text;
    // In chunks, since a long text as a whole does not need room for six times its length.
    for (qsizetype from = 0; from < text.size();) {
        const qsizetype to = std::min(from + ChunkUnits, text.size());
        char* const out = room((to - from + 1) * MaxBytesPerUnit);
        m_out = putEscaped(out, text, &from, to, false);
    }
}

void XmlWriter::restart(qsizetype expectedSize)
{
    m_open.clear();
    m_out = m_begin;
    room(std::min(expectedSize, MostExpected));
}

std::string_view XmlWriter::finish()
{
    m_out = copyBytes(room(2), {"\n\0", 2});
    return {m_begin, static_cast<size_t>(size()) - 1};
}

XmlDocument XmlWriter::takeDocument()
{
    const size_t size = finish().size() + 1;
    std::unique_ptr<char[]> bytes = std::move(m_large);
    // A copy, so that the caller does not hold the unused rest of the buffer. The unused rest of a
    // very large buffer takes no memory, and its copy would cost a tenth of the conversion.
    if (size < LargeMemory::LargeBlock) {
        std::unique_ptr<char[]> copy(new char[size]);
        std::memcpy(copy.get(), m_begin, size);
        bytes = std::move(copy);
    }
    useSmallBuffer();
    return XmlDocument(std::move(bytes), size - 1);
}
