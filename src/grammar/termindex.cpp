#include "grammar/termindex.h"

#include <utility>

void TermIndex::insert(QStringView text, TermStd* term)
{
    if (m_count * 2 >= m_slots.size())
        grow(m_slots.empty() ? 16 : m_slots.size() * 2);
    Slot& slot = m_slots[slotOf(text)];
    if (slot.term)
        return;
    slot = {text, term};
    ++m_count;
}

void TermIndex::reserve(size_t count)
{
    size_t slotCount = 16;
    while (slotCount < 2 * count)
        slotCount *= 2;
    grow(slotCount);
}

void TermIndex::grow(size_t slotCount)
{
    const std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(slotCount));
    for (const Slot& slot : old) {
        if (slot.term)
            m_slots[slotOf(slot.text)] = slot;
    }
}
