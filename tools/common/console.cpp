#include "console.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

void appendEscape(std::string* out, unsigned char c)
{
    constexpr const char* HexDigits = "0123456789ABCDEF";
    *out += '\\';
    switch (c) {
    case '\n':
        *out += 'n';
        break;
    case '\r':
        *out += 'r';
        break;
    case '\t':
        *out += 't';
        break;
    default:
        *out += 'x';
        *out += HexDigits[c / 16];
        *out += HexDigits[c % 16];
    }
}

} // namespace

std::string escaped(std::string_view text)
{
    constexpr unsigned char Delete = 0x7f;
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < ' ' || byte == Delete)
            appendEscape(&out, byte);
        else
            out += c;
    }
    return out;
}

std::string errorLine(std::string_view subject, std::string_view text)
{
    return escaped(subject) + ": " + escaped(text) + '\n';
}

void printError(std::string_view subject, std::string_view text)
{
    writeToStandardError(errorLine(subject, text));
}

void writeToStandardError(std::string_view text)
{
    // If this fails there is no place left to tell it.
    // cppcheck-suppress danglingTemporaryLifetime  // the caller keeps the text
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
}

void StandardOutput::write(std::string_view text)
{
    if (m_error == 0 && !text.empty() &&
        std::fwrite(text.data(), 1, text.size(), stdout) != text.size())
        m_error = errno;
}

bool StandardOutput::flush()
{
    if (m_error == 0 && std::fflush(stdout) != 0)
        m_error = errno;
    if (m_error == 0)
        return true;
    if (m_error != EPIPE && !m_isTold)
        printError(CommandName, std::string("standard output cannot be written: ") +
                                    std::strerror(m_error) +
                                    "; make room or choose another place, and try again");
    m_isTold = true;
    return false;
}
