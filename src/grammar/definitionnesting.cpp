#include "grammar/definitionnesting.h"

#include "grammar/termexpression.h"

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
            const Extent extent = top.extent;
            m_extents[top.term] = extent;
            stack.pop_back();
            if (stack.empty())
                return extent;
            continue;
        }
        // The reference stays on the list until the extent of its target is known.
        const Reference& reference = top.references.back();
        const TermStd* const target = m_terms->search(reference.name);
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

bool DefinitionNesting::isWithinLimits(const TermStd* term, Reporter* reporter)
{
    const Extent extent = extentOf(term);
    if (extent.depth > TermExpression::MaxNesting) {
        term->configErrorMessage(ADEXP_CODE_NESTED_TOO_DEEP, TermExpression::nestedTooDeepText(),
                                 reporter);
        return false;
    }
    if (extent.terms > MaxTerms) {
        term->configErrorMessage(
            ADEXP_CODE_TOO_MANY_TERMS,
            QObject::tr("references written out come to more than %1 terms").arg(MaxTerms),
            reporter);
        return false;
    }
    return true;
}

// The recursion is bounded: the compiler limits the nesting of brackets.
void DefinitionNesting::collect(const TermStd* term, int level, Definition* definition)
{
    Extent& extent = definition->extent;
    extent.depth = std::max(extent.depth, level);
    extent.terms = std::min(extent.terms + 1, MaxTerms + 1);
    if (term->type() == TermTypeVariable) {
        definition->references.push_back({term->ExprRuleStr, level + 1});
    } else if (term->type() == TermTypeExpression) {
        for (const TermStd* sub : static_cast<const TermExpression*>(term)->ExprList)
            collect(sub, level + 1, definition);
    }
}
