// Where the records of a rule file, their expressions and examples stand.

#include "rulefile.h"

#include "support/rulefolder.h"

#include <gtest/gtest.h>

namespace {

std::vector<RuleRecord> read(const QByteArray& content)
{
    const RuleFolder folder;
    std::vector<RuleRecord> records;
    readRuleFile(folder.write(QStringLiteral("terms.xml"), content), QStringLiteral("simpleTerm"),
                 &records);
    return records;
}

std::string text(const SourcePlace& place)
{
    return std::to_string(place.line) + ':' + std::to_string(place.column);
}

TEST(RuleFile, HasRecordsWithPlaces)
{
    const auto records = read("<r>\n"
                              "  <!-- <simpleTerm> --> <simpleTerm name='A'\n"
                              "    active='false'/>\n"
                              "  <other name='B'><description>x</description></other>\n"
                              "  <simpleTerm name='C' unused='true'><term>D</term></simpleTerm>\n"
                              "</r>");
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(text(records[0].place), "2:25");
    EXPECT_FALSE(records[0].isActive);
    EXPECT_FALSE(records[0].isForeign);
    EXPECT_EQ(records[0].expression(), nullptr);
    EXPECT_EQ(text(records[1].place), "4:3");
    EXPECT_TRUE(records[1].isForeign);
    EXPECT_FALSE(records[1].isMeantUnused);
    EXPECT_TRUE(records[2].isMeantUnused);
    EXPECT_EQ(text(records[2].place), "5:3");
    EXPECT_EQ(text(records[2].expression()->place), "5:44");
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
    const auto records = read(QByteArray("<!DOCTYPE r [<!ENTITY e 'XY'>]><r><simpleTerm>\n<term>") +
                              GetParam().term + "</term></simpleTerm></r>");
    ASSERT_EQ(records.size(), 1U);
    const auto places = records[0].expression()->placesInExpression();
    ASSERT_GT(places.size(), static_cast<std::size_t>(GetParam().position));
    EXPECT_EQ(text(places[static_cast<std::size_t>(GetParam().position)]), GetParam().place);
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
        PlaceCase{"Section", "A <![CDATA[B | C]]> D", 4, "2:20"},
        PlaceCase{"BehindSection", "A <![CDATA[B]]>C D", 5, "2:24"},
        PlaceCase{"LongerInUpperCase", "\xC3\x9F B", 3, "2:9"},
        PlaceCase{"Entity", "A &e; B", 2, "2:9"}, PlaceCase{"InsideEntity", "A &e; B", 3, "2:9"},
        PlaceCase{"OtherLetters", "\xD0\x90 B", 2, "2:9"}),
    [](const auto& testCase) { return std::string(testCase.param.name); });

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0) // Qt 5 does not read such references
INSTANTIATE_TEST_SUITE_P(PastTheBasicPlane, PlaceInAnExpression,
                         testing::Values(PlaceCase{"Reference", "&#x1F600;B", 2, "2:16"}));
#endif

TEST(RuleFile, HasExamplesWithoutTheSpaceAroundThem)
{
    const auto records = read("<r><simpleTerm>\n"
                              "<example>\n"
                              "  A B\n"
                              "</example><example/></simpleTerm></r>");
    ASSERT_EQ(records.size(), 1U);
    ASSERT_EQ(records[0].parts.size(), 2U);
    const SourceText example = records[0].parts[0].content.trimmed();
    EXPECT_EQ(example.text, QStringLiteral("A B"));
    EXPECT_EQ(text(example.place), "3:3");
    EXPECT_EQ(text(example.placesInExpression().at(2)), "3:5");
    EXPECT_EQ(text(records[0].parts[1].content.trimmed().place), "4:21");
}

TEST(RuleFile, InAnotherEncodingHasNoPlaces)
{
    const auto records = read(QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?>\n"
                                         "<r><simpleTerm><term>A \xE9</term></simpleTerm></r>"));
    ASSERT_EQ(records.size(), 1U);
    EXPECT_TRUE(records[0].expression()->placesInExpression().empty());
}

TEST(RuleFile, ThatCannotBeReadHasNoRecords)
{
    std::vector<RuleRecord> records;
    EXPECT_FALSE(readRuleFile(QStringLiteral("/nowhere.xml"), {}, &records));
    EXPECT_TRUE(read("<r><simpleTerm></r>").empty());
    EXPECT_TRUE(read(QByteArray("<a>").repeated(1000) + QByteArray("</a>").repeated(1000)).empty());
}

} // namespace
