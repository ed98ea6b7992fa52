#ifndef WORKERPOOL_H
#define WORKERPOOL_H

#include "message.h"
#include "messagesource.h"
#include "workerprocess.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Converts messages in several processes at once and gives the results in the order of the
/// messages.
///
/// A message whose process dies is tried once more, alone in a new process, and so are those that
/// were given with it. If that process dies as well, the message is at fault: its result says so,
/// and the others go on. The same is done if memory runs out over handing messages or results over.
class WorkerPool
{
public:
    /// Takes a result; false: no more are wanted.
    using Sink = std::function<bool(const ConversionResult& result)>;
    /// Is called before waiting: for processes, or for input that is not there yet.
    using BeforeWaiting = std::function<void()>;
    /// Makes the result for a @p message that was not converted, for the @p reason.
    using Failure =
        std::function<ConversionResult(const Message& message, const std::string& reason)>;

    /// A pool of @p size processes that do @p work. Throws std::system_error if they cannot be
    /// started.
    WorkerPool(int size, WorkerProcess::Work work, Failure failure);
    ~WorkerPool();

    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Converts all messages of @p source. Throws std::system_error if a process that died cannot
    /// be replaced.
    void run(MessageSource* source, const Sink& sink, const BeforeWaiting& beforeWaiting);

private:
    /// Messages that one process gets at once, and where their results go.
    struct Batch
    {
        std::vector<Message> messages;
        std::uint64_t first = 0; // number of the first message in the run
        std::size_t answered = 0;
        bool isRetry = false;
    };
    struct Worker
    {
        std::unique_ptr<WorkerProcess> process;
        Batch batch;
        bool isBusy = false;
    };
    struct Result
    {
        std::string frame;
        bool isThere = false;
    };

    void start(std::size_t place);
    Worker* idleWorker();
    bool isAnyBusy() const;
    bool hasRoom() const;
    Batch nextBatch(MessageSource* source);
    void give(MessageSource* source);
    bool deliver(const Sink& sink);
    void waitFor(const MessageSource& source);
    void receive(std::size_t place);
    bool takeAnswers(Worker* worker);
    void replace(std::size_t place);
    void tryAgain(Batch batch, const std::string& reason);
    void keep(std::uint64_t number, std::string frame);
    void stop();

    WorkerProcess::Work m_work;
    Failure m_failure;
    std::vector<Worker> m_workers;
    std::deque<Batch> m_retries;
    std::deque<Result> m_results; // from the first one that was not delivered
    std::uint64_t m_delivered = 0;
    std::uint64_t m_given = 0;
    std::size_t m_bytesWaiting = 0; // of results that were not delivered
    bool m_isWaitingForInput = false;
    bool m_isAtEnd = false;
};

#endif
