// The name that was probably meant.

#include "nearestname.h"

#include <gtest/gtest.h>

namespace {

TEST(NearestName, IsTheFirstWithTheFewestChanges)
{
    EXPECT_EQ(nearestName("EOTB", {"ETO", "EOBT", "EOBD"}), "EOBT");
    EXPECT_EQ(nearestName("FLL", {"ADEPARTURE", "FL", "FLX"}), "FL");
    EXPECT_EQ(nearestName("X", {}), "");
}

// Comparing two names takes as many steps as the product of their lengths.
TEST(NearestName, LongNamesAreNearToNone)
{
    const std::string longest(40, 'A');
    EXPECT_EQ(nearestName(longest, {longest + 'A', longest}), longest);
    EXPECT_EQ(nearestName(longest + 'A', {longest + 'A', "A"}), "");
}

} // namespace
