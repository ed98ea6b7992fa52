#include "definitionnesting.h"

#include "termexpression.h"

#include <algorithm>

DefinitionNesting::DefinitionNesting(const TermList* terms) : m_terms(terms) {}

int DefinitionNesting::depthOf(const TermStd* term)
{
    const auto begin = [this](const TermStd* next) {
        Definition definition{next, {}, 0};
        collect(next, 0, &definition);
        m_depths[next] = 0; // under way
        return definition;
    };
    if (const auto known = m_depths.find(term); known != m_depths.cend())
        return known->second;

    std::vector<Definition> stack;
    stack.push_back(begin(term));
    for (;;) {
        Definition& top = stack.back();
        if (top.references.empty()) {
            const int depth = top.depth;
            m_depths[top.term] = depth;
            stack.pop_back();
            if (stack.empty())
                return depth;
            continue;
        }
        // The reference stays in its place until the term it names is known.
        const Reference& reference = top.references.back();
        const TermStd* const target = m_terms->search(reference.name);
        if (target && m_depths.count(target) == 0) {
            stack.push_back(begin(target));
            continue;
        }
        top.depth = std::max(top.depth, reference.level + (target ? m_depths.at(target) : 0));
        top.references.pop_back();
    }
}

// Brackets are bounded by the compiler, so this recursion is.
void DefinitionNesting::collect(const TermStd* term, int level, Definition* definition)
{
    definition->depth = std::max(definition->depth, level);
    if (term->type() == TermTypeVariable) {
        definition->references.push_back({term->ExprRuleStr, level + 1});
    } else if (term->type() == TermTypeExpression) {
        for (const TermStd* sub : static_cast<const TermExpression*>(term)->ExprList)
            collect(sub, level + 1, definition);
    }
}
