#ifndef BENCH_ELEMENT_H
#define BENCH_ELEMENT_H

#include <QString>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bench {

/// An element of a document with all that it holds, as the peers get it: names and values ready in
/// the string type that the peer takes. Text stands before the elements.
template <typename String>
struct Element
{
    String name;
    std::vector<std::pair<String, String>> attributes; ///< name and value, in written order
    String text;
    std::vector<Element> children;
};

using Utf8Element = Element<std::string>;
using Utf16Element = Element<QString>;

/// Reads @p document, UTF-8. Text of white space between elements is left out. The program ends
/// with a message if the document is not well-formed.
Utf8Element readDocument(std::string_view document);

/// The same element for the peers of Qt.
Utf16Element toUtf16(const Utf8Element& element);

/// True if both hold the same; the order of attributes does not count.
bool sameContent(const Utf8Element& a, const Utf8Element& b);

} // namespace bench

#endif
