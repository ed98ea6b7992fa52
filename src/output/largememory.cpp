#include "output/largememory.h"

#include <cstdint>
#include <new>

#include <sys/mman.h>

namespace {

constexpr std::size_t PageSize = std::size_t(2) << 20;

} // namespace

void LargeMemory::advise(void* block, std::size_t size)
{
    if (size < LargeBlock)
        return;
    // Only the large pages that lie completely in the block.
    const auto misplaced = reinterpret_cast<std::uintptr_t>(block) % PageSize;
    const std::size_t skipped = misplaced == 0 ? 0 : PageSize - misplaced;
    madvise(static_cast<char*>(block) + skipped, (size - skipped) / PageSize * PageSize,
            MADV_HUGEPAGE);
}

void* LargeMemory::do_allocate(std::size_t bytes, std::size_t alignment)
{
    void* const block = std::pmr::new_delete_resource()->allocate(bytes, alignment);
    advise(block, bytes);
    return block;
}

void LargeMemory::do_deallocate(void* block, std::size_t bytes, std::size_t alignment)
{
    std::pmr::new_delete_resource()->deallocate(block, bytes, alignment);
}

bool LargeMemory::do_is_equal(const std::pmr::memory_resource& other) const noexcept
{
    return this == &other;
}
