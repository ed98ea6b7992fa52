// A fuzz target as libFuzzer wants it.

#include "target.h"

#include <cstddef>
#include <cstdint>
#include <functional>

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Target::setUp();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    // Chosen by the input, so that a finding is one whenever the input comes again.
    constexpr std::size_t oneIn = 256;
    Target::tryInput(input, std::hash<std::string_view>()(input) % oneIn == 0);
    return 0;
}
