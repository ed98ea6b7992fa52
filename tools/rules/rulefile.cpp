#include "rulefile.h"

#include "load/xmllimits.h"

#include <QDomDocument>
#include <QFile>
#include <QXmlStreamReader>

#include <algorithm>
#include <iterator>

namespace {

// Lines and columns of a text.
class LineTable
{
public:
    explicit LineTable(const QString& text)
    {
        for (int i = 0; i < text.size(); ++i) {
            if (text.at(i) == u'\n')
                m_begins.push_back(i + 1);
        }
    }

    SourcePlace placeOf(int offset) const
    {
        const auto next = std::upper_bound(m_begins.begin(), m_begins.end(), offset);
        return {static_cast<int>(next - m_begins.begin()), offset - *(next - 1) + 1};
    }

private:
    std::vector<int> m_begins{0};
};

// How many UTF-16 units a reference between '&' and ';' ("amp", "#x41") stands for; 0 for an entity
// of the file's own.
int lengthOfReference(const QString& reference)
{
    if (reference.startsWith(u'#')) {
        const bool isHex = reference.startsWith(QLatin1String("#x"));
        const uint code = reference.mid(isHex ? 2 : 1).toUInt(nullptr, isHex ? 16 : 10);
        return code > 0xffff ? 2 : 1;
    }
    static const QStringList predefined{QStringLiteral("amp"), QStringLiteral("lt"),
                                        QStringLiteral("gt"), QStringLiteral("apos"),
                                        QStringLiteral("quot")};
    return predefined.contains(reference) ? 1 : 0;
}

// Goes through a rule file a second time, for the places that QDomDocument does not keep. The
// places are those of the content as UTF-8; of a file in another encoding nothing is found.
class PlaceReader
{
public:
    explicit PlaceReader(const QByteArray& content)
        : m_content(QString::fromUtf8(content)), m_lines(m_content), m_reader(m_content)
    {
    }

    // Gives the records and their parts, which were read from the same content, their places.
    void placeRecords(std::vector<RuleRecord>* records)
    {
        m_reader.readNextStartElement(); // the root
        for (RuleRecord& record : *records) {
            if (!m_reader.readNextStartElement())
                return;
            record.place = startTag();
            for (RecordPart& part : record.parts)
                placePart(&part);
            m_reader.skipCurrentElement();
        }
    }

private:
    int offset() const { return static_cast<int>(m_reader.characterOffset()); }

    // The tag ends in front of the reader, and no start tag has a '<' in it.
    SourcePlace startTag() const
    {
        const int begin = static_cast<int>(m_content.lastIndexOf(u'<', offset() - 1));
        return begin < 0 ? SourcePlace() : m_lines.placeOf(begin);
    }

    void placePart(RecordPart* part)
    {
        if (!m_reader.readNextStartElement())
            return;
        std::vector<SourcePlace> places;
        QString text;
        int depth = 0;
        int begin = offset();
        const int contentBegin = begin;
        do {
            const QXmlStreamReader::TokenType token = m_reader.readNext();
            if (token == QXmlStreamReader::StartElement)
                ++depth;
            else if (token == QXmlStreamReader::EndElement)
                --depth;
            else if (token == QXmlStreamReader::Characters) {
                text += m_reader.text();
                placeCharacters(begin, static_cast<int>(text.size()), &places);
            }
            // Behind text the reader has taken the '<' of what follows.
            const bool tookNext = token == QXmlStreamReader::Characters && !m_reader.isCDATA() &&
                                  offset() > 0 && offset() <= m_content.size() &&
                                  m_content.at(offset() - 1) == u'<';
            begin = offset() - (tookNext ? 1 : 0);
        } while (depth >= 0 && !m_reader.atEnd());
        part->content.place = m_lines.placeOf(contentBegin);
        // Qt 5 leaves line breaks of two characters in its documents.
        part->content.text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        if (text != part->content.text || places.size() != static_cast<std::size_t>(text.size()))
            return; // not what was loaded: an encoding that is not known here
        if (!places.empty())
            part->content.place = places.front();
        const SourcePlace last = places.empty() ? part->content.place : places.back();
        places.push_back({last.line, last.column + (places.empty() ? 0 : 1)});
        part->content.places = std::move(places);
    }

    // The places of the characters that come from m_content at `begin`, up to `count` in all.
    void placeCharacters(int begin, int count, std::vector<SourcePlace>* places) const
    {
        const QString cdata = QStringLiteral("<![CDATA[");
        const bool isCdata = m_reader.isCDATA();
        int pos = isCdata ? begin + static_cast<int>(cdata.size()) : begin;
        while (static_cast<int>(places->size()) < count && pos >= 0 && pos < m_content.size()) {
            const SourcePlace place = m_lines.placeOf(pos);
            const bool isReference = !isCdata && m_content.at(pos) == u'&';
            const int end = isReference ? static_cast<int>(m_content.indexOf(u';', pos)) : pos;
            const int length =
                isReference ? lengthOfReference(m_content.mid(pos + 1, end - pos - 1)) : 1;
            if (length == 0) { // all that an entity of the file stands for
                places->resize(static_cast<std::size_t>(count), place);
                return;
            }
            for (int i = 0; i < length; ++i)
                places->push_back(place);
            // A line break of two characters is read as one.
            const bool isLongBreak = m_content.at(pos) == u'\r' && pos + 1 < m_content.size() &&
                                     m_content.at(pos + 1) == u'\n';
            pos = end + (isLongBreak ? 2 : 1);
        }
    }

    QString m_content;
    LineTable m_lines;
    QXmlStreamReader m_reader;
};

RuleRecord recordOf(const QDomElement& element, const QString& file)
{
    RuleRecord record;
    record.file = file;
    record.tag = element.tagName();
    record.name = element.attribute(record.isMessageRule() ? QStringLiteral("title")
                                                           : QStringLiteral("name"));
    record.isActive = element.attribute(QStringLiteral("active")) != QLatin1String("false");
    record.isMeantUnused = element.attribute(QStringLiteral("unused")) == QLatin1String("true");
    record.lineNumber = element.lineNumber();
    record.columnNumber = element.columnNumber();
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        RecordPart part;
        part.tag = child.tagName();
        part.content.text = child.text();
        record.parts.push_back(std::move(part));
    }
    return record;
}

} // namespace

std::vector<SourcePlace> SourceText::placesInExpression() const
{
    std::vector<SourcePlace> result;
    if (places.empty())
        return result;
    bool blankIsDue = false;
    for (int i = 0; i < text.size();) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const int length = isPair ? 2 : 1;
        const SourcePlace here = places[static_cast<std::size_t>(i)];
        if (text.at(i).isSpace()) {
            blankIsDue = !result.empty();
        } else {
            const auto units = text.mid(i, length).toUpper().size() + (blankIsDue ? 1 : 0);
            result.insert(result.end(), static_cast<std::size_t>(units), here);
            blankIsDue = false;
        }
        i += length;
    }
    result.push_back(places.back());
    return result;
}

SourceText SourceText::trimmed() const
{
    const auto isSpace = [](QChar c) { return c.isSpace(); };
    const auto begin = std::find_if_not(text.begin(), text.end(), isSpace) - text.begin();
    SourceText result;
    result.text = text.trimmed();
    result.place = places.empty() ? place : places[static_cast<std::size_t>(begin)];
    if (!places.empty()) {
        const auto from = places.begin() + begin;
        result.places.assign(from, from + result.text.size() + 1);
    }
    return result;
}

QString RuleRecord::expressionTag() const
{
    return isMessageRule() ? QStringLiteral("fields") : QStringLiteral("term");
}

const SourceText* RuleRecord::expression() const
{
    const auto part = std::find_if(parts.begin(), parts.end(), [this](const RecordPart& candidate) {
        return candidate.tag == expressionTag();
    });
    return part == parts.end() ? nullptr : &part->content;
}

bool readRuleFile(const QString& path, const QString& recordTag, std::vector<RuleRecord>* records)
{
    QFile file(path);
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray content = file.readAll();
    if (XmlLimits::firstExcess(content) || !document.setContent(content, true))
        return false;
    std::vector<RuleRecord> found;
    for (QDomElement element = document.documentElement().firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        found.push_back(recordOf(element, path));
        found.back().isForeign = found.back().tag != recordTag;
    }
    PlaceReader(content).placeRecords(&found);
    std::move(found.begin(), found.end(), std::back_inserter(*records));
    return true;
}
