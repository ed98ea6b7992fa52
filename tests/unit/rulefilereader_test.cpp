// The records of a rule file and their places; files that nest too deep or grow too much.

#include "load/rulefilereader.h"

#include "support/diagnosticcapture.h"
#include "support/rulefolder.h"
#include "support/smallstack.h"
#include "support/tooutput.h"

#include "load/mainclass.h"
#include "rulechecker.h"

#include <QDomDocument>

#include <gtest/gtest.h>

#include <utility>

namespace {

constexpr int MaxDepth = RuleFileReader::MaxDepth;
constexpr int MaxAttributes = RuleFileReader::MaxAttributes;
constexpr int MaxTypeSize = RuleFileReader::MaxTypeSize;

RuleFileReader read(const QByteArray& content, const char* tag = "simpleTerm")
{
    const RuleFolder folder;
    RuleFileReader reader(QLatin1String(tag), true);
    reader.read(folder.write(QStringLiteral("rules.xml"), content));
    return reader;
}

std::vector<RuleRecord> recordsOf(const QByteArray& content, const char* tag = "simpleTerm")
{
    return read(content, tag).records;
}

adexp_code codeOf(const QByteArray& content)
{
    return read(content).fault.code;
}

std::string text(const SourcePlace& place)
{
    return std::to_string(place.line) + ':' + std::to_string(place.column);
}

std::string placeOf(const RuleRecord& record)
{
    return text({record.lineNumber, record.columnNumber});
}

QByteArray utf16(const QByteArray& utf8)
{
    const QString text = QString::fromUtf8(utf8);
    return QByteArray("\xff\xfe") + QByteArray(reinterpret_cast<const char*>(text.utf16()),
                                               static_cast<int>(text.size() * 2));
}

QByteArray nested(int depth, const QByteArray& inner = QByteArray())
{
    return QByteArray("<a>").repeated(depth) + inner + QByteArray("</a>").repeated(depth);
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

TEST(RuleFileReader, GivesRecordsWithPlaces)
{
    const auto records = recordsOf("<r>\n"
                                   "  <!-- <simpleTerm> --> <simpleTerm name='A'\n"
                                   "    active='false'/>\n"
                                   "  <other name='b'><description>x</description></other>\n"
                                   "  <simpleTerm name='C' unused='true'><term>d</term>"
                                   "<term>e</term></simpleTerm>\n"
                                   "</r>");
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(text(records[0].place), "2:25");
    EXPECT_EQ(placeOf(records[0]), "3:20"); // of the end of the start tag
    EXPECT_FALSE(records[0].isActive);
    EXPECT_FALSE(records[0].isForeign);
    EXPECT_EQ(records[0].expression(), nullptr);
    EXPECT_EQ(text(records[1].place), "4:3");
    EXPECT_TRUE(records[1].isForeign);
    EXPECT_FALSE(records[1].isMeantUnused);
    EXPECT_EQ(records[1].recordName, QStringLiteral("B"));
    EXPECT_TRUE(records[2].isMeantUnused);
    EXPECT_EQ(text(records[2].place), "5:3");
    EXPECT_EQ(records[2].ruleText, QStringLiteral("D"));
    EXPECT_EQ(records[2].expression()->text, QStringLiteral("d"));
    EXPECT_EQ(text(records[2].expression()->places.at(0)), "5:44");
}

TEST(RuleFileReader, KeepsOnlyWhatDefinitionsNeedUnlessAskedForMore)
{
    const RuleFolder folder;
    RuleFileReader reader(QStringLiteral("simpleTerm"), false);
    ASSERT_TRUE(reader.read(folder.write(
        QStringLiteral("terms.xml"),
        "<r><simpleTerm name='a'><example>x</example><term>b</term></simpleTerm></r>")));
    ASSERT_EQ(reader.records.size(), 1U);
    EXPECT_EQ(reader.records[0].recordName, QStringLiteral("A"));
    EXPECT_EQ(reader.records[0].ruleText, QStringLiteral("B"));
    EXPECT_TRUE(reader.records[0].parts.empty());
}

TEST(RuleFileReader, TakesNameAndExpressionOfAMessageRuleFromTitleAndFields)
{
    const auto records = recordsOf(
        "<r><msgRule name='X' title='a'><term>y</term><fields>b</fields></msgRule></r>", "msgRule");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].recordName, QStringLiteral("A"));
    EXPECT_EQ(records[0].ruleText, QStringLiteral("B"));
}

TEST(RuleFileReader, LeavesPrefixesOut)
{
    const auto records =
        recordsOf("<r xmlns:p='u:v'><p:simpleTerm p:name='A'><p:term>B</p:term></p:simpleTerm>"
                  "<simpleTerm name='C' p:name='D'/><simpleTerm p:name='D' name='C'/></r>");
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].tagName, QStringLiteral("simpleTerm"));
    EXPECT_EQ(records[0].recordName, QStringLiteral("A"));
    EXPECT_EQ(records[0].ruleText, QStringLiteral("B"));
    EXPECT_EQ(records[1].recordName, QStringLiteral("D")); // the last one counts
    EXPECT_EQ(records[2].recordName, QStringLiteral("C"));
}

TEST(RuleFileReader, CountsLinesAndColumnsAsQtDoes)
{
    for (const char* content :
         {"<r><simpleTerm/>\n\n <simpleTerm\n name='A' ></simpleTerm></r>",
          "<r>\r\n<simpleTerm/>\r\n  <simpleTerm name='x'\r\n b='c' ></simpleTerm></r>",
          "<r>\r<simpleTerm/>\r  <simpleTerm name='x'\r b='c' ></simpleTerm></r>",
          "<r>\r\r\n\n\r<simpleTerm name='q\r\nz'/> <simpleTerm a='&#10;'/></r>",
          "\xef\xbb\xbf<r><simpleTerm/>\n<simpleTerm/></r>",
          "<r>\xf0\x9f\x98\x80\xd0\x96<simpleTerm/>\n\xf0\x9f\x98\x80<simpleTerm "
          "name='\xf0\x9f\x98\x80'/></r>",
          "<!DOCTYPE r [\n<!-- x\n -->\n<!ELEMENT r ANY>\n<?p\n?>\n<!ENTITY e 'x\ny'>]>\n"
          "<r><simpleTerm/>&#x1f600;<![CDATA[\n]]><simpleTerm/></r>",
          "<!DOCTYPE r [<!ENTITY e '<simpleTerm/>'>]><r>\n&e;<simpleTerm/></r>",
          "<?xml version='1.0' encoding='ISO-8859-1'?>\n<r>\xe9<simpleTerm/><simpleTerm/></r>"}) {
        for (const QByteArray& bytes : {QByteArray(content), utf16(content)}) {
            if (QByteArray(content).contains("ISO") && bytes != content)
                continue;
            QXmlStreamReader reader(bytes);
            const auto records = recordsOf(bytes);
            ASSERT_EQ(records.size(), 2U) << content;
            std::size_t i = 0;
            while (!reader.atEnd()) {
                reader.readNext();
                if (reader.isStartElement() && reader.name() == QLatin1String("simpleTerm")) {
                    EXPECT_EQ(placeOf(records.at(i++)), std::to_string(reader.lineNumber()) + ':' +
                                                            std::to_string(reader.columnNumber()))
                        << content;
                }
            }
        }
    }
}

TEST(RuleFileReader, GivesTheTextOfTheExpressionAsQtDoes)
{
    for (const char* term :
         {" A <b> B </b> C ", "A<!-- --> <!-- -->B", "A<b/> \n<b/>B", "A<?x?> <?x?>B",
          "A<![CDATA[ ]]>B", "A<![CDATA[]]> <![CDATA[]]>B", "A<![CDATA[x<&]]> <![CDATA[y]]> B",
          "A<b/>&#32;<b/>B", "A&lt;&amp;&gt; &quot;&apos;", "A<b/> &e; <b/>B", "A<b/>&s;<b/>B",
          "A &k; <b/>B", "&e; &e;", " \n ", "", "\xc2\xa0 \xe2\x80\x83",
          "A\r\nB\rC&#13;D&#13;&#10;E\tF", "A&p;B", "A&x;B"}) {
        const QByteArray content =
            QByteArray("<!DOCTYPE r [<!ENTITY e 'x'><!ENTITY s ' '><!ENTITY k ' <b/> '><!ENTITY % "
                       "d '<!ENTITY p \"Z\">'>%d;<!ENTITY x SYSTEM 'x'>]><r><simpleTerm><term>") +
            term + "</term><term>X</term></simpleTerm></r>";
        const auto records = recordsOf(content);
        ASSERT_EQ(records.size(), 1U) << term;
        const RecordPart& part = records[0].parts.at(0);
        EXPECT_EQ(part.places.size(), static_cast<std::size_t>(part.text.size()) + 1) << term;
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0) // Qt 5 differs in small things
        QDomDocument document;
        ASSERT_TRUE(document.setContent(content, true)) << term;
        EXPECT_EQ(
            part.text.toStdString(),
            document.documentElement().firstChildElement().firstChildElement().text().toStdString())
            << term;
#endif
    }
}

struct PlaceCase
{
    const char* name;
    const char* term;  // content of <term>, which begins at line 2, column 7
    int position;      // in the simplified upper-case text
    const char* place; // line and column
};

class PlaceInAnExpression : public testing::TestWithParam<PlaceCase>
{
};

TEST_P(PlaceInAnExpression, IsThatOfTheFile)
{
    const QByteArray content =
        QByteArray("<!DOCTYPE r [<!ENTITY e 'XYZ'>]><r><simpleTerm>\n<term>") + GetParam().term +
        "</term></simpleTerm></r>";
    for (const QByteArray& encoded : {content, utf16(content)}) {
        const auto records = recordsOf(encoded);
        ASSERT_EQ(records.size(), 1U);
        const auto places = placesInExpression(*records[0].expression());
        ASSERT_GT(places.size(), static_cast<std::size_t>(GetParam().position));
        EXPECT_EQ(text(places[static_cast<std::size_t>(GetParam().position)]), GetParam().place);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Places, PlaceInAnExpression,
    testing::Values(
        PlaceCase{"First", "ABC", 0, "2:7"}, PlaceCase{"Last", "ABC", 2, "2:9"},
        PlaceCase{"Behind", "ABC", 3, "2:10"}, PlaceCase{"BehindBlanks", "  A   B", 2, "2:13"},
        PlaceCase{"NextLine", "A\n  B", 2, "3:3"}, PlaceCase{"WindowsLine", "A\r\n  B", 2, "3:3"},
        PlaceCase{"Reference", "A &amp; &#x42;&#67; D", 5, "2:21"},
        PlaceCase{"BehindReferences", "A &amp; &#x42;&#67; D", 7, "2:27"},
        PlaceCase{"Comment", "A <!-- B --> B C", 4, "2:22"},
        PlaceCase{"BehindSpaceThatIsNoText", "A<!-- --> <!-- -->B", 1, "2:25"},
        PlaceCase{"Section", "A <![CDATA[B | C]]> D", 4, "2:20"},
        PlaceCase{"BehindSection", "A <![CDATA[B]]>C D", 5, "2:24"},
        PlaceCase{"LongerInUpperCase", "\xC3\x9F B", 3, "2:9"},
        PlaceCase{"Entity", "A &e; B", 2, "2:9"}, PlaceCase{"InsideEntity", "A &e; B", 4, "2:9"},
        PlaceCase{"BehindEntity", "A &e; B", 6, "2:13"},
        PlaceCase{"OtherLetters", "\xD0\x90 B", 2, "2:9"},
        PlaceCase{"PastTheBasicPlane", "\xf0\x9f\x98\x80 B", 3, "2:10"},
        PlaceCase{"ReferencePastTheBasicPlane", "&#x1F600;B", 2, "2:16"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

TEST(RuleFileReader, PlacesInAnotherEncodingAreThoseOfTheFile)
{
    const auto records =
        recordsOf(QByteArray("<?xml version='1.0' encoding='windows-1251'?>\n"
                             "<r><simpleTerm><term>A \xE9 B</term></simpleTerm></r>"));
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].ruleText, QStringLiteral(u"A \u0419 B"));
    EXPECT_EQ(text(placesInExpression(*records[0].expression()).at(4)), "2:26");
}

TEST(RuleFileReader, GivesExamplesWithTheirPlaces)
{
    const auto records = recordsOf("<r><simpleTerm>\n"
                                   "<example>\n"
                                   "  A B\n"
                                   "</example><example/></simpleTerm></r>");
    ASSERT_EQ(records.size(), 1U);
    ASSERT_EQ(records[0].parts.size(), 2U);
    const RecordPart& example = records[0].parts[0];
    EXPECT_EQ(example.text.trimmed(), QStringLiteral("A B"));
    EXPECT_EQ(text(placesInExpression(example).at(0)), "3:3");
    EXPECT_EQ(text(placesInExpression(example).at(2)), "3:5");
    EXPECT_EQ(text(placesInExpression(records[0].parts[1]).at(0)), "4:21");
}

TEST(RuleFileReader, GivesNoRecordOfAFileThatCannotBeRead)
{
    RuleFileReader reader({}, true);
    EXPECT_FALSE(reader.read(QStringLiteral("/nowhere.xml")));
    EXPECT_EQ(reader.fault.code, ADEXP_CODE_UNREADABLE_FILE);
    EXPECT_TRUE(recordsOf("<r><simpleTerm/><simpleTerm></r>").empty());
    EXPECT_TRUE(recordsOf("<r><simpleTerm/>" + nested(1000) + "</r>").empty());
}

TEST(RuleFileReader, AcceptsElementsUpToTheLimit)
{
    EXPECT_EQ(codeOf(nested(MaxDepth)), ADEXP_CODE_NONE);
    EXPECT_EQ(codeOf(nested(MaxDepth - 1, QByteArray("<b/>").repeated(500))), ADEXP_CODE_NONE);
    EXPECT_EQ(codeOf("<r>" + nested(50).repeated(50) + "</r>"), ADEXP_CODE_NONE);
}

TEST(RuleFileReader, RefusesTheFirstElementBeyondTheLimit)
{
    const auto fault = read("\n" + nested(MaxDepth + 1)).fault;
    EXPECT_EQ(fault.code, ADEXP_CODE_XML_TOO_DEEP);
    EXPECT_EQ(text(fault.place), "2:" + std::to_string(3 * (MaxDepth + 1)));
    EXPECT_EQ(codeOf(nested(MaxDepth, "<b/>")), ADEXP_CODE_XML_TOO_DEEP);
    EXPECT_EQ(codeOf(utf16(nested(MaxDepth + 1))), ADEXP_CODE_XML_TOO_DEEP);
}

TEST(RuleFileReader, CountsElementsInEntities)
{
    const QByteArray type = "<!DOCTYPE a [<!ENTITY e \"" + nested(60) + "\">]>";
    EXPECT_EQ(codeOf(type + nested(MaxDepth - 50, "&e;")), ADEXP_CODE_XML_TOO_DEEP);
    EXPECT_EQ(codeOf(type + "<a>&e;</a>"), ADEXP_CODE_NONE);
}

TEST(RuleFileReader, AcceptsSoManyAttributesOfAnElement)
{
    const QByteArray most = elementWithAttributes(MaxAttributes);
    EXPECT_EQ(codeOf("<r>" + most + most + "</r>"), ADEXP_CODE_NONE);
    const QByteArray more = elementWithAttributes(MaxAttributes + 1);
    for (const QByteArray& content : {QByteArray("<r>\n" + more + "</r>"), withType("", more),
                                      utf16("<r>\n" + more + "</r>")}) {
        const auto fault = read(content).fault;
        EXPECT_EQ(fault.code, ADEXP_CODE_XML_TOO_MANY_ATTRIBUTES);
        EXPECT_EQ(fault.place.line, 2);
    }
}

TEST(RuleFileReader, AcceptsSoManyBytesOfADocumentType)
{
    const QByteArray most(MaxTypeSize - QByteArray("<!DOCTYPE r []>").size(), ' ');
    EXPECT_EQ(codeOf(withType(most, "")), ADEXP_CODE_NONE);
    EXPECT_EQ(codeOf(utf16(withType(most, ""))), ADEXP_CODE_NONE);
    EXPECT_EQ(codeOf(withType(most + ' ', "")), ADEXP_CODE_XML_TYPE_TOO_LONG);
    EXPECT_EQ(codeOf(utf16(withType(most + ' ', ""))), ADEXP_CODE_XML_TYPE_TOO_LONG);
    const QByteArray comment = "<!--" + QByteArray(MaxTypeSize, ' ') + "-->";
    EXPECT_EQ(codeOf(comment + "<!DOCTYPE r SYSTEM 'r.dtd'>" + comment + "<r>" + comment + "</r>"),
              ADEXP_CODE_NONE);
}

TEST(RuleFileReader, FindsTheEndOfADocumentType)
{
    const QByteArray blanks(MaxTypeSize, ' ');
    for (const char* disguise :
         {"<!-- ]> -->", "<?p ]>?>", "<!ENTITY e ']>'>", "<!ENTITY e \"]>\">", "<!ELEMENT r ANY>"})
        EXPECT_EQ(codeOf(withType(disguise + blanks, "")), ADEXP_CODE_XML_TYPE_TOO_LONG);
    EXPECT_EQ(codeOf("<!DOCTYPE r SYSTEM '" + blanks + "'><r/>"), ADEXP_CODE_XML_TYPE_TOO_LONG);
}

TEST(RuleFileReader, RefusesEntitiesThatMakeTheContentMuchLonger)
{
    const QByteArray entity = "<!ENTITY e '" + QByteArray(4000, 'A') + "'>";
    EXPECT_EQ(codeOf(withType(entity, QByteArray("&e;").repeated(1000))), ADEXP_CODE_NONE);
    const QByteArray often = QByteArray("&e;").repeated(2000);
    for (const QByteArray& content : {often, QByteArray("<a b='" + often + "'/>")}) {
        EXPECT_EQ(codeOf(withType(entity, content)), ADEXP_CODE_XML_GROWS_TOO_MUCH);
        EXPECT_EQ(codeOf(utf16(withType(entity, content))), ADEXP_CODE_XML_GROWS_TOO_MUCH);
        EXPECT_EQ(codeOf("<?xml version='1.0' encoding='ISO-8859-1'?>" + withType(entity, content)),
                  ADEXP_CODE_XML_GROWS_TOO_MUCH);
    }
}

TEST(RuleFileReader, CountsEntitiesWithinEntitiesByWhatTheyStandFor)
{
    const QByteArray inner = "<!ENTITY i '" + QByteArray(1000, 'A') + "'>";
    const QByteArray outer = "<!ENTITY e '" + QByteArray("&i;").repeated(1000) + "'>";
    EXPECT_EQ(
        codeOf(withType("<!ENTITY i 'A'><!ENTITY e '&i;&i;'>", QByteArray("&e;").repeated(200))),
        ADEXP_CODE_NONE);
    EXPECT_EQ(codeOf(withType(inner + outer, QByteArray("&e;").repeated(3))), ADEXP_CODE_NONE);
    EXPECT_EQ(codeOf(withType(inner + outer, QByteArray("&e;").repeated(5))),
              ADEXP_CODE_XML_GROWS_TOO_MUCH);
}

TEST(RuleFileReader, RefusesDefaultAttributesAndNamespacesThatMakeTheContentMuchLonger)
{
    QByteArray defaults = "<!ATTLIST a";
    for (int i = 0; i < 300; ++i)
        defaults += " b" + QByteArray::number(i) + " CDATA 'x'";
    const QByteArray elements = QByteArray("<a/>").repeated(10000);
    for (const QByteArray& content :
         {withType(defaults + '>', elements),
          withType("<!ATTLIST a b CDATA '" + QByteArray(4000, 'x') + "'>", elements),
          QByteArray("<r xmlns='" + QByteArray(4000, 'x') + "'>" + elements + "</r>"),
          QByteArray("<r xmlns:p='" + QByteArray(4000, 'x') + "'>" +
                     QByteArray("<p:a/>").repeated(10000) + "</r>")})
        EXPECT_EQ(codeOf(content), ADEXP_CODE_XML_GROWS_TOO_MUCH);
    EXPECT_EQ(codeOf(withType("<!ATTLIST a b CDATA 'x'>", elements)), ADEXP_CODE_NONE);
    EXPECT_EQ(codeOf("<r xmlns='http://www.example.com/rules'>" + elements + "</r>"),
              ADEXP_CODE_NONE);
}

TEST(RuleFileReader, AFileOfAHundredThousandOpenElementsIsReportedAtOnce)
{
    RuleFolder folder;
    for (const QByteArray& content : {QByteArray("<a>").repeated(100000), nested(100000)}) {
        const QString path = folder.write(QStringLiteral("deep.xml"), content);
        const DiagnosticCapture capture;
        RuleFileReader reader(QStringLiteral("simpleTerm"), false);
        EXPECT_FALSE(MainClass::ruleDomDocumentsetContent(path, &reader, &toOutput));
        EXPECT_EQ(capture.debugLines(),
                  QStringList{QStringLiteral(
                      "bool MainClass::ruleDomDocumentsetContent(const QString&, QDomDocument*) "
                      "\"Parse error at line 1, column 753elements are nested deeper than 250 "
                      "levels\" ")});
    }
}

// Three of the levels are the root, the record and the element with its text.
TEST(RuleFileReader, TheDeepestFileIsLoadedWithLittleStack)
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

TEST(RuleFileReader, TheDeepestEntitiesAreReadWithLittleStack)
{
    QByteArray general = "<!ENTITY e0 'x'>";
    int count = 0;
    while (general.size() < MaxTypeSize - 100) {
        general += "<!ENTITY e" + QByteArray::number(count + 1) + " '&e" +
                   QByteArray::number(count) + ";'>";
        ++count;
    }
    const QByteArray reference = "&e" + QByteArray::number(count) + ';';
    runWithSmallStack([&] {
        EXPECT_EQ(codeOf(withType(general, reference)), ADEXP_CODE_NONE);
        EXPECT_EQ(codeOf(withType(general, "<a b='" + reference + "'/>")), ADEXP_CODE_NONE);
    });
}

TEST(RuleFileReader, NamesTheLimitInEachReport)
{
    const QByteArray growing =
        withType("<!ENTITY e '" + QByteArray(4000, 'A') + "'>", QByteArray("&e;").repeated(2000));
    const std::pair<QByteArray, const char*> files[] = {
        {nested(MaxDepth + 1), "elements are nested deeper than 250 levels"},
        {elementWithAttributes(MaxAttributes + 1), "an element has more than 250 attributes"},
        {withType(QByteArray(MaxTypeSize, ' '), ""), "the document type is longer than 8192 bytes"},
        {growing, "entities, default attributes and namespaces make the content more than 16 times "
                  "as long as the file"}};
    for (const auto& [content, words] : files)
        EXPECT_EQ(read(content).fault.text, QLatin1String(words));
}

} // namespace
