// Rule files made to cost as much as they can, or to make the library read what it should not.

#include "hostile/steps.h"

#include "support/diagnosticcapture.h"
#include "support/rulefolder.h"
#include "support/tooutput.h"

#include "grammar/termstd.h"
#include "load/mainclass.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

const QString TermFile = QStringLiteral("simple.xml");

// What becomes of the definition A when this is the file of simple terms.
struct Loaded
{
    bool isRead = false;
    QString ruleText; // of A; empty if there is none
    QStringList reports;
};

Loaded load(const RuleFolder& folder, const QByteArray& content)
{
    const DiagnosticCapture capture;
    MainClass converter(nullptr);
    Loaded loaded;
    loaded.isRead = converter.readTermsXMLFile(folder.write(TermFile, content),
                                               QStringLiteral("simpleTerm"), false, &toOutput);
    if (const TermStd* const term = converter.termsList.search(u"A"))
        loaded.ruleText = term->config.ruleText;
    loaded.reports = capture.debugLines();
    return loaded;
}

// A definition whose text is that of the entity e.
QByteArray definitionOf(const QByteArray& entities)
{
    return "<!DOCTYPE t [" + entities +
           "]>\n<t><simpleTerm name='A'><term>DIGIT &e;</term></simpleTerm></t>";
}

void expectParseError(const Loaded& loaded)
{
    EXPECT_FALSE(loaded.isRead);
    ASSERT_EQ(loaded.reports.size(), 2);
    EXPECT_TRUE(loaded.reports.at(0).contains(QStringLiteral("Parse error at line")))
        << loaded.reports.at(0).toStdString();
}

TEST(HostileRuleFiles, EntitiesThatMultiplyAreRefused)
{
    const RuleFolder folder;
    QByteArray entities = "<!ENTITY e0 'ALPHA'>";
    for (int i = 1; i <= 40; ++i) {
        const QByteArray before = "&e" + QByteArray::number(i - 1) + ';';
        entities += "<!ENTITY e" + QByteArray::number(i) + " '" + before.repeated(10) + "'>";
    }
    expectParseError(load(folder, definitionOf(entities + "<!ENTITY e '&e40;'>")));
}

TEST(HostileRuleFiles, ALargeEntityUsedOftenIsRefused)
{
    const RuleFolder folder;
    const QByteArray large(100'000, 'A');
    const QByteArray often = QByteArray("&large;").repeated(10'000);
    expectParseError(
        load(folder, definitionOf("<!ENTITY large '" + large + "'><!ENTITY e '" + often + "'>")));
}

TEST(HostileRuleFiles, AnEntityUsedOftenIsRefused)
{
    const RuleFolder folder;
    const QByteArray often = QByteArray("&e;").repeated(1'000'000);
    expectParseError(load(folder, "<!DOCTYPE t [<!ENTITY e '" + QByteArray(4000, 'A') +
                                      "'>]>\n<t><simpleTerm name='A'><term>" + often +
                                      "</term></simpleTerm></t>"));
}

TEST(HostileRuleFiles, DefaultAttributesOfManyElementsAreRefused)
{
    const RuleFolder folder;
    QByteArray declaration = "<!ATTLIST a";
    for (int i = 0; i < 400; ++i)
        declaration += " b" + QByteArray::number(i) + " CDATA 'x'";
    expectParseError(load(folder, "<!DOCTYPE t [" + declaration + ">]>\n<t>" +
                                      QByteArray("<a/>").repeated(1'000'000) + "</t>"));
}

TEST(HostileRuleFiles, AMillionAttributesOfOneElementAreRefused)
{
    const RuleFolder folder;
    QByteArray attributes;
    for (int i = 0; i < 1'000'000; ++i)
        attributes += " b" + QByteArray::number(i) + "=''";
    for (const QByteArray& content :
         {QByteArray("<t" + attributes + "/>"), QByteArray("<!DOCTYPE t>\n<t" + attributes + "/>"),
          QByteArray("<!DOCTYPE t [<!ATTLIST t" + attributes.replace('=', " CDATA ") +
                     ">]>\n<t/>")})
        expectParseError(load(folder, content));
}

TEST(HostileRuleFiles, AnEntityThatIsPartOfItselfIsRefused)
{
    const RuleFolder folder;
    expectParseError(load(folder, definitionOf("<!ENTITY e '&f;'><!ENTITY f '&e;'>")));
}

TEST(HostileRuleFiles, EntitiesOfTheFileItselfAreReplaced)
{
    const RuleFolder folder;
    const Loaded loaded = load(folder, definitionOf("<!ENTITY e 'ALPHA'>"));
    EXPECT_TRUE(loaded.isRead);
    EXPECT_EQ(loaded.ruleText, QStringLiteral("DIGIT ALPHA"));
}

// A pipe to which nobody writes: opening it would wait for ever, and so would this test.
TEST(HostileRuleFiles, NoOtherFileIsRead)
{
    const RuleFolder folder;
    const QByteArray pipe = folder.path(QStringLiteral("pipe")).toUtf8();
    ASSERT_EQ(mkfifo(pipe.constData(), 0600), 0);
    const QByteArray record = "<t><simpleTerm name='A'><term>DIGIT</term></simpleTerm></t>";
    for (const QByteArray& content :
         {definitionOf("<!ENTITY e SYSTEM '" + pipe + "'>"),
          definitionOf("<!ENTITY e SYSTEM 'file://" + pipe + "'>"),
          definitionOf("<!ENTITY e PUBLIC 'x' '" + pipe + "'>"),
          definitionOf("<!ENTITY % p SYSTEM '" + pipe + "'> %p;"),
          QByteArray("<!DOCTYPE t SYSTEM '" + pipe + "'>" + record),
          QByteArray("<?xml-stylesheet href='" + pipe + "'?>" + record),
          QByteArray("<t xmlns:xi='http://www.w3.org/2001/XInclude'><xi:include href='" + pipe +
                     "'/></t>")}) {
        SCOPED_TRACE(content.toStdString());
        load(folder, content);
    }
}

struct FileShape
{
    const char* name;
    const char* before;
    const char* repeated;
    const char* behind;
    double stepsPerByte;
};

constexpr FileShape Shapes[] = {
    {"attribute", "<t a='", "0123456789", "'/>", 0.1},
    {"attributes_like_tags", "<t>", "<e a='>'/>", "</t>", 2.3},
    {"elements", "<t>", "<e/>", "</t>", 1.9},
    {"comments", "<t>", "<!--<a>-->", "</t>", 2.0},
    {"comments_never_closed", "<t>", "<!-- ", "", 0.1},
    {"instructions_never_closed", "<t>", "<?a ", "", 0.1},
    {"quotes", "<t>", "<e '\"'/>", "</t>", 0.1},
    {"document_types", "<!DOCTYPE t [<!ENTITY e '>'>]><t>", "<!DOCTYPE t []>", "</t>", 0.1},
    {"document_type_never_closed", "<!DOCTYPE t [", "<?p?>", "", 0.58},
    {"less_thans", "<t>", "<", "</t>", 0.1},
    {"declarations", "<t>", "<!", "</t>", 0.1},
    {"sections", "<t>", "<![CDATA[<a>]]>", "</t>", 2.6},
    {"records_without_name", "<t>", "<simpleTerm/>", "</t>", 4.9},
    {"records_of_one_name", "<t>", "<simpleTerm name='A'><term>DIGIT</term></simpleTerm>", "</t>",
     2.7},
    {"records_of_another_kind", "<t>", "<SubField name='A'/>", "</t>", 3.0},
    {"disabled_records", "<t>", "<simpleTerm active='false'/>", "</t>", 17},
};

class HostileRuleFileShapes : public testing::TestWithParam<FileShape>
{
};

TEST_P(HostileRuleFileShapes, AreReadInStepsInProportionToTheirSize)
{
    const FileShape& shape = GetParam();
    const RuleFolder folder;
    // So many that both files have more than a document type may have: what is too large takes
    // other steps than what is not.
    constexpr int Count = 3000;
    expectLinear(
        [&](int count) {
            const QByteArray content =
                shape.before + QByteArray(shape.repeated).repeated(count) + shape.behind;
            const Loaded loaded = load(folder, content);
            std::int64_t bytes = content.size();
            for (const QString& report : loaded.reports)
                bytes += report.size();
            return bytes;
        },
        Count, shape.stepsPerByte);
}

INSTANTIATE_TEST_SUITE_P(, HostileRuleFileShapes, testing::ValuesIn(Shapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

TEST(HostileRuleFiles, AnAttributeMayHaveTenMegabytes)
{
    const RuleFolder folder;
    const QByteArray large(10'000'000, 'x');
    const Loaded other = load(folder, "<t a='" + large + "'><simpleTerm name='A' b='" + large +
                                          "'><term>DIGIT</term></simpleTerm></t>");
    EXPECT_TRUE(other.isRead);
    EXPECT_EQ(other.ruleText, QStringLiteral("DIGIT"));
    const Loaded named =
        load(folder, "<t><simpleTerm name='" + large + "'><term>DIGIT |</term></simpleTerm></t>");
    EXPECT_TRUE(named.isRead);
    ASSERT_EQ(named.reports.size(), 1);
    EXPECT_TRUE(named.reports.at(0).contains(QString::fromLatin1(large).toUpper()));
}

} // namespace
