#ifndef TERMINDEX_H
#define TERMINDEX_H

#include <QStringView>

#include <algorithm>
#include <vector>

class TermStd;

/// Finds terms by their text, for each field of each message.
///
/// A hash table with linear probing and twice as many slots as terms. The keys are keywords of a
/// few letters; the hash and the comparison of QHash are made for long texts and would be slower.
class TermIndex
{
public:
    bool isEmpty() const { return m_slots.empty(); }

    /// Makes room for @p count terms at once.
    void reserve(size_t count);

    /// Adds @p term (not owned) with @p text (not copied), unless there is a term with that text.
    void insert(QStringView text, TermStd* term);

    /// The term with that text, or null.
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

    // The slot with the text, or the free slot for it.
    size_t slotOf(QStringView text) const
    {
        const size_t mask = m_slots.size() - 1;
        size_t slot = hash(text) & mask;
        while (m_slots[slot].term && !isEqual(m_slots[slot].text, text))
            slot = (slot + 1) & mask;
        return slot;
    }

    void grow(size_t slotCount);

    std::vector<Slot> m_slots; // the number is a power of two
    size_t m_count = 0;        // slots in use
};

#endif
