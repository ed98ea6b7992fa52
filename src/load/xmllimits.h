#ifndef XMLLIMITS_H
#define XMLLIMITS_H

#include <QByteArray>

#include <optional>

/// Protects QDomDocument from files that cost it far more than their size: it goes through its
/// elements by recursion, compares each attribute of an element with all others, and stores the
/// text of an entity again for each reference. No rule file comes near the limits.
namespace XmlLimits {

/// Levels of elements. Rule files need three.
constexpr int MaxDepth = 250;

/// Attributes of one element. Rule files need three.
constexpr int MaxAttributes = 250;

/// Bytes of the declarations in a document type. Rule files need none.
constexpr int MaxTypeSize = 8192;

/// How many times as long as the file the content may be, in characters, with entities and default
/// attributes put in.
constexpr int MaxGrowth = 16;

enum class Limit { Depth, Attributes, TypeSize, Growth };

/// A limit that is exceeded, and the place, counted as the XML reader does.
struct Excess
{
    Limit limit;
    qint64 line;
    qint64 column;
};

/// The first place in @p xml (a file's content in any encoding) that exceeds a limit. Nothing if
/// there is none, or if the content ends or is malformed before it. In an encoding whose markup has
/// other bytes than in ASCII (UTF-7 is one), the depth is checked, and of the other limits only
/// what the reader tells.
std::optional<Excess> firstExcess(const QByteArray& xml);

} // namespace XmlLimits

#endif
