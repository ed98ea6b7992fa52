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

// As many as the system follows at most.
constexpr int MaxLinks = 40;

// The first part of the path that is a link; empty if none is.
fs::path linkIn(const fs::path& path)
{
    fs::path part;
    std::error_code error;
    for (const fs::path& name : path)
        if (fs::is_symlink(part /= name, error))
            return part;
    return {};
}

// Where the file is, or will be when it is written. Two documents of one run may go through a link
// to something that the first one makes: a link that leads nowhere yet is followed too.
fs::path placeOf(const fs::path& path)
{
    std::error_code error;
    fs::path place = fs::absolute(path, error);
    for (int followed = 0; followed < MaxLinks; ++followed) {
        const fs::path known = fs::weakly_canonical(place, error);
        const fs::path link = error ? fs::path() : linkIn(known);
        if (link.empty())
            return error ? place : known;
        place = link.parent_path() / fs::read_symlink(link, error);
        if (link != known)
            place /= known.lexically_relative(link);
    }
    return place; // writing it will fail
}

} // namespace

OutputNames::OutputNames(const ConvertOptions& options, const std::deque<Input>& inputs)
    : m_output(options.output), m_isFolder(options.isOutputFolder), m_readFiles(options.settings)
{
    if (!options.filesFrom.empty())
        m_readFiles.add(options.filesFrom);
    for (const Input& input : inputs)
        m_readFiles.add(input.argument);
}

void OutputNames::assign(const Input& input, Message* message)
{
    const fs::path stem = fs::path(m_output) / input.documentName;
    const std::string name =
        message->number == 0 ? stem.string() : numbered(stem.string(), message->number);
    message->document = m_isFolder ? name + Suffix : m_output;
    if (m_isFolder && !take(fs::path(message->document), stem.filename(), message->number))
        message->failure =
            "another message of the same file name was given before it; convert it on its own, "
            "with another -o, or give the folder of both with -r";
    else if (m_readFiles.contains(message->document))
        message->failure =
            "its document would replace the input " + message->document + "; choose another -o";
}

// Where the documents of this folder are or will be.
const fs::path& OutputNames::placeOfFolder(const fs::path& folder)
{
    if (folder != m_folder) {
        m_folder = folder;
        m_placeOfFolder = placeOf(folder);
    }
    return m_placeOfFolder;
}

// False if the file is that of another message.
bool OutputNames::take(const fs::path& file, const fs::path& stemName, std::uint64_t number)
{
    const fs::path& folder = placeOfFolder(file.parent_path());
    const fs::path place = folder / file.filename();
    std::error_code error;
    const bool isLink = fs::is_symlink(place, error);
    if (number == 0 || isLink) {
        const std::string taken = isLink ? placeOf(place).string() : place.string();
        return !isOfStream(taken) && m_taken.insert(taken).second;
    }
    std::uint64_t& highest = m_streams[(folder / stemName).string()];
    if (number <= highest)
        return false; // two streams have that name
    highest = number;
    return m_taken.count(place.string()) == 0;
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
