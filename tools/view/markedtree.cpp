#include "markedtree.h"

#include "adexpfield.h"
#include "html.h"

#include <algorithm>

namespace {

// More would push the field itself out of its row; the list of findings has them all.
constexpr size_t MaxNumbers = 3;

std::vector<std::vector<size_t>>
findingsByField(const FieldStretches& fields, const std::vector<MessageFindings::Counted>& findings)
{
    std::vector<std::vector<size_t>> result(fields.size());
    for (size_t i = 0; i < findings.size(); ++i)
        if (findings[i].finding.begin >= 0)
            result[static_cast<size_t>(fieldAt(fields, findings[i].finding.begin))].push_back(i);
    return result;
}

std::vector<int> itemNumbers(const FieldStretches& fields)
{
    std::vector<int> lastNumber(fields.size()); // by list: of the item last opened
    std::vector<int> result(fields.size());
    for (size_t i = 1; i < fields.size(); ++i) {
        int& last = lastNumber[static_cast<size_t>(fields[i].parent)];
        if (fields[i].field->itemIndex != last)
            result[i] = last = fields[i].field->itemIndex;
    }
    return result;
}

} // namespace

MarkedTree::MarkedTree(const FieldStretches& fields,
                       const std::vector<MessageFindings::Counted>& findings)
    : m_fields(fields),
      m_findings(findings),
      m_findingsOf(findingsByField(fields, findings)),
      m_itemNumbers(itemNumbers(fields))
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
        if (hasSubFields(i))
            html += "<ul role=\"group\">\n";
    }
    html += "</li>\n";
    for (; depth > 0; --depth)
        html += "</ul></li>\n";
    return html + "</ul>";
}

bool MarkedTree::hasSubFields(size_t index) const
{
    return !m_fields[index].field->subFields.empty();
}

void MarkedTree::openItem(size_t index, std::string* html) const
{
    const std::string number = std::to_string(index);
    *html += "<li role=\"treeitem\" id=\"n" + number + "\" data-i=\"" + number +
             "\" aria-level=\"" + std::to_string(m_fields[index].depth + 1) +
             "\" aria-selected=\"false\" tabindex=\"" + (index == 0 ? "0\"" : "-1\"");
    if (hasSubFields(index))
        *html += " aria-expanded=\"true\"";
    *html += '>';
}

void MarkedTree::appendRow(size_t index, std::string* html) const
{
    const AdexpField& field = *m_fields[index].field;
    *html += field.fieldTerm ? "<div class=\"row\">" : "<div class=\"row unknown\">";
    if (hasSubFields(index))
        *html += "<span class=\"toggle\"></span>";
    appendItemNumber(index, html);
    *html += "<span class=\"name\">";
    appendHtml(field.fieldName, html);
    *html += "</span> ";
    if (!field.fieldData.isEmpty()) {
        *html += "<span class=\"data\">";
        appendHtml(field.fieldData, html);
        *html += "</span> ";
    }
    appendFindingNumbers(index, html);
    *html += field.fieldTerm
                 ? "<span class=\"state\" role=\"img\" aria-label=\"valid\">\u2713</span></div>"
                 : "<span class=\"state\">unknown</span></div>";
}

void MarkedTree::appendItemNumber(size_t index, std::string* html) const
{
    if (m_itemNumbers[index] != 0)
        *html += "<span class=\"item\" title=\"item of the list\">" +
                 std::to_string(m_itemNumbers[index]) + "</span> ";
}

void MarkedTree::appendFindingNumbers(size_t index, std::string* html) const
{
    const std::vector<size_t>& findings = m_findingsOf[index];
    for (size_t i = 0; i < std::min(findings.size(), MaxNumbers); ++i) {
        const std::string number = std::to_string(findings[i] + 1);
        const bool isWarning = m_findings[findings[i]].finding.severity == Severity::Warning;
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
