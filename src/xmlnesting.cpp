#include "xmlnesting.h"

#include <QXmlStreamReader>

#include <string_view>

namespace {

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
            if (startsWith("<!--"))
                skipBehind("-->");
            else if (startsWith("<?"))
                skipBehind("?>");
            else if (startsWith("<!") || !readTag())
                return false;
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

} // namespace

std::optional<XmlNesting::Place> XmlNesting::tooDeepElement(const QByteArray& xml)
{
    if (PlainScan({xml.constData(), static_cast<std::size_t>(xml.size())}).isHarmless())
        return std::nullopt;
    QXmlStreamReader reader(xml);
    int depth = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement)
            --depth;
        else if (token == QXmlStreamReader::StartElement && ++depth > MaxDepth)
            return Place{reader.lineNumber(), reader.columnNumber()};
    }
    return std::nullopt;
}
