#include "conversionrun.h"

#include "processors.h"

#include <cstdlib>
#include <filesystem>
#include <poll.h>
#include <system_error>
#include <utility>
#include <vector>

namespace {

// Work for some milliseconds: by then handing it over is cheap beside it. A file counts for more
// than it holds, for being opened and read.
constexpr std::size_t EnoughForBatch = 1 << 17;
constexpr std::size_t WeightOfFile = 1 << 14;

std::size_t weight(const Message& message)
{
    if (message.isRead || !message.failure.empty())
        return sizeof message + sizeof(ConversionResult) + message.text.size();
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(message.input, error);
    return WeightOfFile + (error ? 0 : static_cast<std::size_t>(size));
}

} // namespace

ConversionRun::ConversionRun(const ConvertOptions& options, const adexp::RuleSet& rules)
    : m_jobs(options.jobs == 0 ? usableProcessors() : options.jobs),
      m_source(options),
      m_writer(options),
      m_converter(options, rules),
      m_threads(m_jobs, options, rules)
{
}

ExitCode ConversionRun::run()
{
    for (;;) {
        if (!writeResults() || !convertWhatIsAtHand())
            return end();
        if (m_isAtEnd && m_threads.areIdle())
            return m_writer.finish();
        m_writer.flush(); // the next message may be long in coming
        wait();
    }
}

// As far as there is room. False if no more documents are wanted.
bool ConversionRun::convertWhatIsAtHand()
{
    while (m_threads.haveRoom()) {
        Batch batch = nextBatch();
        if (batch.messages.empty())
            return true;
        const bool isAll = m_jobs == 1 || m_isAtEnd || m_isWaitingForInput;
        const bool isHere = (isAll && m_threads.areIdle()) || !m_threads.give(&batch);
        if (isHere ? !convertHere(batch) : !writeResults())
            return false;
    }
    return true;
}

// What is at hand of the messages, up to enough for one thread; empty if nothing is.
Batch ConversionRun::nextBatch()
{
    Batch batch;
    m_isWaitingForInput = false;
    while (!m_isAtEnd && batch.bytes < EnoughForBatch) {
        Message message;
        const Next next = m_source.next(&message, Waiting::Refused);
        m_isAtEnd = next == Next::End;
        m_isWaitingForInput = next == Next::WouldWait;
        if (next != Next::Taken)
            break;
        batch.bytes += weight(message);
        batch.messages.push_back(std::move(message));
    }
    return batch;
}

// False if no more documents are wanted.
bool ConversionRun::convertHere(const Batch& batch)
{
    for (const Message& message : batch.messages) {
        if (!message.isRead)
            m_writer.flush(); // reading it may take long, of a pipe for example
        if (!m_writer.write(m_converter.convertOrTell(message)))
            return false;
    }
    return true;
}

// Writes the results that are there. False if no more documents are wanted.
bool ConversionRun::writeResults()
{
    ConversionResult result;
    while (m_threads.takeNext(&result))
        if (!m_writer.write(result))
            return false;
    return true;
}

// Waits for news of the threads, and for input if they have room for it.
void ConversionRun::wait()
{
    std::vector<pollfd> descriptors;
    if (m_threads.news())
        descriptors.push_back({m_threads.news()->descriptor(), POLLIN, 0});
    if (m_isWaitingForInput && m_threads.haveRoom())
        descriptors.push_back({m_source.descriptor(), POLLIN, 0});
    poll(descriptors.data(), descriptors.size(), -1); // an interrupted call is as good as news
    if (m_threads.news())
        m_threads.news()->reset();
}

// Nobody takes more documents. A thread may be at work for long, or at a pipe that nobody writes
// to: nobody waits for it.
ExitCode ConversionRun::end()
{
    const ExitCode result = m_writer.finish();
    if (!m_threads.areIdle())
        std::_Exit(static_cast<int>(result));
    return result;
}
