#ifndef WORKERPROCESS_H
#define WORKERPROCESS_H

#include "conversionresult.h"
#include "message.h"

#include <csignal>
#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

/// A copy of this process that converts messages: the library is for one thread at a time, but each
/// process has its own.
///
/// It gets some messages at once, answers them in their order, and then gets the next ones. It ends
/// when the object goes, and whenever this process ends.
class WorkerProcess
{
public:
    /// Converts one message, in the new process.
    using Work = std::function<ConversionResult(const Message& message)>;

    /// Starts the process. It is at @p place among the @p others, whose pipes it must not keep
    /// open. Throws std::system_error if there can be no further process.
    WorkerProcess(const Work& work, int place, const std::vector<WorkerProcess*>& others);
    ~WorkerProcess();

    WorkerProcess(const WorkerProcess&) = delete;
    WorkerProcess& operator=(const WorkerProcess&) = delete;

    /// Gives it @p messages. To be called only when it has answered all before: it then reads what
    /// is written to it, so that neither waits for the other. Throws std::bad_alloc if memory runs
    /// out; then it got none of them.
    void give(const std::vector<Message>& messages);

    /// Reads what there is of answers; waits for them if there is nothing. False if the process has
    /// ended, which it does only by a fault or a signal, or for want of memory. Throws
    /// std::bad_alloc if memory runs out here; then its answers are lost.
    bool read();

    /// Takes the next answer out of what was read: a ConversionResult as a frame. False if none is
    /// complete.
    bool takeAnswer(std::string* frame);

    /// Waits for the end of the process and says how it ended: "by signal 11 (Segmentation fault)".
    std::string end();

    /// Asks it to end at once; a file that it is writing it still completes.
    void interrupt() { kill(m_pid, SIGTERM); }

    /// Where read() reads.
    int descriptor() const { return m_answers; }

private:
    [[noreturn]] void run(const Work& work, int messages, int answers);
    static bool answer(const Work& work, std::string_view frame, int answers);

    int m_place;
    pid_t m_pid = 0;
    int m_messages = -1;
    int m_answers = -1;
    std::vector<char> m_block; // what one call reads; a stack may be smaller
    std::string m_read;
    std::size_t m_taken = 0; // of what was read
};

#endif
