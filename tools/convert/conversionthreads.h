#ifndef CONVERSIONTHREADS_H
#define CONVERSIONTHREADS_H

#include "adexp.hpp"
#include "conversionresult.h"
#include "convertoptions.h"
#include "message.h"
#include "messageconverter.h"
#include "wakeup.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <thread>
#include <vector>

/// Messages that one thread converts one after another, and what became of them.
struct Batch
{
    std::vector<Message> messages;
    std::size_t bytes = 0;                ///< about the memory of the messages
    std::size_t converted = 0;            ///< so many messages are done
    std::deque<ConversionResult> results; ///< of these, but for those that were taken away
};

/// Threads that convert, each a batch of messages at a time, with one rule set. The thread that
/// made the object gives the batches, and takes the results in the order of the messages.
///
/// What waits, messages and results, is bounded: there is no room for a further batch while it
/// takes much memory, and a thread waits then before it converts a message, unless its results are
/// the next to be taken.
class ConversionThreads
{
public:
    /// At most @p most threads, each started when there is work for it. They work as @p options
    /// say, with @p rules; both must outlive the object.
    ConversionThreads(int most, const ConvertOptions& options, const adexp::RuleSet& rules);

    /// Waits for what is being converted.
    ~ConversionThreads();

    ConversionThreads(const ConversionThreads&) = delete;
    ConversionThreads& operator=(const ConversionThreads&) = delete;

    /// True if there is room for one more batch.
    bool haveRoom() const;

    /// Takes @p batch over. False if there is no thread, and none can be started.
    bool give(Batch* batch);

    /// Takes the next result, if it is there. Throws std::bad_alloc if memory ran
    /// out in a thread beyond what one message needs.
    bool takeNext(ConversionResult* result);

    /// True if all results were taken.
    bool areIdle() const;

    /// Tells when it is worth to look for results and room: then it is readable. Nothing if no
    /// thread was started.
    const std::optional<WakeUp>& news() const { return m_news; }

private:
    bool isThreadWanted() const;
    void startOne();
    void run();
    void convertBatches();
    Batch* waitForBatch(std::unique_lock<std::mutex>* lock);
    bool waitForRoom(const Batch& batch, std::unique_lock<std::mutex>* lock);
    using Results = std::vector<ConversionResult>;
    Results convertSome(const std::vector<Message>& messages, std::size_t begin,
                        MessageConverter* converter);
    ConversionResult convert(const Message& message, MessageConverter* converter);
    bool isFirst(const Batch& batch) const { return &batch == &m_window.front(); }

    std::size_t m_most;
    const ConvertOptions& m_options;
    const adexp::RuleSet& m_rules;
    std::vector<std::thread> m_threads;
    std::optional<WakeUp> m_news;

    mutable std::mutex m_mutex; // of all that follows
    std::condition_variable m_changed;
    std::deque<Batch> m_window; // from the first one with a result that was not taken
    std::size_t m_waiting = 0;  // batches at its end that no thread has begun
    std::size_t m_busy = 0;     // threads with a batch
    std::size_t m_bytes = 0;    // of messages in batches that wait, and of results
    bool m_isEnding = false;
    std::exception_ptr m_failure;

    std::shared_mutex m_conversions; // shared by those under way
};

#endif
