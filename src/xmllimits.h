#ifndef XMLLIMITS_H
#define XMLLIMITS_H

#include <QByteArray>

#include <optional>

/// Guards QDomDocument against files that cost it far more than their size: it goes through its
/// elements by recursion, compares each attribute of an element with all others, and holds what a
/// document type puts in as often as it is put in. No rule file comes near the limits.
namespace XmlLimits {

/// Levels of elements. Rule files need three.
constexpr int MaxDepth = 250;

/// Attributes of one element. Rule files need three.
constexpr int MaxAttributes = 250;

/// Bytes of the declarations in a document type. Rule files need none.
constexpr int MaxTypeSize = 8192;

/// How many times the file the content may be, in characters, with entities and default attributes
/// put in.
constexpr int MaxGrowth = 16;

enum class Limit { Depth, Attributes, TypeSize, Growth };

/// A limit that is exceeded, and where, as the XML reader counts places.
struct Excess
{
    Limit limit;
    qint64 line;
    qint64 column;
};

/// What exceeds a limit in @p xml (a file's content in any encoding); nothing if nothing does, or
/// if the content breaks off or is malformed before it. Of an encoding in which the signs of XML
/// are other bytes than in ASCII (UTF-7 is one) it sees the depth, and of the others what the
/// reader tells.
std::optional<Excess> firstExcess(const QByteArray& xml);

} // namespace XmlLimits

#endif
