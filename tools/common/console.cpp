#include "console.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

void appendHex(std::string* out, char32_t value, int digits)
{
    constexpr const char* HexDigits = "0123456789ABCDEF";
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        *out += HexDigits[value >> shift & 0xfU];
}

void appendByte(std::string* out, char byte)
{
    *out += "\\x";
    appendHex(out, static_cast<unsigned char>(byte), 2);
}

void appendControl(std::string* out, char32_t c)
{
    switch (c) {
    case '\n':
        *out += "\\n";
        break;
    case '\r':
        *out += "\\r";
        break;
    case '\t':
        *out += "\\t";
        break;
    default:
        if (c < 0x80)
            return appendByte(out, static_cast<char>(c));
        *out += "\\u";
        appendHex(out, c, 4);
    }
}

// How many bytes the UTF-8 character has that begins with this byte; 0 if none does.
std::size_t lengthByFirst(unsigned char byte)
{
    if (byte < 0x80)
        return 1;
    if (byte < 0xc2 || byte > 0xf4)
        return 0;
    return byte < 0xe0 ? 2 : byte < 0xf0 ? 3 : 4;
}

// The length in bytes of the UTF-8 character at the beginning of @p text, which is put into @p c; 0
// if there is none.
std::size_t readCharacter(std::string_view text, char32_t* c)
{
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = lengthByFirst(first);
    if (length < 2 || length > text.size()) {
        *c = first;
        return length == 1 ? 1 : 0;
    }
    *c = first & (0x7fU >> length);
    for (const char next : text.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(next);
        if ((byte & 0xc0U) != 0x80U)
            return 0;
        *c = *c << 6U | (byte & 0x3fU);
    }
    const bool isOverlong = (length == 3 && *c < 0x800) || (length == 4 && *c < 0x10000);
    const bool isSurrogate = *c >= 0xd800 && *c < 0xe000;
    return isOverlong || isSurrogate || *c > 0x10ffff ? 0 : length;
}

} // namespace

bool isControl(char32_t c)
{
    const bool isC0 = c < ' ';
    const bool isDeleteOrC1 = c >= 0x7f && c < 0xa0;
    const bool turnsDirection = (c >= 0x202a && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069);
    return isC0 || isDeleteOrC1 || turnsDirection;
}

std::string escaped(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        char32_t c = 0;
        const std::size_t length = readCharacter(text, &c);
        if (length == 0)
            appendByte(&out, text.front());
        else if (isControl(c))
            appendControl(&out, c);
        else
            out += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
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
