#ifndef XMLWRITER_H
#define XMLWRITER_H

#include "output/xmldocument.h"

#include <QStringView>
#include <QVarLengthArray>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

/// Copies @p bytes to @p out, which has room for them. Returns the end of the copy.
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
/// The document is well-formed whatever the message contains. A character that XML does not allow
/// is written as U+FFFD. In an element name, each character that any edition of XML 1.0 forbids at
/// its place in a name without prefix is written as _xHHHH_: its code point in four or more
/// upper-case hexadecimal digits.
///
/// How it works: each operation asks once for all the room that it may need (room()), writes
/// without further checks and sets m_out to where it ended.
class XmlWriter
{
public:
    /// A writer for a document of about @p expectedSize bytes. It allocates the memory for a large
    /// document at once.
    explicit XmlWriter(qsizetype expectedSize);

    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;

    /// Begins a new document of about @p expectedSize bytes in the memory of the one before.
    void restart(qsizetype expectedSize);

    /// The whole document, followed by a null byte, in the memory of the writer. Call it when every
    /// element is closed, and nothing more until restart().
    std::string_view finish();

    /// Opens an element in the current one. @p name must not be empty.
    void startElement(QStringView name);

    /// Adds an attribute to the element just opened, before any text or element in it. @p name is
    /// ASCII and needs no escaping; nor does a value of type std::string_view.
    void attribute(std::string_view name, QStringView value);

    // These two are inlined: with known names and values they become a few moves.
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

    // Returns where to write; there is room for `bytes` bytes.
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

    // A usual document is written here and then copied to memory of its size. A document that does
    // not fit is written to m_large.
    std::array<char, 32768> m_small;
    std::unique_ptr<char[]> m_large;

    char* m_begin; // of the buffer in use
    char* m_out;   // where to write next in it
    char* m_end;   // after its last byte
    QVarLengthArray<OpenElement, 16> m_open;
};

#endif
