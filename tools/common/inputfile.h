#ifndef INPUTFILE_H
#define INPUTFILE_H

#include <climits>
#include <cstddef>
#include <string>

/// The argument that stands for standard input.
constexpr const char* StandardInput = "-";

/// The most bytes that a message may have: the library counts them in 31 bits.
constexpr std::size_t MaxMessageSize = INT_MAX;

/// The name of the input @p argument in messages.
std::string displayName(const std::string& argument);

/// What went wrong and what to do about it: the file operation ended with the @p error of errno.
std::string readError(int error);

/// The same for a message of more than MaxMessageSize bytes.
std::string tooLargeError();

/// An input that is open for reading as long as an object of this class lives. Standard input stays
/// open.
class InputFile
{
public:
    /// Opens the input @p argument.
    explicit InputFile(const std::string& argument);
    ~InputFile();

    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Why it cannot be read, empty if it can.
    const std::string& error() const { return m_error; }
    /// The file descriptor.
    int descriptor() const { return m_descriptor; }
    /// Why it is too large for one message; empty if it is not, or if only reading can show that.
    std::string sizeError() const;
    /// The size in bytes of a regular file; 0 for a pipe or terminal, whose size is unknown.
    std::size_t size() const { return m_size; }

private:
    int m_descriptor;
    std::size_t m_size = 0;
    std::string m_error;
};

/// Reads the whole input @p argument into @p text. Returns what went wrong and what to do about it;
/// empty if nothing did.
std::string readInput(const std::string& argument, std::string* text);

#endif
