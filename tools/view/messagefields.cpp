#include "messagefields.h"

#include "adexpfield.h"

#include <algorithm>

namespace {

// What the field itself knows; an unset end is taken for that of the keyword. A call for each
// level, which the rule set bounds.
void collect(const AdexpField* field, int parent, const TextPlaces& places, MessageFields* fields)
{
    const int index = static_cast<int>(fields->size());
    const int depth = parent == -1 ? 0 : (*fields)[static_cast<size_t>(parent)].depth + 1;
    const int begin = places.characterBegin(field->fieldBegin);
    const int keywordEnd = std::max(places.wordEnd(begin), places.endOf(field->fieldName));
    const int end = std::max(places.characterBegin(field->fieldEnd), keywordEnd);
    const int endKeyword = field->isList ? places.characterBegin(field->endTextPoint) : end;
    fields->push_back({field->fieldName, field->fieldData, field->fieldTerm != nullptr,
                       field->itemIndex, parent, depth, begin, keywordEnd, endKeyword, end,
                       static_cast<int>(field->subFields.size())});
    for (const AdexpField* sub : field->subFields)
        collect(sub, index, places, fields);
}

// A field reaches as far as those in it.
void stretchOverSubFields(MessageFields* fields)
{
    for (auto field = fields->rbegin(); field != fields->rend(); ++field) {
        if (field->parent == -1)
            continue;
        MessageField& parent = (*fields)[static_cast<size_t>(field->parent)];
        if (parent.end < field->end && parent.endKeyword == parent.end)
            parent.end = parent.endKeyword = field->end;
    }
}

// Cuts each to what its parent and the siblings before it leave.
void fitIntoParents(MessageFields* fields)
{
    std::vector<int> usedUpTo(fields->size());
    for (size_t i = 0; i < fields->size(); ++i) {
        MessageField& field = (*fields)[i];
        if (field.parent != -1) {
            const auto parent = static_cast<size_t>(field.parent);
            const int limit = (*fields)[parent].endKeyword;
            field.begin = std::clamp(field.begin, usedUpTo[parent], limit);
            field.end = std::clamp(field.end, field.begin, limit);
            usedUpTo[parent] = field.end;
        }
        field.keywordEnd = std::clamp(field.keywordEnd, field.begin, field.end);
        field.endKeyword = std::clamp(field.endKeyword, field.keywordEnd, field.end);
        usedUpTo[i] = field.keywordEnd;
    }
}

// All fields of a list item have its number; only the first of them opens it.
void numberItemsOnce(MessageFields* fields)
{
    std::vector<int> lastItem(fields->size()); // by list: the item opened last
    for (size_t i = 1; i < fields->size(); ++i) {
        MessageField& field = (*fields)[i];
        int& last = lastItem[static_cast<size_t>(field.parent)];
        if (field.item == last)
            field.item = 0;
        else
            last = field.item;
    }
}

} // namespace

MessageFields messageFields(const AdexpField* root, const TextPlaces& places)
{
    MessageFields fields;
    collect(root, -1, places, &fields);
    stretchOverSubFields(&fields);
    fitIntoParents(&fields);
    numberItemsOnce(&fields);
    return fields;
}
