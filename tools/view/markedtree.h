#ifndef MARKEDTREE_H
#define MARKEDTREE_H

#include "messagefield.h"
#include "messagefinding.h"

#include <string>
#include <vector>

/// The fields of a message as HTML: a list of the role "tree", one <li role="treeitem" id="nN"
/// data-i="N"> for each field, N being its index, with a <div class="row"> that shows it and a list
/// of the fields in it.
class MarkedTree
{
public:
    /// Both must stay. @p fields is not empty.
    MarkedTree(const MessageFields& fields, const MessageFindings& findings);

    /// The HTML.
    std::string html() const;

private:
    void openItem(size_t index, std::string* html) const;
    void appendRow(size_t index, std::string* html) const;
    void appendItemNumber(size_t index, std::string* html) const;
    void appendFindingNumbers(size_t index, std::string* html) const;

    const MessageFields& m_fields;
    const MessageFindings& m_findings;
    std::vector<std::vector<size_t>> m_findingsOf; // by field: indexes of the findings in it
};

#endif
