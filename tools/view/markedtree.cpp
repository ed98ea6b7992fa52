#include "markedtree.h"

#include "html.h"

#include <algorithm>

namespace {

// More would push the field itself out of its row; the list of findings has them all.
constexpr size_t MaxNumbers = 3;

std::vector<std::vector<size_t>> findingsByField(const MessageFields& fields,
                                                 const MessageFindings& findings)
{
    std::vector<std::vector<size_t>> result(fields.size());
    for (size_t i = 0; i < findings.size(); ++i)
        if (findings[i].begin >= 0)
            result[static_cast<size_t>(fieldAt(fields, findings[i].begin))].push_back(i);
    return result;
}

} // namespace

MarkedTree::MarkedTree(const MessageFields& fields, const MessageFindings& findings)
    : m_fields(fields), m_findings(findings), m_findingsOf(findingsByField(fields, findings))
{
}

std::string MarkedTree::html() const
{
    std::string html = "<ul id=\"tree\" role=\"tree\" aria-labelledby=\"fields-heading\">\n";
    int depth = -1; // of the item that is open
    for (size_t i = 0; i < m_fields.size(); ++i) {
        if (m_fields[i].depth <= depth)
            html += "</li>\n";
        for (; depth > m_fields[i].depth; --depth)
            html += "</ul></li>\n";
        depth = m_fields[i].depth;
        openItem(i, &html);
        appendRow(i, &html);
        if (m_fields[i].subFields > 0)
            html += "<ul role=\"group\">\n";
    }
    html += "</li>\n";
    for (; depth > 0; --depth)
        html += "</ul></li>\n";
    return html + "</ul>";
}

void MarkedTree::openItem(size_t index, std::string* html) const
{
    const MessageField& field = m_fields[index];
    const std::string number = std::to_string(index);
    *html += "<li role=\"treeitem\" id=\"n" + number + "\" data-i=\"" + number +
             "\" aria-level=\"" + std::to_string(field.depth + 1) +
             "\" aria-selected=\"false\" tabindex=\"" + (index == 0 ? "0\"" : "-1\"");
    if (field.subFields > 0)
        *html += " aria-expanded=\"true\"";
    *html += '>';
}

void MarkedTree::appendRow(size_t index, std::string* html) const
{
    const MessageField& field = m_fields[index];
    *html += field.isKnown ? "<div class=\"row\">" : "<div class=\"row unknown\">";
    if (field.subFields > 0)
        *html += "<span class=\"toggle\"></span>";
    appendItemNumber(index, html);
    *html += "<span class=\"name\">";
    appendHtml(field.name, html);
    *html += "</span> ";
    if (!field.data.isEmpty()) {
        *html += "<span class=\"data\">";
        appendHtml(field.data, html);
        *html += "</span> ";
    }
    appendFindingNumbers(index, html);
    *html += field.isKnown
                 ? "<span class=\"state\" role=\"img\" aria-label=\"valid\">\u2713</span></div>"
                 : "<span class=\"state\">unknown</span></div>";
}

void MarkedTree::appendItemNumber(size_t index, std::string* html) const
{
    if (m_fields[index].item != 0)
        *html += "<span class=\"item\" title=\"item of the list\">" +
                 std::to_string(m_fields[index].item) + "</span> ";
}

void MarkedTree::appendFindingNumbers(size_t index, std::string* html) const
{
    const std::vector<size_t>& findings = m_findingsOf[index];
    for (size_t i = 0; i < std::min(findings.size(), MaxNumbers); ++i) {
        const std::string number = std::to_string(findings[i] + 1);
        const bool isWarning = m_findings[findings[i]].severity == Severity::Warning;
        *html += "<span class=\"number ";
        *html += isWarning ? "warning" : "error";
        html->append("\" title=\"finding ").append(number);
        html->append("\" data-f=\"").append(number);
        html->append("\">").append(number).append("</span> ");
    }
    if (findings.size() > MaxNumbers)
        *html +=
            "<span class=\"more\">+" + std::to_string(findings.size() - MaxNumbers) + "</span> ";
}
