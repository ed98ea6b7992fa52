#ifndef LARGEMEMORY_H
#define LARGEMEMORY_H

#include <cstddef>
#include <memory_resource>

/// Memory in blocks that are so large that the kernel's work on their pages costs time.
///
/// The conversion of a message of many megabytes touches ten times its size. With pages of four
/// kilobytes, the kernel took nearly half of the time; pages of two megabytes save most of it.
namespace LargeMemory {

/// The smallest size of a large block, in bytes.
constexpr std::size_t LargeBlock = std::size_t(4) << 20;

/// Asks the kernel for large pages for the block of @p size bytes at @p block. Call it before the
/// block is written to. Does nothing for a block that is not large, or if the kernel has no such
/// pages; never fails.
void advise(void* block, std::size_t size);

/// The heap, with large pages for large blocks. Lives as long as the process.
std::pmr::memory_resource* heap();

} // namespace LargeMemory

#endif
