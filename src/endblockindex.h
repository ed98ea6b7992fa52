#ifndef ENDBLOCKINDEX_H
#define ENDBLOCKINDEX_H

#include "docword.h"

#include <cstddef>
#include <cstring>
#include <map>
#include <memory_resource>
#include <vector>

/// Finds the end of a block without reading the message again for each "-BEGIN".
///
/// Looking ahead reads field after field and takes the word behind each "-END" as its name, so
/// where it passes depends on where it starts: in "-END -END A" the second word is a name for who
/// starts at the first word, and an end of its own for who starts at the second. But that only
/// matters inside a run of ends that are names as well; from the end of the run on, all ways are
/// one. The index holds the ends on that one way by name, and search() walks through the run in
/// which it starts.
class EndBlockIndex
{
public:
    /// An index over @p words (not owned) of @p message, which both must stay, up to the first null
    /// among them. It takes its memory from @p arena, which must stay as well.
    EndBlockIndex(const WordList* words, QStringView message, std::pmr::memory_resource* arena);

    /// The index of the first null among the words, where each look ahead stops; -1: there is none.
    int nullWord() const { return m_nullWord; }

    struct Result
    {
        int endWord = -1;  ///< index of the "-END" word (of the hyphen, if it stands alone)
        int nameWord = -1; ///< index of the name; -1: the end of the block is not there
        std::vector<int> loneHyphens; ///< indexes of hyphens without a keyword, passed on the way
    };

    /// Looks from the word @p cursor (an index) on for the end of the block @p name, up to the
    /// position @p limit.
    Result search(int cursor, QStringView name, int limit) const;

private:
    enum class Kind : unsigned char { End, LoneHyphen };

    // A field word that a look ahead does not just pass.
    struct Stop
    {
        int word;                 // its index
        size_t runStart;          // first of the ends right before it, each the name of the last
        unsigned char nameOffset; // of an end: from its index to that of its name
        Kind kind;
    };

    // Any order does. This one sees most names apart by their length.
    struct Less
    {
        bool operator()(QStringView a, QStringView b) const
        {
            if (a.size() != b.size())
                return a.size() < b.size();
            return std::memcmp(a.data(), b.data(), static_cast<size_t>(a.size()) * sizeof(QChar)) <
                   0;
        }
    };

    bool isStop(int word, Stop* stop) const;
    bool isOnTheWay(size_t stop) const;
    const DocWord& word(int index) const { return (*m_words)[static_cast<size_t>(index)]; }
    QStringView textOf(int index) const { return word(index).textIn(m_message); }
    static int nameWord(const Stop& stop) { return stop.word + stop.nameOffset; }
    QStringView nameOf(const Stop& end) const { return textOf(nameWord(end)); }
    bool isLoneHyphenWithin(size_t stop, int limit) const;

    const WordList* m_words;
    QStringView m_message;
    std::pmr::vector<Stop> m_stops;
    int m_nullWord = -1;
    // Those on the way, as indexes into m_stops: the ends by name, and the hyphens.
    std::pmr::map<QStringView, std::pmr::vector<size_t>, Less> m_ends;
    std::pmr::vector<size_t> m_loneHyphens;
};

#endif
