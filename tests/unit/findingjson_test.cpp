// Findings as lines of JSON.

#include "findingjson.h"
#include "findingobserver.h"

#include <QJsonObject>

#include <gtest/gtest.h>

namespace {

std::string lineOf(const Finding& finding)
{
    return jsonLine(findingJson(finding));
}

TEST(FindingJson, OfARuleSetHasItsPlaceAndDefinition)
{
    Finding finding;
    finding.text = QStringLiteral("term in \"\" empty");
    finding.detail = QStringLiteral("A\tB");
    finding.record.xmlFile = QStringLiteral("terms.xml");
    finding.record.lineNumber = 3;
    finding.record.columnNumber = 7;
    finding.record.recordName = QStringLiteral("FL");
    finding.begin = 5;
    EXPECT_EQ(lineOf(finding), "{\"column\":7,\"detail\":\"A\\tB\",\"file\":\"terms.xml\","
                               "\"line\":3,\"name\":\"FL\",\"severity\":\"error\","
                               "\"text\":\"term in \\\"\\\" empty\"}\n");
}

TEST(FindingJson, OfAMessageHasItsStretch)
{
    Finding finding;
    finding.severity = Severity::Warning;
    finding.text = QStringLiteral("ignore word");
    finding.detail = QStringLiteral("Q\n\u007f\u009b\u202e");
    finding.begin = 0;
    finding.end = 1;
    EXPECT_EQ(lineOf(finding), "{\"begin\":0,\"detail\":\"Q\\n\\u007f\\u009b\\u202e\",\"end\":1,"
                               "\"severity\":\"warning\",\"text\":\"ignore word\"}\n");
}

TEST(FindingJson, WithoutAPlaceHasNone)
{
    Finding finding;
    finding.text = QStringLiteral("x");
    EXPECT_EQ(lineOf(finding), "{\"severity\":\"error\",\"text\":\"x\"}\n");
}

} // namespace
