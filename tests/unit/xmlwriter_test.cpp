// The XML writer: its layout is that of QDomDocument::toString(4), and whatever it is given, the
// document is well-formed.

#include "output/xmlchar.h"
#include "output/xmlwriter.h"

#include <QDomDocument>
#include <QString>

#include <gtest/gtest.h>

#include <libxml/chvalid.h>

#include <algorithm>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

// A tree that both XmlWriter and QDomDocument can write.
struct Node
{
    QString name; // empty: the node is a text
    QString text;
    std::vector<std::pair<std::string, QString>> attributes;
    std::vector<Node> children;
};

void writeTo(XmlWriter* writer, const Node& node)
{
    if (node.name.isEmpty()) {
        writer->text(node.text);
        return;
    }
    writer->startElement(node.name);
    for (const auto& [name, value] : node.attributes)
        writer->attribute(name, QStringView(value));
    for (const Node& child : node.children)
        writeTo(writer, child);
    writer->endElement();
}

std::string written(const Node& root)
{
    XmlWriter writer(0);
    writeTo(&writer, root);
    return std::string(writer.takeDocument().view());
}

QDomNode toDom(QDomDocument* dom, const Node& node)
{
    if (node.name.isEmpty())
        return dom->createTextNode(node.text);
    QDomElement element = dom->createElement(node.name);
    for (const auto& [name, value] : node.attributes)
        element.setAttribute(QString::fromStdString(name), value);
    for (const Node& child : node.children)
        element.appendChild(toDom(dom, child));
    return element;
}

std::string domWritten(const Node& root)
{
    QDomDocument dom;
    dom.appendChild(toDom(&dom, root));
    return dom.toString(4).toStdString();
}

// The document with the attributes of each element in the order of their names: that of
// QDomDocument changes from process to process. Attribute values must not hold a raw quote.
std::string withSortedAttributes(const std::string& xml)
{
    std::string result;
    for (size_t in = 0; in < xml.size();) {
        const size_t nameEnd =
            xml[in] == '<' ? xml.find_first_of(" />", in + 1) : std::string::npos;
        if (nameEnd == std::string::npos) {
            result += xml[in++];
            continue;
        }
        result.append(xml, in, nameEnd - in);
        std::map<std::string, std::string> attributes;
        for (in = nameEnd; xml[in] == ' ';) {
            const size_t equals = xml.find('=', in);
            const size_t valueEnd = xml.find('"', equals + 2) + 1;
            attributes[xml.substr(in, equals - in)] = xml.substr(equals, valueEnd - equals);
            in = valueEnd;
        }
        for (const auto& [name, value] : attributes)
            result += name + value;
    }
    return result;
}

// Random trees, the same in every run.
class TreeMaker
{
public:
    explicit TreeMaker(unsigned seed) : m_random(seed) {}

    Node element(int depth)
    {
        Node node;
        node.name = pick({u"A", u"ITEM", u"a.b-c_1", u"ПОЛЕ", u"_x"});
        const int attributes = number(4);
        for (int i = 0; i < attributes; ++i)
            node.attributes.emplace_back("at_" + std::to_string(i), text());
        const int children = depth > 0 ? number(5) : 0;
        for (int i = 0; i < children; ++i)
            node.children.push_back(number(3) == 0 ? textNode() : element(depth - 1));
        if (children == 0 && number(2) == 0)
            node.children.push_back(textNode());
        return node;
    }

private:
    int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(m_random); }

    QString pick(std::initializer_list<const char16_t*> choices)
    {
        return QString::fromUtf16(*(choices.begin() + number(static_cast<int>(choices.size()))));
    }

    QString text()
    {
        QString text;
        const int parts = number(6);
        for (int i = 0; i < parts; ++i)
            text += pick({u"A",      u"word",   u" ",      u"\n",     u"\t",
                          u"\r",     u"&",      u"<",      u">",      u"]",
                          u"]]",     u"]]>",    u"\"",     u"'",      u"&amp;",
                          u"Ж",      u"\u00a0", u"\u2028", u"\ufeff", u"\U0001F6E9",
                          u"\ud7ff", u"\ue000", u"\ufffd", u"\u007f", u"\u0085"});
        return text;
    }

    Node textNode()
    {
        Node node;
        node.text = text();
        return node;
    }

    std::mt19937 m_random;
};

TEST(XmlWriter, WritesRandomTreesLikeQDomDocument)
{
    constexpr unsigned trees = 600;
    unsigned mixed = 0;
    for (unsigned seed = 0; seed < trees; ++seed) {
        const Node tree = TreeMaker(seed).element(static_cast<int>(seed % 6));
        const std::string ours = written(tree);
        ASSERT_EQ(withSortedAttributes(ours), withSortedAttributes(domWritten(tree)))
            << "seed " << seed;
        mixed += ours.find("</") != ours.rfind("</") ? 1 : 0;
    }
    EXPECT_GT(mixed, trees / 2); // most trees are worth comparing
}

TEST(XmlWriter, KeepsTheOrderOfAttributes)
{
    XmlWriter writer(0);
    writer.startElement(u"E");
    writer.attribute("z", std::string_view("1"));
    writer.attribute("a", QStringView(u"Я"));
    writer.attribute("m", -2147483647 - 1);
    writer.attribute("n", 0);
    writer.endElement();
    EXPECT_EQ(writer.takeDocument().view(), "<E z=\"1\" a=\"Я\" m=\"-2147483648\" n=\"0\"/>\n");
}

TEST(XmlWriter, EmptyTextIsContent)
{
    XmlWriter writer(0);
    writer.startElement(u"E");
    writer.text(u"");
    writer.endElement();
    EXPECT_EQ(writer.takeDocument().view(), "<E></E>\n");
}

TEST(XmlWriter, IsEmptyAfterTheDocumentWasTaken)
{
    XmlWriter writer(100);
    writer.startElement(u"A");
    writer.endElement();
    EXPECT_EQ(writer.takeDocument().view(), "<A/>\n");
    writer.startElement(u"B");
    writer.endElement();
    EXPECT_EQ(writer.takeDocument().view(), "<B/>\n");
}

TEST(XmlWriter, GrowsBeyondItsHint)
{
    const QString text(100000, u'&');
    XmlWriter writer(0);
    writer.startElement(u"E");
    writer.attribute("a", QStringView(text));
    writer.text(text);
    writer.endElement();
    const std::string document = std::string(writer.takeDocument().view());
    EXPECT_EQ(document.size(),
              200000 * std::string("&amp;").size() + std::string("<E a=\"\"></E>\n").size());
    EXPECT_EQ(std::count(document.begin(), document.end(), '&'), 200000);
}

TEST(XmlWriter, EscapeOfSectionEndLooksAcrossTheInnerChunks)
{
    for (int length = 4090; length <= 4100; ++length) {
        const QString text = QString(length, u'x') + QStringLiteral("]]>");
        XmlWriter writer(0);
        writer.startElement(u"E");
        writer.text(text);
        writer.endElement();
        EXPECT_EQ(writer.takeDocument().view(),
                  "<E>" + std::string(static_cast<size_t>(length), 'x') + "]]&gt;</E>\n");
    }
}

TEST(XmlWriter, DeepTreesNeedNoStack)
{
    constexpr int depth = 20000;
    XmlWriter writer(0);
    for (int i = 0; i < depth; ++i)
        writer.startElement(u"E");
    for (int i = 0; i < depth; ++i)
        writer.endElement();
    const std::string document = std::string(writer.takeDocument().view());
    EXPECT_EQ(std::count(document.begin(), document.end(), '<'), 2 * depth - 1);
}

// Well-formedness

std::string writtenText(const QString& text)
{
    XmlWriter writer(0);
    writer.startElement(u"E");
    writer.attribute("a", QStringView(text));
    writer.text(text);
    writer.endElement();
    return std::string(writer.takeDocument().view());
}

TEST(XmlWriterCharacters, ThatXmlCannotHoldBecomeReplacements)
{
    for (const char16_t c :
         {u'\0', u'\x1', u'\x8', u'\v', u'\f', u'\xe', u'\x1f', u'\xfffe', u'\xffff'}) {
        const QString text = QStringLiteral("A") + QChar(c) + QStringLiteral("B");
        EXPECT_EQ(writtenText(text), "<E a=\"A\ufffdB\">A\ufffdB</E>\n") << std::hex << +c;
    }
}

TEST(XmlWriterCharacters, LoneSurrogatesBecomeReplacements)
{
    const QChar high(0xd83d);
    const QChar low(0xdee9);
    EXPECT_EQ(writtenText(QString(high)), "<E a=\"\ufffd\">\ufffd</E>\n");
    EXPECT_EQ(writtenText(QString(low) + u'A'), "<E a=\"\ufffdA\">\ufffdA</E>\n");
    EXPECT_EQ(writtenText(QString(low) + high), "<E a=\"\ufffd\ufffd\">\ufffd\ufffd</E>\n");
    EXPECT_EQ(writtenText(QString(high) + high + low),
              "<E a=\"\ufffd\U0001F6E9\">\ufffd\U0001F6E9</E>\n");
}

TEST(XmlWriterCharacters, AtTheEdgesOfWhatXmlHoldsAreKept)
{
    for (const char* text : {" ", "\u007f", "\u0080", "\u07ff", "\u0800", "\ud7ff", "\ue000",
                             "\ufffd", "\U00010000", "\U0001FFFE", "\U0010FFFF"})
        EXPECT_EQ(writtenText(QString::fromUtf8(text)),
                  "<E a=\"" + std::string(text) + "\">" + text + "</E>\n");
}

TEST(XmlWriterCharacters, ThatAReaderWouldChangeAreEscaped)
{
    EXPECT_EQ(writtenText(QStringLiteral("\t\n\r")), "<E a=\"&#x9;&#xa;&#xd;\">\t\n&#xd;</E>\n");
}

struct NameCase
{
    QString name;
    const char* written;
};

class XmlWriterName : public testing::TestWithParam<NameCase>
{
};

TEST_P(XmlWriterName, HoldsOnlyWhatAPlainNameMay)
{
    XmlWriter writer(0);
    writer.startElement(GetParam().name);
    writer.text(u"x");
    writer.endElement();
    const std::string name = GetParam().written;
    EXPECT_EQ(writer.takeDocument().view(), "<" + name + ">x</" + name + ">\n");
}

INSTANTIATE_TEST_SUITE_P(
    Names, XmlWriterName,
    testing::Values(
        NameCase{QStringLiteral("ARCID"), "ARCID"}, NameCase{QStringLiteral("_a.B-9"), "_a.B-9"},
        NameCase{QStringLiteral("A/B"), "A_x002F_B"}, NameCase{QStringLiteral("1X"), "_x0031_X"},
        NameCase{QStringLiteral("-X"), "_x002D_X"}, NameCase{QStringLiteral(".X"), "_x002E_X"},
        NameCase{QStringLiteral(":"), "_x003A_"}, NameCase{QStringLiteral("A:B"), "A_x003A_B"},
        NameCase{QStringLiteral("<&\">"), "_x003C__x0026__x0022__x003E_"},
        NameCase{QStringLiteral(u"\u00b7"), "_x00B7_"},
        NameCase{QStringLiteral(u"A\u00b7"), "A\u00b7"}, NameCase{QStringLiteral(u"ПОЛЕ"), "ПОЛЕ"},
        NameCase{QStringLiteral(u"A\u00a0B"), "A_x00A0_B"},
        NameCase{QStringLiteral(u"A\ufffeB"), "A_xFFFE_B"},
        NameCase{QString(u'A') + QChar(), "A_x0000_"}, NameCase{QString(QChar(0xd800)), "_xD800_"},
        NameCase{QString(u'A') + QChar(0xdc00), "A_xDC00_"},
        NameCase{QStringLiteral(u"\U0001F6E9"), "_x1F6E9_"},
        NameCase{QStringLiteral(u"X\ufffd"), "X_xFFFD_"},
        NameCase{QStringLiteral(u"\u4e00\u3005"), "\u4e00\u3005"},
        NameCase{QStringLiteral(u"\U000F0000"), "_xF0000_"},
        NameCase{QStringLiteral(u"\U0010FFFF"), "_x10FFFF_"}));

// A name character is one that the fifth edition of XML 1.0 and also the earlier ones allow. The
// fifth edition has the ranges below (without the colon, which separates prefix and name), and
// libxml2 has tables for the earlier ones. Every character is checked.

using Ranges = std::vector<std::pair<char32_t, char32_t>>;

const Ranges AllowedRanges = {
    {0x9, 0xa}, {0xd, 0xd}, {0x20, 0xd7ff}, {0xe000, 0xfffd}, {0x10000, 0x10ffff}};
const Ranges NameStartRanges = {
    {U'A', U'Z'},     {U'_', U'_'},     {U'a', U'z'},     {0xc0, 0xd6},     {0xd8, 0xf6},
    {0xf8, 0x2ff},    {0x370, 0x37d},   {0x37f, 0x1fff},  {0x200c, 0x200d}, {0x2070, 0x218f},
    {0x2c00, 0x2fef}, {0x3001, 0xd7ff}, {0xf900, 0xfdcf}, {0xfdf0, 0xfffd}, {0x10000, 0xeffff}};
const Ranges OtherNameRanges = {
    {U'-', U'.'}, {U'0', U'9'}, {0xb7, 0xb7}, {0x300, 0x36f}, {0x203f, 0x2040}};

bool isIn(const Ranges& ranges, char32_t c)
{
    return std::any_of(ranges.begin(), ranges.end(),
                       [c](const auto& range) { return c >= range.first && c <= range.second; });
}

bool isOldNameStart(char32_t c)
{
    return c == U'_' || xmlIsBaseCharQ(c) || xmlIsIdeographicQ(c);
}

bool isOldName(char32_t c)
{
    return isOldNameStart(c) || c == U'.' || c == U'-' || xmlIsDigitQ(c) || xmlIsCombiningQ(c) ||
           xmlIsExtenderQ(c);
}

template <typename Function, typename Expected>
void expectForEveryCharacter(Function function, Expected expected)
{
    for (char32_t c = 0; c <= 0x110000; ++c)
        ASSERT_EQ(function(c), expected(c)) << std::hex << static_cast<unsigned>(c);
}

TEST(XmlChar, AllowsWhatADocumentMayHold)
{
    expectForEveryCharacter(XmlChar::isAllowed, [](char32_t c) { return isIn(AllowedRanges, c); });
}

TEST(XmlChar, KnowsHowANameBegins)
{
    expectForEveryCharacter(XmlChar::isNameStart, [](char32_t c) {
        return isIn(NameStartRanges, c) && isOldNameStart(c);
    });
}

TEST(XmlChar, KnowsHowANameGoesOn)
{
    expectForEveryCharacter(XmlChar::isName, [](char32_t c) {
        return (isIn(NameStartRanges, c) || isIn(OtherNameRanges, c)) && isOldName(c);
    });
}

} // namespace
