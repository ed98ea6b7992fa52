#ifndef TERMINDEX_H
#define TERMINDEX_H

#include <QStringView>

#include <algorithm>
#include <vector>

class TermStd;

/// Terms by their text, for the look-up of each field of each message.
///
/// A table of slots, twice as many as there are terms, searched from the slot that the hash of the
/// text names. It holds keywords of a few letters, for which the hash and the comparison of QHash,
/// made for long texts, do more than is needed.
class TermIndex
{
public:
    bool isEmpty() const { return m_slots.empty(); }

    /// Adds @p term (not owned) under @p text, which must stay, unless there is one of that text.
    void insert(QStringView text, TermStd* term);

    /// The term of that text, or null.
    TermStd* find(QStringView text) const
    {
        return m_slots.empty() ? nullptr : m_slots[slotOf(text)].term;
    }

private:
    struct Slot
    {
        QStringView text;
        TermStd* term = nullptr;
    };

    static size_t hash(QStringView text)
    {
        size_t value = 0;
        for (const QChar c : text)
            value = value * 31 + c.unicode();
        return value;
    }

    static bool isEqual(QStringView a, QStringView b)
    {
        return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin());
    }

    // The slot that holds the text, or the free one in which it would be.
    size_t slotOf(QStringView text) const
    {
        const size_t mask = m_slots.size() - 1;
        size_t slot = hash(text) & mask;
        while (m_slots[slot].term && !isEqual(m_slots[slot].text, text))
            slot = (slot + 1) & mask;
        return slot;
    }

    void grow();

    std::vector<Slot> m_slots; // as many as a power of two
    size_t m_count = 0;        // slots in use
};

#endif
