#include "recordreader.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <unistd.h>

RecordReader::RecordReader(int descriptor, int separator, std::size_t limit)
    : m_descriptor(descriptor), m_separator(separator), m_limit(limit)
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

// Is there something to read, an end or an error included? Waits for it if that is allowed.
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
    m_begin = m_searched = end + 1;
    return true;
}

bool RecordReader::takeRest(Record* record)
{
    const bool isThere = !m_error.empty() || m_isTooLarge || m_begin < m_buffer.size();
    if (m_isOver || (!isThere && m_separator != Whole))
        return false;
    m_isOver = true;
    take(record, m_buffer.size());
    if (!m_error.empty())
        *record = {std::string(), m_error};
    return true;
}

void RecordReader::take(Record* record, std::size_t end)
{
    record->failure.clear();
    record->text.clear();
    if (m_isTooLarge || end - m_begin > m_limit)
        record->failure = tooLargeError();
    else if (m_begin == 0 && end == m_buffer.size())
        record->text.swap(m_buffer); // a large one is not copied
    else
        record->text.assign(m_buffer, m_begin, end - m_begin);
    m_isTooLarge = false;
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
    if (got == -1 && errno == EAGAIN) { // who gave us the descriptor does not wait on reading
        isAtHand(waiting);
        return;
    }
    if (got == -1)
        m_error = readError(errno);
    m_isAtEnd = got <= 0;
    if (m_isAtEnd)
        return;
    m_bytesRead += static_cast<std::size_t>(got);
    if (m_isTooLarge || m_buffer.size() > m_limit) {
        m_isTooLarge = true;
        m_buffer.clear();
        m_searched = 0;
    }
    m_buffer.append(block.data(), static_cast<std::size_t>(got));
}
