// Rule files that nest too deep or grow too much are refused before QDomDocument reads them.

#include "load/xmllimits.h"

#include "support/diagnosticcapture.h"
#include "support/rulefolder.h"
#include "support/smallstack.h"
#include "support/tooutput.h"

#include "load/mainclass.h"

#include <QDomDocument>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <utility>

namespace {

using XmlLimits::firstExcess;
using XmlLimits::Limit;
using XmlLimits::MaxAttributes;
using XmlLimits::MaxDepth;
using XmlLimits::MaxTypeSize;

QByteArray nested(int depth, const QByteArray& inner = QByteArray())
{
    return QByteArray("<a>").repeated(depth) + inner + QByteArray("</a>").repeated(depth);
}

QByteArray utf16(const QByteArray& ascii)
{
    const QString text = QString::fromLatin1(ascii);
    return QByteArray("\xff\xfe") + QByteArray(reinterpret_cast<const char*>(text.utf16()),
                                               static_cast<int>(text.size() * 2));
}

QByteArray elementWithAttributes(int count)
{
    QByteArray tag = "<a";
    for (int i = 0; i < count; ++i)
        tag += " b" + QByteArray::number(i) + (i % 2 == 0 ? "='>'" : "=\"'\"");
    return tag + "/>";
}

QByteArray withType(const QByteArray& declarations, const QByteArray& content)
{
    return "<!DOCTYPE r [" + declarations + "]>\n<r>" + content + "</r>";
}

void expectExcess(Limit limit, const QByteArray& content)
{
    const auto excess = firstExcess(content);
    ASSERT_TRUE(excess.has_value());
    EXPECT_EQ(excess->limit, limit);
}

TEST(XmlLimits, ElementsUpToTheLimitPass)
{
    EXPECT_FALSE(firstExcess(nested(MaxDepth)).has_value());
    EXPECT_FALSE(firstExcess(nested(MaxDepth - 1, QByteArray("<b/>").repeated(500))).has_value());
    EXPECT_FALSE(firstExcess("<r>" + nested(50).repeated(50) + "</r>").has_value());
}

TEST(XmlLimits, TheFirstElementBeyondTheLimitIsFound)
{
    const auto place = firstExcess("\n" + nested(MaxDepth + 1));
    ASSERT_TRUE(place.has_value());
    EXPECT_EQ(place->line, 2);
    EXPECT_EQ(place->column, 3 * (MaxDepth + 1));
    EXPECT_TRUE(firstExcess(nested(MaxDepth, "<b/>")).has_value());
}

TEST(XmlLimits, WhatLooksLikeTagsDoesNotHideElements)
{
    for (const char* disguise :
         {"<!-- </a> -->", "<![CDATA[</a>]]>", "<?p </a> ?>", "/>", "<!--> <b c=' -->",
          "<!---> <b c=' -->", "<b c='/>'></b>", "<b c=\"</a>\"/>", "<b c='&quot;'/>"}) {
        const QByteArray content = QByteArray("<a>").append(disguise).repeated(MaxDepth + 1) +
                                   QByteArray("</a>").repeated(MaxDepth + 1);
        QXmlStreamReader reader(content);
        while (!reader.atEnd())
            reader.readNext();
        ASSERT_TRUE(disguise == QByteArray("<b c=\"</a>\"/>") || !reader.hasError()) << disguise;
        EXPECT_EQ(firstExcess(content).has_value(), !reader.hasError()) << disguise;
    }
}

TEST(XmlLimits, WhatLooksLikeTagsDoesNotCount)
{
    for (const char* content : {"<!-- <a> -->", "<![CDATA[<a>]]>", "<?p <a> ?>", "<b c='>'/>"})
        EXPECT_FALSE(
            firstExcess("<r>" + QByteArray(content).repeated(MaxDepth * 2) + "</r>").has_value())
            << content;
}

TEST(XmlLimits, WiderCharactersAndEntitiesAreLookedThrough)
{
    expectExcess(Limit::Depth, utf16(nested(MaxDepth + 1)));
    const QByteArray type = "<!DOCTYPE a [<!ENTITY e \"" + nested(60) + "\">]>";
    EXPECT_TRUE(firstExcess(type + QByteArray("<a>").repeated(MaxDepth - 50) + "&e;" +
                            QByteArray("</a>").repeated(MaxDepth - 50))
                    .has_value());
    EXPECT_FALSE(firstExcess(type + "<a>&e;</a>").has_value());
}

TEST(XmlLimits, AnEncodingInWhichTagsLookOtherwiseHidesNoElements)
{
    QByteArray content = nested(MaxDepth + 1);
    content.replace('<', "+ADw-").replace('>', "+AD4-");
    content = "<?xml version='1.0' encoding='UTF-7'?>\n" + content;
    QDomDocument document; // some builds of Qt know the encoding, others do not
    EXPECT_EQ(firstExcess(content).has_value(), document.setContent(content));
}

TEST(XmlLimits, WhatTheReaderAcceptsHidesNoElements)
{
    for (const char* oddity : {"<x:b/>", "<b c='1' c='2'/>", "&unknown;", "]]>"}) {
        const QByteArray content =
            QByteArray("<!DOCTYPE r><r>").append(oddity) + nested(MaxDepth) + "</r>";
        QDomDocument document;
        EXPECT_EQ(firstExcess(content).has_value(), document.setContent(content, true)) << oddity;
    }
}

TEST(XmlLimits, MalformedContentIsLeftToTheReader)
{
    for (const char* content :
         {"", "<", "<a", "<a b='", "<!--", "<![CDATA[", "<?", "</a>", "<a></b>", "<!", "text"})
        EXPECT_FALSE(firstExcess(content).has_value()) << content;
}

TEST(XmlLimits, AnElementMayHaveSoManyAttributes)
{
    const QByteArray most = elementWithAttributes(MaxAttributes);
    EXPECT_FALSE(firstExcess("<r>" + most + most + "</r>").has_value());
    EXPECT_FALSE(firstExcess(withType("", most)).has_value());
    const QByteArray more = elementWithAttributes(MaxAttributes + 1);
    for (const QByteArray& content : {QByteArray("<r>\n" + more + "</r>"), withType("", more),
                                      utf16("<r>\n" + more + "</r>")}) {
        expectExcess(Limit::Attributes, content);
        EXPECT_EQ(firstExcess(content)->line, 2);
    }
}

TEST(XmlLimits, TheColumnIsThatOfTheFirstAttributeTooMany)
{
    const QByteArray tag = elementWithAttributes(MaxAttributes + 1);
    const auto excess = firstExcess("<r>\n<!-- \xd0\x96 -->" + tag);
    ASSERT_TRUE(excess.has_value());
    EXPECT_EQ(excess->column, 10 + tag.size() - 2);
}

TEST(XmlLimits, ADocumentTypeMayHaveSoManyBytes)
{
    const QByteArray around = "<!DOCTYPE r []>";
    const QByteArray most(MaxTypeSize + 1 - around.size(), ' ');
    EXPECT_FALSE(firstExcess(withType(most, "")).has_value());
    expectExcess(Limit::TypeSize, withType(most + ' ', ""));
    expectExcess(Limit::TypeSize, utf16(withType(most + ' ', "")));
}

TEST(XmlLimits, WhatLooksLikeTheEndOfADocumentTypeIsNone)
{
    const QByteArray blanks(MaxTypeSize, ' ');
    for (const char* disguise :
         {"<!-- ]> -->", "<?p ]>?>", "<!ENTITY e ']>'>", "<!ENTITY e \"]>\">", "<!ELEMENT r ANY>"})
        expectExcess(Limit::TypeSize, withType(disguise + blanks, ""));
    EXPECT_FALSE(firstExcess("<!DOCTYPE r SYSTEM 'r.dtd'><r>" + blanks + "]></r>").has_value());
}

TEST(XmlLimits, EntitiesThatMakeTheContentMuchLongerAreRefused)
{
    const QByteArray entity = "<!ENTITY e '" + QByteArray(4000, 'A') + "'>";
    EXPECT_FALSE(firstExcess(withType(entity, QByteArray("&e;").repeated(1000))).has_value());
    const QByteArray often = QByteArray("&e;").repeated(2000);
    for (const QByteArray& content : {often, QByteArray("<a b='" + often + "'/>")}) {
        expectExcess(Limit::Growth, withType(entity, content));
        expectExcess(Limit::Growth, utf16(withType(entity, content)));
        expectExcess(Limit::Growth,
                     "<?xml version='1.0' encoding='ISO-8859-1'?>" + withType(entity, content));
    }
    const QByteArray hidden = QByteArray("+ACY-e;").repeated(2000);
    expectExcess(Limit::Growth,
                 "<?xml version='1.0' encoding='UTF-7'?>" + withType(entity, hidden));
}

TEST(XmlLimits, EntitiesWithinEntitiesCountByWhatTheyStandFor)
{
    const QByteArray inner = "<!ENTITY i '" + QByteArray(1000, 'A') + "'>";
    const QByteArray outer = "<!ENTITY e '" + QByteArray("&i;").repeated(1000) + "'>";
    EXPECT_FALSE(firstExcess(withType("<!ENTITY i 'A'><!ENTITY e '&i;&i;'>",
                                      QByteArray("&e;").repeated(200)))
                     .has_value());
    expectExcess(Limit::Growth, withType(inner + outer, QByteArray("&e;").repeated(5)));
    expectExcess(Limit::Growth,
                 withType("<!ENTITY % i '" + QByteArray(1000, 'A') + "'><!ENTITY e '" +
                              QByteArray("%i;").repeated(1000) + "'>",
                          QByteArray("&e;").repeated(5)));
}

// The reader of Qt 5 leaves both out.
TEST(XmlLimits, DefaultAttributesAndNamespacesThatMakeTheContentMuchLongerAreRefused)
{
    const bool countsThem = QT_VERSION >= QT_VERSION_CHECK(6, 0, 0);
    QByteArray defaults = "<!ATTLIST a";
    for (int i = 0; i < 300; ++i)
        defaults += " b" + QByteArray::number(i) + " CDATA 'x'";
    const QByteArray elements = QByteArray("<a/>").repeated(10000);
    for (const QByteArray& content :
         {withType(defaults + '>', elements),
          withType("<!ATTLIST a b CDATA '" + QByteArray(4000, 'x') + "'>", elements),
          QByteArray("<r xmlns='" + QByteArray(4000, 'x') + "'>" + elements + "</r>"),
          QByteArray("<r xmlns:p='" + QByteArray(4000, 'x') + "'>" +
                     QByteArray("<p:a/>").repeated(10000) + "</r>")}) {
        EXPECT_EQ(firstExcess(content).has_value(), countsThem);
        if (countsThem)
            expectExcess(Limit::Growth, content);
    }
    EXPECT_FALSE(firstExcess(withType("<!ATTLIST a b CDATA 'x'>", elements)).has_value());
    EXPECT_FALSE(firstExcess("<r xmlns='http://www.example.com/rules'>" + elements + "</r>"));
}

TEST(XmlLimits, AFileOfAHundredThousandOpenElementsIsReportedAtOnce)
{
    RuleFolder folder;
    for (const QByteArray& content : {QByteArray("<a>").repeated(100000), nested(100000)}) {
        const QString path = folder.write(QStringLiteral("deep.xml"), content);
        const DiagnosticCapture capture;
        MainClass converter(nullptr);
        QDomDocument document;
        EXPECT_FALSE(converter.ruleDomDocumentsetContent(path, &document, &toOutput));
        EXPECT_EQ(capture.debugLines(),
                  QStringList{QStringLiteral(
                      "bool MainClass::ruleDomDocumentsetContent(const QString&, QDomDocument*) "
                      "\"Parse error at line 1, column 753elements are nested deeper than 250 "
                      "levels\" ")});
    }
}

// Three of the levels are the root, the record and the element with its text.
TEST(XmlLimits, TheDeepestFileIsLoadedWithLittleStack)
{
    runWithSmallStack([] {
        RuleFolder folder;
        const QByteArray content = "<t><simpleTerm name='A'><term>" +
                                   nested(MaxDepth - 3, "DIGIT") + "</term></simpleTerm></t>";
        const DiagnosticCapture capture;
        MainClass converter(nullptr);
        EXPECT_TRUE(converter.readTermsXMLFile(folder.write(QStringLiteral("deep.xml"), content),
                                               QStringLiteral("simpleTerm"), false, &toOutput));
        EXPECT_NE(converter.termsList.search(u"A"), nullptr);
        EXPECT_TRUE(capture.lines().empty());
    });
}

TEST(XmlLimits, EachReportNamesItsLimit)
{
    const QByteArray growing =
        withType("<!ENTITY e '" + QByteArray(4000, 'A') + "'>", QByteArray("&e;").repeated(2000));
    const std::pair<QByteArray, const char*> files[] = {
        {nested(MaxDepth + 1), "elements are nested deeper than 250 levels"},
        {elementWithAttributes(MaxAttributes + 1), "an element has more than 250 attributes"},
        {withType(QByteArray(MaxTypeSize, ' '), ""), "the document type is longer than 8192 bytes"},
        {growing, "entities, default attributes and namespaces make the content more than 16 times "
                  "as long as the file"}};
    RuleFolder folder;
    for (const auto& [content, text] : files) {
        const QString path = folder.write(QStringLiteral("rules.xml"), content);
        const DiagnosticCapture capture;
        QDomDocument document;
        EXPECT_FALSE(MainClass::ruleDomDocumentsetContent(path, &document, &toOutput));
        ASSERT_EQ(capture.debugLines().size(), 1);
        const QString line = capture.debugLines().front();
        EXPECT_TRUE(line.endsWith(QLatin1String(text) + QLatin1String("\" ")))
            << line.toStdString();
    }
}

} // namespace
