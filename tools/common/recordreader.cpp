#include "recordreader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <poll.h>
#include <string_view>
#include <unistd.h>
#include <utility>

RecordReader::RecordReader(int descriptor, int separator)
    : m_descriptor(descriptor), m_separator(separator)
{
}

Next RecordReader::next(Record* record, Waiting waiting)
{
    while (!takeSeparated(record)) {
        if (m_isAtEnd)
            return takeRest(record) ? Next::Taken : Next::End;
        if (waiting == Waiting::Refused && !isAtHand(waiting))
            return Next::WouldWait;
        read(waiting);
    }
    return Next::Taken;
}

// Is there something to read (also an end or an error)? Waits for it if that is allowed.
bool RecordReader::isAtHand(Waiting waiting) const
{
    pollfd input{m_descriptor, POLLIN, 0};
    return poll(&input, 1, waiting == Waiting::Allowed ? -1 : 0) != 0;
}

bool RecordReader::takeSeparated(Record* record)
{
    if (m_separator == Whole)
        return false;
    const std::size_t end = m_buffer.find(static_cast<char>(m_separator), m_searched);
    m_searched = m_buffer.size();
    if (end == std::string::npos)
        return false;
    take(record, end);
    return true;
}

bool RecordReader::takeRest(Record* record)
{
    const bool isThere = !m_error.empty() || !m_failure.empty() || m_begin < m_buffer.size();
    if (m_isOver || (!isThere && m_separator != Whole))
        return false;
    m_isOver = true;
    take(record, m_buffer.size());
    if (!m_error.empty())
        *record = {std::string(), m_error};
    return true;
}

// Takes the record that ends at this place of the buffer, and drops its separator.
void RecordReader::take(Record* record, std::size_t end)
{
    *record = Record();
    if (m_failure.empty() && end - m_begin > MaxMessageSize)
        m_failure = tooLargeError();
    record->failure.swap(m_failure);
    const std::size_t behind = std::min(end + 1, m_buffer.size());
    std::string taken;
    try {
        if (end - m_begin < m_buffer.size() - behind) {
            taken.assign(m_buffer, m_begin, end - m_begin);
            m_begin = behind;
        } else { // a large one is not copied, and its memory does not stay here
            taken.assign(m_buffer, behind);
            taken.swap(m_buffer);
            taken.resize(end);
            taken.erase(0, m_begin);
            m_begin = 0;
        }
    } catch (const std::bad_alloc&) {
        record->failure = MemoryRanOut;
        m_begin = behind;
    }
    m_searched = m_begin;
    if (record->failure.empty())
        record->text.swap(taken);
}

// Drops what was read of the current record; the rest of it will be dropped, too.
void RecordReader::drop(std::string failure)
{
    std::string().swap(m_buffer); // gives the memory back
    m_searched = 0;
    m_failure = std::move(failure);
}

void RecordReader::read(Waiting waiting)
{
    m_buffer.erase(0, m_begin);
    m_searched -= m_begin;
    m_begin = 0;
    std::array<char, 65536> block;
    const ssize_t got = ::read(m_descriptor, block.data(), block.size());
    if (got == -1 && errno == EINTR)
        return;
    if (got == -1 && errno == EAGAIN) { // the descriptor that we got does not block
        isAtHand(waiting);
        return;
    }
    if (got == -1)
        m_error = readError(errno);
    m_isAtEnd = got <= 0;
    if (m_isAtEnd)
        return;
    m_bytesRead += static_cast<std::size_t>(got);
    if (!m_failure.empty())
        drop(std::move(m_failure));
    else if (m_buffer.size() > MaxMessageSize)
        drop(tooLargeError());
    const std::string_view text(block.data(), static_cast<std::size_t>(got));
    try {
        m_buffer += text;
    } catch (const std::bad_alloc&) {
        drop(MemoryRanOut);
        m_buffer += text;
    }
}
