#ifndef REQUIRE_H
#define REQUIRE_H

#include <string_view>

/// Ends the process, after a line that says @p what does not hold and @p where. The fuzzer keeps
/// the input that led here.
[[noreturn]] void violated(std::string_view what, std::string_view where);

/// Ends the process unless @p holds.
inline void require(bool holds, std::string_view what, std::string_view where = {})
{
    if (!holds)
        violated(what, where);
}

#endif
