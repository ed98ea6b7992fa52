#ifndef OUTPUTNAMES_H
#define OUTPUTNAMES_H

#include "inputlist.h"
#include "message.h"

#include <deque>
#include <filesystem>
#include <set>
#include <string>

/// Which file each document goes to, for `-o FILE` and `-o FOLDER`.
///
/// No document may take the place of another one of the same run, nor of a message.
class OutputNames
{
public:
    /// Names for the documents of @p inputs. @p output is a file, or a folder if isFolderName().
    OutputNames(const std::string& output, const std::deque<Input>& inputs);

    /// True if @p output is a folder or ends with a slash: the documents go into it, each under the
    /// name of its message.
    static bool isFolderName(const std::string& output);

    /// Puts the file for the document of @p message, which is one of @p input, into it; or a
    /// failure, if there is none. To be called once for each message, in order.
    void assign(const Input& input, Message* message);

private:
    std::string fileFor(const Input& input, const Message& message) const;
    std::string reasonAgainst(const std::string& file, const Message& message);

    std::string m_output;
    bool m_isFolder;
    std::set<std::filesystem::path> m_inputs; // as canonical paths
    std::set<std::string> m_taken;
};

#endif
