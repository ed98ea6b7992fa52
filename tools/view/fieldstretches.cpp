#include "fieldstretches.h"

#include "adexpfield.h"

#include <algorithm>

namespace {

// What the field itself knows; an unset end is taken for that of the keyword. A call for each
// level, which the rule set bounds.
void collect(const AdexpField* field, int parent, const TextPlaces& places, FieldStretches* fields)
{
    const int index = static_cast<int>(fields->size());
    const int depth = parent == -1 ? 0 : (*fields)[static_cast<size_t>(parent)].depth + 1;
    const int begin = places.characterBegin(field->fieldBegin);
    const int keywordEnd = std::max(places.wordEnd(begin), places.endOf(field->fieldName));
    const int end = std::max(places.characterBegin(field->fieldEnd), keywordEnd);
    const int endKeyword = field->isList ? places.characterBegin(field->endTextPoint) : end;
    fields->push_back({field, parent, depth, begin, keywordEnd, endKeyword, end});
    for (const AdexpField* sub : field->subFields)
        collect(sub, index, places, fields);
}

// A field reaches as far as those in it.
void stretchOverSubFields(FieldStretches* fields)
{
    for (auto field = fields->rbegin(); field != fields->rend(); ++field) {
        if (field->parent == -1)
            continue;
        FieldStretch& parent = (*fields)[static_cast<size_t>(field->parent)];
        if (parent.end < field->end && parent.endKeyword == parent.end)
            parent.end = parent.endKeyword = field->end;
    }
}

// Cuts each to what its parent and the siblings before it leave.
void fitIntoParents(FieldStretches* fields)
{
    std::vector<int> usedUpTo(fields->size());
    for (size_t i = 0; i < fields->size(); ++i) {
        FieldStretch& field = (*fields)[i];
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

} // namespace

FieldStretches fieldStretches(const AdexpField* root, const TextPlaces& places)
{
    FieldStretches fields;
    collect(root, -1, places, &fields);
    stretchOverSubFields(&fields);
    fitIntoParents(&fields);
    return fields;
}

int fieldAt(const FieldStretches& fields, int position)
{
    const auto behind = std::upper_bound(
        fields.cbegin(), fields.cend(), position,
        [](int searched, const FieldStretch& field) { return searched < field.begin; });
    int index = std::max(static_cast<int>(behind - fields.cbegin()) - 1, 0);
    while (index > 0 && fields[static_cast<size_t>(index)].end <= position)
        index = fields[static_cast<size_t>(index)].parent;
    return index;
}
