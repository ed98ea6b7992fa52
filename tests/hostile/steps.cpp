#include "hostile/steps.h"

#include "support/smallstack.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::int64_t stepsTaken = 0;

// How many times the steps another compiler, or another Qt, may make of the same code.
#if defined(__SANITIZE_ADDRESS__)
constexpr double Slack = 6; // each access is a branch
#else
constexpr double Slack = 2;
#endif

} // namespace

// The compiler puts a call of this function into every step.
extern "C" void __sanitizer_cov_trace_pc()
{
    ++stepsTaken;
}

std::int64_t stepsOf(const std::function<void()>& task)
{
    std::int64_t taken = 0;
    runWithSmallStack([&task, &taken] {
        const std::int64_t before = stepsTaken;
        task();
        taken = stepsTaken - before;
    });
    return taken;
}

void expectLinear(const std::function<std::int64_t(int count)>& task, int count,
                  double stepsPerByte)
{
    // What is done once whatever the size makes the small one dearer, never the large one. A little
    // more is needed where memory grows by doubling, and where names are sorted.
    constexpr double Tolerance = 1.1;
    std::int64_t smallBytes = 0;
    std::int64_t largeBytes = 0;
    const auto small = static_cast<double>(stepsOf([&] { smallBytes = task(count); }));
    const auto large = static_cast<double>(stepsOf([&] { largeBytes = task(10 * count); }));
    EXPECT_LE(large, 10 * Tolerance * small) << small << " steps for a tenth";
    EXPECT_LE(large, Slack * stepsPerByte * static_cast<double>(largeBytes))
        << large << " steps for " << largeBytes
        << " bytes: " << large / static_cast<double>(largeBytes) << " for each";
    testing::Test::RecordProperty("steps_per_byte",
                                  std::to_string(large / static_cast<double>(largeBytes)));
}
