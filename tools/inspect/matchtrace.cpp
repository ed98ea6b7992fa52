#include "matchtrace.h"

#include "grammar/termexpression.h"
#include "grammar/termvariable.h"
#include "termfacts.h"
#include "termtext.h"

#include <algorithm>

namespace {

constexpr int MostWanted = 20;

QString wordsFor(const TermStd* term)
{
    switch (term->type()) {
    case TermTypeCharacter:
        return QStringLiteral("a character of CHARACTER");
    case TermTypeLimChar:
        return QStringLiteral("a character of LIM_CHAR");
    case TermTypeAlphanum:
        return QStringLiteral("an upper-case letter or digit");
    case TermTypeAlpha:
        return QStringLiteral("an upper-case letter");
    case TermTypeDigit:
        return QStringLiteral("a digit");
    case TermTypeSep:
        return QStringLiteral("white space");
    case TermTypeNil:
        return QStringLiteral("nothing (NIL)");
    case TermTypeSimple:
        return u'\'' + term->ExprRuleStr + u'\'';
    default:
        return termText(term);
    }
}

} // namespace

MatchTrace::MatchTrace(TermStd* term, const QString& text)
    : m_match(text.size(), &m_reporter), m_text(text)
{
    m_matched = match(term, 0);
    if (m_stoppedAt >= m_matched && !m_wanted.isEmpty())
        return;
    // The definition ends in front of the rest.
    m_stoppedAt = m_matched;
    m_wanted.clear();
    m_path.clear();
}

void MatchTrace::stop(int pos, const QString& wanted)
{
    if (pos > m_stoppedAt || m_wanted.isEmpty()) {
        m_stoppedAt = pos;
        m_wanted.clear();
        m_path = m_references;
    }
    if (pos == m_stoppedAt && m_wanted.size() < MostWanted && !m_wanted.contains(wanted))
        m_wanted.append(wanted);
}

void MatchTrace::stopAtTerm(const TermStd* term, int pos)
{
    if (pos >= m_stoppedAt)
        stop(pos, wordsFor(term));
}

int MatchTrace::match(TermStd* term, int pos)
{
    if (term->bracketType != BracketRepeat)
        return matchOnce(term, pos);
    int count = 0;
    int length = 0;
    while (count < term->maxRepeat && m_match.takeSteps(1)) {
        const int once = matchOnce(term, pos + length);
        if (once == 0)
            break;
        ++count;
        length += once;
    }
    return count < term->minRepeat ? 0 : length;
}

int MatchTrace::matchOnce(TermStd* term, int pos)
{
    if (const TermExpression* const expression = asExpression(term))
        return isChoice(expression) ? matchChoice(expression, pos) : matchSequence(expression, pos);
    if (term->type() != TermTypeVariable)
        return matchLeaf(term, pos);
    TermStd* const definition = static_cast<const TermVariable*>(term)->simpleTerm;
    if (!definition) { // was refused for a circle: it matches nothing
        stopAtTerm(term, pos);
        return 0;
    }
    m_references.append(term->ExprRuleStr);
    const int length = match(definition, pos);
    m_references.removeLast();
    return length;
}

int MatchTrace::matchLeaf(TermStd* term, int pos)
{
    const QChar* const data = m_text.constData() + pos;
    const int length = term->matchOnce(data, &m_match);
    if (length == 0) {
        // Of a literal the beginning may be there.
        const QString literal = term->type() == TermTypeSimple ? term->ExprRuleStr : QString();
        const auto differs =
            std::mismatch(literal.cbegin(), literal.cend(), m_text.cbegin() + pos, m_text.cend());
        stopAtTerm(term, pos + static_cast<int>(differs.first - literal.cbegin()));
    }
    return length;
}

int MatchTrace::matchChoice(const TermExpression* choice, int pos)
{
    int longest = 0;
    for (TermStd* alternative : choice->ExprList)
        longest = std::max(longest, match(alternative, pos));
    return longest;
}

int MatchTrace::matchSequence(const TermExpression* sequence, int pos)
{
    const int begin = pos;
    const auto& steps = sequence->ExprList;
    int i = 0;
    for (; i < steps.size() && pos < m_text.size() && !m_text.at(pos).isNull(); ++i) {
        TermStd* const step = steps.at(i);
        const int length = match(step, pos);
        if (step->isRequired()) {
            if (length == 0)
                return 0;
        } else if (i + 1 < steps.size() && steps.at(i + 1)->isSeparator() &&
                   step->parse_sep(m_text.constData() + pos + length) == 0) {
            // The term counts as absent, see TermExpression::parse_by_operator_and().
            if (length > 0 && pos + length >= m_stoppedAt)
                stop(pos + length, QLatin1String("white space (without it ") + termText(step) +
                                       QLatin1String(" counts as absent)"));
            ++i;
            continue;
        }
        pos += length;
    }
    return isLeftUnmatched(sequence, i, pos) ? 0 : pos - begin;
}

// At the end of the text: is something required left of the sequence?
bool MatchTrace::isLeftUnmatched(const TermExpression* sequence, int step, int pos)
{
    const auto& steps = sequence->ExprList;
    const auto left = std::find_if(steps.cbegin() + step, steps.cend(), [](const TermStd* term) {
        return term->isRequired() && !term->isSeparator();
    });
    if (left != steps.cend())
        stopAtTerm(*left, pos);
    return left != steps.cend();
}
