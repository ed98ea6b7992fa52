#include "endblockindex.h"

#include <algorithm>

EndBlockIndex::EndBlockIndex(const WordList* words, QStringView message,
                             std::pmr::memory_resource* arena)
    : m_words(words), m_message(message), m_fields(arena), m_ends(arena), m_loneHyphens(arena)
{
    const auto isField = [](const DocWord& word) { return word.isField; };
    m_fields.reserve(static_cast<size_t>(std::count_if(words->cbegin(), words->cend(), isField)));
    const auto count = static_cast<int>(words->size());
    for (int i = 0; i < count; ++i) {
        if (word(i).isNull()) {
            m_nullWord = i;
            break;
        }
        if (!word(i).isField)
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
    const auto isWord = [this](int i) {
        return static_cast<size_t>(i) < m_words->size() && !word(i).isNull();
    };
    if (word(index).size > 1) {
        *nameOffset = 1;
        return textOf(index) == u"-END" && isWord(index + 1) ? Kind::End : Kind::Field;
    }
    if (!isWord(index + 1))
        return Kind::Field;
    if (word(index + 1).isField)
        return Kind::LoneHyphen;
    *nameOffset = 2;
    return textOf(index + 1) == u"END" && isWord(index + 2) ? Kind::End : Kind::Field;
}

// Is it an end that takes the field word behind it for its name?
bool EndBlockIndex::takesFieldWord(size_t field) const
{
    const FieldWord& f = m_fields[field];
    return f.kind == Kind::End && word(f.word + f.nameOffset).isField;
}

// Does a look ahead that starts before the run pass here, or is this a name to it?
bool EndBlockIndex::isOnTheWay(size_t field) const
{
    return (field - static_cast<size_t>(m_fields[field].runStart)) % 2 == 0;
}

// The name of the block that the end ends.
QStringView EndBlockIndex::nameOf(size_t end) const
{
    return textOf(m_fields[end].word + m_fields[end].nameOffset);
}

bool EndBlockIndex::isLoneHyphenWithin(size_t field, int limit) const
{
    const FieldWord& f = m_fields[field];
    return f.kind == Kind::LoneHyphen && word(f.word + 1).beginPoint <= limit;
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
        if (word(nameWord).beginPoint <= limit) {
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
