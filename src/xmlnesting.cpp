#include "xmlnesting.h"

#include <QXmlStreamReader>
#include <QtGlobal>

#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
#include <QXmlDefaultHandler>
#include <QXmlSimpleReader>
#endif

#include <string_view>

namespace {

constexpr std::string_view CommentBegin = "<!--";

// Looks for elements that are too deep in plain content: in an encoding that holds ASCII as it is,
// and without a document type, whose entities may hold elements. That is what rule files are, and a
// look at their tags costs nothing beside reading them.
class PlainScan
{
public:
    explicit PlainScan(std::string_view xml) : m_xml(xml) {}

    // False if an element is too deep, or if the content is not plain. Of malformed content only
    // the beginning counts: a reader stops there.
    bool isHarmless()
    {
        if (m_xml.find('\0') != std::string_view::npos)
            return false; // wider characters
        while ((m_pos = m_xml.find('<', m_pos)) < m_xml.size()) {
            if (startsWith(CommentBegin)) {
                m_pos += CommentBegin.size(); // its hyphens do not belong to the end: "<!-->"
                skipBehind("-->");
            } else if (startsWith("<?")) {
                if (!skipInstruction())
                    return false;
            } else if (startsWith("<!") || !readTag()) {
                return false;
            }
        }
        return true;
    }

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

    // False for one that may be the declaration of an encoding, unless it is UTF-8: in others, such
    // as UTF-7 and EBCDIC, tags may look like anything.
    bool skipInstruction()
    {
        const std::size_t begin = m_pos;
        skipBehind("?>");
        const std::string_view instruction =
            m_xml.substr(begin, m_pos < m_xml.size() ? m_pos - begin : m_xml.size());
        const std::size_t word = instruction.find("encoding");
        if (word == std::string_view::npos)
            return true;
        const std::size_t quote = instruction.find_first_of("'\"", word);
        if (quote == std::string_view::npos)
            return false;
        const std::string_view name = instruction.substr(quote + 1);
        return startsWithUtf8(name) && name.substr(5, 1) == instruction.substr(quote, 1);
    }

    static bool startsWithUtf8(std::string_view name)
    {
        return name.substr(0, 5) == "UTF-8" || name.substr(0, 5) == "utf-8";
    }

    // False for an element that is too deep.
    bool readTag()
    {
        const bool isEnd = startsWith("</");
        // A '>' in an attribute's value does not end the tag.
        while ((m_pos = m_xml.find_first_of("'\">", m_pos)) < m_xml.size() && m_xml[m_pos] != '>')
            skipBehind(m_xml.substr(m_pos++, 1));
        if (m_pos >= m_xml.size())
            return true;
        const bool isEmpty = m_xml[m_pos - 1] == '/';
        if (isEnd)
            --m_depth;
        else if (!isEmpty)
            ++m_depth;
        return m_depth < XmlNesting::MaxDepth;
    }

    std::string_view m_xml;
    std::size_t m_pos = 0;
    int m_depth = 0;
};

// What is not plain is read by the reader that QDomDocument uses: another one may take for
// malformed, and leave, what this one reads on.

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
        if (++m_depth > XmlNesting::MaxDepth)
            place = {m_locator->lineNumber(), m_locator->columnNumber()};
        return !place;
    }

    bool endElement(const QString&, const QString&, const QString&) override
    {
        --m_depth;
        return true;
    }

    std::optional<XmlNesting::Place> place;

private:
    QXmlLocator* m_locator = nullptr;
    int m_depth = 0;
};

std::optional<XmlNesting::Place> readToTooDeepElement(const QByteArray& xml)
{
    QXmlInputSource input;
    input.setData(xml);
    DepthHandler handler;
    QXmlSimpleReader reader;
    reader.setContentHandler(&handler);
    reader.parse(&input);
    return handler.place;
}

QT_WARNING_POP

#else

std::optional<XmlNesting::Place> readToTooDeepElement(const QByteArray& xml)
{
    QXmlStreamReader reader(xml);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement)
            --depth;
        else if (token == QXmlStreamReader::StartElement && ++depth > XmlNesting::MaxDepth)
            return XmlNesting::Place{reader.lineNumber(), reader.columnNumber()};
    }
    return std::nullopt;
}

#endif

} // namespace

std::optional<XmlNesting::Place> XmlNesting::tooDeepElement(const QByteArray& xml)
{
    if (PlainScan({xml.constData(), static_cast<std::size_t>(xml.size())}).isHarmless())
        return std::nullopt;
    return readToTooDeepElement(xml);
}
