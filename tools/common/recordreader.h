#ifndef RECORDREADER_H
#define RECORDREADER_H

#include "inputfile.h"

#include <cstddef>
#include <string>

/// Why a message is not converted, and what to do about it, if memory runs out over it.
constexpr const char* MemoryRanOut = "memory ran out; convert it where there is more";

/// May an operation wait for input that is not there yet?
enum class Waiting { Allowed, Refused };

/// What an operation found that takes the next of something.
enum class Next {
    Taken,     ///< there was one
    WouldWait, ///< waiting was refused, and input that is not there yet decides
    End,       ///< there are no more
};

/// One record of a stream.
struct Record
{
    std::string text;
    std::string failure; ///< why there is no text and what to do about it; empty if there is one
};

/// Splits what comes from a file descriptor into records.
///
/// No more is held than the record at hand and one block, however long the stream is.
class RecordReader
{
public:
    /// As a separator: all up to the end is one record, also if that is nothing.
    static constexpr int Whole = -1;

    /// Reads from @p descriptor, which stays open and the caller's. Behind each record stands the
    /// byte @p separator; behind the last one it may be missing. @p limit is the most bytes that a
    /// record may have.
    RecordReader(int descriptor, int separator, std::size_t limit = MaxMessageSize);

    /// Takes the next record, without its separator. One that is too large, one for which memory
    /// runs out, and one that cannot be read, comes as a failure; behind the last of these the
    /// stream is at its end.
    Next next(Record* record, Waiting waiting);

    /// Number of bytes read so far.
    std::size_t bytesRead() const { return m_bytesRead; }

private:
    bool isAtHand(Waiting waiting) const;
    bool takeSeparated(Record* record);
    bool takeRest(Record* record);
    void take(Record* record, std::size_t end);
    void drop(std::string failure);
    void read(Waiting waiting);

    int m_descriptor;
    int m_separator;
    std::size_t m_limit;
    std::string m_buffer;
    std::size_t m_begin = 0;    // of the record at hand, in the buffer
    std::size_t m_searched = 0; // up to here there is no separator behind m_begin
    std::size_t m_bytesRead = 0;
    std::string m_failure; // of the record at hand, whose bytes are dropped; empty: none
    bool m_isAtEnd = false;
    bool m_isOver = false; // the rest was taken too
    std::string m_error;
};

#endif
