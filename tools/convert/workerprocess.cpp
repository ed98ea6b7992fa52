#include "workerprocess.h"

#include "framereader.h"
#include "framewriter.h"
#include "interruption.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

// Exit status of a process; end() tells it.
constexpr int EndForWantOfMemory = 2;

constexpr std::size_t SizeOfSize = sizeof(std::uint64_t);

// Answers of this size are sent, even if more follow; less would be dear by the system calls.
constexpr std::size_t EnoughToSend = 1 << 18;

bool writeAll(int descriptor, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t written = write(descriptor, data.data(), data.size());
        if (written == -1 && errno != EINTR)
            return false;
        data.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

// A frame is sent behind its size.
bool writeFrame(int descriptor, std::string_view frame)
{
    std::string size;
    FrameWriter(&size).number(frame.size());
    return writeAll(descriptor, size) && writeAll(descriptor, frame);
}

bool readAll(int descriptor, char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t got = ::read(descriptor, data, size);
        if (got == 0 || (got == -1 && errno != EINTR))
            return false;
        data += std::max<ssize_t>(got, 0);
        size -= static_cast<std::size_t>(std::max<ssize_t>(got, 0));
    }
    return true;
}

bool readFrame(int descriptor, std::string* frame)
{
    std::uint64_t size = 0;
    if (!readAll(descriptor, reinterpret_cast<char*>(&size), sizeof size))
        return false;
    frame->resize(size);
    return readAll(descriptor, frame->data(), size);
}

std::array<int, 2> makePipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category());
    // The usual 64 KiB make many small transfers. It is no fault if the system refuses.
    fcntl(ends[1], F_SETPIPE_SZ, 1 << 20);
    return ends;
}

// What the caller gave to the command is not for its workers: a pipe shall be closed when the
// command ends, and only the command reads and writes.
void leaveStandardStreams()
{
    const int null = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(null, STDIN_FILENO);
    dup2(null, STDOUT_FILENO);
}

} // namespace

WorkerProcess::WorkerProcess(const Work& work, int place, const std::vector<WorkerProcess*>& others)
    : m_place(place), m_block(EnoughToSend)
{
    const std::array<int, 2> messages = makePipe();
    const std::array<int, 2> answers = makePipe();
    m_messages = messages[1];
    m_answers = answers[0];
    const pid_t parent = getpid();
    m_pid = fork();
    if (m_pid == 0) {
        Interruption::leaveToParent(parent);
        leaveStandardStreams();
        for (const int ours : {m_messages, m_answers})
            close(ours);
        for (const WorkerProcess* other : others)
            for (const int theirs : {other->m_messages, other->m_answers})
                close(theirs);
        run(work, messages[0], answers[1]);
    }
    const int error = errno;
    close(messages[0]);
    close(answers[1]);
    if (m_pid == -1) {
        close(m_messages);
        close(m_answers);
        throw std::system_error(error, std::generic_category());
    }
    Interruption::setProcess(m_place, m_pid);
}

WorkerProcess::~WorkerProcess()
{
    close(m_answers); // first: it may be waiting for somebody to read its answers
    end();
}

void WorkerProcess::run(const Work& work, int messages, int answers)
{
    try {
        std::string frame;
        while (readFrame(messages, &frame) && answer(work, frame, answers)) {
        }
    } catch (const std::bad_alloc&) {
        std::exit(EndForWantOfMemory);
    }
    std::exit(0);
}

// False if nobody reads the answers.
bool WorkerProcess::answer(const Work& work, std::string_view frame, int answers)
{
    FrameReader reader(frame);
    std::string result;
    std::string out;
    for (std::uint64_t left = reader.number(); left > 0; --left) {
        result.clear();
        FrameWriter writer(&result);
        work(Message::readFrom(&reader)).writeTo(&writer);
        FrameWriter(&out).text(result);
        if (left > 1 && out.size() < EnoughToSend)
            continue;
        if (!writeAll(answers, out))
            return false;
        out.clear();
    }
    return true;
}

void WorkerProcess::give(const std::vector<Message>& messages)
{
    std::string frame;
    FrameWriter writer(&frame);
    writer.number(messages.size());
    for (const Message& message : messages)
        message.writeTo(&writer);
    // If it has ended, read() will tell.
    writeFrame(m_messages, frame);
}

bool WorkerProcess::read()
{
    m_read.erase(0, m_taken);
    m_taken = 0;
    const ssize_t got = ::read(m_answers, m_block.data(), m_block.size());
    if (got > 0)
        m_read.append(m_block.data(), static_cast<std::size_t>(got));
    return got > 0 || (got == -1 && errno == EINTR);
}

bool WorkerProcess::takeAnswer(std::string* frame)
{
    const std::string_view rest = std::string_view(m_read).substr(m_taken);
    if (rest.size() < SizeOfSize)
        return false;
    const std::uint64_t size = FrameReader(rest).number();
    if (rest.size() - SizeOfSize < size)
        return false;
    frame->assign(rest, SizeOfSize, size);
    m_taken += SizeOfSize + size;
    return true;
}

std::string WorkerProcess::end()
{
    if (m_pid == 0)
        return {};
    close(m_messages);
    int status = 0;
    while (waitpid(m_pid, &status, 0) == -1 && errno == EINTR) {
    }
    Interruption::setProcess(m_place, 0);
    m_pid = 0;
    if (WIFSIGNALED(status))
        return "by signal " + std::to_string(WTERMSIG(status)) + " (" +
               strsignal(WTERMSIG(status)) + ')';
    if (WEXITSTATUS(status) == EndForWantOfMemory)
        return "for want of memory";
    return "with status " + std::to_string(WEXITSTATUS(status));
}
