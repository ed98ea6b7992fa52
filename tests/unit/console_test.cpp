// What the command writes to standard error cannot drive the terminal.

#include "console.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace {

struct EscapeCase
{
    std::string text;
    std::string escaped;
};

void PrintTo(const EscapeCase& escapeCase, std::ostream* out)
{
    *out << escapeCase.escaped;
}

class Console : public testing::TestWithParam<EscapeCase>
{
};

TEST_P(Console, WritesWhatDrivesTheTerminalAsText)
{
    EXPECT_EQ(escaped(GetParam().text), GetParam().escaped);
}

const EscapeCase Cases[] = {
    {"", ""},
    {"plain \\ \"text\" ~", "plain \\ \"text\" ~"},
    {"\n\r\t", "\\n\\r\\t"},
    {std::string("\0", 1), "\\x00"},
    {"\x1b[2J\x7f", "\\x1B[2J\\x7F"},
    // controls beyond ASCII, and their neighbours
    {"\xc2\x80\xc2\x9b\xc2\x9f", "\\u0080\\u009B\\u009F"},
    {"\xc2\xa0\xd0\x96\xf0\x9f\x99\x82", "\xc2\xa0\xd0\x96\xf0\x9f\x99\x82"},
    // what turns the direction of writing, and its neighbours
    {"\xe2\x80\xaa\xe2\x80\xae", "\\u202A\\u202E"},
    {"\xe2\x81\xa6\xe2\x81\xa9", "\\u2066\\u2069"},
    {"\xe2\x80\xa9\xe2\x80\xaf\xe2\x81\xa5\xe2\x81\xaa",
     "\xe2\x80\xa9\xe2\x80\xaf\xe2\x81\xa5\xe2\x81\xaa"},
    // no UTF-8
    {"\x9b"
     "2J",
     "\\x9B2J"},
    {"a\xff", "a\\xFF"},
    {"\xc3", "\\xC3"},
    {"\xc3(\xc3\xc3", "\\xC3(\\xC3\\xC3"},
    {"\xe2\x80", "\\xE2\\x80"},
    {"\xe2\x80\x1b", "\\xE2\\x80\\x1B"},
    {"\xc1\x9b", "\\xC1\\x9B"},                                              // overlong
    {"\xe0\x82\x9b\xf0\x80\x82\x9b", "\\xE0\\x82\\x9B\\xF0\\x80\\x82\\x9B"}, // overlong
    {"\xe0\xa0\x80\xf0\x90\x80\x80", "\xe0\xa0\x80\xf0\x90\x80\x80"},
    {"\xed\x9f\xbf\xed\xa0\x80\xee\x80\x80", "\xed\x9f\xbf\\xED\\xA0\\x80\xee\x80\x80"},
    {"\xf4\x8f\xbf\xbf\xf4\x90\x80\x80\xf5", "\xf4\x8f\xbf\xbf\\xF4\\x90\\x80\\x80\\xF5"},
};

INSTANTIATE_TEST_SUITE_P(, Console, testing::ValuesIn(Cases));

} // namespace
