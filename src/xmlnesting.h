#ifndef XMLNESTING_H
#define XMLNESTING_H

#include <QByteArray>

#include <optional>

/// Guards QDomDocument against files that nest too deep: it goes through its elements by recursion,
/// and takes minutes over a file of nothing but opening tags.
namespace XmlNesting {

/// Rule files need three levels.
constexpr int MaxDepth = 250;

/// A place as the XML reader counts it.
struct Place
{
    qint64 line;
    qint64 column;
};

/// The place of the first element of @p xml (a file's content in any encoding) that lies deeper
/// than MaxDepth; nothing if none does, or if the content breaks off or is malformed before it.
std::optional<Place> tooDeepElement(const QByteArray& xml);

} // namespace XmlNesting

#endif
