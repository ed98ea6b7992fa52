#ifndef INPUTLIST_H
#define INPUTLIST_H

#include "convertoptions.h"
#include "inputfile.h"
#include "recordreader.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

/// A file with one or more messages, or standard input.
struct Input
{
    std::string argument;     ///< the file, or "-"
    std::string documentName; ///< for a document in a folder: the path of the input there
    std::string failure;      ///< why it cannot be read and what to do about it; empty if it can
};

/// The inputs that the arguments of `adexp convert` stand for, in order: the files themselves,
/// those in folders, and those that a list names.
class InputList
{
public:
    /// The inputs of @p options. Folders are listed at once; a list of files is read as it comes,
    /// as long as nobody asks for all of it.
    explicit InputList(const ConvertOptions& options);

    /// Takes the next input.
    Next next(Input* input, Waiting waiting);

    /// All inputs that were not taken yet; the list of files is read to its end. The reference
    /// holds until the next call of next().
    const std::deque<Input>& all();

    /// How many inputs there are in all; nothing if a list of files is not read to its end.
    std::optional<std::size_t> count() const;

    /// The file descriptor that next() would wait for; -1 if it never waits.
    int descriptor() const { return m_names ? m_namesFile->descriptor() : -1; }

private:
    void openNames();
    void add(const std::string& argument);
    void addFolder(const std::string& folder);
    void addFailure(const std::string& argument, const std::string& failure);
    Next readName(Waiting waiting);

    const ConvertOptions& m_options;
    std::deque<Input> m_inputs;
    std::size_t m_taken = 0;
    std::optional<InputFile> m_namesFile;
    std::optional<RecordReader> m_names; // nothing: there is no list, or it is at its end
};

#endif
