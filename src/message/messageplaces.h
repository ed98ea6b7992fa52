#ifndef MESSAGEPLACES_H
#define MESSAGEPLACES_H

#include "adexp.h"

#include <QStringView>

#include <string_view>
#include <vector>

/// Finds the places of a message in the bytes that the caller gave, and their lines and columns.
///
/// Positions count UTF-16 units of the text without carriage returns, as everywhere. In the bytes
/// there may be carriage returns, a byte order mark, and bytes that are no UTF-8 and became a
/// U+FFFD each.
class MessagePlaces
{
public:
    /// @p text was decoded from @p bytes; both must stay.
    MessagePlaces(QStringView text, std::string_view bytes);

    /// Fills in the bytes of the stretch from @p begin to @p end (0 to the size of the text), and
    /// the line and column of @p begin.
    void locate(int begin, int end, adexp_place* place) const;

private:
    struct Character
    {
        qint64 byte;   // where it begins
        int byteCount; // of it
    };

    Character characterAt(int unit) const;

    static constexpr int Interval = 64;

    QStringView m_text;
    std::string_view m_bytes;
    std::vector<int> m_lineBegins;
    // A character and its first unit, for about every 64th unit; empty if each unit is a byte.
    struct Mark
    {
        int unit;
        qint64 byte;
    };
    std::vector<Mark> m_marks;
};

#endif
