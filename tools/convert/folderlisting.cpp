#include "folderlisting.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace fs = std::filesystem;

namespace {

bool isSame(const fs::path& folder, const std::string& other)
{
    std::error_code error;
    return fs::equivalent(folder, other, error);
}

} // namespace

FolderListing listFolder(const std::string& folder, const std::string& left)
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
            if (entry->is_directory(unknownKind)) {
                if (!entry->is_symlink(unknownKind) && !isSame(entry->path(), left))
                    folders.push_back(entry->path());
            } else if (entry->is_regular_file(unknownKind)) {
                files.insert(entry->path());
            }
        }
        if (error)
            listing.unlisted.push_back(
                {current.string(),
                 "the folder cannot be listed: " + error.message() + "; check its permissions"});
    }
    for (const fs::path& file : files)
        listing.files.push_back(file.string());
    std::sort(listing.unlisted.begin(), listing.unlisted.end(),
              [](const auto& a, const auto& b) { return a.folder < b.folder; });
    return listing;
}
