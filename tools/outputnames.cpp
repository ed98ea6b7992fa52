#include "outputnames.h"

#include "inputfile.h"

namespace fs = std::filesystem;

namespace {

bool isFolderName(const std::string& output)
{
    std::error_code error;
    return output.back() == '/' || fs::is_directory(output, error);
}

// The one path that all names of an existing file share; empty if there is no such file.
fs::path canonical(const std::string& name)
{
    std::error_code error;
    return fs::canonical(name, error);
}

std::string documentName(const std::string& input)
{
    const fs::path message =
        input == StandardInput ? fs::path("stdin") : fs::path(input).filename();
    return message.string() + ".xml";
}

} // namespace

OutputNames::OutputNames(const std::string& output, const std::vector<std::string>& inputs)
    : m_output(output), m_isFolder(isFolderName(output))
{
    for (const std::string& input : inputs)
        if (input != StandardInput)
            m_inputs.insert(canonical(input));
    m_inputs.erase(fs::path());
}

std::string OutputNames::take(const std::string& input, std::string* path)
{
    *path = m_isFolder ? (fs::path(m_output) / documentName(input)).string() : m_output;
    if (!m_taken.insert(*path).second)
        return "another message of the same file name was given before it; convert it on its own, "
               "with another -o";
    if (m_inputs.count(canonical(*path)) != 0)
        return "its document would replace the message " + *path + "; choose another -o";
    return {};
}
