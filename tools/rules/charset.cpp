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
    set.m_chars.insert(text.begin(), text.end());
    return set;
}

bool CharSet::contains(QChar c) const
{
    return CharClass::isAny(c, m_classes) || m_chars.count(c) != 0;
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
    m_chars.insert(other.m_chars.cbegin(), other.m_chars.cend());
}

CharSet CharSet::intersected(const CharSet& other) const
{
    CharSet set = ofClasses(m_classes & other.m_classes);
    for (const std::set<QChar>* chars : {&m_chars, &other.m_chars})
        std::copy_if(chars->cbegin(), chars->cend(), std::inserter(set.m_chars, set.m_chars.end()),
                     [&](QChar c) { return contains(c) && other.contains(c); });
    return set;
}
