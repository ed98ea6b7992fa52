#ifndef BENCH_PEERS_H
#define BENCH_PEERS_H

#include "support/element.h"

#include <QByteArray>

#include <string>
#include <string_view>
#include <vector>

/// What others offer to print a document. They get the finished document, which we have to find out
/// from the message first.
namespace bench {

/// Builds the document with pugixml and prints it.
std::string printWithPugixml(const Utf8Element& root);

/// Builds the document with QDomDocument and prints it.
QByteArray printWithQDomDocument(const Utf16Element& root);

/// Prints the document with QXmlStreamWriter.
QByteArray printWithQXmlStreamWriter(const Utf16Element& root);

/// The pieces of a document in written order: by turns what belongs to the format, and a name,
/// value or text of the message, escaped. Nobody who prints can do with fewer pieces, since names,
/// values and texts differ from message to message.
class ReadyParts
{
public:
    explicit ReadyParts(const Utf8Element& root);

    /// Copies the pieces one behind the other into a string that grows.
    std::string write() const;

private:
    void addElement(const Utf8Element& element, std::size_t depth);
    void addLineBreakAndIndent(std::size_t depth);
    void addOwnText(const std::string& text);

    std::string m_fixedText; // what belongs to the format since the last text of the message
    std::vector<std::string> m_parts;
};

} // namespace bench

#endif
