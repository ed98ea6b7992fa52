#include "expressionplaces.h"

std::vector<SourcePlace> placesInExpression(const RecordPart& part)
{
    const QString& text = part.text;
    std::vector<SourcePlace> result;
    bool blankIsDue = false;
    for (int i = 0; i < text.size();) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const int length = isPair ? 2 : 1;
        const SourcePlace here = part.places[static_cast<std::size_t>(i)];
        if (text.at(i).isSpace()) {
            blankIsDue = !result.empty();
        } else {
            const auto units = text.mid(i, length).toUpper().size() + (blankIsDue ? 1 : 0);
            result.insert(result.end(), static_cast<std::size_t>(units), here);
            blankIsDue = false;
        }
        i += length;
    }
    result.push_back(part.places.back());
    return result;
}
