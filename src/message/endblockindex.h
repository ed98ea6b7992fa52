#ifndef ENDBLOCKINDEX_H
#define ENDBLOCKINDEX_H

#include "message/docword.h"

#include <cstddef>
#include <cstring>
#include <map>
#include <memory_resource>
#include <vector>

/// Finds the end of a block without reading the message again for each "-BEGIN".
///
/// A search reads field after field and takes the word after each "-END" as its name. So what it
/// finds depends on where it starts: in "-END -END A" the second word is a name if the search
/// starts at the first word, and an end if it starts at the second. This matters only inside a run
/// of ends that may be names as well. After the run all searches see the same ends. The index holds
/// these by name; search() goes through the run in which it starts word by word.
class EndBlockIndex
{
public:
    /// An index over @p words (not owned) of @p message, up to the first null word. It takes its
    /// memory from @p arena. All three must outlive the index.
    EndBlockIndex(const WordList* words, QStringView message, std::pmr::memory_resource* arena);

    /// The index of the first null word, where every search stops; -1: there is none.
    int nullWord() const { return m_nullWord; }

    struct Result
    {
        int endWord = -1;  ///< index of the "-END" word (of the hyphen, if it stands alone)
        int nameWord = -1; ///< index of the name; -1: the block has no end
        std::vector<int> loneHyphens; ///< indexes of the hyphens without a keyword before it
    };

    /// Searches for the end of the block @p name, from the word with the index @p cursor up to the
    /// position @p limit.
    Result search(int cursor, QStringView name, int limit) const;

private:
    enum class Kind : unsigned char { End, LoneHyphen };

    // A field word at which a search has to do something.
    struct Stop
    {
        int word;                 // its index
        size_t runStart;          // first end of its run: each is followed by the next as its name
        unsigned char nameOffset; // of an end: the index of its name minus its own index
        Kind kind;
    };

    // Any order will do. This one tells most names apart by their length.
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
    // What a search sees that starts outside of runs, as indexes into m_stops: ends by name, and
    // hyphens.
    std::pmr::map<QStringView, std::pmr::vector<size_t>, Less> m_ends;
    std::pmr::vector<size_t> m_loneHyphens;
};

#endif
