#include "termfacts.h"

#include "grammar/charclass.h"
#include "grammar/termexpression.h"
#include "grammar/termvariable.h"

#include <algorithm>

namespace {

constexpr qint64 Unlimited = TermFacts::Unlimited;

qint64 times(qint64 length, qint64 count)
{
    return length != 0 && count > Unlimited / length ? Unlimited : length * count;
}

qint64 plus(qint64 a, qint64 b)
{
    return a > Unlimited - b ? Unlimited : a + b;
}

TermFacts nothing()
{
    TermFacts facts;
    facts.canMatch = false;
    return facts;
}

TermFacts factsOfRun(const CharSet& set, qint64 min, qint64 max)
{
    TermFacts facts;
    facts.chars = facts.first = set;
    facts.minLength = min;
    facts.maxLength = max;
    facts.run = TermFacts::Run{set, min, max};
    if (max == Unlimited)
        facts.notBehind = set;
    return facts;
}

bool isOneCharacter(const TermFacts& facts)
{
    return facts.run && facts.run->max == 1;
}

// The classes of a standard term that matches one character, asked of the term itself.
CharSet classesOf(const TermStd* term)
{
    using namespace CharClass;
    switch (term->type()) {
    case TermTypeCharacter:
        return CharSet::ofClasses(Upper | CharClass::Digit | Space | Special | Hyphen);
    case TermTypeLimChar:
        return CharSet::ofClasses(Upper | CharClass::Digit | Space | Special);
    case TermTypeAlphanum:
        return CharSet::ofClasses(Upper | CharClass::Digit);
    case TermTypeAlpha:
        return CharSet::ofClasses(Upper);
    default:
        return CharSet::ofClasses(CharClass::Digit);
    }
}

TermFacts factsOfLiteral(const QString& text)
{
    if (text.size() == 1)
        return factsOfRun(CharSet::ofText(text), 1, 1);
    TermFacts facts;
    facts.chars = CharSet::ofText(text);
    facts.first = CharSet::ofText(text.left(1));
    facts.minLength = facts.maxLength = text.size();
    return facts;
}

} // namespace

const TermStd* behindReferences(const TermStd* term)
{
    while (term->type() == TermTypeVariable && term->bracketType != BracketRepeat) {
        const TermStd* const next = static_cast<const TermVariable*>(term)->simpleTerm;
        if (!next)
            break;
        term = next;
    }
    return term;
}

const TermExpression* asExpression(const TermStd* term)
{
    const bool isExpression = term->type() == TermTypeExpression || term->type() == TermTypeMsgRule;
    return isExpression ? static_cast<const TermExpression*>(term) : nullptr;
}

bool isChoice(const TermExpression* expression)
{
    return expression->OperatorsList.startsWith(u'|');
}

const TermFacts& TermFactsTable::of(const TermStd* term)
{
    term = behindReferences(term);
    const auto known = m_facts.find(term);
    return known != m_facts.end() ? known->second : m_facts.emplace(term, find(term)).first->second;
}

TermFacts TermFactsTable::find(const TermStd* term)
{
    TermFacts facts = factsOfInner(term);
    facts.innerShape = facts.shape;
    if (term->bracketType == BracketRepeat)
        repeat(term, &facts);
    if (!facts.canMatch)
        facts.first = CharSet();
    return facts;
}

// The facts of one occurrence.
TermFacts TermFactsTable::factsOfInner(const TermStd* term)
{
    if (const TermExpression* const expression = asExpression(term))
        return isChoice(expression) ? factsOfChoice(expression) : factsOfSequence(expression);
    TermFacts facts;
    switch (term->type()) {
    case TermTypeVariable: // repeated or not resolved, see behindReferences()
        if (const TermStd* const next = static_cast<const TermVariable*>(term)->simpleTerm)
            return of(next);
        facts = nothing();
        break;
    case TermTypeSimple:
        facts = factsOfLiteral(term->ExprRuleStr);
        facts.shape = shapeOf('\'' + term->ExprRuleStr.toStdString());
        return facts;
    case TermTypeNil:
        facts = nothing();
        break;
    case TermTypeSep:
        facts = factsOfRun(CharSet::ofClasses(CharClass::Space), 1, Unlimited);
        break;
    default:
        facts = factsOfRun(classesOf(term), 1, 1);
    }
    facts.shape = shapeOf('#' + std::to_string(term->type()));
    return facts;
}

TermFacts TermFactsTable::factsOfChoice(const TermExpression* choice)
{
    TermFacts facts = nothing();
    std::string description = "|";
    bool areCharacters = true;
    for (const TermStd* alternative : choice->ExprList) {
        const TermFacts& other = of(alternative);
        description += std::to_string(other.shape) + ' ';
        if (!other.canMatch)
            continue;
        areCharacters = areCharacters && isOneCharacter(other);
        facts.notBehind =
            facts.canMatch ? facts.notBehind.intersected(other.notBehind) : other.notBehind;
        facts.minLength =
            facts.canMatch ? std::min(facts.minLength, other.minLength) : other.minLength;
        facts.maxLength =
            facts.canMatch ? std::max(facts.maxLength, other.maxLength) : other.maxLength;
        facts.chars.add(other.chars);
        facts.first.add(other.first);
        facts.canMatch = true;
    }
    if (facts.canMatch && areCharacters)
        facts.run = TermFacts::Run{facts.chars, 1, 1};
    facts.shape = shapeOf(description);
    return facts;
}

TermFacts TermFactsTable::factsOfSequence(const TermExpression* sequence)
{
    TermFacts facts;
    facts.minLength = facts.maxLength = 0;
    std::string description = "!";
    bool canBeFirst = true;     // nothing before it must match
    bool afterOptional = false; // a separator is left out with the optional term before it
    for (const TermStd* step : sequence->ExprList) {
        const TermFacts& other = of(step);
        const bool isSeparator = step->isSeparator();
        const bool isOptional = !step->isRequired() || (afterOptional && isSeparator);
        description += std::to_string(other.shape) + (step->isRequired() ? '.' : '?');
        description += isSeparator ? '_' : ' ';
        facts.chars.add(other.chars);
        if (canBeFirst)
            facts.first.add(other.first);
        facts.maxLength = plus(facts.maxLength, other.canMatch ? other.maxLength : 0);
        if (!isOptional) {
            canBeFirst = false;
            // At the end of the text separators do not have to be there.
            facts.minLength = plus(facts.minLength, isSeparator ? 0 : other.minLength);
            facts.canMatch = facts.canMatch && (other.canMatch || isSeparator);
        }
        const bool isKnown = !isOptional || (!isSeparator && other.run && other.run->min <= 1);
        facts.notBehind = isKnown ? other.notBehind : CharSet();
        afterOptional = !step->isRequired();
    }
    facts.minLength = std::max<qint64>(facts.minLength, 1);
    facts.shape = shapeOf(description);
    return facts;
}

void TermFactsTable::repeat(const TermStd* term, TermFacts* facts)
{
    const qint64 min = std::max(term->minRepeat, 1);
    const qint64 max = term->maxRepeat == RepeatNoLimit ? Unlimited : term->maxRepeat;
    if (max < 1) {
        *facts = nothing();
    } else if (isOneCharacter(*facts)) {
        const int innerShape = facts->innerShape;
        *facts = factsOfRun(facts->run->set, min, max);
        facts->innerShape = innerShape;
    } else {
        // Each occurrence is followed by the next one, which may be impossible.
        facts->isOnce = facts->canMatch && !facts->notBehind.isEmpty() &&
                        facts->notBehind.contains(facts->first);
        facts->canMatch = facts->canMatch && !(facts->isOnce && min > 1);
        facts->minLength = times(facts->minLength, min);
        facts->maxLength = times(facts->maxLength, max);
        facts->run.reset();
    }
    facts->minCount = min;
    facts->maxCount = max;
    facts->shape = shapeOf('{' + std::to_string(min) + ' ' + std::to_string(max) + ' ' +
                           std::to_string(facts->innerShape));
}

int TermFactsTable::shapeOf(const std::string& description)
{
    return m_shapes.emplace(description, static_cast<int>(m_shapes.size())).first->second;
}

bool TermFactsTable::covers(const TermStd* a, const TermStd* b)
{
    const auto pair = (static_cast<quint64>(of(a).shape) << 32) | static_cast<quint64>(of(b).shape);
    if (const auto known = m_covers.constFind(pair); known != m_covers.constEnd())
        return known.value();
    const bool result = findCovers(behindReferences(a), behindReferences(b));
    m_covers.insert(pair, result);
    return result;
}

bool TermFactsTable::findCovers(const TermStd* a, const TermStd* b)
{
    const TermFacts& wide = of(a);
    const TermFacts& narrow = of(b);
    if (wide.innerShape == narrow.innerShape)
        return wide.minCount <= narrow.minCount && wide.maxCount >= narrow.maxCount;
    if (wide.run && wide.run->set.contains(narrow.chars) && wide.run->min <= narrow.minLength &&
        wide.run->max >= narrow.maxLength)
        return true;
    const auto once = [](const TermStd* term) {
        return term->bracketType == BracketRepeat ? nullptr : asExpression(term);
    };
    const TermExpression* const wideExpression = once(a);
    const TermExpression* const narrowExpression = once(b);
    if (narrowExpression && isChoice(narrowExpression))
        return std::all_of(narrowExpression->ExprList.cbegin(), narrowExpression->ExprList.cend(),
                           [this, a](const TermStd* term) { return covers(a, term); });
    if (!wideExpression)
        return false;
    if (isChoice(wideExpression))
        return std::any_of(wideExpression->ExprList.cbegin(), wideExpression->ExprList.cend(),
                           [this, b](const TermStd* term) { return covers(term, b); });
    return beginsWith(wideExpression, b);
}

// True if the sequence is that of b, or b itself, with optional terms behind it. A separator among
// those could turn what stands before it into something absent.
bool TermFactsTable::beginsWith(const TermExpression* a, const TermStd* b)
{
    const bool isRepeated = b->bracketType == BracketRepeat;
    const TermExpression* const other = isRepeated ? nullptr : asExpression(b);
    const auto& steps = a->ExprList;
    int count = 1;
    if (other) {
        count = static_cast<int>(other->ExprList.size());
        if (count > steps.size())
            return false;
        for (int i = 0; i < count; ++i) {
            if (!areSameSteps(steps.at(i), other->ExprList.at(i)))
                return false;
        }
    } else if (of(steps.first()).shape != of(b).shape || !steps.first()->isRequired()) {
        return false;
    }
    return std::none_of(steps.cbegin() + count, steps.cend(), [](const TermStd* step) {
        return step->isRequired() || step->isSeparator();
    });
}

bool TermFactsTable::areSameSteps(const TermStd* a, const TermStd* b)
{
    return of(a).shape == of(b).shape && a->isRequired() == b->isRequired() &&
           a->isSeparator() == b->isSeparator();
}
