#include "charset.h"

#include "grammar/charclass.h"

#include <algorithm>
#include <iterator>

CharSet CharSet::ofClasses(unsigned classes)
{
    CharSet set;
    set.m_classes = classes;
    return set;
}

CharSet CharSet::ofText(const QString& text)
{
    CharSet set;
    set.m_chars = text;
    std::sort(set.m_chars.begin(), set.m_chars.end());
    set.m_chars.truncate(static_cast<int>(std::unique(set.m_chars.begin(), set.m_chars.end()) -
                                          set.m_chars.begin()));
    return set;
}

bool CharSet::contains(QChar c) const
{
    return CharClass::isAny(c, m_classes) ||
           std::binary_search(m_chars.cbegin(), m_chars.cend(), c);
}

bool CharSet::contains(const CharSet& other) const
{
    return (other.m_classes & ~m_classes) == 0 &&
           std::all_of(other.m_chars.cbegin(), other.m_chars.cend(),
                       [this](QChar c) { return contains(c); });
}

void CharSet::add(const CharSet& other)
{
    m_classes |= other.m_classes;
    QString all;
    std::set_union(m_chars.cbegin(), m_chars.cend(), other.m_chars.cbegin(), other.m_chars.cend(),
                   std::back_inserter(all));
    m_chars = all;
}

CharSet CharSet::intersected(const CharSet& other) const
{
    QString chars;
    std::copy_if(m_chars.cbegin(), m_chars.cend(), std::back_inserter(chars),
                 [&other](QChar c) { return other.contains(c); });
    std::copy_if(other.m_chars.cbegin(), other.m_chars.cend(), std::back_inserter(chars),
                 [this](QChar c) { return contains(c); });
    CharSet set = ofText(chars);
    set.m_classes = m_classes & other.m_classes;
    return set;
}
