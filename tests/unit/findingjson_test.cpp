// Findings as lines of JSON.

#include "findingjson.h"

#include <gtest/gtest.h>

namespace {

TEST(FindingJson, OfARuleSetHasItsPlaceAndDefinition)
{
    QJsonObject finding =
        findingJson(false, QStringLiteral("term in \"\" empty"), QStringLiteral("A\tB"));
    insertRecord(QStringLiteral("FL"), QStringLiteral("terms.xml"), 3, 7, &finding);
    EXPECT_EQ(jsonLine(finding), "{\"column\":7,\"detail\":\"A\\tB\",\"file\":\"terms.xml\","
                                 "\"line\":3,\"name\":\"FL\",\"severity\":\"error\","
                                 "\"text\":\"term in \\\"\\\" empty\"}\n");
}

TEST(FindingJson, OfAMessageHasItsStretch)
{
    const adexp::RuleSet rules(adexp::BuiltIn);
    const adexp::Result result = rules.convert("Q\u007f\u009b\u202e -TITLE RFI -ARCID OAL271");
    EXPECT_EQ(jsonLine(findingJson(result.findings()[0])),
              "{\"begin\":0,\"detail\":\"Q\\u007f\\u009b\\u202e\",\"end\":4,"
              "\"severity\":\"warning\",\"text\":\"ignore word\"}\n");
}

TEST(FindingJson, OfARuleSetWithoutRecordHasNoPlace)
{
    const adexp::RuleSet rules("/nowhere/adexp.ini");
    EXPECT_EQ(jsonLine(findingJson(rules.findings()[0])),
              "{\"severity\":\"error\",\"text\":\"file path is empty\"}\n");
}

} // namespace
