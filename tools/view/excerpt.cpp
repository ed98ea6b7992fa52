#include "excerpt.h"

#include <algorithm>

namespace {

// What a page has room for, and what takes how much of it. A browser needs a second or two for a
// full page; see the test of page loads in tests/browser.
constexpr int Room = 1000000;
constexpr int CostOfUnit = 6;  // of the text
constexpr int CostOfMark = 60; // a line, a keyword, a symbol
constexpr int CostOfField = 50;
constexpr int CostOfFinding = 100;

constexpr size_t MostFindings = 1000;

// The text around a finding: so many lines on both sides, but no more than so many UTF-16 units.
constexpr int ContextLines = 3;
constexpr int MostContext = 500;

bool needsMark(QChar c)
{
    return c < u' ' || c > u'~' || c == u'-';
}

} // namespace

Excerpt::Excerpt(QStringView text, const TextPlaces& places, const MessageFields& fields,
                 const MessageFindings& findings)
    : m_text(text), m_places(places), m_fields(fields), m_findings(findings), m_room(Room)
{
    if (findings.size() <= MostFindings && cost(0, places.size()) <= Room) {
        m_stretches = {{0, places.size()}};
        m_shownFindings = findings;
    } else {
        showFindings();
        const bool showsAllFindings = m_shownFindings.size() == findings.size();
        showBeginning(showsAllFindings ? places.size() : findings[m_shownFindings.size()].begin);
        joinStretches();
    }
    showFields();
}

int Excerpt::shownUnits() const
{
    int units = 0;
    for (const Stretch& stretch : m_stretches)
        units += stretch.end - stretch.begin;
    return units;
}

// What the text between two positions takes of the room; at most a little more than all of it.
int Excerpt::cost(int begin, int end) const
{
    const auto beginsBefore = [](const auto& item, int position) { return item.begin < position; };
    const auto countBetween = [&](const auto& items) -> qint64 {
        return std::lower_bound(items.cbegin(), items.cend(), end, beginsBefore) -
               std::lower_bound(items.cbegin(), items.cend(), begin, beginsBefore);
    };
    const qint64 units = end - begin;
    const qint64 marks = std::count_if(m_text.begin() + begin, m_text.begin() + end, needsMark);
    const qint64 cost = units * CostOfUnit + marks * CostOfMark +
                        countBetween(m_fields) * CostOfField +
                        countBetween(m_findings) * CostOfFinding;
    return static_cast<int>(std::min<qint64>(cost, Room + 1));
}

int Excerpt::contextBegin(int position) const
{
    position = m_places.characterBegin(position);
    const int first = std::max(position - MostContext, 0);
    int lineFeeds = 0;
    while (position > first && (m_text[position - 1] != u'\n' || ++lineFeeds <= ContextLines))
        --position;
    return m_places.characterBegin(position);
}

int Excerpt::contextEnd(int position) const
{
    position = m_places.characterBegin(position);
    const int last = std::min(position + MostContext, m_places.size());
    int lineFeeds = 0;
    while (position < last && lineFeeds <= ContextLines)
        lineFeeds += m_text[position++] == u'\n' ? 1 : 0;
    return m_places.characterBegin(position);
}

void Excerpt::add(int begin, int end)
{
    m_room -= cost(begin, end);
    m_stretches.push_back({begin, end});
}

void Excerpt::showFindings()
{
    int shownUpTo = 0;
    for (const MessageFinding& finding : m_findings) {
        if (m_shownFindings.size() == MostFindings)
            return;
        if (finding.begin >= 0) {
            const int begin = std::max(contextBegin(finding.begin), shownUpTo);
            const int end = std::max(contextEnd(finding.begin), shownUpTo);
            if (m_room - cost(begin, end) < Room / 2 && !m_shownFindings.empty())
                return;
            add(begin, end);
            shownUpTo = end;
        }
        m_shownFindings.push_back(finding);
    }
}

// Fills the room with the text before the limit that is not shown yet, piece by piece.
void Excerpt::showBeginning(int limit)
{
    const std::vector<Stretch> shown = m_stretches;
    int position = 0;
    const auto showUntil = [&](int end) {
        while (position < end) {
            const int pieceEnd = std::min(contextEnd(position), end);
            if (cost(position, pieceEnd) > m_room)
                return false;
            add(position, pieceEnd);
            position = pieceEnd;
        }
        return true;
    };
    for (const Stretch& stretch : shown) {
        if (!showUntil(std::min(stretch.begin, limit)))
            return;
        position = std::max(position, stretch.end);
    }
    showUntil(limit);
}

void Excerpt::joinStretches()
{
    std::sort(m_stretches.begin(), m_stretches.end(),
              [](const Stretch& a, const Stretch& b) { return a.begin < b.begin; });
    std::vector<Stretch> joined;
    for (const Stretch& stretch : m_stretches) {
        if (stretch.begin == stretch.end)
            continue;
        if (!joined.empty() && joined.back().end == stretch.begin)
            joined.back().end = stretch.end;
        else
            joined.push_back(stretch);
    }
    m_stretches = joined;
}

void Excerpt::showFields()
{
    std::vector<int> shownIndexes(m_fields.size()); // by index in all fields
    int leftOut = 0;
    for (size_t i = 0; i < m_fields.size(); ++i) {
        const MessageField& field = m_fields[i];
        if (!isShown(field)) {
            ++leftOut;
            continue;
        }
        shownIndexes[i] = static_cast<int>(m_shownFields.size());
        m_shownFields.push_back(field);
        if (field.parent != -1)
            m_shownFields.back().parent = shownIndexes[static_cast<size_t>(field.parent)];
        m_leftOutBefore.push_back(leftOut);
        leftOut = 0;
    }
    m_leftOutAtEnd = leftOut;
}

// A field around one that is shown is shown as well, since it covers the same text. So is the root,
// and a field without any text, as in a message with mistakes, beside what is shown.
bool Excerpt::isShown(const MessageField& field) const
{
    if (field.parent == -1)
        return true;
    const auto stretch = std::lower_bound(
        m_stretches.cbegin(), m_stretches.cend(), field.begin,
        [](const Stretch& searched, int position) { return searched.end < position; });
    return stretch != m_stretches.cend() && stretch->begin <= field.end;
}
