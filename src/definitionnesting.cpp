#include "definitionnesting.h"

#include "termexpression.h"
#include "termvariable.h"

#include <QObject>

#include <algorithm>

DefinitionNesting::DefinitionNesting(const TermList* terms) : m_terms(terms) {}

DefinitionNesting::Extent DefinitionNesting::extentOf(const TermStd* term)
{
    const auto begin = [this](const TermStd* next) {
        Definition definition{next, {}, {}};
        collect(next, 0, &definition);
        m_extents[next] = {}; // under way
        return definition;
    };
    if (const auto known = m_extents.find(term); known != m_extents.cend())
        return known->second;

    std::vector<Definition> stack;
    stack.push_back(begin(term));
    for (;;) {
        Definition& top = stack.back();
        if (top.references.empty()) {
            Extent extent = top.extent;
            extent.matching = matchingOf(top.term);
            m_extents[top.term] = extent;
            stack.pop_back();
            if (stack.empty())
                return extent;
            continue;
        }
        // The reference stays in its place until the term it names is known.
        const Reference& reference = top.references.back();
        const TermStd* const target = reference.target;
        if (target && m_extents.count(target) == 0) {
            stack.push_back(begin(target));
            continue;
        }
        const Extent referred = target ? m_extents.at(target) : Extent();
        top.extent.depth = std::max(top.extent.depth, reference.level + referred.depth);
        top.extent.terms = std::min(top.extent.terms + referred.terms, MaxTerms + 1);
        top.references.pop_back();
    }
}

bool DefinitionNesting::isWithinLimits(const TermStd* term)
{
    const Extent extent = extentOf(term);
    if (extent.depth > TermExpression::MaxNesting) {
        term->configErrorMessage(TermExpression::nestedTooDeepText());
        return false;
    }
    if (extent.terms > MaxTerms) {
        term->configErrorMessage(
            QObject::tr("references written out come to more than %1 terms").arg(MaxTerms));
        return false;
    }
    return isWithinLimit(term, extent.matching);
}

// The rule as a whole is read field by field, and what it refers to was looked at before.
bool DefinitionNesting::isMatchedWithinLimit(const TermExpression* rule)
{
    const auto isWithin = [this, rule](const TermStd* term) {
        if (term->type() != TermTypeExpression && term->bracketType != BracketRepeat)
            return true;
        Definition part{term, {}, {}};
        collect(term, 0, &part);
        for (const Reference& reference : part.references) {
            if (reference.target)
                extentOf(reference.target);
        }
        return isWithinLimit(rule, matchingOf(term));
    };
    return std::all_of(rule->ExprList.cbegin(), rule->ExprList.cend(), isWithin);
}

bool DefinitionNesting::isWithinLimit(const TermStd* term, const Matching& matching)
{
    if (matching.steps <= MatchingCost::MaxSteps)
        return true;
    term->configErrorMessage(QObject::tr("matching %1 characters may take more than %2 steps")
                                 .arg(MatchingCost::TextLength)
                                 .arg(MatchingCost::MaxSteps));
    return false;
}

const TermStd* DefinitionNesting::targetOf(const TermStd* reference) const
{
    const TermStd* const found = static_cast<const TermVariable*>(reference)->simpleTerm;
    return found ? found : m_terms->search(reference->ExprRuleStr);
}

// Brackets are bounded by the compiler, so this recursion is.
void DefinitionNesting::collect(const TermStd* term, int level, Definition* definition) const
{
    Extent& extent = definition->extent;
    extent.depth = std::max(extent.depth, level);
    extent.terms = std::min(extent.terms + 1, MaxTerms + 1);
    if (term->type() == TermTypeVariable) {
        definition->references.push_back({targetOf(term), level + 1});
    } else if (term->type() == TermTypeExpression) {
        for (const TermStd* sub : static_cast<const TermExpression*>(term)->ExprList)
            collect(sub, level + 1, definition);
    }
}

// The definitions that the term refers to are known. The same recursion.
DefinitionNesting::Matching DefinitionNesting::matchingOf(const TermStd* term) const
{
    Matching matching;
    switch (term->type()) {
    case TermTypeVariable:
        matching = matchingOfReference(term);
        break;
    case TermTypeExpression:
        matching = matchingOfExpression(static_cast<const TermExpression*>(term));
        break;
    case TermTypeSimple:
        matching.cost = MatchingCost::ofLiteral(static_cast<int>(term->ExprRuleStr.size()));
        break;
    case TermTypeSep:
        matching.cost = MatchingCost::ofSeparator();
        break;
    default:
        matching.cost = MatchingCost::ofLiteral(1);
    }
    if (term->bracketType == BracketRepeat)
        matching.cost = matching.cost.repeated(term->minRepeat, term->maxRepeat);
    if (!matching.hasCompound)
        matching.steps = std::max(matching.steps, matching.cost.steps());
    return matching;
}

DefinitionNesting::Matching DefinitionNesting::matchingOfReference(const TermStd* reference) const
{
    const TermStd* const target = targetOf(reference);
    if (!target)
        return {};
    Matching matching = m_extents.at(target).matching;
    if (target->containsField) {
        matching.hasCompound |= matching.hasField;
        matching.hasField = true;
    }
    return matching;
}

DefinitionNesting::Matching
DefinitionNesting::matchingOfExpression(const TermExpression* expression) const
{
    const bool isChoice = expression->currentOperator == u'|';
    const auto& terms = expression->ExprList;
    Matching all;
    for (auto it = terms.cbegin(); it != terms.cend(); ++it) {
        const Matching matching = matchingOf(*it);
        if (isChoice)
            all.cost.addAlternative(matching.cost);
        else
            all.cost.append(matching.cost, (*it)->isRequired(),
                            it + 1 != terms.cend() && it[1]->isSeparator());
        all.steps = std::max(all.steps, matching.steps);
        all.hasField |= matching.hasField;
        all.hasCompound |= matching.hasCompound;
    }
    return all;
}
