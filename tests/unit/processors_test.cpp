// The processors that a control group may use.

#include "processors.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace fs = std::filesystem;

namespace {

class ProcessorsOfGroup : public testing::Test
{
protected:
    fs::path root() const { return m_folder.path().toStdString(); }

    // A group whose file cpu.max has this content.
    void group(const fs::path& path, const std::string& cpuMax) const
    {
        fs::create_directories(root() / path);
        std::ofstream(root() / path / "cpu.max") << cpuMax;
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(ProcessorsOfGroup, WithoutLimitAreAll)
{
    EXPECT_EQ(processorsOfGroup(root(), "nowhere"), 0);
    group("a", "max 100000\n");
    EXPECT_EQ(processorsOfGroup(root(), "a"), 0);
}

TEST_F(ProcessorsOfGroup, AreTheTimeInEachPeriodRoundedUp)
{
    group("two", "200000 100000\n");
    EXPECT_EQ(processorsOfGroup(root(), "two"), 2);
    group("half", "50000 100000\n");
    EXPECT_EQ(processorsOfGroup(root(), "half"), 1);
    group("more", "250000 100000\n");
    EXPECT_EQ(processorsOfGroup(root(), "more"), 3);
}

TEST_F(ProcessorsOfGroup, AreThoseOfTheNarrowestGroupAround)
{
    group("", "max 100000\n");
    group("a", "300000 100000\n");
    group("a/b", "max 100000\n");
    group("a/b/c", "900000 100000\n");
    EXPECT_EQ(processorsOfGroup(root(), "a/b/c"), 3);
    group("", "100000 100000\n");
    EXPECT_EQ(processorsOfGroup(root(), "a/b/c"), 1);
}

TEST_F(ProcessorsOfGroup, AreAllIfTheFileSaysNothingSensible)
{
    for (const char* const text : {"", "0 0", "-1 100000", "x", "100000"}) {
        group("a", text);
        EXPECT_EQ(processorsOfGroup(root(), "a"), 0) << text;
    }
}

TEST(UsableProcessors, AreAtLeastOne)
{
    EXPECT_GE(usableProcessors(), 1);
}

} // namespace
