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
/// Does not own the items. The name of an item must not change while it is in the list: the index,
/// which keeps loading linear in the number of definitions, refers to it.
template <typename Item>
class NamedList
{
public:
    /// Adds @p item (not null) at the end. If memory runs out, the list is as it was.
    void append(Item* item)
    {
        m_items.append(item);
        try {
            m_firstByName.emplace(item->config.recordName, item); // keeps the first of a name
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

    /// Goes through the list and takes out each item for which @p keep(item) is false. An item that
    /// was taken out is not found any more by the calls of @p keep that follow. Returns the items
    /// taken out.
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
    // Not noexcept, and this is meant: only then the map keeps the hash of each name, instead of
    // computing it again for each name that a search passes.
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
