#include "load/rulefilereader.h"

#include <QFile>
#include <QObject>
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QStringDecoder>
#else
#include <QTextCodec>
#endif

#define XML_DTD // for the functions that limit the growth
#include <expat.h>

#include <algorithm>
#include <cstddef>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace {

// Stands between the namespace of a name and the name itself.
constexpr char NamespaceEnd = ':';

std::string_view localName(std::string_view name)
{
    return name.substr(name.rfind(NamespaceEnd) + 1); // npos + 1 is 0
}

QString toQString(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

// Makes UTF-8 of content in any encoding that Qt knows. Without a name, only content whose first
// bytes show its encoding is changed, and @p encoding becomes the name. False if the content is not
// in the encoding.
bool decode(QByteArray* content, QByteArray* encoding)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    const auto shown = QStringConverter::encodingForData(*content, u'<');
    if (encoding->isEmpty() && shown)
        *encoding = QStringConverter::nameForEncoding(*shown);
    if (encoding->isEmpty())
        return true;
    QStringDecoder decoder(encoding->constData());
    *content = QString(decoder(*content)).toUtf8();
    return decoder.isValid() && !decoder.hasError();
#else
    const QTextCodec* const codec = encoding->isEmpty()
                                        ? QTextCodec::codecForUtfText(*content, nullptr)
                                        : QTextCodec::codecForName(*encoding);
    if (!codec)
        return encoding->isEmpty();
    *encoding = codec->name();
    QTextCodec::ConverterState state;
    *content = codec->toUnicode(content->constData(), content->size(), &state).toUtf8();
    return state.invalidChars == 0;
#endif
}

// Goes forward through a text.
struct Cursor
{
    void moveTo(const char* to)
    {
        for (; at < to; ++at) {
            const auto c = static_cast<unsigned char>(*at);
            if (c == '\n' || (c == '\r' && at[1] != '\n'))
                place = {place.line + 1, 1};
            else if ((c & 0xc0U) != 0x80U) // not inside a character
                place.column += c >= 0xf0U ? 2 : 1;
        }
    }

    const char* at;
    SourcePlace place;
};

// Reads content in UTF-8.
class ContentReader
{
public:
    ContentReader(const QByteArray& content, const QString& path, RuleFileReader* result)
        : m_content(content.constData(), static_cast<std::size_t>(content.size())),
          m_path(path),
          m_result(result),
          m_isOfRules(result->recordTag == QLatin1String("msgRule")),
          m_parser(XML_ParserCreateNS("UTF-8", NamespaceEnd), &XML_ParserFree)
    {
        if (!m_parser)
            throw std::bad_alloc();
    }

    // False if the content has a fault, or if it says that it is in another encoding. It is not
    // asked about that if it @p isDecoded.
    bool read(bool isDecoded)
    {
        const XML_Parser parser = m_parser.get();
        XML_SetUserData(parser, this);
        if (!isDecoded)
            XML_SetXmlDeclHandler(parser, &call<&ContentReader::onDeclaration>);
        XML_SetElementHandler(parser, &call<&ContentReader::onStart>, &call<&ContentReader::onEnd>);
        XML_SetCharacterDataHandler(parser, &call<&ContentReader::onText>);
        XML_SetDefaultHandlerExpand(parser, &call<&ContentReader::onOther>);
        XML_SetEndDoctypeDeclHandler(parser, &call<&ContentReader::onTypeEnd>);
        XML_SetParamEntityParsing(parser, XML_PARAM_ENTITY_PARSING_UNLESS_STANDALONE);
        XML_SetBillionLaughsAttackProtectionMaximumAmplification(parser, RuleFileReader::MaxGrowth);
        XML_SetBillionLaughsAttackProtectionActivationThreshold(parser, m_allowed);
        const bool isRead = XML_Parse(parser, m_content.data(), static_cast<int>(m_content.size()),
                                      XML_TRUE) == XML_STATUS_OK;
        if (m_exception)
            std::rethrow_exception(m_exception);
        if (!isRead && !m_isStopped)
            setFault(XML_GetErrorCode(parser));
        return isRead;
    }

    QByteArray encoding; // if it is another one

private:
    // Expat is written in C: no exception may pass through it. It may call once more after it was
    // stopped.
    template <auto Handler, typename... Arguments>
    static void call(void* reader, Arguments... arguments)
    {
        auto* const self = static_cast<ContentReader*>(reader);
        if (self->m_isStopped)
            return;
        try {
            (self->*Handler)(arguments...);
        } catch (...) {
            self->m_exception = std::current_exception();
            self->stop();
        }
    }

    void stop()
    {
        m_isStopped = true;
        XML_StopParser(m_parser.get(), XML_FALSE);
    }

    const char* eventBegin() const
    {
        return m_content.data() + XML_GetCurrentByteIndex(m_parser.get());
    }

    const char* eventEnd() const { return eventBegin() + XML_GetCurrentByteCount(m_parser.get()); }

    // What is in an entity has the place of the reference.
    SourcePlace beginPlace()
    {
        m_cursor.moveTo(eventBegin());
        return m_cursor.place;
    }

    SourcePlace endPlace()
    {
        beginPlace();
        Cursor end = m_cursor;
        end.moveTo(eventEnd());
        return end.place;
    }

    void setFault(XML_Error error)
    {
        if (error == XML_ERROR_NO_MEMORY)
            throw std::bad_alloc();
        if (error == XML_ERROR_AMPLIFICATION_LIMIT_BREACH)
            refuseGrowth();
        else
            m_result->fault = {ADEXP_CODE_MALFORMED_XML, QString::fromUtf8(XML_ErrorString(error)),
                               beginPlace()};
    }

    void refuse(adexp_code code, const QString& text, int limit)
    {
        const SourcePlace end = endPlace();
        m_result->fault = {code, text.arg(limit), {end.line, end.column - 1}};
        stop();
    }

    void refuseGrowth()
    {
        refuse(ADEXP_CODE_XML_GROWS_TOO_MUCH,
               QObject::tr("entities, default attributes and namespaces make the content more than "
                           "%1 times as long as the file"),
               RuleFileReader::MaxGrowth);
    }

    void onDeclaration(const char*, const char* declared, int)
    {
        if (!declared || qstricmp(declared, "UTF-8") == 0)
            return;
        encoding = declared;
        stop();
    }

    // Parts of the document type, comments, instructions, and the ends of CDATA sections.
    void onOther(const char* text, int size)
    {
        const std::string_view other(text, static_cast<std::size_t>(size));
        endRun();
        m_isSection = other == "<![CDATA[";
        if (other == "<!DOCTYPE")
            m_typeBegin = eventBegin();
        checkTypeSize();
    }

    void onTypeEnd()
    {
        checkTypeSize();
        m_typeBegin = nullptr;
    }

    void checkTypeSize()
    {
        if (m_typeBegin && eventEnd() - m_typeBegin > RuleFileReader::MaxTypeSize)
            refuse(ADEXP_CODE_XML_TYPE_TOO_LONG,
                   QObject::tr("the document type is longer than %1 bytes"),
                   RuleFileReader::MaxTypeSize);
    }

    void onStart(const char* name, const char** attributes)
    {
        endRun();
        ++m_depth;
        checkLimits(name, attributes);
        if (m_depth == 2)
            beginRecord(localName(name), attributes);
        else if (m_depth == 3)
            beginPart(localName(name));
    }

    void checkLimits(const char* name, const char** attributes)
    {
        constexpr std::size_t OfEachAttribute = 64; // for the work that each one costs besides
        m_size += std::string_view(name).size();
        for (const char** text = attributes; *text; ++text)
            m_size += std::string_view(*text).size() + OfEachAttribute / 2;
        if (m_depth > RuleFileReader::MaxDepth)
            refuse(ADEXP_CODE_XML_TOO_DEEP,
                   QObject::tr("elements are nested deeper than %1 levels"),
                   RuleFileReader::MaxDepth);
        else if (XML_GetSpecifiedAttributeCount(m_parser.get()) > 2 * RuleFileReader::MaxAttributes)
            refuse(ADEXP_CODE_XML_TOO_MANY_ATTRIBUTES,
                   QObject::tr("an element has more than %1 attributes"),
                   RuleFileReader::MaxAttributes);
        else if (m_size > m_allowed)
            refuseGrowth();
    }

    void beginRecord(std::string_view tag, const char** attributes)
    {
        const SourcePlace end = endPlace();
        RuleRecord record;
        record.setXMLFile(m_path);
        record.setXMLData(end.line, end.column - 1, toQString(tag));
        record.place = beginPlace();
        record.isForeign = record.tagName != m_result->recordTag;
        for (; *attributes; attributes += 2) {
            const std::string_view name = localName(attributes[0]);
            const std::string_view value = attributes[1];
            if (name == (m_isOfRules ? "title" : "name"))
                record.recordName = toQString(value).toUpper();
            else if (name == "active")
                record.isActive = value != "false";
            else if (name == "unused")
                record.isMeantUnused = value == "true";
        }
        m_result->records.push_back(std::move(record));
        m_part = -1;
    }

    void beginPart(std::string_view tag)
    {
        RuleRecord& record = m_result->records.back();
        ++m_part;
        if (record.expressionPart < 0 && tag == (m_isOfRules ? "fields" : "term"))
            record.expressionPart = m_part;
        m_isKept = m_result->keepsAll || record.expressionPart == m_part;
        if (m_result->keepsAll)
            record.parts.push_back({toQString(tag), {}, {endPlace()}});
    }

    void onEnd(const char*)
    {
        endRun();
        if (m_depth-- != 3 || !m_isKept)
            return;
        RuleRecord& record = m_result->records.back();
        const QString text = toQString(m_text);
        if (record.expressionPart == m_part)
            record.ruleText = text.toUpper();
        if (m_result->keepsAll) {
            record.parts.back().text = text;
            if (!m_places.empty()) {
                m_places.push_back({m_places.back().line, m_places.back().column + 1});
                record.parts.back().places = std::move(m_places);
            }
        }
        m_text.clear();
        m_places.clear();
        m_runBegin = 0;
        m_isKept = false;
    }

    void onText(const char* text, int size)
    {
        if (!m_isKept)
            return;
        const std::string_view added(text, static_cast<std::size_t>(size));
        m_text += added;
        if (!m_result->keepsAll)
            return;
        // What a reference stands for is all in one place, and a line break is one character.
        SourcePlace place = beginPlace();
        const std::string_view source = m_content.substr(
            static_cast<std::size_t>(eventBegin() - m_content.data()), added.size());
        for (auto units = toQString(added).size(); units > 0; --units) {
            m_places.push_back(place);
            place.column += source == added ? 1 : 0;
        }
    }

    // White space alone between two pieces of markup is no text.
    void endRun()
    {
        const QString run = toQString(std::string_view(m_text).substr(m_runBegin));
        if (!m_isSection && run.trimmed().isEmpty()) {
            m_text.resize(m_runBegin);
            m_places.resize(m_places.size() -
                            std::min(m_places.size(), static_cast<std::size_t>(run.size())));
        }
        m_runBegin = m_text.size();
    }

    const std::string_view m_content;
    const QString& m_path;
    RuleFileReader* const m_result;
    const bool m_isOfRules;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> m_parser;
    // Small files may grow as they like: that does no harm.
    const std::size_t m_allowed = 4'000'000 + RuleFileReader::MaxGrowth * m_content.size();
    std::size_t m_size = 0; // of names and attributes
    std::exception_ptr m_exception;
    bool m_isStopped = false;
    Cursor m_cursor{m_content.data(), {1, 1}}; // at the last event whose place was asked for
    const char* m_typeBegin = nullptr;         // null outside of the document type
    int m_depth = 0;

    // Of the part
    int m_part = -1; // its number in the record
    bool m_isKept = false;
    bool m_isSection = false; // inside of a CDATA section
    std::string m_text;
    std::size_t m_runBegin = 0; // of the text since the last markup
    std::vector<SourcePlace> m_places;
};

} // namespace

RuleFileReader::RuleFileReader(const QString& recordTag_, bool keepsAll_)
    : recordTag(recordTag_), keepsAll(keepsAll_)
{
}

bool RuleFileReader::fail(adexp_code code, const QString& text, const SourcePlace& place)
{
    fault = {code, text, place};
    return false;
}

bool RuleFileReader::read(const QString& path)
{
    if (path.isEmpty())
        return fail(ADEXP_CODE_MISSING_PATH, QObject::tr("file path is empty"));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(ADEXP_CODE_UNREADABLE_FILE, QObject::tr("can not open file ") + path +
                                                    QObject::tr(" for read: ") +
                                                    file.errorString());
    QByteArray content = file.readAll();
    QByteArray encoding;
    for (;;) { // a second time if the content declares another encoding
        if (!decode(&content, &encoding))
            return fail(ADEXP_CODE_MALFORMED_XML,
                        QObject::tr("the content is not in the encoding ") +
                            QString::fromUtf8(encoding),
                        {1, 1});
        ContentReader reader(content, path, this);
        if (reader.read(!encoding.isEmpty()))
            return true;
        records.clear();
        encoding = reader.encoding;
        if (encoding.isEmpty())
            return false;
    }
}
