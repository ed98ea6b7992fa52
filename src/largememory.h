#ifndef LARGEMEMORY_H
#define LARGEMEMORY_H

#include <cstddef>
#include <memory_resource>

/// Memory in blocks so large that the kernel's work on their pages counts.
///
/// A message of many megabytes touches ten times its size, and page by page of four kilobytes that
/// took nearly half of a conversion; pages of two megabytes spare most of it.
namespace LargeMemory {

/// The size in bytes from which on a block counts as large.
constexpr std::size_t LargeBlock = std::size_t(4) << 20;

/// Asks the kernel for large pages for the block of @p size bytes at @p block, before it is written
/// to. Does nothing for a block that is not large, or where the kernel has no such pages; never
/// fails.
void advise(void* block, std::size_t size);

/// The heap, with large pages for large blocks. Lives as long as the process.
std::pmr::memory_resource* heap();

} // namespace LargeMemory

#endif
