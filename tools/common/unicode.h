#ifndef UNICODE_H
#define UNICODE_H

#include <QString>

#include <string_view>

/// @p text, which is UTF-8 of at most 2^31 - 1 bytes, as a text of Qt.
inline QString unicode(std::string_view text)
{
    // Qt drops a byte order mark at the begin. Here it is a part of the text.
    const bool hasMark = text.substr(0, 3) == "\xef\xbb\xbf";
    return (hasMark ? QString(QChar(QChar::ByteOrderMark)) : QString()) +
           QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

#endif
