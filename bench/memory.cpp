// The peak of memory during the conversion of a very large message, above that of the idle process
// with its rule set. The caller's message and document are part of it.

#include "support/converter.h"
#include "support/messages.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace {

// A line of /proc/self/status, in bytes.
double statusBytes(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        double kibibytes = 0;
        if (word == key + ":" && status >> kibibytes)
            return kibibytes * 1024;
    }
    std::fprintf(stderr, "/proc/self/status does not tell %s\n", key.c_str());
    std::exit(EXIT_FAILURE);
}

void forgetPeak()
{
    std::ofstream("/proc/self/clear_refs") << "5";
}

// One turn only: memory that a turn before has left with the allocator would not be seen.
void measurePeak(benchmark::State& state)
{
    forgetPeak();
    const double idle = statusBytes("VmRSS");
    for (auto _ : state) {
        const std::string message = bench::flightPlanOfSize(50'000'000);
        unsigned int length = 0;
        const bench::Document document = bench::convert(message, &length);
        if (!document)
            state.SkipWithError("no document");
        state.counters["bytes_per_byte"] =
            (statusBytes("VmHWM") - idle) / (static_cast<double>(message.size()) + length);
    }
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    bench::useEmbeddedRules();
    bench::convertFaultlessOrExit(bench::flightPlan());
    benchmark::RegisterBenchmark("memory/50MB", measurePeak)->Iterations(1);
    benchmark::RunSpecifiedBenchmarks();
    clear_adexp();
}
