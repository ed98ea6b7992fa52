#include "markedtree.h"

#include "html.h"

#include <algorithm>

namespace {

// More would push the field itself out of its row; the list of findings has them all.
constexpr size_t MostNumbers = 3;

// A list with more fields directly in it is closed at first.
constexpr int LongList = 20;

// The row shows one line; the text has the rest.
constexpr int MostData = 200;

std::vector<std::vector<size_t>> findingsByField(const Excerpt& excerpt)
{
    const MessageFields& fields = excerpt.fields();
    const MessageFindings& findings = excerpt.findings();
    std::vector<std::vector<size_t>> result(fields.size());
    for (size_t i = 0; i < findings.size(); ++i)
        if (findings[i].begin >= 0)
            result[static_cast<size_t>(fieldAt(fields, findings[i].begin))].push_back(i);
    return result;
}

} // namespace

MarkedTree::MarkedTree(const Excerpt& excerpt)
    : m_excerpt(excerpt),
      m_fields(excerpt.fields()),
      m_findings(excerpt.findings()),
      m_findingsOf(findingsByField(excerpt))
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
        appendGap(m_excerpt.leftOutBefore()[i], &html);
        openItem(i, &html);
        appendRow(i, &html);
        if (isBranch(i))
            html += "<ul role=\"group\">\n";
    }
    html += "</li>\n";
    for (; depth > 0; --depth)
        html += "</ul></li>\n";
    appendGap(m_excerpt.leftOutAtEnd(), &html);
    return html + "</ul>";
}

bool MarkedTree::isBranch(size_t index) const
{
    return index + 1 < m_fields.size() && m_fields[index + 1].depth > m_fields[index].depth;
}

bool MarkedTree::isLong(size_t index) const
{
    return m_fields[index].subFields > LongList && m_fields[index].parent != -1;
}

void MarkedTree::appendGap(int leftOut, std::string* html) const
{
    if (leftOut > 0)
        *html +=
            "<li class=\"gap\" role=\"none\">" + counted(leftOut, "field") + " left out</li>\n";
}

void MarkedTree::openItem(size_t index, std::string* html) const
{
    const MessageField& field = m_fields[index];
    const std::string number = std::to_string(index);
    *html += "<li role=\"treeitem\" id=\"n" + number + "\" data-i=\"" + number +
             "\" aria-level=\"" + std::to_string(field.depth + 1) +
             "\" aria-selected=\"false\" tabindex=\"" + (index == 0 ? "0\"" : "-1\"");
    if (isBranch(index))
        *html += isLong(index) ? " aria-expanded=\"false\"" : " aria-expanded=\"true\"";
    if (isLong(index))
        *html += field.findings > 0 ? " class=\"long found\"" : " class=\"long\"";
    else if (field.findings > 0)
        *html += " class=\"found\"";
    *html += '>';
}

void MarkedTree::appendRow(size_t index, std::string* html) const
{
    const MessageField& field = m_fields[index];
    *html += field.isKnown ? "<div class=\"row\">" : "<div class=\"row unknown\">";
    if (isBranch(index))
        *html += "<span class=\"toggle\"></span>";
    if (field.item != 0)
        *html += "<span class=\"item\" title=\"item of the list\">" + std::to_string(field.item) +
                 "</span> ";
    *html += "<span class=\"name\">";
    appendHtml(shortened(field.name, MostData), html);
    *html += "</span> ";
    if (!field.data.isEmpty()) {
        *html += "<span class=\"data\">";
        appendHtml(shortened(field.data, MostData), html);
        *html += "</span> ";
    }
    if (isLong(index))
        *html += "<span class=\"more\">" + counted(field.subFields, "field") + "</span> ";
    appendFindingNumbers(index, html);
    appendState(index, html);
    *html += "</div>";
}

// The numbers of its own findings, and how many there are besides, most in the fields in it.
void MarkedTree::appendFindingNumbers(size_t index, std::string* html) const
{
    const std::vector<size_t>& findings = m_findingsOf[index];
    const size_t numbers = std::min(findings.size(), MostNumbers);
    for (size_t i = 0; i < numbers; ++i) {
        const std::string number = std::to_string(findings[i] + 1);
        *html += "<span class=\"number " + m_findings[findings[i]].kind() + "\" title=\"finding " +
                 number + "\" data-f=\"" + number + "\">" + number + "</span> ";
    }
    const int others = m_fields[index].findings - static_cast<int>(numbers);
    if (others > 0)
        *html += std::string("<span class=\"more\">") + (numbers > 0 ? "+" : "") +
                 counted(others, "finding") + "</span> ";
}

// A field is fine if nothing is reported in it and it is known, which holds for those in it, too.
void MarkedTree::appendState(size_t index, std::string* html) const
{
    const MessageField& field = m_fields[index];
    if (!field.isKnown)
        *html += "<span class=\"state\">unknown</span>";
    else if (field.findings == 0)
        *html += "<span class=\"state\" role=\"img\" aria-label=\"valid\">\u2713</span>";
}
