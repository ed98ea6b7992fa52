// Messages made to cost as much as they can: ten times the message takes ten times the steps.

#include "hostile/steps.h"

#include "support/diagnosticcapture.h"
#include "support/hostilemessages.h"

#include "adexp.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

namespace {

// The built-in rule set, as long as an object lives.
class BuiltInRules
{
public:
    BuiltInRules()
    {
        constexpr std::string_view settings = ":/adexp/adexp.ini";
        EXPECT_EQ(init_adexp(settings.data(), static_cast<int>(settings.size())), 0);
    }
    ~BuiltInRules() { clear_adexp(); }
    Q_DISABLE_COPY(BuiltInRules)
};

class HostileMessages : public testing::TestWithParam<HostileShape>
{
};

// Converts the message; returns the bytes of message, document and reports.
std::int64_t convert(const HostileShape& shape, int count)
{
    const std::string message = hostileMessage(shape, static_cast<std::size_t>(count));
    const DiagnosticCapture capture;
    unsigned int length = 0;
    const std::unique_ptr<const char, void (*)(const char*)> document(
        convert_from_adexp(message.data(), static_cast<unsigned int>(message.size()), &length),
        free_adexp);
    EXPECT_NE(document, nullptr);
    EXPECT_EQ(capture.lines().size(),
              static_cast<std::size_t>(count) * shape.linesForEach + shape.linesForAll);
    std::int64_t bytes = static_cast<std::int64_t>(message.size()) + length;
    for (const DiagnosticCapture::Line& line : capture.lines())
        bytes += line.text.size();
    return bytes;
}

const std::map<std::string, double> StepsPerByte = {
    {"blocks_never_ended", 5.1}, {"unknown_blocks", 5.8},     {"ends_without_begin", 2.7},
    {"words_in_a_field", 9.2},   {"words_before_title", 3.3}, {"lone_hyphens", 1.8},
    {"unknown_fields", 2.8},     {"list_items", 3.6},         {"compounds_cut_short", 3.9},
    {"text_to_escape", 4.9},     {"one_long_word", 6.0},
};

TEST_P(HostileMessages, TakeStepsInProportionToTheirSize)
{
    const HostileShape& shape = GetParam();
    const BuiltInRules rules;
    expectLinear([&shape](int count) { return convert(shape, count); }, 2000,
                 StepsPerByte.at(shape.name));
}

INSTANTIATE_TEST_SUITE_P(, HostileMessages, testing::ValuesIn(HostileShapes),
                         [](const auto& shape) { return std::string(shape.param.name); });

TEST(HostileMessageSize, MayBeTwoHundredMegabytes)
{
    const BuiltInRules rules;
    constexpr HostileShape shape{"large", "-TITLE IFPL -RMK ", "ABCDEFGHIJKLMNOPQRST", "", 0, 0};
    constexpr int Count = 10'000'000;
    stepsOf([&shape] { EXPECT_GT(convert(shape, Count), 600'000'000); });
}

} // namespace
