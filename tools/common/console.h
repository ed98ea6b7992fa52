#ifndef CONSOLE_H
#define CONSOLE_H

#include <string>
#include <string_view>

/// True for control characters, also beyond ASCII, and for those that turn the direction of
/// writing.
bool isControl(char32_t c);

/// @p text with control characters written as \n, \t, \r or \x1B, those beyond ASCII and those that
/// turn the direction of writing as \u202E, and bytes that are not UTF-8 as \x9B: names and reports
/// stay on one line and cannot drive the terminal. Everything else stays as it is.
std::string escaped(std::string_view text);

/// "subject: text" as one line, both escaped.
std::string errorLine(std::string_view subject, std::string_view text);

/// Writes "subject: text" as one line to standard error, both escaped. The subject is a file, a
/// settings path or the command itself.
void printError(std::string_view subject, std::string_view text);

/// The name under which the command reports about itself.
constexpr const char* CommandName = "adexp";

/// Writes the lines of @p text to standard error, as they are.
void writeToStandardError(std::string_view text);

/// Standard output. The first error is kept; after it nothing more is written.
class StandardOutput
{
public:
    /// Writes @p text, buffered.
    void write(std::string_view text);

    /// Writes what is buffered. False if anything could not be written up to now, after one message
    /// on standard error; a reader that went away (closed pipe) is no reason for a message.
    bool flush();

    /// True if something could not be written.
    bool hasFailed() const { return m_error != 0; }

private:
    int m_error = 0; // errno of the first failure
    bool m_isTold = false;
};

#endif
