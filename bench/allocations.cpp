// How often a conversion asks for memory from the heap. This program puts itself before the
// allocator of the C library, on which operator new and Qt's containers stand as well.

#include "support/converter.h"
#include "support/element.h"
#include "support/messages.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace {

std::size_t allocations = 0;

} // namespace

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size)
{
    ++allocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    ++allocations;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size)
{
    ++allocations;
    return __libc_realloc(memory, size);
}

} // extern "C"

namespace {

// The elements that stand for fields, those below included; an "item" has no "valid".
std::size_t countFields(const bench::Utf8Element& element)
{
    std::size_t count = 0;
    for (const auto& attribute : element.attributes)
        count += attribute.first == "valid";
    for (const bench::Utf8Element& child : element.children)
        count += countFields(child);
    return count;
}

void countAllocations(benchmark::State& state, const std::string& message)
{
    const std::size_t fields =
        countFields(bench::readDocument(bench::convertFaultlessOrExit(message)));
    std::size_t counted = 0;
    for (auto _ : state) {
        const std::size_t before = allocations;
        unsigned int length = 0;
        const bench::Document document = bench::convert(message, &length);
        counted = allocations - before;
    }
    state.counters["fields"] = static_cast<double>(fields);
    state.counters["allocations"] = static_cast<double>(counted);
    state.counters["allocations_beyond_fields"] =
        static_cast<double>(counted) - static_cast<double>(fields);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    bench::useEmbeddedRules();
    benchmark::RegisterBenchmark("allocations/flight_plan", countAllocations, bench::flightPlan());
    benchmark::RunSpecifiedBenchmarks();
    clear_adexp();
}
