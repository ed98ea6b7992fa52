#include "markedtext.h"

#include "html.h"

#include <algorithm>
#include <set>

MarkedText::MarkedText(QStringView text, const TextPlaces& places, const MessageFields& fields,
                       const MessageFindings& findings)
    : m_text(text), m_fields(fields), m_findings(findings), m_isBegun(findings.size())
{
    splitIntoRuns(places);
    m_run = m_runs.cbegin();
}

void MarkedText::splitIntoRuns(const TextPlaces& places)
{
    struct Bound
    {
        int position;
        bool isBegin;
        size_t finding;
    };
    std::vector<Bound> bounds;
    for (size_t i = 0; i < m_findings.size(); ++i) {
        const MessageFinding& finding = m_findings[i];
        if (finding.begin < 0)
            continue;
        bounds.push_back({places.characterBegin(finding.begin), true, i});
        bounds.push_back({places.characterBegin(finding.end), false, i});
    }
    std::stable_sort(bounds.begin(), bounds.end(),
                     [](const Bound& a, const Bound& b) { return a.position < b.position; });

    std::set<size_t> active;
    for (const Bound& bound : bounds) {
        m_runs.push_back({bound.position, {active.cbegin(), active.cend()}});
        if (bound.isBegin)
            active.insert(bound.finding);
        else
            active.erase(bound.finding);
    }
    m_runs.push_back({places.size(), {}});
}

std::string MarkedText::html()
{
    for (size_t i = 0; i < m_fields.size(); ++i) {
        const MessageField& field = m_fields[i];
        while (!m_open.empty() && static_cast<int>(m_open.back()) != field.parent)
            closeField();
        writeUntil(field.begin);
        openField(i);
        writeKeyword(field.begin, field.keywordEnd);
        if (field.parent == -1)
            closeField();
    }
    while (!m_open.empty())
        closeField();
    writeUntil(static_cast<int>(m_text.size()));
    return std::move(m_html);
}

void MarkedText::openField(size_t index)
{
    const std::string number = std::to_string(index);
    m_html += "<span class=\"field";
    if (m_fields[index].subFields > 0)
        m_html += " group";
    if (!m_fields[index].isKnown)
        m_html += " unknown";
    m_html += "\" id=\"t" + number + "\" data-i=\"" + number + "\">";
    m_open.push_back(index);
}

void MarkedText::closeField()
{
    const MessageField& field = m_fields[m_open.back()];
    if (field.parent != -1) {
        writeUntil(field.endKeyword);
        writeKeyword(field.endKeyword, field.end);
    }
    m_html += "</span>";
    m_open.pop_back();
}

void MarkedText::writeKeyword(int begin, int end)
{
    if (begin == end)
        return;
    m_html += "<b>";
    writeUntil(end);
    m_html += "</b>";
}

void MarkedText::writeUntil(int position)
{
    while (m_position < position) {
        while (m_run->end <= m_position)
            ++m_run;
        const int end = std::min(position, m_run->end);
        for (const size_t finding : m_run->findings)
            openMark(finding);
        appendHtml(m_text.mid(m_position, end - m_position), &m_html);
        for (size_t i = 0; i < m_run->findings.size(); ++i)
            m_html += "</mark>";
        m_position = end;
    }
}

void MarkedText::openMark(size_t finding)
{
    const std::string number = std::to_string(finding + 1);
    const bool isWarning = m_findings[finding].severity == Severity::Warning;
    m_html += isWarning ? "<mark class=\"warning\"" : "<mark class=\"error\"";
    if (!m_isBegun[finding])
        m_html += " id=\"m" + number + '"';
    m_isBegun[finding] = true;
    m_html += " data-f=\"" + number + "\">";
}
