#ifndef XMLDOCUMENT_H
#define XMLDOCUMENT_H

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

/// An output document: its bytes in UTF-8 and a null byte after them, in memory from new[].
///
/// The caller of the library gets it in this form, so a large document needs no copy.
class XmlDocument
{
public:
    /// No document.
    XmlDocument() = default;

    /// Takes over @p bytes: @p size bytes and the null byte.
    XmlDocument(std::unique_ptr<char[]> bytes, std::size_t size)
        : m_bytes(std::move(bytes)), m_size(size)
    {
    }

    bool isEmpty() const { return m_size == 0; }

    /// The number of bytes, without the null byte.
    std::size_t size() const { return m_size; }

    /// The bytes, owned by the document.
    std::string_view view() const { return {m_bytes.get(), m_size}; }

    /// Gives the bytes to the caller, who releases them with delete[]; null if there are none.
    char* release()
    {
        m_size = 0;
        return m_bytes.release();
    }

private:
    std::unique_ptr<char[]> m_bytes;
    std::size_t m_size = 0;
};

#endif
