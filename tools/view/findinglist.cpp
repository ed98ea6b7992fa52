#include "findinglist.h"

#include "html.h"

namespace {

// The text of the message has the rest.
constexpr int MostText = 200;

// "error, line 3, column 12, reported 2 times"
std::string whereabouts(const MessageFinding& finding, const TextPlaces& places)
{
    std::string text = finding.kind();
    if (finding.begin >= 0) {
        const TextPlaces::Place place = places.placeOf(finding.begin);
        text += ", line " + withCommas(place.line) + ", column " + withCommas(place.column);
    }
    if (finding.count > 1)
        text += ", reported " + withCommas(finding.count) + " times";
    return text;
}

void appendWhat(const MessageFinding& finding, std::string* html)
{
    *html += "<span class=\"what\">";
    appendHtml(shortened(finding.text, MostText), html);
    if (!finding.detail.isEmpty()) {
        *html += " <span class=\"detail\">";
        appendHtml(shortened(finding.detail, MostText), html);
        *html += "</span>";
    }
    *html += "</span>";
}

} // namespace

std::string findingList(const MessageFindings& findings, const MessageFields& fields,
                        const TextPlaces& places)
{
    std::string html = "<ol id=\"list\">\n";
    for (size_t i = 0; i < findings.size(); ++i) {
        const MessageFinding& finding = findings[i];
        const std::string number = std::to_string(i + 1);
        const bool hasPlace = finding.begin >= 0;
        html += "<li id=\"f" + number + "\" data-f=\"" + number + '"';
        if (hasPlace && !fields.empty())
            html += " data-i=\"" + std::to_string(fieldAt(fields, finding.begin)) + '"';
        html += "><a href=\"#" + (hasPlace ? 'm' + number : std::string("text")) +
                "\" tabindex=\"" + (i == 0 ? "0" : "-1") + "\"><span class=\"number " +
                finding.kind() + "\">" + number + "</span> ";
        appendWhat(finding, &html);
        html += " <span class=\"where\">" + whereabouts(finding, places) + "</span></a></li>\n";
    }
    return html + "</ol>";
}
