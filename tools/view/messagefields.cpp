#include "messagefields.h"

#include "unicode.h"

#include <algorithm>

namespace {

// Behind the keyword of the field that begins there; behind the name of a block, and behind the
// title, which is the next word.
int keywordEndOf(const adexp::Field& field, int begin, const TextPlaces& places)
{
    const int end = places.wordEnd(begin);
    const QString name = unicode(field.name());
    const QStringView keyword = places.text(begin, end);
    const bool isName =
        !field.isList() && field.parent() && (keyword == name || keyword == QString(u'-' + name));
    return isName || name.isEmpty() ? end : places.wordEnd(places.nextWord(end));
}

// Of the "-END" or "- END" of a block that ends there; without one the end.
int endKeywordOf(const adexp::Field& field, int end, const TextPlaces& places)
{
    const int name = places.previousWord(end);
    if (!field.isList() || places.text(name, end) != unicode(field.name()))
        return end;
    const int keyword = places.previousWord(name);
    const int hyphen = places.previousWord(keyword);
    const QStringView word = places.text(keyword, name).trimmed();
    if (word == u"-END")
        return keyword;
    return word == u"END" && places.text(hyphen, keyword).trimmed() == u"-" ? hyphen : end;
}

// What the field itself knows; an unset end is taken for that of the keyword. A call for each
// level, which the rule set bounds.
void collect(const adexp::Field& field, int parent, const TextPlaces& places, MessageFields* fields)
{
    const int index = static_cast<int>(fields->size());
    const int depth = parent == -1 ? 0 : (*fields)[static_cast<size_t>(parent)].depth + 1;
    const int begin = places.characterBegin(field.place().begin);
    const int keywordEnd = keywordEndOf(field, begin, places);
    const int end = std::max(places.characterBegin(field.place().end), keywordEnd);
    fields->push_back({unicode(field.name()), unicode(field.data()), field.isKnown(), field.item(),
                       parent, depth, begin, keywordEnd, endKeywordOf(field, end, places), end, 0});
    for (const adexp::Field sub : field.children()) {
        ++(*fields)[static_cast<size_t>(index)].subFields;
        collect(sub, index, places, fields);
    }
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

void countFindings(const MessageFindings& findings, MessageFields* fields)
{
    for (const MessageFinding& finding : findings)
        if (finding.begin >= 0)
            ++(*fields)[static_cast<size_t>(fieldAt(*fields, finding.begin))].findings;
    for (auto field = fields->rbegin(); field != fields->rend(); ++field)
        if (field->parent != -1)
            (*fields)[static_cast<size_t>(field->parent)].findings += field->findings;
}

} // namespace

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

MessageFields messageFields(const adexp::Field& root, const TextPlaces& places,
                            const MessageFindings& findings)
{
    MessageFields fields;
    collect(root, -1, places, &fields);
    stretchOverSubFields(&fields);
    fitIntoParents(&fields);
    numberItemsOnce(&fields);
    countFindings(findings, &fields);
    return fields;
}
