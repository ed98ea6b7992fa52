#include "message/messageplaces.h"

#include <algorithm>

namespace {

// How Qt decodes the bytes at the front of `bytes`, which are not empty.
struct Decoded
{
    int bytes;
    int units; // 0 for a carriage return, which is left out of the text
};

// The length of the UTF-8 sequence at the front; 1 for a byte that begins none.
int sequenceLength(std::string_view bytes)
{
    const auto at = [bytes](size_t i) {
        return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
    };
    const auto continues = [&at](size_t i) { return (at(i) & 0xc0U) == 0x80U; };
    const unsigned first = at(0);
    const unsigned second = at(1);
    if (first < 0xc2 || first > 0xf4 || !continues(1))
        return 1;
    if (first < 0xe0)
        return 2;
    if (!continues(2))
        return 1;
    if (first < 0xf0) {
        const bool isOverlong = first == 0xe0 && second < 0xa0;
        const bool isSurrogate = first == 0xed && second >= 0xa0;
        return isOverlong || isSurrogate ? 1 : 3;
    }
    const bool isOverlong = first == 0xf0 && second < 0x90;
    const bool isTooLarge = first == 0xf4 && second >= 0x90;
    return isOverlong || isTooLarge || !continues(3) ? 1 : 4;
}

Decoded decode(std::string_view bytes)
{
    if (bytes.front() == '\r')
        return {1, 0};
    const int length = sequenceLength(bytes);
    return {length, length == 4 ? 2 : 1};
}

} // namespace

MessagePlaces::MessagePlaces(QStringView text, std::string_view bytes)
    : m_text(text), m_bytes(bytes), m_lineBegins{0}
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\n')
            m_lineBegins.push_back(static_cast<int>(i) + 1);
    }
    if (static_cast<size_t>(text.size()) == bytes.size())
        return;
    const bool hasMark = bytes.substr(0, 3) == "\xef\xbb\xbf";
    int unit = 0;
    for (size_t byte = hasMark ? 3 : 0; byte < bytes.size();) {
        if (m_marks.empty() || unit - m_marks.back().unit >= Interval)
            m_marks.push_back({unit, static_cast<qint64>(byte)});
        const Decoded decoded = decode(bytes.substr(byte));
        unit += decoded.units;
        byte += static_cast<size_t>(decoded.bytes);
    }
}

// The character that the unit belongs to; behind the last one, the end of the bytes.
MessagePlaces::Character MessagePlaces::characterAt(int unit) const
{
    if (m_marks.empty())
        return {unit, 1};
    const auto next =
        std::upper_bound(m_marks.cbegin(), m_marks.cend(), unit,
                         [](int wanted, const Mark& mark) { return wanted < mark.unit; });
    Mark at = *(next - 1);
    for (;;) {
        const std::string_view rest = m_bytes.substr(static_cast<size_t>(at.byte));
        if (rest.empty())
            return {at.byte, 0};
        const Decoded decoded = decode(rest);
        if (unit < at.unit + decoded.units)
            return {at.byte, decoded.bytes};
        at.unit += decoded.units;
        at.byte += decoded.bytes;
    }
}

void MessagePlaces::locate(int begin, int end, adexp_place* place) const
{
    place->byte_begin = characterAt(begin).byte;
    place->byte_end = place->byte_begin;
    if (end > begin) { // without the carriage returns behind it
        const Character last = characterAt(end - 1);
        place->byte_end = last.byte + last.byteCount;
    }
    const auto next = std::upper_bound(m_lineBegins.cbegin(), m_lineBegins.cend(), begin);
    place->line = static_cast<int>(next - m_lineBegins.cbegin());
    place->column = begin - *(next - 1) + 1;
}
