#ifndef COUNTEDHEAP_H
#define COUNTEDHEAP_H

/// The heap of the whole process, counted, with failures on demand.
///
/// In a program that is linked with this, malloc() and the related functions are replaced, also for
/// all its libraries; operator new of the runtime library calls them, too. For one thread only.
namespace CountedHeap {

/// How many allocations fail.
enum class Failures {
    One,         ///< the one that was named, as with a single large block
    FromThereOn, ///< it and all that follow, as when memory has run out
};

/// The number of blocks that are allocated and not yet released.
long liveBlocks();

/// Their size, as much as the allocator has given.
long liveBytes();

/// The largest sum of liveBytes() and an allocation on top of it since the last call.
long takePeakBytes();

/// Lets each allocation fail that would bring liveBytes() above @p bytes.
void limitBytes(long bytes);

/// Lets allocation number @p number (from 1, counted from this call on) fail.
void failAt(long number, Failures failures);

/// Ends failAt() and limitBytes(): no allocation fails any more. Returns the number of allocations
/// that have failed.
long stopFailing();

/// While an object of this class exists, failAt() does not count allocations.
class Spared
{
public:
    Spared();
    ~Spared();
    Spared(const Spared&) = delete;
    Spared& operator=(const Spared&) = delete;

private:
    long m_untilFailure;
};

} // namespace CountedHeap

#endif
