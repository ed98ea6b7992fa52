// The cost of a byte in small and large messages of the same mix of fields: it is to stay the same.

#include "support/converter.h"
#include "support/messages.h"
#include "support/timing.h"

#include <benchmark/benchmark.h>

#include <string>

int main(int argc, char** argv)
{
    constexpr std::pair<const char*, std::size_t> Sizes[] = {
        {"10KB", 10'000}, {"100KB", 100'000}, {"1MB", 1'000'000}, {"10MB", 10'000'000}};

    benchmark::Initialize(&argc, argv);
    bench::useEmbeddedRules();
    for (const auto& [name, size] : Sizes) {
        const std::string message = bench::flightPlanOfSize(size);
        bench::convertFaultlessOrExit(message);
        benchmark::RegisterBenchmark((std::string("size/") + name).c_str(), bench::timePerByte,
                                     message, message.size());
    }
    benchmark::RunSpecifiedBenchmarks();
    clear_adexp();
}
