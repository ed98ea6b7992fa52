#include "load/xmllimits.h"

#include <QXmlStreamReader>
#include <QtGlobal>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QXmlDefaultHandler>
#include <QXmlSimpleReader>
#endif

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace {

using XmlLimits::Excess;
using XmlLimits::Limit;

constexpr std::string_view CommentBegin = "<!--";

// The most characters that a file of @p bytes may have as content. Small files may grow as they
// like: that does no harm.
double allowedCharacters(std::size_t bytes)
{
    constexpr double Harmless = 4e6;
    return Harmless + XmlLimits::MaxGrowth * static_cast<double>(bytes);
}

// The texts that a document type defines: entities and default attributes.
class DefinedTexts
{
public:
    void add(std::string_view text)
    {
        m_longest = std::max(m_longest, text.size());
        m_references += std::count(text.begin(), text.end(), '&');
        m_typeReferences += std::count(text.begin(), text.end(), '%');
    }

    // The most characters that one reference may stand for. If an entity is used inside another one
    // and has references itself, the readers refuse it above 4096 characters.
    double longestReplacement() const
    {
        constexpr std::size_t LongestInner = 4096;
        if (m_references + m_typeReferences == 0)
            return static_cast<double>(m_longest);
        return static_cast<double>(std::max(m_longest, LongestInner)) *
               static_cast<double>(1 + m_references) * static_cast<double>(1 + m_typeReferences);
    }

private:
    std::size_t m_longest = 0;
    std::ptrdiff_t m_references = 0;
    std::ptrdiff_t m_typeReferences = 0; // to entities for use inside the document type
};

// Looks at the tags and the document type of a file, which costs next to nothing compared with
// parsing it. For plain content that is enough: if the encoding keeps ASCII as it is, and if there
// is no document type (its entities may contain elements). Rule files are plain.
class TagScan
{
public:
    explicit TagScan(std::string_view xml) : m_xml(xml) {}

    // Stops where the content is malformed, as a reader does.
    void run()
    {
        while (!m_excess && (m_pos = m_xml.find('<', m_pos)) < m_xml.size()) {
            if (startsWith(CommentBegin))
                readComment();
            else if (startsWith("<?"))
                readInstruction();
            else if (startsWith("<!"))
                readSection();
            else
                readTag();
        }
    }

    // The limit that is exceeded, if any. The depth is left to the reader.
    const std::optional<Excess>& excess() const { return m_excess; }

    // False if the reader may see more than was looked at here.
    bool isPlain() const { return m_isPlain && m_isAscii; }

private:
    bool startsWith(std::string_view sign) const
    {
        return m_xml.substr(m_pos, sign.size()) == sign;
    }

    void skipBehind(std::string_view sign)
    {
        m_pos = m_xml.find(sign, m_pos);
        if (m_pos < m_xml.size())
            m_pos += sign.size();
    }

    std::string_view textSince(std::size_t begin) const
    {
        return m_xml.substr(begin, std::min(m_pos, m_xml.size()) - begin);
    }

    void setExcess(Limit limit)
    {
        const std::string_view before = textSince(0);
        const std::string_view line = before.substr(before.rfind('\n') + 1); // npos + 1 is 0
        const QString text = QString::fromUtf8(line.data(), static_cast<int>(line.size()));
        m_excess = Excess{limit, std::count(before.begin(), before.end(), '\n') + 1, text.size()};
    }

    void readComment()
    {
        m_pos += CommentBegin.size(); // its hyphens are no part of the end: "<!-->"
        skipBehind("-->");
    }

    // Only a declaration of an encoding other than UTF-8 matters: in some encodings, such as UTF-7
    // and EBCDIC, tags may look like anything.
    void readInstruction()
    {
        const std::size_t begin = m_pos;
        skipBehind("?>");
        const std::string_view instruction = textSince(begin);
        const std::size_t word = instruction.find("encoding");
        if (word == std::string_view::npos)
            return;
        const std::size_t quote = instruction.find_first_of("'\"", word);
        if (quote == std::string_view::npos ||
            !isUtf8(instruction.substr(quote + 1), instruction[quote]))
            m_isAscii = false;
    }

    static bool isUtf8(std::string_view name, char quote)
    {
        name = name.substr(0, name.find(quote));
        return name == "UTF-8" || name == "utf-8";
    }

    void readSection()
    {
        m_isPlain = false;
        if (startsWith("<![CDATA["))
            skipBehind("]]>");
        else if (startsWith("<!DOCTYPE") && !m_hasType)
            readDocumentType();
        else
            m_pos = m_xml.size(); // malformed
    }

    void readDocumentType()
    {
        m_hasType = true;
        const std::size_t begin = m_pos++;
        DefinedTexts texts;
        bool isInBrackets = false;
        while ((m_pos = m_xml.find_first_of("'\"<[]>", m_pos)) < m_xml.size() &&
               (isInBrackets || m_xml[m_pos] != '>')) {
            if (startsWith(CommentBegin)) {
                readComment();
            } else if (startsWith("<?")) {
                skipBehind("?>");
            } else if (startsWith("'") || startsWith("\"")) {
                texts.add(readQuoted());
            } else {
                if (!startsWith("<") && !startsWith(">"))
                    isInBrackets = startsWith("[");
                ++m_pos;
            }
        }
        if (textSince(begin).size() > XmlLimits::MaxTypeSize)
            setExcess(Limit::TypeSize);
        else if (mostReferences() * texts.longestReplacement() > allowedCharacters(m_xml.size()))
            setExcess(Limit::Growth);
    }

    // Moves from a quote past the next one of the same kind; returns the text between them.
    std::string_view readQuoted()
    {
        const std::string_view quote = m_xml.substr(m_pos++, 1);
        const std::size_t begin = m_pos;
        skipBehind(quote);
        return textSince(begin);
    }

    // How many references may follow.
    double mostReferences() const
    {
        constexpr double ShortestReference = 3;
        if (!m_isAscii)
            return static_cast<double>(m_xml.size()) / ShortestReference;
        const std::string_view rest = m_xml.substr(std::min(m_pos, m_xml.size()));
        return static_cast<double>(std::count(rest.begin(), rest.end(), '&'));
    }

    void readTag()
    {
        const std::size_t begin = m_pos;
        int attributes = 0;
        // A '>' in an attribute's value does not end the tag.
        while ((m_pos = m_xml.find_first_of("'\">", m_pos)) < m_xml.size() && m_xml[m_pos] != '>') {
            readQuoted();
            if (++attributes > XmlLimits::MaxAttributes)
                return setExcess(Limit::Attributes);
        }
        if (m_pos >= m_xml.size())
            return;
        const std::string_view tag = textSince(begin);
        if (tag.substr(0, 2) == "</")
            --m_depth;
        else if (tag.back() != '/')
            ++m_depth;
        if (m_depth >= XmlLimits::MaxDepth || mayNameLongNamespace(tag))
            m_isPlain = false;
    }

    // QDomDocument gives each element a copy of the name of its namespace.
    static bool mayNameLongNamespace(std::string_view tag)
    {
        constexpr std::size_t Long = 256;
        return tag.size() > Long && tag.find("xmlns") != std::string_view::npos;
    }

    std::string_view m_xml;
    std::size_t m_pos = 0;
    int m_depth = 0;
    bool m_hasType = false;
    bool m_isPlain = true;
    bool m_isAscii = true; // as far as is known
    std::optional<Excess> m_excess;
};

// Content that is not plain goes through the same reader that QDomDocument uses. Another reader
// might stop early, at a place that it takes for malformed.

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED

class DepthHandler : public QXmlDefaultHandler
{
public:
    void setDocumentLocator(QXmlLocator* locator) override { m_locator = locator; }

    bool startElement(const QString&, const QString&, const QString&,
                      const QXmlAttributes&) override
    {
        if (++m_depth > XmlLimits::MaxDepth)
            excess = Excess{Limit::Depth, m_locator->lineNumber(), m_locator->columnNumber()};
        return !excess;
    }

    bool endElement(const QString&, const QString&, const QString&) override
    {
        --m_depth;
        return true;
    }

    std::optional<Excess> excess;

private:
    QXmlLocator* m_locator = nullptr;
    int m_depth = 0;
};

std::optional<Excess> readToExcess(const QByteArray& xml)
{
    QXmlInputSource input;
    input.setData(xml);
    DepthHandler handler;
    QXmlSimpleReader reader;
    reader.setContentHandler(&handler);
    reader.parse(&input);
    return handler.excess;
}

QT_WARNING_POP

#else

// The reader adds the default attributes that the document type defines.
double charactersOf(const QXmlStreamReader& element)
{
    constexpr qsizetype OfEachAttribute = 64; // for the work that each one costs besides
    qsizetype result = element.qualifiedName().size() + element.namespaceUri().size();
    const QXmlStreamAttributes attributes = element.attributes();
    for (const QXmlStreamAttribute& attribute : attributes)
        result += attribute.qualifiedName().size() + attribute.namespaceUri().size() +
                  attribute.value().size() + OfEachAttribute;
    return static_cast<double>(result);
}

std::optional<Excess> readToExcess(const QByteArray& xml)
{
    const double allowed = allowedCharacters(static_cast<std::size_t>(xml.size()));
    QXmlStreamReader reader(xml);
    double characters = 0;
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement)
            --depth;
        if (token != QXmlStreamReader::StartElement)
            continue;
        characters += charactersOf(reader);
        if (++depth > XmlLimits::MaxDepth)
            return Excess{Limit::Depth, reader.lineNumber(), reader.columnNumber()};
        if (characters > allowed)
            return Excess{Limit::Growth, reader.lineNumber(), reader.columnNumber()};
    }
    return std::nullopt;
}

#endif

// UTF-16 and UTF-32 without their zeros: the markup of XML is then as in ASCII.
std::string withoutZeros(const QByteArray& xml)
{
    std::string narrow(xml.cbegin(), xml.cend());
    narrow.erase(std::remove(narrow.begin(), narrow.end(), '\0'), narrow.end());
    return narrow;
}

} // namespace

std::optional<Excess> XmlLimits::firstExcess(const QByteArray& xml)
{
    const bool isWide = xml.contains('\0');
    const std::string narrow = isWide ? withoutZeros(xml) : std::string();
    TagScan scan(isWide ? std::string_view(narrow)
                        : std::string_view(xml.constData(), static_cast<std::size_t>(xml.size())));
    scan.run();
    if (scan.excess() || (scan.isPlain() && !isWide))
        return scan.excess();
    return readToExcess(xml);
}
