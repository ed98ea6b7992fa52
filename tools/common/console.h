#ifndef CONSOLE_H
#define CONSOLE_H

#include <string>
#include <string_view>

/// True for control characters, also beyond ASCII, and for those that change the direction of
/// writing.
bool isControl(char32_t c);

/// @p text with escapes, so that names and reports stay on one line and cannot control the
/// terminal. Control characters become \n, \t, \r or \x1B; those beyond ASCII, and characters that
/// change the direction of writing, become \u202E; bytes that are not UTF-8 become \x9B. Everything
/// else stays as it is.
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

    /// Writes what is buffered. False, after one message on standard error, if anything could not
    /// be written up to now. There is no message if the reader has closed its pipe.
    bool flush();

    /// True if something could not be written.
    bool hasFailed() const { return m_error != 0; }

private:
    int m_error = 0; // errno of the first failure
    bool m_isTold = false;
};

#endif
