#include "inputfile.h"

#include "recordreader.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

std::string displayName(const std::string& argument)
{
    return argument == StandardInput ? "<stdin>" : argument;
}

std::string readError(int error)
{
    return std::string("cannot be read: ") + std::strerror(error) +
           "; check the name and the permissions";
}

std::string tooLargeError()
{
    return "is larger than " + std::to_string(MaxMessageSize) +
           " bytes, the most a message may have; check that it is a message";
}

InputFile::InputFile(const std::string& argument)
    : m_descriptor(argument == StandardInput ? STDIN_FILENO
                                             : open(argument.c_str(), O_RDONLY | O_CLOEXEC))
{
    struct stat info
    {
    };
    if (m_descriptor == -1 || fstat(m_descriptor, &info) != 0)
        m_error = readError(errno);
    else if (S_ISDIR(info.st_mode))
        m_error = "is a folder, not a message; name the files in it";
    else if (S_ISREG(info.st_mode))
        m_size = static_cast<std::size_t>(info.st_size);
}

InputFile::~InputFile()
{
    if (m_descriptor > STDERR_FILENO)
        close(m_descriptor);
}

// A file of three gigabytes is refused without reading it.
std::string InputFile::sizeError() const
{
    return m_size > MaxMessageSize ? tooLargeError() : std::string();
}

std::string readInput(const std::string& argument, std::string* text)
{
    const InputFile file(argument);
    if (!file.error().empty())
        return file.error();
    if (std::string error = file.sizeError(); !error.empty())
        return error;
    RecordReader reader(file.descriptor(), RecordReader::Whole);
    Record record;
    reader.next(&record, Waiting::Allowed);
    *text = std::move(record.text);
    return record.failure;
}
