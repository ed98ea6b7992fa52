#ifndef MARKEDTREE_H
#define MARKEDTREE_H

#include "excerpt.h"

#include <string>
#include <vector>

/// The fields of a message as HTML: a list of the role "tree", one <li role="treeitem" id="nN"
/// data-i="N"> for each field, N being its index, with a <div class="row"> that shows it and a list
/// of the fields in it. A long list of fields is closed at first, and has the class "long". Where
/// fields are left out stands a <li class="gap"> that says how many.
class MarkedTree
{
public:
    /// Of a message of which @p excerpt, which must stay and has fields, is shown.
    explicit MarkedTree(const Excerpt& excerpt);

    /// The HTML.
    std::string html() const;

private:
    bool isBranch(size_t index) const;
    bool isLong(size_t index) const;
    void appendGap(int leftOut, std::string* html) const;
    void openItem(size_t index, std::string* html) const;
    void appendRow(size_t index, std::string* html) const;
    void appendFindingNumbers(size_t index, std::string* html) const;
    void appendState(size_t index, std::string* html) const;

    const Excerpt& m_excerpt;
    const MessageFields& m_fields;
    const MessageFindings& m_findings;
    std::vector<std::vector<size_t>> m_findingsOf; // by field: indexes of its own findings
};

#endif
