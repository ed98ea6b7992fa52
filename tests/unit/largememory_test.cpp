// Memory in large blocks: the kernel is asked for large pages where they fit, and nowhere else.

#include "output/largememory.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>

#include <sys/mman.h>

namespace {

constexpr std::size_t MiB = std::size_t(1) << 20;

// True if the kernel was asked for large pages at this address; it marks such stretches with "hg".
bool isMarked(const char* address)
{
    std::ifstream maps("/proc/self/smaps");
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    bool isInside = false;
    for (std::string line; std::getline(maps, line);) {
        std::size_t hyphen = 0;
        if (line.find("VmFlags:") == 0) {
            if (isInside)
                return line.find(" hg") != std::string::npos;
        } else if ((hyphen = line.find('-')) != std::string::npos && hyphen < line.find(' ')) {
            const std::uintptr_t begin = std::stoull(line, nullptr, 16);
            const std::uintptr_t end = std::stoull(line.substr(hyphen + 1), nullptr, 16);
            isInside = begin <= wanted && wanted < end;
        }
    }
    return false;
}

// 16 MiB of memory, and the first address in it that large pages can begin at.
class LargePages : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled"))
            GTEST_SKIP() << "the kernel has no large pages";
        ASSERT_NE(mapped, MAP_FAILED);
        const auto address = reinterpret_cast<std::uintptr_t>(mapped);
        aligned = static_cast<char*>(mapped) + (2 * MiB - address % (2 * MiB)) % (2 * MiB);
    }

    void TearDown() override
    {
        if (mapped != MAP_FAILED)
            munmap(mapped, Size);
    }

    static constexpr std::size_t Size = 16 * MiB;
    void* mapped = mmap(nullptr, Size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    char* aligned = nullptr;
};

TEST_F(LargePages, AreAskedForFromTheFirstByteOfAnAlignedBlock)
{
    LargeMemory::advise(aligned, 4 * MiB);
    EXPECT_TRUE(isMarked(aligned));
    EXPECT_TRUE(isMarked(aligned + 4 * MiB - 1));
    EXPECT_FALSE(isMarked(aligned + 4 * MiB));
}

TEST_F(LargePages, AreAskedForOnlyWhereTheyLieWhollyInTheBlock)
{
    LargeMemory::advise(aligned + 1, 6 * MiB);
    EXPECT_FALSE(isMarked(aligned));
    EXPECT_TRUE(isMarked(aligned + 2 * MiB));
    EXPECT_FALSE(isMarked(aligned + 6 * MiB));
}

TEST_F(LargePages, AreNotAskedForBelowFourMegabytes)
{
    LargeMemory::advise(aligned, 4 * MiB - 1);
    EXPECT_FALSE(isMarked(aligned));
}

TEST(LargeMemoryHeap, IsEqualToItselfOnly)
{
    const LargeMemory heap;
    EXPECT_TRUE(heap.is_equal(heap));
    EXPECT_FALSE(heap.is_equal(LargeMemory()));
    EXPECT_FALSE(heap.is_equal(*std::pmr::new_delete_resource()));
}

} // namespace
