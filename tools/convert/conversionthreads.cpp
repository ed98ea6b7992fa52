#include "conversionthreads.h"

#include "interruption.h"

#include <algorithm>
#include <malloc.h>
#include <new>
#include <sys/resource.h>
#include <system_error>
#include <utility>

namespace {

// While results wait for one before them, no more than about this much is kept.
constexpr std::size_t MaxBytes = 1 << 26;

// For so much the other thread is woken, even if more follows; less would be dear.
constexpr std::size_t EnoughForNews = 1 << 18;

std::size_t memoryOf(const ConversionResult& result)
{
    return sizeof result + result.document.size() + result.reports.size();
}

// Blocks of memory that one thread takes and another one gives back are dear, so that documents are
// joined.
void join(const ConversionResult& result, ConversionResult* before)
{
    before->messages += result.messages;
    before->status = worse(before->status, result.status);
    before->document += result.document;
    before->part = result.part;
}

// The memory of a further thread begins with 64 MiB of address space. Where that is limited, all
// take theirs from the memory of the first one.
void shareScarceMemory()
{
    rlimit space{};
    if (getrlimit(RLIMIT_AS, &space) == 0 && space.rlim_cur != RLIM_INFINITY)
        mallopt(M_ARENA_MAX, 1);
}

} // namespace

ConversionThreads::ConversionThreads(int most, const ConvertOptions& options,
                                     const adexp::RuleSet& rules)
    : m_most(static_cast<std::size_t>(most)), m_options(options), m_rules(rules)
{
}

ConversionThreads::~ConversionThreads()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

bool ConversionThreads::areIdle() const
{
    const std::lock_guard lock(m_mutex);
    return m_window.empty();
}

bool ConversionThreads::haveRoom() const
{
    const std::lock_guard lock(m_mutex);
    return m_waiting < 2 * std::max<std::size_t>(m_most, 1) && m_bytes < MaxBytes;
}

bool ConversionThreads::give(Batch* batch)
{
    if (isThreadWanted())
        startOne();
    if (m_threads.empty())
        return false;
    {
        const std::lock_guard lock(m_mutex);
        m_bytes += batch->bytes;
        m_window.push_back(std::move(*batch));
        ++m_waiting;
    }
    m_changed.notify_all();
    return true;
}

// Is nobody free for one more batch, and may one more thread be started?
bool ConversionThreads::isThreadWanted() const
{
    const std::lock_guard lock(m_mutex);
    return m_busy + m_waiting >= m_threads.size() && m_threads.size() < m_most;
}

// If there cannot be one more, those that there are do all the work.
void ConversionThreads::startOne()
{
    try {
        if (!m_news) {
            m_news.emplace();
            shareScarceMemory();
        }
        m_threads.reserve(m_threads.size() + 1);
        m_threads.emplace_back([this] { run(); });
    } catch (const std::system_error&) {
        m_most = m_threads.size();
    }
}

bool ConversionThreads::takeNext(ConversionResult* result)
{
    const std::lock_guard lock(m_mutex);
    if (m_failure)
        std::rethrow_exception(m_failure);
    if (m_window.empty())
        return false;
    Batch& first = m_window.front();
    if (first.results.empty())
        return false;
    *result = std::move(first.results.front());
    first.results.pop_front();
    const bool hadRoom = m_bytes < MaxBytes;
    m_bytes -= memoryOf(*result);
    const bool isDone = first.results.empty() && first.converted == first.messages.size();
    if (isDone)
        m_window.pop_front();
    if (isDone || (!hadRoom && m_bytes < MaxBytes))
        m_changed.notify_all();
    return true;
}

void ConversionThreads::run()
{
    Interruption::leaveToOtherThreads();
    try {
        convertBatches();
    } catch (const std::bad_alloc&) {
        const std::lock_guard lock(m_mutex);
        m_failure = std::current_exception();
        m_news->call();
    }
}

void ConversionThreads::convertBatches()
{
    MessageConverter converter(m_options, m_rules);
    std::unique_lock lock(m_mutex);
    while (Batch* const batch = waitForBatch(&lock)) {
        while (batch->converted < batch->messages.size()) {
            if (!waitForRoom(*batch, &lock))
                return;
            const std::size_t begin = batch->converted;
            lock.unlock();
            Results results = convertSome(batch->messages, begin, &converter);
            lock.lock();
            for (ConversionResult& result : results) {
                m_bytes += memoryOf(result);
                batch->converted += result.messages;
                batch->results.push_back(std::move(result));
            }
            m_news->call();
        }
        --m_busy;
    }
}

// Converts messages from the one at `begin` on, until the results are worth waking the other
// thread.
ConversionThreads::Results ConversionThreads::convertSome(const std::vector<Message>& messages,
                                                          std::size_t begin,
                                                          MessageConverter* converter)
{
    const bool mayJoin = !m_options.summary && !m_options.nul;
    Results results;
    std::size_t bytes = 0;
    for (std::size_t i = begin; i < messages.size() && bytes < EnoughForNews; ++i) {
        ConversionResult result = convert(messages[i], converter);
        bytes += memoryOf(result);
        if (mayJoin && !results.empty() && result.reports.empty() &&
            result.document.size() < EnoughForNews)
            join(result, &results.back());
        else
            results.push_back(std::move(result));
    }
    return results;
}

// The next batch, which from then on belongs to this thread; null at the end.
Batch* ConversionThreads::waitForBatch(std::unique_lock<std::mutex>* lock)
{
    m_changed.wait(*lock, [this] { return m_waiting > 0 || m_isEnding; });
    if (m_isEnding)
        return nullptr;
    Batch& batch = m_window[m_window.size() - m_waiting];
    --m_waiting;
    ++m_busy;
    m_bytes -= batch.bytes;
    return &batch;
}

// False at the end. The first batch never waits, so the others do not wait for ever.
bool ConversionThreads::waitForRoom(const Batch& batch, std::unique_lock<std::mutex>* lock)
{
    m_changed.wait(*lock, [&] { return m_bytes < MaxBytes || isFirst(batch) || m_isEnding; });
    return !m_isEnding;
}

// If memory runs out, another message may have taken it. Therefore the message is tried once more
// while no other is being converted.
ConversionResult ConversionThreads::convert(const Message& message, MessageConverter* converter)
{
    try {
        const std::shared_lock beside(m_conversions);
        return converter->convert(message);
    } catch (const std::bad_alloc&) {
    }
    const std::unique_lock alone(m_conversions);
    return converter->convertOrTell(message);
}
