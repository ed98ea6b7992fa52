#include "textplaces.h"

#include <algorithm>

namespace {

bool isSeparator(QChar c)
{
    return c == u' ' || c == u'\n' || c == u'\t';
}

} // namespace

TextPlaces::TextPlaces(QStringView text) : m_text(text), m_lineBegins{0}
{
    for (int i = 0; i < size(); ++i)
        if (text[i] == u'\n')
            m_lineBegins.push_back(i + 1);
}

int TextPlaces::characterBegin(int position) const
{
    position = std::clamp(position, 0, size());
    const bool isInside = position > 0 && position < size() && m_text[position].isLowSurrogate() &&
                          m_text[position - 1].isHighSurrogate();
    return isInside ? position - 1 : position;
}

int TextPlaces::wordEnd(int position) const
{
    return static_cast<int>(std::find_if(m_text.begin() + position, m_text.end(), isSeparator) -
                            m_text.begin());
}

int TextPlaces::nextWord(int position) const
{
    return static_cast<int>(std::find_if_not(m_text.begin() + position, m_text.end(), isSeparator) -
                            m_text.begin());
}

int TextPlaces::previousWord(int position) const
{
    while (position > 0 && isSeparator(m_text[position - 1]))
        --position;
    while (position > 0 && !isSeparator(m_text[position - 1]))
        --position;
    return position;
}

TextPlaces::Place TextPlaces::placeOf(int position) const
{
    const auto behind = std::upper_bound(m_lineBegins.cbegin(), m_lineBegins.cend(), position);
    return {static_cast<int>(behind - m_lineBegins.cbegin()), position - *(behind - 1) + 1};
}
