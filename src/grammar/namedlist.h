#ifndef NAMEDLIST_H
#define NAMEDLIST_H

#include <QHashFunctions>
#include <QList>
#include <QStringView>

#include <algorithm>
#include <unordered_map>

class MsgRule;
class TermStd;

/// Items of a rule set in the order in which they were loaded, found by their record name.
///
/// Does not own the items. The name of an item must not change while it is in the list: the index
/// refers to it. With the index, the loading time is linear in the number of definitions.
template <typename Item>
class NamedList
{
public:
    /// Adds @p item (not null) at the end. If memory runs out, the list is as it was.
    void append(Item* item)
    {
        m_items.append(item);
        try {
            m_firstByName.emplace(item->config.recordName, item); // the first of a name stays
        } catch (...) {
            m_items.removeLast();
            throw;
        }
    }

    /// The first item, in list order, whose record name equals @p name exactly; null if there is
    /// none.
    Item* search(QStringView name) const
    {
        const auto found = m_firstByName.find(name);
        return found == m_firstByName.cend() ? nullptr : found->second;
    }

    /// Goes through the list and removes each item for which @p keep(item) is false. The following
    /// calls of @p keep do not find a removed item any more. Returns the removed items.
    template <typename Keep>
    QList<Item*> takeUnless(Keep keep)
    {
        QList<Item*> kept;
        QList<Item*> taken;
        const bool namesAreUnique = m_firstByName.size() == static_cast<size_t>(m_items.size());
        for (auto it = m_items.cbegin(); it != m_items.cend(); ++it) {
            if (keep(*it)) {
                kept.append(*it);
            } else {
                taken.append(*it);
                forget(it, namesAreUnique);
            }
        }
        m_items = kept;
        return taken;
    }

    qsizetype size() const { return m_items.size(); }
    Item* at(qsizetype index) const { return m_items.at(static_cast<int>(index)); }
    typename QList<Item*>::const_iterator begin() const { return m_items.cbegin(); }
    typename QList<Item*>::const_iterator end() const { return m_items.cend(); }

private:
    void forget(typename QList<Item*>::const_iterator it, bool namesAreUnique)
    {
        const QStringView name = (*it)->config.recordName;
        if (search(name) != *it)
            return;
        m_firstByName.erase(name);
        if (namesAreUnique)
            return;
        const auto next = std::find_if(it + 1, m_items.cend(), [name](const Item* other) {
            return other->config.recordName == name;
        });
        if (next != m_items.cend())
            m_firstByName.emplace((*next)->config.recordName, *next);
    }

    QList<Item*> m_items;
    // Without noexcept the map stores the hash of each name (with it, the standard library of GCC
    // computes the hash again for each name that a search passes).
    struct Hash
    {
        size_t operator()(QStringView name) const { return qHash(name); }
    };

    // Not QHash: it ends the process when memory runs out while it grows.
    std::unordered_map<QStringView, Item*, Hash> m_firstByName;
};

/// The named terms of a rule set.
using TermList = NamedList<TermStd>;

/// The message rules of a rule set, by title.
using RuleList = NamedList<MsgRule>;

#endif
