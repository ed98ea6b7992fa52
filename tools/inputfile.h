#ifndef INPUTFILE_H
#define INPUTFILE_H

#include <string>
#include <vector>

/// The argument that stands for standard input.
constexpr const char* StandardInput = "-";

/// The name of the input @p argument in messages.
std::string displayName(const std::string& argument);

/// Reads the input @p argument whole into @p text. Returns what went wrong and what to do about it;
/// empty if nothing did.
std::string readInput(const std::string& argument, std::string* text);

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
    std::vector<Unlisted> unlisted;
};

/// Finds the regular files directly or further down in @p folder. Links to files count as files,
/// links to folders are not followed.
FolderListing listFolder(const std::string& folder);

#endif
