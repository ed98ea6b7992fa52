// Findings as lines of JSON.

#include "findingjson.h"

#include <gtest/gtest.h>

namespace {

std::string lineOf(const FindingFacts& finding)
{
    return jsonLine(findingJson(finding));
}

TEST(FindingJson, OfARuleSetHasItsPlaceAndDefinition)
{
    FindingFacts finding;
    finding.text = QStringLiteral("term in \"\" empty");
    finding.detail = QStringLiteral("A\tB");
    finding.file = QStringLiteral("terms.xml");
    finding.line = 3;
    finding.column = 7;
    finding.name = QStringLiteral("FL");
    finding.begin = 5;
    EXPECT_EQ(lineOf(finding), "{\"column\":7,\"detail\":\"A\\tB\",\"file\":\"terms.xml\","
                               "\"line\":3,\"name\":\"FL\",\"severity\":\"error\","
                               "\"text\":\"term in \\\"\\\" empty\"}\n");
}

TEST(FindingJson, OfAMessageHasItsStretch)
{
    FindingFacts finding;
    finding.isWarning = true;
    finding.text = QStringLiteral("ignore word");
    finding.detail = QStringLiteral("Q\n\u007f\u009b\u202e");
    finding.begin = 0;
    finding.end = 1;
    EXPECT_EQ(lineOf(finding), "{\"begin\":0,\"detail\":\"Q\\n\\u007f\\u009b\\u202e\",\"end\":1,"
                               "\"severity\":\"warning\",\"text\":\"ignore word\"}\n");
}

TEST(FindingJson, WithoutAPlaceHasNone)
{
    FindingFacts finding;
    finding.text = QStringLiteral("x");
    EXPECT_EQ(lineOf(finding), "{\"severity\":\"error\",\"text\":\"x\"}\n");
}

} // namespace
