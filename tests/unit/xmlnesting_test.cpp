// Rule files that nest too deep are refused before the XML reader has to do with them.

#include "xmlnesting.h"

#include "support/diagnosticcapture.h"
#include "support/rulefolder.h"

#include "mainclass.h"

#include <QDomDocument>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {

using XmlNesting::MaxDepth;
using XmlNesting::tooDeepElement;

QByteArray nested(int depth, const QByteArray& inner = QByteArray())
{
    return QByteArray("<a>").repeated(depth) + inner + QByteArray("</a>").repeated(depth);
}

TEST(XmlNesting, ElementsUpToTheLimitPass)
{
    EXPECT_FALSE(tooDeepElement(nested(MaxDepth)).has_value());
    EXPECT_FALSE(
        tooDeepElement(nested(MaxDepth - 1, QByteArray("<b/>").repeated(500))).has_value());
    EXPECT_FALSE(tooDeepElement("<r>" + nested(50).repeated(50) + "</r>").has_value());
}

TEST(XmlNesting, TheFirstElementBeyondTheLimitIsFound)
{
    const auto place = tooDeepElement("\n" + nested(MaxDepth + 1));
    ASSERT_TRUE(place.has_value());
    EXPECT_EQ(place->line, 2);
    EXPECT_EQ(place->column, 3 * (MaxDepth + 1));
    EXPECT_TRUE(tooDeepElement(nested(MaxDepth, "<b/>")).has_value());
}

TEST(XmlNesting, WhatLooksLikeTagsDoesNotHideElements)
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
        EXPECT_EQ(tooDeepElement(content).has_value(), !reader.hasError()) << disguise;
    }
}

TEST(XmlNesting, WhatLooksLikeTagsDoesNotCount)
{
    for (const char* content : {"<!-- <a> -->", "<![CDATA[<a>]]>", "<?p <a> ?>", "<b c='>'/>"})
        EXPECT_FALSE(
            tooDeepElement("<r>" + QByteArray(content).repeated(MaxDepth * 2) + "</r>").has_value())
            << content;
}

TEST(XmlNesting, WiderCharactersAndEntitiesAreLookedThrough)
{
    const QString text = QString::fromLatin1(nested(MaxDepth + 1));
    const QByteArray wide =
        QByteArray("\xff\xfe") +
        QByteArray(reinterpret_cast<const char*>(text.utf16()), static_cast<int>(text.size() * 2));
    EXPECT_TRUE(tooDeepElement(wide).has_value());
    const QByteArray type = "<!DOCTYPE a [<!ENTITY e \"" + nested(60) + "\">]>";
    EXPECT_TRUE(tooDeepElement(type + QByteArray("<a>").repeated(MaxDepth - 50) + "&e;" +
                               QByteArray("</a>").repeated(MaxDepth - 50))
                    .has_value());
    EXPECT_FALSE(tooDeepElement(type + "<a>&e;</a>").has_value());
}

TEST(XmlNesting, AnEncodingInWhichTagsLookOtherwiseHidesNoElements)
{
    QByteArray content = nested(MaxDepth + 1);
    content.replace('<', "+ADw-").replace('>', "+AD4-");
    content = "<?xml version='1.0' encoding='UTF-7'?>\n" + content;
    QDomDocument document; // whether this Qt knows the encoding is up to its build
    EXPECT_EQ(tooDeepElement(content).has_value(), document.setContent(content));
}

TEST(XmlNesting, WhatTheReaderAcceptsHidesNoElements)
{
    for (const char* oddity : {"<x:b/>", "<b c='1' c='2'/>", "&unknown;", "]]>"}) {
        const QByteArray content =
            QByteArray("<!DOCTYPE r><r>").append(oddity) + nested(MaxDepth) + "</r>";
        QDomDocument document;
        EXPECT_EQ(tooDeepElement(content).has_value(), document.setContent(content, true))
            << oddity;
    }
}

TEST(XmlNesting, MalformedContentIsLeftToTheReader)
{
    for (const char* content :
         {"", "<", "<a", "<a b='", "<!--", "<![CDATA[", "<?", "</a>", "<a></b>", "<!", "text"})
        EXPECT_FALSE(tooDeepElement(content).has_value()) << content;
}

TEST(XmlNesting, AFileOfAHundredThousandOpenElementsIsReportedAtOnce)
{
    RuleFolder folder;
    for (const QByteArray& content : {QByteArray("<a>").repeated(100000), nested(100000)}) {
        const QString path = folder.write(QStringLiteral("deep.xml"), content);
        const DiagnosticCapture capture;
        MainClass converter(nullptr);
        QDomDocument document;
        EXPECT_FALSE(converter.ruleDomDocumentsetContent(path, &document));
        EXPECT_EQ(capture.debugLines(),
                  QStringList{QStringLiteral(
                      "bool MainClass::ruleDomDocumentsetContent(const QString&, QDomDocument*) "
                      "\"Parse error at line 1, column 753elements are nested deeper than 250 "
                      "levels\" ")});
    }
}

} // namespace
