#ifndef XMLWRITER_H
#define XMLWRITER_H

#include "xmldocument.h"

#include <QStringView>
#include <QVarLengthArray>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

/// Copies @p bytes to @p out, where there is room for them. Returns the end of the copy.
inline char* copyBytes(char* out, std::string_view bytes)
{
    std::memcpy(out, bytes.data(), bytes.size());
    return out + bytes.size();
}

/// Writes an XML document, element by element, straight to UTF-8.
///
/// The layout is that of QDomDocument::toString(4): four blanks per level, an element on a line of
/// its own unless text stands before it. Attributes come in the order of the calls, so the same
/// calls always give the same bytes.
///
/// The document is well-formed whatever the message holds. A character that XML cannot carry is
/// written as U+FFFD; in an element name each character that a name without prefix may not hold at
/// its place (in one of the editions of XML 1.0) is written as _xHHHH_, its code point in four or
/// more upper-case hexadecimal digits.
///
/// How it works: each operation asks once for all the room that it can need (room()), writes
/// without further checks and tells where it ended (m_out).
class XmlWriter
{
public:
    /// A writer for a document of about @p expectedSize bytes. It takes the memory for a large
    /// document at once.
    explicit XmlWriter(qsizetype expectedSize);

    /// Opens an element in the current one. @p name must not be empty.
    void startElement(QStringView name);

    /// Adds an attribute to the element just opened, before any text or element in it. @p name, and
    /// a value of single bytes, are ASCII and need no escaping.
    void attribute(std::string_view name, QStringView value);

    // These two stand here to be inlined: with names and values known, they are a few moves.
    void attribute(std::string_view name, std::string_view value)
    {
        char* out = room(static_cast<qsizetype>(name.size() + value.size()) + AttributeSigns);
        out = copyBytes(beginAttribute(out, name), value);
        *out = '"';
        m_out = out + 1;
    }
    void attribute(std::string_view name, int value)
    {
        constexpr int maxDigits = 11;
        char* out = room(static_cast<qsizetype>(name.size()) + maxDigits + AttributeSigns);
        out = beginAttribute(out, name);
        out = std::to_chars(out, out + maxDigits, value).ptr;
        *out = '"';
        m_out = out + 1;
    }

    /// Appends text to the current element.
    void text(QStringView text);

    /// Closes the current element.
    void endElement();

    /// The whole document; the writer is empty afterwards. Call it when every element is closed.
    XmlDocument takeDocument();

private:
    enum class Content { None, Text, Element };

    struct OpenElement
    {
        qsizetype nameBegin; // the name in the buffer, for the end tag
        qsizetype nameSize;
        Content lastContent;
    };

    static constexpr qsizetype AttributeSigns = 4; // blank, equals sign, two quotes

    static char* beginAttribute(char* out, std::string_view name)
    {
        *out++ = ' ';
        return copyBytes(copyBytes(out, name), "=\"");
    }

    // Where to write, with room for so many bytes.
    char* room(qsizetype bytes)
    {
        if (bytes > m_end - m_out)
            grow(bytes);
        return m_out;
    }
    void grow(qsizetype bytes);
    void useSmallBuffer();
    qsizetype size() const { return m_out - m_begin; }
    qsizetype indentRoom() const { return 1 + static_cast<qsizetype>(m_open.size()) * IndentWidth; }
    char* breakLineAndIndent(char* out) const;

    static constexpr qsizetype IndentWidth = 4;

    // A usual document is written here, and then copied to memory of its size; one that does not
    // fit is written to m_large.
    std::array<char, 32768> m_small;
    std::unique_ptr<char[]> m_large;

    char* m_begin; // of the buffer in use
    char* m_out;   // where to write next in it
    char* m_end;   // behind its last byte
    QVarLengthArray<OpenElement, 16> m_open;
};

#endif
