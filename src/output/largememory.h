#ifndef LARGEMEMORY_H
#define LARGEMEMORY_H

#include <cstddef>
#include <memory_resource>

/// The heap, for memory in blocks that are so large that the kernel's work on their pages costs
/// time.
///
/// The conversion of a message of many megabytes touches ten times its size. With pages of four
/// kilobytes, the kernel took nearly half of the time; pages of two megabytes save most of it.
class LargeMemory : public std::pmr::memory_resource
{
public:
    /// The smallest size of a large block, in bytes.
    static constexpr std::size_t LargeBlock = std::size_t(4) << 20;

    /// Asks the kernel for large pages for the block of @p size bytes at @p block. Call it before
    /// the block is written to. Does nothing for a block that is not large, or if the kernel has no
    /// such pages; never fails.
    static void advise(void* block, std::size_t size);

private:
    void* do_allocate(std::size_t bytes, std::size_t alignment) override;
    void do_deallocate(void* block, std::size_t bytes, std::size_t alignment) override;
    bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override;
};

#endif
