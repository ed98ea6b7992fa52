#include "documentcheck.h"

#include "require.h"

#include <QByteArray>
#include <QVector>

#include <libxml/parser.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace {

// All of the text: decoding would take away a byte order mark at the begin.
QString decoded(const xmlChar* text)
{
    return QString::fromUtf8("\xef\xbb\xbf" + QByteArray(reinterpret_cast<const char*>(text)));
}

bool isNamed(const xmlNode* node, const char* name)
{
    return xmlStrEqual(node->name, reinterpret_cast<const xmlChar*>(name)) != 0;
}

std::string valueOf(const xmlNode* element, const char* attribute)
{
    const std::unique_ptr<xmlChar, decltype(xmlFree)> value(
        xmlGetNoNsProp(element, reinterpret_cast<const xmlChar*>(attribute)), xmlFree);
    require(value != nullptr, "an element has its attributes", attribute);
    return reinterpret_cast<const char*>(value.get());
}

void requireAttributes(const xmlNode* element, const std::vector<const char*>& names)
{
    const xmlAttr* attribute = element->properties;
    for (const char* name : names) {
        require(attribute && xmlStrEqual(attribute->name, reinterpret_cast<const xmlChar*>(name)),
                "an element has its attributes in order", name);
        attribute = attribute->next;
    }
    require(!attribute, "an element has no other attributes");
}

bool isTrue(const xmlNode* element, const char* attribute)
{
    const std::string value = valueOf(element, attribute);
    require(value == "true" || value == "false", "it is true or false", attribute);
    return value == "true";
}

std::vector<const xmlNode*> elementsIn(const xmlNode* parent)
{
    std::vector<const xmlNode*> elements;
    for (const xmlNode* node = parent->children; node; node = node->next) {
        require(node->type == XML_ELEMENT_NODE || node->type == XML_TEXT_NODE,
                "there are elements and text only");
        if (node->type == XML_ELEMENT_NODE)
            elements.push_back(node);
    }
    return elements;
}

// The text of an element without elements in it. Between elements there is only the indentation.
QString textOf(const xmlNode* element)
{
    QString text;
    for (const xmlNode* node = element->children; node; node = node->next) {
        if (node->type == XML_TEXT_NODE)
            text += decoded(node->content);
    }
    if (elementsIn(element).empty())
        return text;
    require(text.trimmed().isEmpty(), "data and elements do not mix");
    return QString();
}

bool isSeparator(QChar c)
{
    return c == u' ' || c == u'\n' || c == u'\t';
}

// The units of the character that begins at the place.
int sizeAt(const QString& text, int at)
{
    return text.at(at).isHighSurrogate() && at + 1 < text.size() && text.at(at + 1).isLowSurrogate()
               ? 2
               : 1;
}

// As XML can hold it.
QString allowedText(QString text)
{
    for (int at = 0; at < text.size(); at += sizeAt(text, at)) {
        const char16_t c = text.at(at).unicode();
        const bool isAllowed = c == 0x9 || c == 0xa || (c >= 0x20 && c < 0xfffe);
        if (!isAllowed || (text.at(at).isSurrogate() && sizeAt(text, at) == 1))
            text[at] = QChar(QChar::ReplacementCharacter);
    }
    return text;
}

// Is the element name made of this word? Characters that a name cannot hold are escaped in it.
bool isNameFor(const QString& name, const QString& word)
{
    int at = 0;
    for (int i = 0; i < word.size(); i += sizeAt(word, i)) {
        const QString plain = word.mid(i, sizeAt(word, i));
        const QString escaped = QStringLiteral("_x%1_")
                                    .arg(plain.toUcs4().first(), 4, 16, QChar(u'0'))
                                    .toUpper()
                                    .replace(u'X', u'x');
        const QStringView rest = QStringView(name).mid(at);
        if (!rest.startsWith(plain) && !rest.startsWith(escaped))
            return false;
        at += static_cast<int>(rest.startsWith(plain) ? plain.size() : escaped.size());
    }
    return at == name.size();
}

} // namespace

DocumentCheck::DocumentCheck(const QString& text) : m_text(text) {}

void DocumentCheck::check(std::string_view document) const
{
    const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> parser(xmlNewParserCtxt(),
                                                                            xmlFreeParserCtxt);
    const std::unique_ptr<xmlDoc, void (*)(xmlDocPtr)> tree(
        xmlCtxtReadMemory(
            parser.get(), document.data(), static_cast<int>(document.size()), nullptr, "UTF-8",
            XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        xmlFreeDoc);
    require(tree && parser->wellFormed != 0 && parser->nsWellFormed != 0,
            "the document is well-formed", document);
    checkRoot(xmlDocGetRootElement(tree.get()));
}

void DocumentCheck::checkRoot(const xmlNode* root) const
{
    require(isNamed(root, "ADEXP_XML"), "the document begins with ADEXP_XML");
    requireAttributes(root, {"version", "parser_ver", "from", "datatime", "rating", "to", "rule"});
    std::vector<const xmlNode*> elements = elementsIn(root);
    require(!elements.empty() && isNamed(elements.back(), "ORIGINAL_TEXT"),
            "the document ends with ORIGINAL_TEXT");
    require(textOf(elements.back()) == allowedText(m_text), "ORIGINAL_TEXT is the message");
    elements.pop_back();
    // A message without a title, for which there is a rule, is written without its fields.
    const bool hasTitle = !valueOf(root, "rule").empty();
    require(elements.size() == (hasTitle ? 1U : 0U), "there is one message");
    if (!hasTitle)
        return;
    const Stretch message = checkField(elements.front(), -1);
    require(message.end == m_text.size(), "the message ends where its text ends");
}

// Returns the stretch of the field.
DocumentCheck::Stretch DocumentCheck::checkField(const xmlNode* element, int parentBegin) const
{
    requireAttributes(element, {"valid", "field_begin", "field_end", "list"});
    const Stretch stretch = stretchOf(element);
    require(stretch.begin > parentBegin, "a field begins behind where its parent begins");
    const bool isMessage = parentBegin == -1;
    const int behindName = checkName(element, stretch.begin, isMessage ? u"TITLE" : u"BEGIN");
    checkData(element, stretch, behindName);
    const bool isList = isTrue(element, "list");
    if (!isTrue(element, "valid"))
        require(!isList && elementsIn(element).empty(), "an unknown field has nothing in it");
    if (isList)
        checkItems(element, stretch);
    else
        checkFields(element, stretch);
    return stretch;
}

void DocumentCheck::checkItems(const xmlNode* list, Stretch listStretch) const
{
    int end = -1;
    for (const xmlNode* item : elementsIn(list)) {
        require(isNamed(item, "item"), "a list holds items");
        requireAttributes(item, {"field_begin", "field_end"});
        const Stretch stretch = stretchOf(item);
        require(stretch.begin >= end, "items come one behind the other");
        end = std::max(end, stretch.end);
        const std::vector<const xmlNode*> fields = elementsIn(item);
        require(!fields.empty(), "an item holds fields");
        require(stretch.begin == position(fields.front(), "field_begin"),
                "an item begins with its first field");
        require(stretch.end == position(fields.back(), "field_end"),
                "an item ends with its last field");
        checkFields(item, listStretch);
    }
}

void DocumentCheck::checkFields(const xmlNode* parent, Stretch parentStretch) const
{
    int before = parentStretch.begin;
    for (const xmlNode* field : elementsIn(parent)) {
        const Stretch stretch = checkField(field, before);
        require(stretch.end <= reachOf(parentStretch), "a field ends where its parent ends");
        before = std::max(stretch.begin, stretch.end - 1);
    }
}

// Where what is in the field ends at the latest.
int DocumentCheck::reachOf(Stretch stretch) const
{
    if (stretch.end == -1)
        return static_cast<int>(m_text.size());
    int end = wordEnd(stretch.end);
    QString word = m_text.mid(stretch.end, end - stretch.end);
    if (word == u"-") {
        const int next = nextWord(end);
        end = wordEnd(next);
        word += m_text.mid(next, end - next);
    }
    return word == u"-END" ? wordEnd(nextWord(end)) : stretch.end;
}

// The name stands where the field begins, behind that keyword if it is there. Returns the position
// behind the name.
int DocumentCheck::checkName(const xmlNode* element, int begin, QStringView keyword) const
{
    int end = wordEnd(begin);
    QString word = m_text.mid(begin, end - begin);
    if (word.startsWith(u'-')) {
        word.remove(0, 1);
    } else {
        // The hyphen stands alone before it.
        const QStringView before = QStringView(m_text).left(begin).trimmed();
        require(before.endsWith(u'-'), "a field begins with a hyphen");
    }
    if (word == keyword) {
        const int next = nextWord(end);
        end = wordEnd(next);
        word = m_text.mid(next, end - next);
    }
    const QString name = decoded(element->name);
    require(isNameFor(name, word), "a field has its name in the message", name.toStdString());
    return end;
}

void DocumentCheck::checkData(const xmlNode* element, Stretch stretch, int behindName) const
{
    const QString data = textOf(element);
    if (data.isEmpty())
        return;
    const auto standsAt = [this, &data](int from) {
        while (from < m_text.size() && m_text.at(from).isSpace())
            ++from;
        return allowedText(m_text.mid(from, data.size())) == data ? from : -1;
    };
    int from = standsAt(behindName);
    if (from == -1 && !isTrue(element, "valid")) {
        // An unknown block, with its -BEGIN. Of "- BEGIN" the second word is where it begins.
        const bool isJoined = m_text.at(stretch.begin) != u'-';
        from = standsAt(isJoined ? static_cast<int>(m_text.lastIndexOf(u'-', stretch.begin))
                                 : stretch.begin);
    }
    require(from != -1, "data stands behind the name of its field", data.toStdString());
    require(from + data.size() <= stretch.end, "data lies within its field", data.toStdString());
}

DocumentCheck::Stretch DocumentCheck::stretchOf(const xmlNode* element) const
{
    const Stretch stretch{position(element, "field_begin"), position(element, "field_end")};
    require(stretch.begin >= 0, "a field has a begin");
    require(stretch.end == -1 || stretch.end > stretch.begin, "a field ends behind its begin");
    const bool endsWord =
        stretch.end == -1 || stretch.end == m_text.size() ||
        (!isSeparator(m_text.at(stretch.end - 1)) && isSeparator(m_text.at(stretch.end)));
    require(endsWord || reachOf(stretch) > stretch.end, "a field ends where a word ends");
    return stretch;
}

int DocumentCheck::position(const xmlNode* element, const char* attribute) const
{
    const int value = std::stoi(valueOf(element, attribute));
    require(value >= -1 && value <= m_text.size(), "a position lies in the text");
    return value;
}

int DocumentCheck::wordEnd(int begin) const
{
    int end = begin;
    while (end < m_text.size() && !isSeparator(m_text.at(end)))
        ++end;
    return end;
}

int DocumentCheck::nextWord(int from) const
{
    while (from < m_text.size() && isSeparator(m_text.at(from)))
        ++from;
    return from;
}
