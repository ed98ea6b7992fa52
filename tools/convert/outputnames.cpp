#include "outputnames.h"

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

// The document of a message that has a number goes to STEM.NUMBER.xml: to know the highest one
// keeps the memory for a stream small.
std::string numbered(const std::string& stem, std::uint64_t number)
{
    return stem + '.' + std::to_string(number);
}

constexpr const char* Suffix = ".xml";

} // namespace

OutputNames::OutputNames(const ConvertOptions& options, const std::deque<Input>& inputs)
    : m_output(options.output), m_isFolder(isFolderName(m_output)), m_readFiles(options.settings)
{
    if (!options.filesFrom.empty())
        m_readFiles.add(options.filesFrom);
    for (const Input& input : inputs)
        m_readFiles.add(input.argument);
}

bool OutputNames::isFolderName(const std::string& output)
{
    std::error_code error;
    return output.back() == '/' || fs::is_directory(output, error);
}

void OutputNames::assign(const Input& input, Message* message)
{
    const std::string stem = (fs::path(m_output) / input.documentName).string();
    const std::string name = message->number == 0 ? stem : numbered(stem, message->number);
    message->document = m_isFolder ? name + Suffix : m_output;
    if (!take(message->document, stem, message->number))
        message->failure =
            "another message of the same file name was given before it; convert it on its own, "
            "with another -o, or give the folder of both with -r";
    else if (m_readFiles.contains(message->document))
        message->failure =
            "its document would replace the input " + message->document + "; choose another -o";
}

// False if the file is that of another message.
bool OutputNames::take(const std::string& file, const std::string& stem, std::uint64_t number)
{
    if (number == 0)
        return m_taken.insert(file).second && !isOfStream(file);
    std::uint64_t& highest = m_streams[stem];
    if (number <= highest)
        return false; // two streams have that name
    highest = number;
    return m_taken.count(file) == 0;
}

bool OutputNames::isOfStream(const std::string& file) const
{
    const std::string name = fs::path(file).replace_extension().string();
    const std::string extension = fs::path(name).extension().string();
    const std::uint64_t number =
        extension.size() < 2 ? 0 : std::strtoull(extension.c_str() + 1, nullptr, 10);
    const std::string stem = fs::path(name).replace_extension().string();
    const auto stream = m_streams.find(stem);
    return stream != m_streams.end() && number > 0 && number <= stream->second &&
           numbered(stem, number) == name;
}
