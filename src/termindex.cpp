#include "termindex.h"

#include <utility>

void TermIndex::insert(QStringView text, TermStd* term)
{
    if (m_count * 2 >= m_slots.size())
        grow();
    Slot& slot = m_slots[slotOf(text)];
    if (slot.term)
        return;
    slot = {text, term};
    ++m_count;
}

void TermIndex::grow()
{
    const std::vector<Slot> old =
        std::exchange(m_slots, std::vector<Slot>(m_slots.empty() ? 16 : m_slots.size() * 2));
    for (const Slot& slot : old) {
        if (slot.term)
            m_slots[slotOf(slot.text)] = slot;
    }
}
