#include "console.h"

#include <QString>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

// What stands for a control character.
QString escape(char32_t c)
{
    switch (c) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        return QString::asprintf(c < 0x80 ? "\\x%02X" : "\\u%04X", static_cast<unsigned>(c));
    }
}

// The length in bytes of the UTF-8 character at the beginning of @p text, which is put into @p c; 0
// if there is none, and @p c is the first byte.
std::size_t readCharacter(std::string_view text, char32_t* c)
{
    constexpr std::array<char32_t, 5> Least{0, 0, 0x80, 0x800, 0x10000}; // of each length
    const auto first = static_cast<unsigned char>(text.front());
    *c = first;
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    if (first < 0xc0 || first > 0xf4 || length > text.size())
        return 0;
    char32_t character = first & (0x7fU >> length);
    for (const char next : text.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(next);
        if ((byte & 0xc0U) != 0x80U)
            return 0;
        character = character << 6U | (byte & 0x3fU);
    }
    const bool isSurrogate = character >= 0xd800 && character < 0xe000;
    if (character < Least[length] || isSurrogate || character > 0x10ffff)
        return 0;
    *c = character;
    return length;
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
            out += QString::asprintf("\\x%02X", static_cast<unsigned>(c)).toStdString();
        else if (isControl(c))
            out += escape(c).toStdString();
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
