#include "outputnames.h"

namespace fs = std::filesystem;

namespace {

// The one path that all names of an existing file share; empty if there is no such file.
fs::path canonical(const std::string& name)
{
    std::error_code error;
    return fs::canonical(name, error);
}

// The file that was redirected to standard input; empty if it is a pipe or a terminal.
fs::path fileOfStandardInput()
{
    const fs::path file = canonical("/dev/stdin");
    std::error_code error;
    return fs::is_regular_file(file, error) ? file : fs::path();
}

} // namespace

OutputNames::OutputNames(const std::string& output, const std::deque<Input>& inputs)
    : m_output(output), m_isFolder(isFolderName(output))
{
    for (const Input& input : inputs)
        m_inputs.insert(input.argument == StandardInput ? fileOfStandardInput()
                                                        : canonical(input.argument));
    m_inputs.erase(fs::path());
}

bool OutputNames::isFolderName(const std::string& output)
{
    std::error_code error;
    return output.back() == '/' || fs::is_directory(output, error);
}

void OutputNames::assign(const Input& input, Message* message)
{
    message->document = fileFor(input, *message);
    message->failure = reasonAgainst(message->document, *message);
}

std::string OutputNames::fileFor(const Input& input, const Message& message) const
{
    if (!m_isFolder)
        return m_output;
    const std::string number = message.number == 0 ? "" : '.' + std::to_string(message.number);
    return (fs::path(m_output) / (input.documentName + number + ".xml")).string();
}

std::string OutputNames::reasonAgainst(const std::string& file, const Message& message)
{
    // The messages of one input differ by their numbers: to know the first one is enough, and keeps
    // the memory for a stream small.
    if (message.number <= 1 && !m_taken.insert(file).second)
        return "another message of the same file name was given before it; convert it on its own, "
               "with another -o, or give the folder of both with -r";
    if (m_inputs.count(canonical(file)) != 0)
        return "its document would replace the message " + file + "; choose another -o";
    return {};
}
