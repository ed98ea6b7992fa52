#include "inputfile.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

// The library counts the bytes of a message in 31 bits.
constexpr std::size_t MaxMessageSize = INT_MAX;

std::string tooLarge()
{
    return "is larger than " + std::to_string(MaxMessageSize) +
           " bytes, the most a message may have; check that it is a message";
}

struct CloseFile
{
    // Standard input stays open.
    void operator()(std::FILE* file) const
    {
        if (file != stdin)
            static_cast<void>(std::fclose(file)); // nothing was written that could be lost
    }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

std::string readError(int error)
{
    return std::string("cannot be read: ") + std::strerror(error) +
           "; check the name and the permissions";
}

// What is known before reading, so that three gigabytes need not be read to be refused.
std::string checkKindAndSize(std::FILE* file)
{
    struct stat info
    {
    };
    if (fstat(fileno(file), &info) != 0)
        return readError(errno);
    if (S_ISDIR(info.st_mode))
        return "is a folder, not a message; name the files in it";
    if (S_ISREG(info.st_mode) && static_cast<std::size_t>(info.st_size) > MaxMessageSize)
        return tooLarge();
    return {};
}

} // namespace

std::string displayName(const std::string& argument)
{
    return argument == StandardInput ? "<stdin>" : argument;
}

std::string readInput(const std::string& argument, std::string* text)
{
    text->clear();
    const File file(argument == StandardInput ? stdin : std::fopen(argument.c_str(), "rb"));
    if (!file)
        return readError(errno);
    if (std::string error = checkKindAndSize(file.get()); !error.empty())
        return error;
    std::array<char, 65536> buffer;
    for (;;) {
        const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), file.get());
        text->append(buffer.data(), got);
        if (text->size() > MaxMessageSize)
            return tooLarge();
        if (got < buffer.size())
            return std::ferror(file.get()) ? readError(errno) : std::string();
    }
}

FolderListing listFolder(const std::string& folder)
{
    FolderListing listing;
    std::set<fs::path> files;
    std::vector<fs::path> folders{folder};
    while (!folders.empty()) {
        const fs::path current = folders.back();
        folders.pop_back();
        std::error_code error;
        for (fs::directory_iterator entry(current, error);
             !error && entry != fs::directory_iterator(); entry.increment(error)) {
            std::error_code unknownKind; // a dangling link, for example: neither file nor folder
            if (entry->is_directory(unknownKind) && !entry->is_symlink(unknownKind))
                folders.push_back(entry->path());
            else if (entry->is_regular_file(unknownKind))
                files.insert(entry->path());
        }
        if (error)
            listing.unlisted.push_back(
                {current.string(),
                 "the folder cannot be listed: " + error.message() + "; check its permissions"});
    }
    for (const fs::path& file : files)
        listing.files.push_back(file.string());
    return listing;
}
