#include "endblockindex.h"

#include "adexpdoc.h"

#include <algorithm>

EndBlockIndex::EndBlockIndex(const QVector<DocWord*>* words, std::pmr::memory_resource* arena)
    : m_words(words), m_fields(arena), m_ends(arena), m_loneHyphens(arena)
{
    m_fields.reserve(static_cast<size_t>(words->size()) / 2);
    for (int i = 0; i < words->size(); ++i) {
        if (!word(i)) {
            m_nullWord = i;
            break;
        }
        if (!word(i)->isField())
            continue;
        FieldWord field{i, static_cast<int>(m_fields.size()), 0, Kind::Field};
        field.kind = kindOf(i, &field.nameOffset);
        if (!m_fields.empty() && takesFieldWord(m_fields.size() - 1))
            field.runStart = m_fields.back().runStart;
        m_fields.push_back(field);

        const size_t index = m_fields.size() - 1;
        if (field.kind == Kind::Field || !isOnTheWay(index))
            continue;
        if (field.kind == Kind::End)
            m_ends.push_back(index);
        else
            m_loneHyphens.push_back(index);
    }
    std::sort(m_ends.begin(), m_ends.end(), [this](size_t a, size_t b) {
        const int order = nameOf(a).compare(nameOf(b));
        return order != 0 ? order < 0 : a < b;
    });
}

// What a look ahead makes of the field word. An end or a hyphen that the text ends behind is
// nothing.
EndBlockIndex::Kind EndBlockIndex::kindOf(int index, unsigned char* nameOffset) const
{
    const auto at = [this](int i) { return i < m_words->size() ? word(i) : nullptr; };
    if (word(index)->text.size() > 1) {
        *nameOffset = 1;
        return word(index)->text == u"-END" && at(index + 1) ? Kind::End : Kind::Field;
    }
    const DocWord* const keyword = at(index + 1);
    if (keyword && keyword->isField())
        return Kind::LoneHyphen;
    *nameOffset = 2;
    return keyword && keyword->text == u"END" && at(index + 2) ? Kind::End : Kind::Field;
}

// Is it an end that takes the field word behind it for its name?
bool EndBlockIndex::takesFieldWord(size_t field) const
{
    const FieldWord& f = m_fields[field];
    return f.kind == Kind::End && word(f.word + f.nameOffset)->isField();
}

// Does a look ahead that starts before the run pass here, or is this a name to it?
bool EndBlockIndex::isOnTheWay(size_t field) const
{
    return (field - static_cast<size_t>(m_fields[field].runStart)) % 2 == 0;
}

// The name of the block that the end ends.
QStringView EndBlockIndex::nameOf(size_t end) const
{
    return word(m_fields[end].word + m_fields[end].nameOffset)->text;
}

bool EndBlockIndex::isLoneHyphenWithin(size_t field, int limit) const
{
    const FieldWord& f = m_fields[field];
    return f.kind == Kind::LoneHyphen && word(f.word + 1)->beginPoint <= limit;
}

EndBlockIndex::Result EndBlockIndex::search(int cursor, QStringView name, int limit) const
{
    Result result;
    const auto start = std::lower_bound(
        m_fields.cbegin(), m_fields.cend(), cursor,
        [](const FieldWord& field, int wordIndex) { return field.word < wordIndex; });
    const auto first = static_cast<size_t>(start - m_fields.cbegin());

    // Through the run in which the search starts, if it does.
    size_t field = first;
    size_t end = m_fields.size(); // of the block
    while (field < m_fields.size() && static_cast<size_t>(m_fields[field].runStart) < first) {
        if (m_fields[field].kind == Kind::End && nameOf(field) == name) {
            end = field;
            break;
        }
        if (isLoneHyphenWithin(field, limit))
            result.loneHyphens.push_back(m_fields[field].word);
        field += takesFieldWord(field) ? 2 : 1;
    }
    // From there on the way is the same for all.
    if (end == m_fields.size()) {
        const auto found = std::lower_bound(m_ends.cbegin(), m_ends.cend(), field,
                                            [this, name](size_t candidate, size_t from) {
                                                const int order = nameOf(candidate).compare(name);
                                                return order != 0 ? order < 0 : candidate < from;
                                            });
        if (found != m_ends.cend() && nameOf(*found) == name)
            end = *found;
    }
    if (end != m_fields.size()) {
        const FieldWord& f = m_fields[end];
        const int nameWord = f.word + f.nameOffset;
        if (word(nameWord)->beginPoint <= limit) {
            result.endWord = f.word;
            result.nameWord = nameWord;
        }
    }
    for (auto hyphen = std::lower_bound(m_loneHyphens.cbegin(), m_loneHyphens.cend(), field);
         hyphen != m_loneHyphens.cend() && *hyphen < end && isLoneHyphenWithin(*hyphen, limit);
         ++hyphen)
        result.loneHyphens.push_back(m_fields[*hyphen].word);
    return result;
}
