#include "workerpool.h"

#include "framereader.h"
#include "framewriter.h"
#include "recordreader.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <poll.h>
#include <utility>

namespace {

// Work for some milliseconds: by then handing it over is cheap beside it. A file counts as this
// many bytes for being opened and read.
constexpr std::size_t EnoughForBatch = 1 << 17;
constexpr std::size_t WeightOfFile = 1 << 14;
constexpr std::size_t WeightOfMessage = 64;

// While results wait for one before them, no more than about this much is kept.
constexpr std::size_t MaxBytesWaiting = 1 << 26;
constexpr std::size_t MaxResultsWaiting = 1 << 16;

std::size_t weight(const Message& message)
{
    return message.text.size() + (message.isRead ? WeightOfMessage : WeightOfFile);
}

} // namespace

WorkerPool::WorkerPool(int size, WorkerProcess::Work work, Failure failure)
    : m_work(std::move(work)),
      m_failure(std::move(failure)),
      m_workers(static_cast<std::size_t>(size))
{
    for (std::size_t place = 0; place < m_workers.size(); ++place)
        start(place);
}

WorkerPool::~WorkerPool() = default;

void WorkerPool::start(std::size_t place)
{
    m_workers[place].process.reset();
    std::vector<WorkerProcess*> others;
    for (const Worker& worker : m_workers)
        if (worker.process)
            others.push_back(worker.process.get());
    m_workers[place].process =
        std::make_unique<WorkerProcess>(m_work, static_cast<int>(place), others);
    m_workers[place].isBusy = false;
}

void WorkerPool::run(MessageSource* source, const Sink& sink, const BeforeWaiting& beforeWaiting)
{
    for (;;) {
        give(source);
        if (!deliver(sink))
            return stop();
        if (m_isAtEnd && m_retries.empty() && !isAnyBusy())
            return;
        if (!isAnyBusy() && !m_isWaitingForInput)
            continue; // memory ran out over all that was taken
        beforeWaiting();
        waitFor(*source);
    }
}

WorkerPool::Worker* WorkerPool::idleWorker()
{
    const auto idle = std::find_if(m_workers.begin(), m_workers.end(),
                                   [](const Worker& worker) { return !worker.isBusy; });
    return idle == m_workers.end() ? nullptr : &*idle;
}
bool WorkerPool::isAnyBusy() const
{
    return std::any_of(m_workers.begin(), m_workers.end(),
                       [](const Worker& worker) { return worker.isBusy; });
}

bool WorkerPool::hasRoom() const
{
    return m_bytesWaiting < MaxBytesWaiting && m_results.size() < MaxResultsWaiting;
}

void WorkerPool::give(MessageSource* source)
{
    while (Worker* const worker = idleWorker()) {
        Batch batch = nextBatch(source);
        if (batch.messages.empty())
            return;
        try {
            worker->process->give(batch.messages);
        } catch (const std::bad_alloc&) {
            tryAgain(std::move(batch), MemoryRanOut);
            continue;
        }
        worker->batch = std::move(batch);
        worker->isBusy = true;
    }
}

// What is at hand of the messages, up to enough for one process; empty if nothing is.
WorkerPool::Batch WorkerPool::nextBatch(MessageSource* source)
{
    Batch batch;
    m_isWaitingForInput = false;
    if (!m_retries.empty()) {
        batch = std::move(m_retries.front());
        m_retries.pop_front();
        return batch;
    }
    batch.first = m_given;
    std::size_t size = 0;
    while (!m_isAtEnd && hasRoom() && size < EnoughForBatch) {
        Message message;
        const Next next = source->next(&message, Waiting::Refused);
        m_isAtEnd = next == Next::End;
        m_isWaitingForInput = next == Next::WouldWait;
        if (next != Next::Taken)
            break;
        size += weight(message);
        batch.messages.push_back(std::move(message));
        m_results.emplace_back();
        ++m_given;
    }
    return batch;
}

// False if no more are wanted.
bool WorkerPool::deliver(const Sink& sink)
{
    while (!m_results.empty() && m_results.front().isThere) {
        FrameReader reader(m_results.front().frame);
        if (!sink(ConversionResult::readFrom(&reader)))
            return false;
        m_bytesWaiting -= m_results.front().frame.size();
        m_results.pop_front();
        ++m_delivered;
    }
    return true;
}

// Waits for answers, for the end of a process, and for input if there is a process without work.
void WorkerPool::waitFor(const MessageSource& source)
{
    std::vector<pollfd> descriptors;
    for (const Worker& worker : m_workers)
        descriptors.push_back({worker.process->descriptor(), POLLIN, 0});
    if (m_isWaitingForInput && idleWorker())
        descriptors.push_back({source.descriptor(), POLLIN, 0});
    // An interrupted call leaves no events: then nothing is read, and the caller waits again.
    poll(descriptors.data(), descriptors.size(), -1);
    for (std::size_t place = 0; place < m_workers.size(); ++place)
        if (descriptors[place].revents != 0)
            receive(place);
}

void WorkerPool::receive(std::size_t place)
{
    try {
        if (!takeAnswers(&m_workers[place]))
            replace(place);
    } catch (const std::bad_alloc&) {
        Batch batch = std::move(m_workers[place].batch);
        start(place);
        tryAgain(std::move(batch), MemoryRanOut);
    }
}

// False if the process has died.
bool WorkerPool::takeAnswers(Worker* worker)
{
    if (!worker->process->read())
        return false;
    std::string frame;
    while (worker->process->takeAnswer(&frame))
        keep(worker->batch.first + worker->batch.answered++, std::move(frame));
    if (worker->batch.answered == worker->batch.messages.size())
        worker->isBusy = false;
    return true;
}

// The process has died, over its batch if it had one.
void WorkerPool::replace(std::size_t place)
{
    Batch batch = std::move(m_workers[place].batch);
    const std::string how = m_workers[place].process->end();
    start(place);
    tryAgain(std::move(batch), "the process that converted it ended " + how +
                                   ", twice; report it to us with the message, or give it more "
                                   "memory");
}

// What of the batch has no answer is tried again one by one; a message that was tried so already
// has failed for the reason.
void WorkerPool::tryAgain(Batch batch, const std::string& reason)
{
    for (std::size_t i = batch.answered; i < batch.messages.size(); ++i) {
        const std::uint64_t number = batch.first + i;
        if (!batch.isRetry) {
            m_retries.push_back({{std::move(batch.messages[i])}, number, 0, true});
            continue;
        }
        std::string frame;
        FrameWriter writer(&frame);
        m_failure(batch.messages[i], reason).writeTo(&writer);
        keep(number, std::move(frame));
    }
}

void WorkerPool::keep(std::uint64_t number, std::string frame)
{
    Result& result = m_results[number - m_delivered];
    m_bytesWaiting += frame.size();
    result.frame = std::move(frame);
    result.isThere = true;
}

// Ends what is still being converted.
void WorkerPool::stop()
{
    for (const Worker& worker : m_workers)
        if (worker.isBusy)
            worker.process->interrupt();
}
