#include "messagefield.h"

#include <algorithm>

int fieldAt(const MessageFields& fields, int position)
{
    const auto behind = std::upper_bound(
        fields.cbegin(), fields.cend(), position,
        [](int searched, const MessageField& field) { return searched < field.begin; });
    int index = std::max(static_cast<int>(behind - fields.cbegin()) - 1, 0);
    while (index > 0 && fields[static_cast<size_t>(index)].end <= position)
        index = fields[static_cast<size_t>(index)].parent;
    return index;
}

void countFindings(const MessageFindings& findings, MessageFields* fields)
{
    if (fields->empty())
        return;
    for (const MessageFinding& finding : findings)
        if (finding.begin >= 0)
            ++(*fields)[static_cast<size_t>(fieldAt(*fields, finding.begin))].findings;
    for (auto field = fields->rbegin(); field != fields->rend(); ++field)
        if (field->parent != -1)
            (*fields)[static_cast<size_t>(field->parent)].findings += field->findings;
}
