#include "inputlist.h"

#include <filesystem>
#include <map>
#include <set>
#include <utility>

namespace fs = std::filesystem;

namespace {

bool isSame(const fs::path& folder, const std::string& other)
{
    std::error_code error;
    return fs::equivalent(folder, other, error);
}

} // namespace

InputList::InputList(const ConvertOptions& options) : m_options(options)
{
    if (!options.filesFrom.empty())
        openNames();
    else if (options.files.empty())
        add(StandardInput);
    for (const std::string& file : options.files)
        add(file);
}

void InputList::openNames()
{
    m_namesFile.emplace(m_options.filesFrom);
    if (m_namesFile->error().empty())
        m_names.emplace(m_namesFile->descriptor(), m_options.nul ? '\0' : '\n');
    else
        addFailure(m_options.filesFrom, m_namesFile->error());
}

void InputList::add(const std::string& argument)
{
    std::error_code error;
    if (argument == StandardInput)
        m_inputs.push_back({argument, "stdin", std::string()});
    else if (!fs::is_directory(argument, error))
        m_inputs.push_back({argument, fs::path(argument).filename().string(), std::string()});
    else if (m_options.recursive)
        addFolder(argument);
    else
        addFailure(argument, "is a folder, not a message; give -r to convert the files in it");
}

// Links to files count as files, links to folders are not followed.
void InputList::addFolder(const std::string& top)
{
    const std::string output = m_options.hasOutputFiles() ? m_options.output : std::string();
    std::set<fs::path> files;
    std::map<std::string, std::string> failures; // by folder
    std::vector<fs::path> folders{top};
    while (!folders.empty()) {
        const fs::path folder = folders.back();
        folders.pop_back();
        std::error_code error;
        for (fs::directory_iterator entry(folder, error);
             !error && entry != fs::directory_iterator(); entry.increment(error)) {
            std::error_code unknownKind; // a dangling link, for example: neither file nor folder
            if (entry->is_directory(unknownKind)) {
                if (!entry->is_symlink(unknownKind) && !isSame(entry->path(), output))
                    folders.push_back(entry->path());
            } else if (entry->is_regular_file(unknownKind)) {
                files.insert(entry->path());
            }
        }
        if (error)
            failures.emplace(folder.string(), "the folder cannot be listed: " + error.message() +
                                                  "; check its permissions");
    }
    for (const auto& [folder, failure] : failures)
        addFailure(folder, failure);
    for (const fs::path& file : files)
        m_inputs.push_back({file.string(), file.lexically_relative(top).string(), {}});
}

void InputList::addFailure(const std::string& argument, const std::string& failure)
{
    m_inputs.push_back({argument, std::string(), failure});
}

// Reads one name of the list, which adds any number of inputs.
Next InputList::readName(Waiting waiting)
{
    Record name;
    const Next result = m_names->next(&name, waiting);
    if (result == Next::End)
        m_names.reset();
    else if (result == Next::Taken && !name.failure.empty())
        addFailure(m_options.filesFrom, name.failure);
    else if (result == Next::Taken)
        add(name.text == StandardInput ? "./-" : name.text); // in a list it is a file of that name
    return result;
}

Next InputList::next(Input* input, Waiting waiting)
{
    while (m_inputs.empty() && m_names)
        if (readName(waiting) == Next::WouldWait)
            return Next::WouldWait;
    if (m_inputs.empty())
        return Next::End;
    *input = std::move(m_inputs.front());
    m_inputs.pop_front();
    ++m_taken;
    return Next::Taken;
}

const std::deque<Input>& InputList::all()
{
    while (m_names)
        readName(Waiting::Allowed);
    return m_inputs;
}

std::optional<std::size_t> InputList::count() const
{
    if (m_names)
        return std::nullopt;
    return m_taken + m_inputs.size();
}
