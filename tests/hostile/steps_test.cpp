// The counter counts; otherwise the other tests would show nothing.

#include "hostile/steps.h"

#include "support/diagnosticcapture.h"
#include "support/termset.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace {

// Matching {ALPHANUM} takes a step for each character at least.
std::int64_t matchedUnits(int count)
{
    const std::unique_ptr<TermStd> term =
        compileDefinition(QStringLiteral("T"), QStringLiteral("{ALPHANUM}"));
    return term->parse(QString(count, u'A').constData());
}

TEST(Steps, AreCounted)
{
    const std::int64_t few = stepsOf([] { EXPECT_EQ(matchedUnits(10), 10); });
    const std::int64_t many = stepsOf([] { EXPECT_EQ(matchedUnits(1010), 1010); });
    EXPECT_GT(few, 10);
    EXPECT_GE(many - few, 1000);
    EXPECT_LE(many - few, 20 * 1000);
}

TEST(Steps, AreTheSameEachTime)
{
    const auto task = [] { EXPECT_EQ(matchedUnits(1000), 1000); };
    EXPECT_EQ(stepsOf(task), stepsOf(task));
}

TEST(Steps, OfNothingAreNone)
{
    EXPECT_EQ(stepsOf([] {}), 0);
}

// The square of the count, and many for each byte.
std::int64_t matchedAgainAndAgain(int count)
{
    for (int i = 0; i < count; ++i)
        matchedUnits(count);
    return count;
}

TEST(Steps, ThatGrowFasterThanTheBytesAreFoundOut)
{
    expectLinear(matchedUnits, 1000, 4.1);
    EXPECT_NONFATAL_FAILURE(expectLinear(matchedAgainAndAgain, 20, 1e9), "steps for a tenth");
    EXPECT_NONFATAL_FAILURE(expectLinear(matchedUnits, 1000, 0.1), "for each");
}

} // namespace
