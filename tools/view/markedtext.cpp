#include "markedtext.h"

#include "html.h"

#include <algorithm>
#include <map>
#include <set>

MarkedText::MarkedText(QStringView text, const TextPlaces& places, const Excerpt& excerpt)
    : m_text(text),
      m_places(places),
      m_fields(excerpt.fields()),
      m_findings(excerpt.findings()),
      m_stretches(excerpt.stretches()),
      m_isBegun(m_findings.size())
{
    if (m_stretches.empty() || m_stretches.back().end < places.size())
        m_stretches.push_back({places.size(), places.size()});
    splitIntoRuns();
    m_run = m_runs.cbegin();
}

void MarkedText::splitIntoRuns()
{
    std::multimap<int, size_t> bounds; // the begin of a finding, then its end
    for (size_t i = 0; i < m_findings.size(); ++i) {
        if (m_findings[i].begin < 0)
            continue;
        bounds.emplace(m_places.characterBegin(m_findings[i].begin), i);
        bounds.emplace(m_places.characterBegin(m_findings[i].end), i);
    }
    std::set<size_t> active;
    for (const auto& [position, finding] : bounds) {
        m_runs.push_back({position, {active.cbegin(), active.cend()}});
        if (active.erase(finding) == 0)
            active.insert(finding);
    }
    m_runs.push_back({m_places.size(), {}});
}

std::string MarkedText::html()
{
    if (m_stretches.front().begin == 0)
        writeLineNumber();
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
        const Excerpt::Stretch& stretch = m_stretches[m_stretch];
        if (m_position < stretch.begin)
            skipUntil(position);
        else if (m_position < stretch.end)
            writeRun(std::min(position, stretch.end));
        else
            ++m_stretch;
    }
}

// A gap is told where it ends: in the field that goes on there, if any.
void MarkedText::skipUntil(int position)
{
    const int gapEnd = m_stretches[m_stretch].begin;
    m_position = std::min(position, gapEnd);
    if (m_position == gapEnd)
        writeGap(m_stretch == 0 ? 0 : m_stretches[m_stretch - 1].end, gapEnd);
}

// Writes at least one character, and no more than belong to the same findings.
void MarkedText::writeRun(int end)
{
    while (m_run->end <= m_position)
        ++m_run;
    for (const size_t finding : m_run->findings)
        openMark(finding);
    writeLines(std::min(end, m_run->end));
    for (size_t i = 0; i < m_run->findings.size(); ++i)
        m_html += "</mark>";
}

void MarkedText::writeLines(int end)
{
    const int stretchEnd = m_stretches[m_stretch].end;
    while (m_position < end) {
        const auto lineFeed = m_text.mid(m_position, end - m_position).indexOf(u'\n');
        const int lineEnd = lineFeed == -1 ? end : m_position + static_cast<int>(lineFeed) + 1;
        appendHtml(m_text.mid(m_position, lineEnd - m_position), &m_html);
        m_position = lineEnd;
        if (lineFeed != -1 && m_position < stretchEnd)
            writeLineNumber();
    }
}

void MarkedText::writeLineNumber()
{
    m_html += "<i class=\"line\" data-n=\"" + std::to_string(m_places.placeOf(m_position).line) +
              "\"></i>";
}

void MarkedText::writeGap(int begin, int end)
{
    const TextPlaces::Place first = m_places.placeOf(begin);
    const TextPlaces::Place last = m_places.placeOf(end - 1);
    m_html += "<span class=\"gap\">" + withCommas(end - begin) + " characters left out, line " +
              withCommas(first.line) + ", column " + withCommas(first.column) + ", to line " +
              withCommas(last.line) + ", column " + withCommas(last.column) + "</span>";
    if (end < m_places.size())
        writeLineNumber();
}

void MarkedText::openMark(size_t finding)
{
    const std::string number = std::to_string(finding + 1);
    m_html += "<mark class=\"" + m_findings[finding].kind() + '"';
    if (!m_isBegun[finding])
        m_html += " id=\"m" + number + '"';
    m_isBegun[finding] = true;
    m_html += " data-f=\"" + number + "\">";
}
