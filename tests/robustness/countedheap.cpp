#include "countedheap.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <utility>

#include <dlfcn.h>
#include <malloc.h>

namespace {

long blocks = 0;
long bytes = 0;
long peakBytes = 0;

long untilFailure = 0; // allocations up to and with the one that fails; 0: none fails
CountedHeap::Failures mode = CountedHeap::Failures::One;
long mostBytes = LONG_MAX;
long failed = 0;

// The function that is replaced: of the C library, or of a sanitizer.
template <typename Function>
Function* original(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool isItsTurn()
{
    if (untilFailure == 0 || --untilFailure > 0)
        return false;
    if (mode == CountedHeap::Failures::FromThereOn)
        untilFailure = 1;
    return true;
}

bool fails(std::size_t size)
{
    // No program has as much memory as would make this overflow.
    const long wanted = bytes + static_cast<long>(std::min<std::size_t>(size, LONG_MAX / 2));
    peakBytes = std::max(peakBytes, wanted);
    if (!isItsTurn() && wanted <= mostBytes)
        return false;
    ++failed;
    errno = ENOMEM;
    return true;
}

void* taken(void* block)
{
    if (block) {
        ++blocks;
        bytes += static_cast<long>(malloc_usable_size(block));
    }
    return block;
}

void given(void* block)
{
    if (block) {
        --blocks;
        bytes -= static_cast<long>(malloc_usable_size(block));
    }
}

} // namespace

long CountedHeap::liveBlocks()
{
    return blocks;
}

long CountedHeap::liveBytes()
{
    return bytes;
}

long CountedHeap::takePeakBytes()
{
    const long peak = peakBytes;
    peakBytes = bytes;
    return peak;
}

void CountedHeap::limitBytes(long most)
{
    mostBytes = most;
    failed = 0;
}

void CountedHeap::failAt(long number, Failures failures)
{
    mode = failures;
    untilFailure = number;
    failed = 0;
}

long CountedHeap::stopFailing()
{
    untilFailure = 0;
    mostBytes = LONG_MAX;
    return failed;
}

CountedHeap::Spared::Spared() : m_untilFailure(std::exchange(untilFailure, 0)) {}

CountedHeap::Spared::~Spared()
{
    untilFailure = m_untilFailure;
}

// Seen by all libraries of the process, whatever the visibility that the project compiles with.
#pragma GCC visibility push(default)
extern "C" {

void* malloc(std::size_t size) noexcept
{
    static auto* const next = original<void*(std::size_t)>("malloc");
    return fails(size) ? nullptr : taken(next(size));
}

void* calloc(std::size_t count, std::size_t size) noexcept
{
    static auto* const next = original<void*(std::size_t, std::size_t)>("calloc");
    return fails(count * size) ? nullptr : taken(next(count, size));
}

void* realloc(void* block, std::size_t size) noexcept
{
    static auto* const next = original<void*(void*, std::size_t)>("realloc");
    if (fails(size))
        return nullptr; // the block stays as it is
    given(block);
    return taken(next(block, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    static auto* const next = original<void*(std::size_t, std::size_t)>("aligned_alloc");
    return fails(size) ? nullptr : taken(next(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept
{
    static auto* const next = original<int(void**, std::size_t, std::size_t)>("posix_memalign");
    if (fails(size))
        return ENOMEM;
    const int error = next(block, alignment, size);
    if (error == 0)
        taken(*block);
    return error;
}

void free(void* block) noexcept
{
    static auto* const next = original<void(void*)>("free");
    given(block);
    next(block);
}

} // extern "C"
#pragma GCC visibility pop
