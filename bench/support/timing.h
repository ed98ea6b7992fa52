#ifndef BENCH_TIMING_H
#define BENCH_TIMING_H

#include "converter.h"

#include <benchmark/benchmark.h>

#include <string>

namespace bench {

/// Measures the conversion of @p message, and tells the time for each of @p bytes bytes as the
/// counter "seconds_per_byte".
inline void timePerByte(benchmark::State& state, const std::string& message, std::size_t bytes)
{
    for (auto _ : state) {
        unsigned int length = 0;
        const Document document = convert(message, &length);
        benchmark::DoNotOptimize(document.get());
    }
    state.counters["seconds_per_byte"] = benchmark::Counter(
        static_cast<double>(bytes),
        benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

} // namespace bench

#endif
