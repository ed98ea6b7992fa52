#ifndef UNICODE_H
#define UNICODE_H

#include <QString>

#include <string_view>

/// @p text, which is UTF-8 of at most 2^31 - 1 bytes, as a text of Qt.
inline QString unicode(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

#endif
