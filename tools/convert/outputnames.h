#ifndef OUTPUTNAMES_H
#define OUTPUTNAMES_H

#include "inputlist.h"
#include "message.h"
#include "readfiles.h"

#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <set>
#include <string>

/// Which file each document goes to, for `-o FILE` and `-o FOLDER`.
///
/// No document may take the place of another one of the same run, nor of a file that is read.
class OutputNames
{
public:
    /// Names for the documents of @p inputs, which are those of @p options and must outlive the
    /// object.
    OutputNames(const ConvertOptions& options, const std::deque<Input>& inputs);

    /// Puts the file for the document of @p message, which is one of @p input, into it; or a
    /// failure, if there is none. To be called once for each message, in order.
    void assign(const Input& input, Message* message);

private:
    const std::filesystem::path& placeOfFolder(const std::filesystem::path& folder);
    bool take(const std::filesystem::path& file, const std::filesystem::path& stemName,
              std::uint64_t number);
    bool isOfStream(const std::string& file) const;

    const std::string& m_output;
    bool m_isFolder;
    ReadFiles m_readFiles;
    std::filesystem::path m_folder; // of the document before, and where it is without links
    std::filesystem::path m_placeOfFolder;
    // Places without links: documents of inputs that are one message, and those behind a link
    std::set<std::string> m_taken;
    std::map<std::string, std::uint64_t> m_streams; // of the others the stem, and how many it has
};

#endif
