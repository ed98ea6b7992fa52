#ifndef OUTPUTNAMES_H
#define OUTPUTNAMES_H

#include <filesystem>
#include <set>
#include <string>
#include <vector>

/// Which file each document goes to, for `-o FILE` and `-o FOLDER`.
///
/// No document may take the place of another one of the same run, nor of a message.
class OutputNames
{
public:
    /// Names for the documents of @p inputs. @p output is a file, or a folder if it is one or ends
    /// with a slash.
    OutputNames(const std::string& output, const std::vector<std::string>& inputs);

    /// True if the documents go into a folder, each under the name of its message.
    bool isFolder() const { return m_isFolder; }

    /// Puts the file name for the document of @p input into @p path. Returns why there is none,
    /// empty if there is one. To be called once for each input.
    std::string take(const std::string& input, std::string* path);

private:
    std::string m_output;
    bool m_isFolder;
    std::set<std::filesystem::path> m_inputs; // as canonical paths
    std::set<std::string> m_taken;
};

#endif
