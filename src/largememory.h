#ifndef LARGEMEMORY_H
#define LARGEMEMORY_H

#include <cstddef>
#include <memory_resource>

/// Memory in blocks so large that the kernel's work on their pages counts.
///
/// A message of many megabytes touches ten times its size, and page by page of four kilobytes that
/// took nearly half of a conversion; pages of two megabytes spare most of it.
namespace LargeMemory {

/// Asks the kernel for large pages for the block of @p size bytes at @p block, before it is written
/// to. Does nothing for a block below 4 MB, or where the kernel has no such pages; never fails.
void advise(void* block, std::size_t size);

/// The heap, with large pages for large blocks. Lives as long as the process.
std::pmr::memory_resource* heap();

} // namespace LargeMemory

#endif
