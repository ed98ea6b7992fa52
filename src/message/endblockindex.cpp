#include "message/endblockindex.h"

#include <algorithm>

EndBlockIndex::EndBlockIndex(const WordList* words, QStringView message,
                             std::pmr::memory_resource* arena)
    : m_words(words), m_message(message), m_stops(arena), m_ends(arena), m_loneHyphens(arena)
{
    const auto count = static_cast<int>(words->size());
    for (int i = 0; i < count; ++i) {
        if (word(i).isNull()) {
            m_nullWord = i;
            break;
        }
        Stop stop{i, m_stops.size(), 0, Kind::LoneHyphen};
        if (!word(i).isField || !isStop(i, &stop))
            continue;
        if (!m_stops.empty() && nameWord(m_stops.back()) == i)
            stop.runStart = m_stops.back().runStart;
        m_stops.push_back(stop);

        const size_t index = m_stops.size() - 1;
        if (!isOnTheWay(index))
            continue;
        if (stop.kind == Kind::End)
            m_ends[nameOf(stop)].push_back(index);
        else
            m_loneHyphens.push_back(index);
    }
}

// Does a search stop at the field word? Not at an "-END" or a hyphen that is the last word.
bool EndBlockIndex::isStop(int index, Stop* stop) const
{
    const auto isWord = [this](int i) {
        return static_cast<size_t>(i) < m_words->size() && !word(i).isNull();
    };
    if (word(index).size > 1) {
        stop->kind = Kind::End;
        stop->nameOffset = 1;
        return textOf(index) == u"-END" && isWord(index + 1);
    }
    if (!isWord(index + 1))
        return false;
    if (word(index + 1).isField)
        return true;
    stop->kind = Kind::End;
    stop->nameOffset = 2;
    return textOf(index + 1) == u"END" && isWord(index + 2);
}

// Does a search that starts before the run read this as an end? Otherwise it is a name for it.
bool EndBlockIndex::isOnTheWay(size_t stop) const
{
    return (stop - m_stops[stop].runStart) % 2 == 0;
}

bool EndBlockIndex::isLoneHyphenWithin(size_t stop, int limit) const
{
    const Stop& s = m_stops[stop];
    return s.kind == Kind::LoneHyphen && word(s.word + 1).beginPoint <= limit;
}

EndBlockIndex::Result EndBlockIndex::search(int cursor, QStringView name, int limit) const
{
    Result result;
    const auto start =
        std::lower_bound(m_stops.cbegin(), m_stops.cend(), cursor,
                         [](const Stop& stop, int wordIndex) { return stop.word < wordIndex; });
    const auto first = static_cast<size_t>(start - m_stops.cbegin());

    // If the search starts inside a run: word by word to the end of the run.
    size_t stop = first;
    size_t end = m_stops.size(); // of the block
    while (stop < m_stops.size() && m_stops[stop].runStart < first) {
        const Stop& s = m_stops[stop];
        if (s.kind == Kind::End && nameOf(s) == name) {
            end = stop;
            break;
        }
        if (isLoneHyphenWithin(stop, limit))
            result.loneHyphens.push_back(s.word);
        const bool takesNext = stop + 1 < m_stops.size() && nameWord(s) == m_stops[stop + 1].word;
        stop += takesNext ? 2 : 1;
    }
    // From here on all searches see the same.
    if (const auto ends = m_ends.find(name); end == m_stops.size() && ends != m_ends.cend()) {
        const auto found = std::lower_bound(ends->second.cbegin(), ends->second.cend(), stop);
        if (found != ends->second.cend())
            end = *found;
    }
    if (end != m_stops.size() && word(nameWord(m_stops[end])).beginPoint <= limit) {
        result.endWord = m_stops[end].word;
        result.nameWord = nameWord(m_stops[end]);
    }
    for (auto hyphen = std::lower_bound(m_loneHyphens.cbegin(), m_loneHyphens.cend(), stop);
         hyphen != m_loneHyphens.cend() && *hyphen < end && isLoneHyphenWithin(*hyphen, limit);
         ++hyphen)
        result.loneHyphens.push_back(m_stops[*hyphen].word);
    return result;
}
