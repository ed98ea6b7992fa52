#include "termwarnings.h"

#include "definitions.h"
#include "grammar/termexpression.h"
#include "grammar/termvariable.h"
#include "load/mainclass.h"
#include "message/msgrule.h"
#include "report/linereporter.h"
#include "termtext.h"

#include <QSet>

#include <algorithm>
#include <utility>

namespace {

// An alternative is compared with at most so many earlier ones that are more than a literal. People
// write only a few of them, and with the limit the time for a choice stays linear.
constexpr std::size_t MostCandidates = 100;

bool isOneCharacter(const TermFacts& facts)
{
    return facts.run && facts.run->max == 1;
}

bool isField(const TermStd* term)
{
    return term->type() == TermTypeVariable &&
           static_cast<const TermVariable*>(term)->simpleTerm->containsField;
}

} // namespace

TermWarnings::TermWarnings(const MainClass* rules) : m_rules(rules) {}

std::vector<Finding> TermWarnings::find()
{
    m_warnings.clear();
    for (TermStd* term : m_rules->termsList) {
        if (!term->valid)
            continue; // its check has failed, but it is in the list
        // Only the names of fields count, their texts are not matched. A compound may name a field
        // twice, to say that there are two.
        if (isCompound(term))
            checkNames(term, false);
        else
            checkMatching(term);
    }
    for (const MsgRule* rule : m_rules->msgRules)
        checkNames(rule, true);
    return std::move(m_warnings);
}

void TermWarnings::warn(const TermStd* term, const QString& text)
{
    Finding finding;
    finding.severity = Severity::Warning;
    finding.text = text;
    finding.detail = term->config.ruleText;
    finding.record = term->config;
    finding.begin = term->config.textBegin;
    m_warnings.push_back(finding);
}

// The recursion is bounded: the compiler limits the nesting of brackets.
void TermWarnings::checkMatching(const TermStd* term)
{
    checkOccurrences(term);
    const TermExpression* const expression = asExpression(term);
    if (!expression)
        return;
    if (isChoice(expression))
        checkChoice(expression);
    else
        checkSequence(expression);
    for (const TermStd* part : expression->ExprList)
        checkMatching(part);
}

void TermWarnings::checkOccurrences(const TermStd* term)
{
    if (term->bracketType != BracketRepeat)
        return;
    if (term->maxRepeat == 0)
        warn(term, QStringLiteral("matches nothing, as its maximum count is 0"));
    else if (m_facts.of(term).isOnce && term->maxRepeat > 1)
        warn(term, QStringLiteral("is matched once at the most: an occurrence takes every "
                                  "character that the next one could begin with"));
}

void TermWarnings::checkChoice(const TermExpression* choice)
{
    CharSet characters;
    QSet<int> shapes;
    std::vector<const TermStd*> candidates;
    for (const TermStd* alternative : choice->ExprList) {
        const TermFacts& facts = m_facts.of(alternative);
        const auto sameOrLonger =
            std::find_if(candidates.begin(), candidates.end(), [&](const TermStd* candidate) {
                return m_facts.covers(candidate, alternative);
            });
        const bool isCharacter = isOneCharacter(facts);
        if (alternative->type() == TermTypeNil)
            warn(alternative, QStringLiteral("NIL never wins in a choice, as it takes nothing; "
                                             "write the choice in square brackets"));
        else if (!facts.canMatch)
            continue; // there is a warning about what is in it
        else if (sameOrLonger != candidates.end())
            warn(alternative, termText(alternative) + QLatin1String(" never wins: ") +
                                  termText(*sameOrLonger) +
                                  QLatin1String(" before it takes as much of every text"));
        else if (shapes.contains(facts.shape) ||
                 (isCharacter && characters.contains(facts.run->set)))
            warn(alternative, termText(alternative) +
                                  QLatin1String(" never wins: what stands before it matches the "
                                                "same texts"));
        shapes.insert(facts.shape);
        if (isCharacter)
            characters.add(facts.run->set);
        else if (alternative->type() != TermTypeSimple && candidates.size() < MostCandidates)
            candidates.push_back(alternative);
    }
}

void TermWarnings::checkSequence(const TermExpression* sequence)
{
    CharSet taken; // characters that cannot stand at the place reached
    const TermStd* before = nullptr;
    const auto& steps = sequence->ExprList;
    for (int i = 0; i < steps.size(); ++i) {
        const TermStd* const step = steps.at(i);
        const TermFacts& facts = m_facts.of(step);
        const bool isSeparator = step->isSeparator();
        const bool isRequired = step->isRequired();
        if (isSeparator && before && !before->isRequired()) {
            taken = CharSet(); // whether the two were there is not known
        } else if (!facts.canMatch) {
            if (step->type() == TermTypeNil && steps.size() > 1)
                warn(step, isRequired ? QStringLiteral("NIL takes nothing, so a sequence with it "
                                                       "never matches; leave it out")
                                      : QStringLiteral("NIL takes nothing; leave it out"));
            if (isRequired)
                return;
        } else if (!taken.isEmpty() && taken.contains(facts.first)) {
            // A separator that the compiler has put in has no place of its own.
            const bool isInserted = isSeparator && step->config.textBegin == 0;
            warn(isInserted ? steps.at(i + 1) : step,
                 termText(step) + QLatin1String(" never matches: ") + termText(before) +
                     QLatin1String(" before it takes every character that it could begin with"));
            if (isRequired)
                return;
        } else if (isRequired) {
            taken = facts.notBehind;
        } else {
            // It may have been left out. Then the characters taken before still count.
            const bool isShort = facts.run && facts.run->min <= 1;
            taken = isShort ? facts.notBehind : taken.intersected(facts.notBehind);
        }
        before = step;
    }
}

TermWarnings::Names TermWarnings::checkNames(const TermStd* term, bool onceEach)
{
    Names names;
    if (const TermExpression* const expression = asExpression(term)) {
        for (const TermStd* part : expression->ExprList) {
            const Names partNames = checkNames(part, onceEach);
            if (isChoice(expression))
                names.first.insert(partNames.first);
            else
                addFollowing(&names, partNames, onceEach);
        }
    } else if (isField(term)) {
        names.first.insert(term->ExprRuleStr, term);
        TermStd* const field = static_cast<const TermVariable*>(term)->simpleTerm;
        LineReporter reports;
        if (field->fieldKind(&reports) == FieldKind::BasicToLimit)
            names.takingAll = term;
    }
    return names;
}

// Adds the names of the next part of a sequence.
void TermWarnings::addFollowing(Names* names, const Names& following, bool onceEach)
{
    if (names->takingAll && !following.first.isEmpty()) {
        warn(names->takingAll,
             names->takingAll->ExprRuleStr +
                 QLatin1String(" takes the fields behind it, too, up to the end of the message; "
                               "put it last"));
        names->takingAll = nullptr;
    }
    if (following.takingAll)
        names->takingAll = following.takingAll;
    for (auto it = following.first.cbegin(); it != following.first.cend(); ++it) {
        if (!names->first.contains(it.key()))
            names->first.insert(it.key(), it.value());
        else if (onceEach)
            warn(it.value(), it.key() + QLatin1String(" is named before; naming a field once "
                                                      "allows it any number of times"));
    }
}
