#ifndef RECORDREADER_H
#define RECORDREADER_H

#include "inputfile.h"

#include <cstddef>
#include <string>

/// Why a message is not converted if memory runs out, and what to do about it.
constexpr const char* MemoryRanOut = "memory ran out; convert it where there is more";

/// May an operation wait for input that is not there yet?
enum class Waiting { Allowed, Refused };

/// The result of an operation that takes the next item.
enum class Next {
    Taken,     ///< there was one
    WouldWait, ///< waiting was refused, and it depends on input that is not there yet
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
/// Only the current record and one block are in memory, however long the stream is.
class RecordReader
{
public:
    /// As a separator: everything up to the end is one record, even if it is empty.
    static constexpr int Whole = -1;

    /// Reads from @p descriptor, which the caller owns and which stays open. The byte @p separator
    /// follows each record; after the last one it may be missing.
    RecordReader(int descriptor, int separator);

    /// Takes the next record, without its separator. A record that is too large, that needs more
    /// memory than there is, or that cannot be read comes as a failure; after one that cannot be
    /// read the stream is at its end.
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
    std::string m_buffer;
    std::size_t m_begin = 0;    // of the current record, in the buffer
    std::size_t m_searched = 0; // there is no separator from m_begin to here
    std::size_t m_bytesRead = 0;
    std::string m_failure; // of the current record, whose bytes are dropped; empty: none
    bool m_isAtEnd = false;
    bool m_isOver = false; // the rest was taken too
    std::string m_error;
};

#endif
