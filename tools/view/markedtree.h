#ifndef MARKEDTREE_H
#define MARKEDTREE_H

#include "fieldstretches.h"
#include "messagefindings.h"

#include <string>
#include <vector>

/// The fields of a message as HTML: a list of the role "tree", one <li role="treeitem" id="nN"
/// data-i="N"> for each field, N being its index, with a <div class="row"> that shows it and a list
/// of the fields in it.
class MarkedTree
{
public:
    /// Both must stay. @p fields is not empty.
    MarkedTree(const FieldStretches& fields, const std::vector<MessageFindings::Counted>& findings);

    /// The HTML.
    std::string html() const;

private:
    bool hasSubFields(size_t index) const;
    void openItem(size_t index, std::string* html) const;
    void appendRow(size_t index, std::string* html) const;
    void appendItemNumber(size_t index, std::string* html) const;
    void appendFindingNumbers(size_t index, std::string* html) const;

    const FieldStretches& m_fields;
    const std::vector<MessageFindings::Counted>& m_findings;
    std::vector<std::vector<size_t>> m_findingsOf; // by field: indexes of the findings in it
    std::vector<int> m_itemNumbers; // by field: of the list item that it opens; 0: it opens none
};

#endif
