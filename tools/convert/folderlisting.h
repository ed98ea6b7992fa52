#ifndef FOLDERLISTING_H
#define FOLDERLISTING_H

#include <string>
#include <vector>

/// What a folder holds.
struct FolderListing
{
    /// A folder that could not be listed.
    struct Unlisted
    {
        std::string folder;
        std::string reason; ///< what went wrong and what to do about it
    };

    std::vector<std::string> files; ///< sorted by name
    std::vector<Unlisted> unlisted; ///< sorted by name
};

/// Finds the regular files directly or further down in @p folder, but for those in the folder
/// @p left (empty: none is left out). Links to files count as files, links to folders are not
/// followed.
FolderListing listFolder(const std::string& folder, const std::string& left);

#endif
